#pragma once

/** Probabilities and quantiles of the statistics of fits. Arguments are no NaN, degrees of freedom
 *  positive. */
class Distributions
{
public:
    /** The two-sided quantile q of Student's t: P(|T| <= q) = level. */
    static double studentQuantile(double level, double degreesOfFreedom);

    /** The two-sided tail probability P(|T| >= |t|). */
    static double studentTails(double t, double degreesOfFreedom);

    /** The upper tail probability P(F >= f); 1 for a negative f, which is 0 but for rounding. */
    static double fisherTail(double f, double numeratorDegrees, double denominatorDegrees);

    /** @throw SurrogateModelInterface::Error for a level that is not between 0 and 1. */
    static void requireLevel(double level);
};
