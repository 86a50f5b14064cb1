#pragma once

#include <surrogate_plot/Export.h>

#include <cstddef>
#include <vector>

class CaseSession;
struct ModelCut;

/** Where the mean of an output lies with a probability of 95 %: within `quantile` standard errors
 * of the prediction. */
struct SURROGATE_PLOT_EXPORT ConfidenceBand
{
    double quantile = 0.0;
    /** One per point of a cut; empty if the model has none, if as many terms as cases leave nothing
     *  to estimate them from, or if a transform of the output was modelled. */
    std::vector<double> standardErrors;

    /** @throw SurrogateModelInterface::Error */
    static ConfidenceBand of(CaseSession& session, const ModelCut& cut, std::size_t output);
};
