#pragma once

#include <mirel_fitting/LeaveOneOutPrediction.h>
#include <mirel_fitting/cases/KrigingCases.h>
#include <mirel_fitting/cases/KrigingData.h>
#include <mirel_fitting/kriging/prediction/KrigingPredictor.h>

#include <cstddef>
#include <vector>

/**
 * Leave-one-out predictions of the rows of a Kriging model. Replicates, rows with the same inputs,
 * are left out together. Lengths, nugget and process variance are those of the fit to all rows.
 */
class KrigingLeaveOneOut
{
public:
    /** Some points, each left out in turn. */
    struct Points
    {
        const std::vector<std::size_t>& points; ///< their numbers in KrigingCases
        const std::vector<double>& residuals;   ///< one per point, of the standardised output
        /** Variances of the residuals, relative to `variance`. Empty: the model was not fitted to
         * these points, and its own standard errors apply. */
        const std::vector<double>& variances;
        double variance; ///< of the process
        double nugget;   ///< relative to `variance`
    };

    KrigingLeaveOneOut() = default;

    /** @param data all points; output = offset + scale * standardised output. */
    KrigingLeaveOneOut(const KrigingCases& cases, const std::vector<double>& output,
                       const KrigingData& data, const Points& left, double offset, double scale);

    /** For the model that predicts the mean of the rows. */
    static KrigingLeaveOneOut ofMean(const std::vector<double>& output);

    /** Rows ascending. @param predictor of the same model; asked for standard errors that are not
     *  known yet. */
    std::vector<LeaveOneOutPrediction> predictions(const KrigingCases& cases,
                                                   const KrigingPredictor& predictor) const;

private:
    std::vector<LeaveOneOutPrediction> rows;
    std::vector<std::size_t> points; // one per row; empty if the standard errors are known
};
