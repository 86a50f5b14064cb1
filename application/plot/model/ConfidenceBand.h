#pragma once

#include <surrogate_plot/Export.h>

#include <cstddef>
#include <string>
#include <vector>

class CaseSession;
struct ModelSlice;

/** Where the mean of an output lies with a probability of 95 %: within so many standard errors of
 * the prediction. Where a transform of the output is modelled, the limits are those of the
 * transform, transformed back. */
struct SURROGATE_PLOT_EXPORT ConfidenceBand
{
    /** One per point; empty, like `upper`, if the model has none, or if as many terms as
     *  cases leave nothing to estimate them from. */
    std::vector<double> lower;
    std::vector<double> upper;
    std::string label; ///< for the legend; empty without a band

    /** @throw SurrogateModelInterface::Error */
    static ConfidenceBand of(CaseSession& session, const ModelSlice& slice, std::size_t output);

    /** At other points. @param inputs one array of `count` values per input, borrowed. */
    static ConfidenceBand of(CaseSession& session, const std::vector<const double*>& inputs,
                             std::size_t count, std::size_t output);
};
