#pragma once

/**
 * The probabilities and quantiles that statements about fits need. Nothing is NaN;
 * degrees of freedom are positive.
 */
class Distributions
{
public:
    /** q such that a value of Student's t lies between -q and q with the probability `level`. */
    static double studentQuantile(double level, double degreesOfFreedom);

    /** The same for the standard normal distribution. */
    static double normalQuantile(double level);

    /** The probability of a |t| as large as this or larger. */
    static double studentTails(double t, double degreesOfFreedom);

    /** The probability of an F as large as this or larger; 1 for a negative one, which rounding
     *  makes of 0. */
    static double fisherTail(double f, double numeratorDegrees, double denominatorDegrees);

    /** @throw SurrogateModelInterface::Error for a level that is not between 0 and 1. */
    static void requireLevel(double level);
};
