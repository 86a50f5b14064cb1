#pragma once

#include <mirel_fitting/CalibrationReport.h>
#include <mirel_fitting/LeaveOneOutPrediction.h>
#include <mirel_fitting/PredictiveModel.h>

#include <cstddef>
#include <vector>

/** Limits between which an observation lies with a given probability, one pair per point. */
struct PredictionIntervals
{
    std::vector<double> lower; ///< in the unit of the output
    std::vector<double> upper; ///< likewise
};

/**
 * A model that was fitted to cases and estimates the uncertainty of its predictions. Arguments,
 * results and errors are those of PredictiveModel.
 *
 * Constructors take one array of `rowCount` finite values per input (none at all gives a constant
 * model) and one array of `rowCount` values per output, borrowed for the call. They throw Error if
 * there is no case, a column is null, or an input is not finite.
 */
class MIREL_FITTING_EXPORT FittedModel : public PredictiveModel
{
public:
    /** What a standard error is of. */
    enum class ErrorKind
    {
        Mean,       ///< of what interpolateDependentValues() predicts
        Observation ///< of one more case at the point, with the estimated noise
    };

    ~FittedModel() override;

    /**
     * Standard errors of the predictions, in the unit of the output, never negative; of a mean 0 at
     * a case that the model interpolates. They assume that the model is right, and contain the
     * uncertainty of the trend's (polynomial's) coefficients, not that of the other parameters.
     */
    virtual std::vector<double> standardErrors(const std::vector<double*>& inputs, int offset,
                                               ErrorKind kind, std::size_t count) const = 0;

    /**
     * Pointwise prediction intervals: the prediction minus and plus intervalQuantile() standard
     * errors of an observation.
     * @param level probability that one more case at the point lies inside, such as 0.95.
     * @throw Error also for a level that is not between 0 and 1, and for a response surface with as
     *        many terms as cases.
     */
    virtual PredictionIntervals predictionIntervals(const std::vector<double*>& inputs, int offset,
                                                    double level, std::size_t count) const;

    /**
     * Half the width of a prediction interval in standard errors of an observation. From 40 cases
     * on it is the quantile of |residual / its standard error| of left-out cases, which also holds
     * where residuals are not normal or the standard errors too small (Dubrule, Math. Geology 15
     * (1983); Bachoc, Comput. Stat. Data Anal. 66 (2013)); with fewer that of Student's t, which
     * Kriging widens where refits miss too many of the cases that they leave out.
     * calibrationReport() says which.
     * @throw Error as predictionIntervals().
     */
    virtual double intervalQuantile(int offset, double level) const = 0;

    /**
     * The same for confidence intervals, in standard errors of the mean: of Student's t with the
     * residual degrees of freedom for a response surface. By default intervalQuantile(): of a
     * model whose error is mostly not noise.
     * @throw Error as predictionIntervals().
     */
    virtual double confidenceQuantile(int offset, double level) const;

    /** How intervalQuantile() was found, and the coverage of its intervals among left-out cases. By
     *  default it counts as the quantile of a distribution, and the coverage is that of
     *  leaveOneOutPredictions(). @throw Error as predictionIntervals(). */
    virtual CalibrationReport calibrationReport(int offset) const;

    /** Rows ascending: all of them, or a random sample where a model of many cases keeps no more
     *  (at most 100 000). */
    virtual std::vector<LeaveOneOutPrediction> leaveOneOutPredictions(int offset) const = 0;
};
