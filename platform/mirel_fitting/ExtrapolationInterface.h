#pragma once

#include <mirel_fitting/Export.h>

#include <cstddef>
#include <string>
#include <vector>

/** Ability of a model: which points lie outside the cases it was made from. */
class MIREL_FITTING_EXPORT ExtrapolationInterface
{
public:
    virtual ~ExtrapolationInterface();

    /**
     * How far each point lies outside: the largest distance beyond an input's smallest or largest
     * value among the cases, as a fraction of the range between these. 0 inside; infinity where an
     * input has another value than the one that all cases have; NaN where a coordinate is not
     * finite.
     * @param inputs    as for SurrogateModelInterface::interpolateDependentValues().
     * @param distances `count` values.
     * @throw SurrogateModelInterface::Error for another number of inputs.
     */
    virtual void extrapolations(const std::vector<double*>& inputs, double* distances,
                                std::size_t count) const = 0;

    /**
     * The same as a sentence for the user; empty if no point lies outside by more than what few
     * digits of a value explain: a thousandth of the range, or of an input with the same value in
     * all cases half a unit in the sixth digit.
     */
    virtual std::string extrapolationWarning(const std::vector<double*>& inputs,
                                             std::size_t count) const = 0;
};
