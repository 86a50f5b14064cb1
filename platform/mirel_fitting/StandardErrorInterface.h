#pragma once

#include <mirel_fitting/Export.h>

#include <cstddef>
#include <set>
#include <vector>

/** Ability of a model: how far off its predictions may be. */
class MIREL_FITTING_EXPORT StandardErrorInterface
{
public:
    enum class Kind
    {
        Mean,       ///< of what interpolateDependentValues() predicts
        Observation ///< of one more case at the point, with the noise that the model has estimated
    };

    virtual ~StandardErrorInterface();

    /**
     * Standard errors, in the unit of the output; 0 at a case that the model meets, never negative.
     * They hold if the model is right: the uncertainty of the estimated parameters other than the
     * trend's coefficients is not in them.
     * @param inputs, offsets, count as for SurrogateModelInterface::interpolateDependentValues().
     * @param errors one array of `count` values per offset, in ascending order of the offsets;
     *               every value is written. A point with a coordinate that is not finite gets NaN.
     * @throw SurrogateModelInterface::Error like interpolateDependentValues().
     */
    virtual void standardErrors(const std::vector<double*>& inputs, const std::set<int>& offsets,
                                Kind kind, std::vector<double*>& errors,
                                std::size_t count) const = 0;
};
