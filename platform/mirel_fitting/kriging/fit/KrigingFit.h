#pragma once

#include <mirel_fitting/FitMetricsInterface.h>
#include <mirel_fitting/KrigingReportInterface.h>
#include <mirel_fitting/cases/KrigingCases.h>
#include <mirel_fitting/kriging/fit/LargeKriging.h>
#include <mirel_fitting/kriging/prediction/KrigingLeaveOneOut.h>
#include <mirel_fitting/kriging/prediction/KrigingPredictor.h>

#include <string>
#include <vector>

/** What the user of a Kriging model chose about its fits. */
struct KrigingOptions
{
    double tolerance = 1e-4;
    std::vector<double> correlationLengths; ///< one per input, in its unit; empty: estimated
    int trendOrder = 0;
    double initialCorrelationLength = 0.5; ///< as a fraction of each input's range
    double nugget = 0.0;
    bool isNuggetFixed = false;
    KrigingSizes sizes;
};

/** The result of fitting one output. */
struct KrigingFit
{
    KrigingPredictor predictor;
    KrigingReport report;
    /** The trend as an equation in V1, V2, ..., or in V1 - c where multiplying out would lose more
     *  than 1e-9 of the output's spread. */
    std::string trendText;
    FitMetrics metrics;
    std::vector<std::string> warnings;
    KrigingLeaveOneOut leftOut = {};
};

/**
 * Fits one output.
 * @param output one finite value per row of the cases.
 * @throw SurrogateModelInterface::Error if the fit is cancelled or impossible.
 */
KrigingFit fitKriging(const KrigingCases& cases, const std::vector<double>& output,
                      const KrigingOptions& options);
