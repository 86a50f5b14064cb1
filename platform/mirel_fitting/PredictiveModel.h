#pragma once

#include <mirel_fitting/Export.h>
#include <mirel_fitting/Extrapolation.h>
#include <mirel_fitting/FitMetrics.h>
#include <mirel_fitting/PredictorDescription.h>
#include <mirel_fitting/SurrogateModelInterface.h>

#include <cstddef>
#include <string>
#include <vector>

/**
 * A model that knows how well it was fitted, where its cases lie, and what its predictions are
 * computed from.
 *
 * Arguments and results of this class and of those derived from it:
 * - points come as for interpolateDependentValues(): one array of `count` values per input,
 * borrowed for the call, null allowed when `count` is 0;
 * - one output at a time, addressed by its offset; it is fitted first if that has not been done;
 * - results are returned by value, one number per point in a vector of `count`. Only
 *   interpolateDependentValues() writes into arrays of the caller;
 * - a point with a coordinate that is not finite gives NaN;
 * - Error, like interpolateDependentValues(): another number of inputs, a null array, an offset out
 *   of range, an output that cannot be fitted.
 */
class MIREL_FITTING_EXPORT PredictiveModel : public virtual SurrogateModelInterface
{
public:
    ~PredictiveModel() override;

    /** How well the fit of the output describes its cases; NaN for what the model does not have. */
    virtual FitMetrics fitMetrics(int offset) const = 0;

    /**
     * What changed the result (terms or cases dropped, nugget raised, ...), a sentence each.
     * @param inputNames what the sentences call the inputs, in quotes: one name per input, or none
     *                   for V1, V2, ....
     */
    virtual std::vector<std::string>
    fitWarnings(int offset, const std::vector<std::string>& inputNames = {}) const = 0;

    /** Those of fitWarnings() that are no reason to doubt the model: what was asked for, and what
     * is normal, such as replicates that are smoothed. By default none. */
    virtual std::vector<std::string>
    fitNotes(int offset, const std::vector<std::string>& inputNames = {}) const;

    /**
     * How far each point lies outside the cases: the largest distance beyond an input's smallest or
     * largest value among them, as a fraction of the range between these two. 0 inside; infinity
     * where an input that is the same in all cases has another value.
     */
    virtual std::vector<double> extrapolations(const std::vector<double*>& inputs,
                                               std::size_t count) const = 0;

    /**
     * Which points lie outside the cases, with the rows of the first ten of them: outside the range
     * of an input by more than a hundredth of it, or, for an input that is the same in all cases,
     * by more than half a unit in the sixth digit; or, where the model can judge that, within all
     * ranges but at a combination of values that the cases do not support. A Kriging model judges
     * combinations at no more than 10 000 random points, always the same; of more points the texts
     * give percentages if it finds any.
     * @param inputNames as for fitWarnings().
     */
    virtual Extrapolation extrapolation(const std::vector<double*>& inputs, std::size_t count,
                                        const std::vector<std::string>& inputNames = {}) const = 0;

    /** The same as one sentence. */
    std::string extrapolationWarning(const std::vector<double*>& inputs, std::size_t count,
                                     const std::vector<std::string>& inputNames = {}) const
    {
        return extrapolation(inputs, count, inputNames).text();
    }

    /**
     * One flag per point: 1 where extrapolation() would name it, each point judged; 0
     * elsewhere. By default those outside the range of an input by more than a hundredth of it.
     */
    virtual std::vector<char> outsideCases(const std::vector<double*>& inputs,
                                           std::size_t count) const;

    /**
     * Everything that a prediction is computed from.
     * @throw Error also for a Kriging model of so many cases that each prediction searches for its
     *        nearest neighbours among them.
     */
    virtual PredictorDescription predictorDescription(int offset) const = 0;
};
