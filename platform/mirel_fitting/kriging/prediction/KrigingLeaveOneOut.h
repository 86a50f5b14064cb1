#pragma once

#include <mirel_fitting/LeaveOneOutPrediction.h>
#include <mirel_fitting/cases/KrigingCases.h>
#include <mirel_fitting/cases/KrigingData.h>
#include <mirel_fitting/kriging/prediction/KrigingPredictor.h>

#include <cstddef>
#include <vector>

/**
 * The rows of a Kriging model as the other points predict them: rows with the same inputs are one
 * case, and left out together. Lengths, nugget and variance are those of all cases.
 */
class KrigingLeaveOneOut
{
public:
    /** What leaving out some points gave. */
    struct Points
    {
        const std::vector<std::size_t>& points; ///< of the cases
        const std::vector<double>& residuals;   ///< one per point, of the standardised output
        /** Of the residuals, relative to `variance`. Empty: the model was not made from these
         *  points, and predicts them like any other ones. */
        const std::vector<double>& variances;
        double variance; ///< of the process that they are relative to
        double nugget;   ///< relative to it
    };

    KrigingLeaveOneOut() = default;

    /** @param data all points; output = offset + scale * standardised output. */
    KrigingLeaveOneOut(const KrigingCases& cases, const std::vector<double>& output,
                       const KrigingData& data, const Points& left, double offset, double scale);

    /** Of a model that is the mean of the rows. */
    static KrigingLeaveOneOut ofMean(const std::vector<double>& output);

    /** Rows ascending. The predictor is that of the model; it is asked for what is not known yet.
     */
    std::vector<LeaveOneOutPrediction> predictions(const KrigingCases& cases,
                                                   const KrigingPredictor& predictor) const;

private:
    std::vector<LeaveOneOutPrediction> rows;
    std::vector<std::size_t> points; // one per row; empty if the standard errors are known
};
