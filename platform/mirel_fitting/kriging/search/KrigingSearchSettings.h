#pragma once

#include <mirel_fitting/KrigingOptions.h>
#include <mirel_fitting/KrigingReport.h>
#include <mirel_fitting/kriging/search/SearchPolicy.h>

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
    double smallestNugget = 0.0; ///< lower bound, or the value itself if it is fixed
    bool isNuggetFixed = false;
    std::vector<double> fixedLengths; ///< scaled; empty: searched for
    /** With `maxSteps`: points nearby, found with fewer cases. */
    std::vector<KrigingParameters> starts;
    /** If given, only the likeliest of `starts` is improved, with all cases and by so many steps,
     *  and what follows the search is left out: with some thousand cases each step takes seconds.
     *  0: the start itself. */
    std::optional<int> maxSteps;
    SearchPolicy policy;

    /** Least nugget that is tried. */
    double leastNugget() const
    {
        return smallestNugget > policy.soundNugget ? smallestNugget : policy.soundNugget;
    }
};

struct KrigingSearchResult
{
    KrigingParameters parameters;
    double logLikelihood = 0.0; ///< restricted, of the standardised output; without the prior
    /** By how much less the criterion, which has the prior, is at the second-best optimum: that
     *  much below the former; minus infinity if all starts converged to one. */
    double secondLogLikelihood = -std::numeric_limits<double>::infinity();
    /** One per length that was searched for. */
    std::vector<KrigingReport::Bound> lengthBounds;
    /** Upper, or None: the lower bound is what smooth data should have. */
    KrigingReport::Bound nuggetBound = KrigingReport::Bound::None;
    KrigingReport::Criterion criterion = KrigingReport::Criterion::None; ///< that was maximised
    bool isNuggetRaised = false; ///< above what was asked for: R could not be factorised
    std::size_t evaluations = 0; ///< of the likelihood with all cases
};
