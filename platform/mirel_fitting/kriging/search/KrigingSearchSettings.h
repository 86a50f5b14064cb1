#pragma once

#include <mirel_fitting/KrigingOptions.h>
#include <mirel_fitting/KrigingReport.h>
#include <mirel_fitting/kriging/correlation/NuggetBounds.h>

#include <algorithm>
#include <cstddef>
#include <limits>
#include <optional>
#include <vector>

/** What the likelihood of a Kriging model is maximised over. */
struct KrigingParameters
{
    std::vector<double> lengths; ///< one per input, in units of the scaled coordinates
    double nugget = 0.0;         ///< relative to the process variance
};

struct KrigingSearchSettings
{
    double tolerance =
        KrigingOptions().tolerance; ///< smallest expected gain in log-likelihood per case
    double initialLength =
        KrigingOptions().initialCorrelationLength; ///< of the standard starts, scaled
    double requestedNugget = 0.0; ///< lower bound, or the value itself if it is fixed
    bool isNuggetFixed = false;
    std::vector<double> fixedLengths; ///< scaled; empty: searched for
    bool findsSecondOptimum = true;   ///< see KrigingOptions
    /** From parameters that were found with other cases, instead of a multi-start: only the
     *  likeliest is improved, with all cases, and what follows a search is left out, since with
     * some thousand cases each step takes seconds. */
    struct Continuation
    {
        std::vector<KrigingParameters> starts;
        int steps = 1;
    };
    std::optional<Continuation> continuation;

    /** The lower bound of the search, or the value of a fixed nugget. */
    double leastNugget() const { return std::max(NuggetBounds::sound, requestedNugget); }
};

struct KrigingSearchResult
{
    KrigingParameters parameters;
    double logLikelihood = 0.0; ///< restricted, of the standardised output; without the prior
    /** Of the criterion, likelihood and prior, at the best optimum and the second; infinity if all
     *  starts converged to one. */
    double gapToSecond = std::numeric_limits<double>::infinity();
    /** One per length that was searched for. */
    std::vector<KrigingReport::Bound> lengthBounds;
    /** Upper, or None: the lower bound is what smooth data should have. */
    KrigingReport::Bound nuggetBound = KrigingReport::Bound::None;
    KrigingReport::Criterion criterion = KrigingReport::Criterion::None; ///< that was maximised
    bool isNuggetRaised = false; ///< above what was asked for: R could not be factorised
    std::size_t evaluations = 0; ///< of the likelihood with all cases
};
