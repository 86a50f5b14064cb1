#pragma once

#include <mirel_fitting/FitMetrics.h>
#include <mirel_fitting/KrigingOptions.h>
#include <mirel_fitting/KrigingReport.h>
#include <mirel_fitting/kriging/prediction/KrigingLeaveOneOut.h>
#include <mirel_fitting/kriging/prediction/KrigingPredictor.h>
#include <mirel_fitting/kriging/search/KrigingSizes.h>
#include <mirel_fitting/polynomial/QuadraticBasis.h>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

/** The user's options, and the limits on numbers of cases, which tests make smaller. */
struct KrigingFitOptions : KrigingOptions
{
    KrigingSizes sizes;

    bool isNuggetFixed() const { return nuggetMode == NuggetMode::Fixed; }
};

/** The result of fitting one output. */
struct KrigingFit
{
    KrigingPredictor predictor;
    KrigingReport report;
    /** The trend as an equation in V1, V2, ..., or in V1 - c where cancellation in the expanded
     *  equation would cost more than 1e-9 of the output's range. */
    std::string trendText;
    FitMetrics metrics;
    std::vector<std::size_t> constantInputs;
    std::vector<QuadraticBasis::Term> droppedTerms; ///< of the trend, in all inputs
    std::vector<std::string> warnings;              ///< others, which name no input
    std::vector<std::string> notes; ///< those of them that are no reason to doubt the fit
    double noiseShare = 0.0;        ///< fraction of the output's variance taken for noise
    KrigingLeaveOneOut leftOut;

    explicit KrigingFit(KrigingPredictor predictor) : predictor(std::move(predictor)) {}

    /** A warning that is a note, too. */
    void addNote(const std::string& sentence)
    {
        warnings.push_back(sentence);
        notes.push_back(sentence);
    }
};
