#pragma once

#include <mirel_fitting/Export.h>

#include <cstddef>
#include <set>
#include <vector>

/** Ability of a model: between which limits one more case at a point would lie. */
class MIREL_FITTING_EXPORT PredictionIntervalInterface
{
public:
    virtual ~PredictionIntervalInterface();

    /**
     * The prediction minus and plus the standard error of an observation times a quantile: of
     * Student's t with the residual degrees of freedom for a response surface, of the normal
     * distribution for Kriging. They hold if the model is right, point by point.
     * @param inputs, offsets, count as for SurrogateModelInterface::interpolateDependentValues().
     * @param level  the probability with which the case lies between the limits, such as 0.95.
     * @param lower, upper one array of `count` values per offset, in ascending order of the
     *               offsets; every value is written. A point with a coordinate that is not finite
     *               gets NaN.
     * @throw SurrogateModelInterface::Error like interpolateDependentValues(), for a level that is
     *        not between 0 and 1, and for a response surface with as many terms as cases.
     */
    virtual void predictionIntervals(const std::vector<double*>& inputs,
                                     const std::set<int>& offsets, double level,
                                     std::vector<double*>& lower, std::vector<double*>& upper,
                                     std::size_t count) const = 0;

    /**
     * That quantile: so many standard errors lie between a prediction and its limits, and with
     * those of a mean the model itself lies between them with this probability.
     * @throw SurrogateModelInterface::Error as above.
     */
    virtual double intervalQuantile(int offset, double level) const = 0;
};
