#pragma once

#include <mirel_fitting/Export.h>

#include <cstddef>
#include <vector>

/** Ability of a model: the derivatives of its predictions by the inputs. */
class MIREL_FITTING_EXPORT GradientInterface
{
public:
    virtual ~GradientInterface();

    /**
     * @param inputs    as for SurrogateModelInterface::interpolateDependentValues().
     * @param offset    the dependent; fitted if it is not fitted yet.
     * @param gradients one array of `count` values per input: the derivatives by that input, in the
     *                  unit of the output per unit of the input; every value is written. A point
     *                  with a coordinate that is not finite gets NaN in all of them.
     * @throw SurrogateModelInterface::Error like interpolateDependentValues(), and for another
     *        number of arrays than there are inputs.
     */
    virtual void gradients(const std::vector<double*>& inputs, int offset,
                           const std::vector<double*>& gradients, std::size_t count) const = 0;
};
