#pragma once

#include <mirel_fitting/KrigingReport.h>
#include <mirel_fitting/cases/KrigingData.h>

#include <cstddef>
#include <limits>
#include <memory>
#include <optional>
#include <vector>

/** What the likelihood of a Kriging model is maximised over. */
struct KrigingParameters
{
    std::vector<double> lengths; ///< one per input, in units of the scaled coordinates
    double nugget = 0.0;         ///< relative to the process variance
};

/** The search for the parameters of greatest likelihood. */
class KrigingSearch
{
public:
    struct Settings
    {
        double tolerance = 1e-4;     ///< smallest expected gain in log-likelihood per row
        double initialLength = 0.5;  ///< of the first start, scaled
        double smallestNugget = 0.0; ///< lower bound, or the value itself if it is fixed
        bool isNuggetFixed = false;
        /** The least nugget that is tried at all: less is lost in the rounding of the ones on the
         *  diagonal of some thousand cases. */
        double soundNugget = 1e-12;
        std::vector<double> fixedLengths; ///< scaled; empty: searched for
        /** If given, the nearest optima are searched from there, with all cases. */
        std::vector<KrigingParameters> starts;
        /** If given, only the likeliest of the starts is continued, by so many steps, and what
         *  follows the search is left out: with some thousand cases each step takes seconds. 0: the
         *  start itself. */
        std::optional<int> mostSteps;
        /** Searches from given starts are given up when they will hardly get to this likelihood. */
        double enough = -std::numeric_limits<double>::infinity();
        /** To within some tenths of the likelihood, whatever the tolerance. */
        bool isRough = false;
    };

    struct Result
    {
        KrigingParameters parameters;
        double logLikelihood = 0.0; ///< of the standardised output
        /** Of the best optimum in another place; minus infinity if all starts met in one. */
        double secondLogLikelihood = -std::numeric_limits<double>::infinity();
        KrigingParameters secondParameters; ///< if there is one
        /** One per length that was searched for. */
        std::vector<KrigingReport::Bound> lengthBounds;
        /** Upper, or None: least nuggets are what is hoped for. */
        KrigingReport::Bound nuggetBound = KrigingReport::Bound::None;
        /** For want of what Settings::enough asks for: this is not the nearest maximum. */
        bool isGivenUp = false;
        bool isNuggetRaised = false; ///< above what was asked for: R could not be factorised
        std::size_t evaluations = 0; ///< of the likelihood with all cases
    };

    /** The range that lengths are searched in, in units of the inputs' ranges. */
    static double smallestLength();
    static double largestLength();

    /**
     * Several starts on at most a few hundred of the cases, the best of them continued with all.
     * Reports to FitProgress.
     * @throw SurrogateModelInterface::Error if the fit is cancelled, or no nugget makes the
     *        correlation matrix positive definite.
     */
    static Result run(const std::shared_ptr<const KrigingData>& data, const Settings& settings);
};
