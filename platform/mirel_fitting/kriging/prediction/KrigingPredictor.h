#pragma once

#include <mirel_fitting/PredictorDescription.h>
#include <mirel_fitting/cases/KrigingData.h>
#include <mirel_fitting/grid/GridPoints.h>
#include <mirel_fitting/kriging/correlation/MaternCorrelation.h>
#include <mirel_fitting/kriging/likelihood/KrigingTrend.h>
#include <mirel_fitting/kriging/neighbours/NearestNeighbourKriging.h>

#include <cstddef>
#include <memory>
#include <vector>

class KrigingVariance;

/** Evaluates one fitted Kriging model: y(x) = offset + scale (trend(x) + sum of w_j c(x, x_j)). */
class KrigingPredictor
{
public:
    struct Parts
    {
        std::vector<std::size_t> inputs; ///< the inputs that vary, as indices of the columns
        std::vector<double> minimum;     ///< of those
        std::vector<double> range;
        std::shared_ptr<const KrigingTrend> trend;
        std::vector<double> coefficients;
        std::shared_ptr<const MaternCorrelation> correlation; ///< null: the trend alone
        std::vector<double> weights;
        /** Added to that sum; null: nothing. */
        std::shared_ptr<const NearestNeighbourKriging> neighbours;
        double neighbourVariance = 0.0; ///< of their process, for the standardised output
        /** The subset's process, by which errors grow where no case is near. */
        NearestNeighbourKriging::Parameters corrected;
        double correctedVariance = 0.0; ///< 0: nothing
        double offset = 0.0;
        double scale = 1.0;

        // For standard errors.
        std::shared_ptr<const KrigingData> data; ///< the cases: coordinates, trend, rows
        double processVariance = 0.0;            ///< of the standardised output
        double nugget = 0.0;                     ///< relative to it
        bool meetsCases = false; ///< whether the nugget was taken out of the weights again

        /** The coordinate, from 0 to 1 over the cases, of a finite value of `inputs[k]`. Kept so
         *  small that products of two are finite; the correlation is 0 long before. */
        double coordinate(std::size_t k, double value) const;

        /** Without the ranges of the inputs.
         *  @throw SurrogateModelInterface::Error where neighbours are asked. */
        PredictorDescription description() const;

        /** The same predictions again, to the last bit; no standard errors. */
        static Parts of(const PredictorDescription& description);
    };

    explicit KrigingPredictor(Parts parts);

    const Parts& model() const { return parts; }

    /**
     * On as many threads as setThreadCount() allows, with the same bits for any number of them. In
     * blocks: the memory does not grow with the number of points. A point with a coordinate that
     * is not finite, in any column, gets NaN.
     */
    void predict(const GridPoints& points, double* result) const;

    /** The same for points that are not taken apart yet. */
    void predict(const std::vector<double*>& columns, std::size_t count, double* result) const;

    /** Every point on its own, whatever grid they form. */
    void predictScattered(const std::vector<double*>& columns, std::size_t first, std::size_t count,
                          double* result) const;

    /**
     * Derivatives of the prediction, in the output's unit per unit of the column: one array of
     * `count` numbers per column, 0 for a column that is no input that varies. NaN where a
     * prediction is NaN.
     */
    void differentiate(const std::vector<double*>& columns, std::size_t count,
                       const std::vector<double*>& gradients) const;

    /**
     * Standard errors in the output's unit, NaN where a prediction is NaN. The first call
     * factorises the correlation matrix of the cases and keeps the factor: n^3 / 6 multiplications
     * and n^2 numbers for n cases; each point costs n^2. Where neighbours correct a subset or
     * replace it, that is so for points outside of the ranges of the cases, and n is the subset's
     * size. Threads as for predict().
     * @param ofObservation whether to include the noise of a new case.
     */
    void standardErrors(const std::vector<double*>& columns, std::size_t count, bool ofObservation,
                        double* result) const;

private:
    class Block;

    void predictGrid(const std::vector<double*>& columns, const ProductGrid& grid,
                     double* result) const;
    void addNeighbours(const std::vector<double*>& columns, std::size_t first, std::size_t count,
                       double* result) const;
    void exactErrors(const std::vector<double*>& columns, std::size_t count, bool ofObservation,
                     double* result) const;
    Parts partsOfProcess() const;
    void neighbourErrors(const std::vector<double*>& columns, std::size_t count, bool ofObservation,
                         double* result) const;
    void raiseOutside(const std::vector<double*>& columns, std::size_t count, bool ofObservation,
                      double* result) const;
    bool isOutside(const std::vector<double*>& columns, std::size_t point) const;

    Parts parts;
    mutable std::shared_ptr<const KrigingVariance> variance; // made when first wanted
};
