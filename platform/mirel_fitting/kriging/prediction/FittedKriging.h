#pragma once

#include <mirel_fitting/PredictorDescription.h>
#include <mirel_fitting/cases/KrigingData.h>
#include <mirel_fitting/kriging/correlation/MaternCorrelation.h>
#include <mirel_fitting/kriging/likelihood/KrigingTrend.h>
#include <mirel_fitting/kriging/neighbours/NearestNeighbourKriging.h>

#include <cstddef>
#include <memory>
#include <vector>

/**
 * One fitted Kriging model: everything that its predictions and standard errors are computed from.
 *
 *   y(x) = offset + scale (trend(x) + sum over the cases j of weights[j] c(x, x_j))
 */
struct FittedKriging
{
    std::vector<std::size_t> inputs; ///< the inputs that vary, as indices of the columns
    std::vector<double> minimum;     ///< of those inputs
    std::vector<double> range;       ///< of those inputs
    std::shared_ptr<const KrigingTrend> trend;
    std::vector<double> coefficients;                     ///< one per term of the trend
    std::shared_ptr<const MaternCorrelation> correlation; ///< null: the trend alone
    std::vector<double> weights;                          ///< one per case
    double offset = 0.0;
    double scale = 1.0;

    // The second layer of a model of many cases: Kriging of the residuals at all cases.

    std::shared_ptr<const NearestNeighbourKriging> neighbours; ///< null: there is none
    double neighbourVariance = 0.0; ///< process variance, of the standardised output
    /** Of the subset's process, the first layer: with them and the nearest cases it has a standard
     *  error, too, and the larger of both layers counts. */
    NearestNeighbourKriging::Parameters subsetParameters;
    double subsetVariance = 0.0; ///< of its process, of the standardised output; 0: not used

    // For standard errors only.

    std::shared_ptr<const KrigingData> data; ///< the cases: coordinates, trend, replicates
    double processVariance = 0.0;            ///< of the standardised output
    double nugget = 0.0;                     ///< relative to processVariance
    /** Whether the predictions interpolate the cases although `nugget` is not 0: it only keeps the
     *  factorisation of the correlation matrix stable. */
    bool interpolates = false;

    /** The coordinate, from 0 to 1 over the cases, of a finite value of `inputs[k]`; at most 1e150
     *  in magnitude, so that products of two are finite: the correlation is 0 long before. */
    double coordinate(std::size_t k, double value) const;

    /** What a prediction takes, without the ranges of the inputs.
     *  @throw SurrogateModelInterface::Error if there are neighbours. */
    PredictorDescription description() const;

    /** Gives the same predictions to the last bit; no standard errors. */
    static FittedKriging of(const PredictorDescription& description);
};
