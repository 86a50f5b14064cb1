#pragma once

#include <mirel_fitting/CaseDesign.h>
#include <mirel_fitting/FitMetrics.h>
#include <mirel_fitting/FittedModel.h>
#include <mirel_fitting/OutputTransform.h>

#include <array>
#include <cstddef>
#include <functional>
#include <memory>
#include <vector>

/**
 * The transform with which a model describes the cases of a positive output best: the one whose
 * log-likelihood and log-density of left-out cases, both in the output's units, exceed those of the
 * output itself by most, if by enough. Where the two disagree, the likelihood rests on cases that
 * the model does not predict. A transform whose leave-one-out errors in the output's units exceed
 * those without one by a quarter is not taken. Box, Cox: An analysis of transformations, J. R.
 * Stat. Soc. B 26 (1964); Geisser, Eddy: A predictive approach to model selection, J. Am. Stat.
 * Assoc. 74 (1979).
 */
struct TransformChoice
{
    static constexpr std::array<OutputTransform, 2> transforms = {OutputTransform::SquareRoot,
                                                                  OutputTransform::Logarithm};

    using Columns = std::vector<std::vector<double>>;
    /** Makes a model of these inputs, outputs, cases and their design. */
    using Maker = std::function<std::unique_ptr<FittedModel>(
        const std::vector<double*>&, const std::vector<double*>&, std::size_t, const CaseDesign&)>;

    /** Whether an output of so many cases, from `smallest` to `largest`, is compared: if the cases
     *  are not too many, and a transform bends its range. */
    static bool isWorthwhile(double smallest, double largest, std::size_t cases);

    /** Reports to FitProgress; three fits to at most 100 distinct points.
     *  @param output positive. */
    static TransformChoice of(Columns inputs, const std::vector<double>& output,
                              const CaseDesign& design, const Maker& maker);

    OutputTransform transform = OutputTransform::None;
    /** How much larger log-likelihood and log-density are than for the output itself, the smaller
     *  of the two; NaN if neither is known. */
    double gain = FitMetrics::none;
};
