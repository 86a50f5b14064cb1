#pragma once

#include <plot/data/ScatterPicture.h>

#include <mirel_fitting/LeaveOneOutPrediction.h>

#include <surrogate_plot/Export.h>

#include <cstddef>
#include <string>
#include <vector>

class CaseSession;

/** The cases of one output, each predicted from the others. */
struct SURROGATE_PLOT_EXPORT LeaveOneOutCases
{
    std::string outputName;
    std::string modelName;                          ///< "Kriging" or "response surface"
    std::vector<LeaveOneOutPrediction> predictions; ///< rows are positions in the case file
    std::size_t fittedCases = 0; ///< more than the predictions if these are a sample
    std::string unit = {};       ///< of the output; empty if it is not known
    bool isLogarithmic = false;  ///< whether its axes should be (hasLogarithmicAxis())

    /** @throw SurrogateModelInterface::Error */
    static LeaveOneOutCases of(CaseSession& session, std::size_t output);
};

/** Predicted against actual values. Cases that the others do not determine are left out and counted
 *  in the caption. @throw SurrogateModelInterface::Error if that leaves none, or they cannot be
 *  drawn. */
SURROGATE_PLOT_EXPORT ScatterPicture actualPicture(const LeaveOneOutCases& cases);

/** Likewise, actual minus predicted values against the predictions. */
SURROGATE_PLOT_EXPORT ScatterPicture residualPicture(const LeaveOneOutCases& cases);
