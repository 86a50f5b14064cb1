#pragma once

#include <mirel_fitting/KrigingTrend.h>
#include <mirel_fitting/MaternCorrelation.h>

#include <cstddef>
#include <memory>
#include <vector>

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
        double offset = 0.0;
        double scale = 1.0;
    };

    explicit KrigingPredictor(Parts parts);

    /**
     * In blocks: the memory does not grow with the number of points. A point with a coordinate that
     * is not finite, in any column, gets NaN.
     */
    void predict(const std::vector<double*>& columns, std::size_t count, double* result) const;

private:
    Parts parts;
};
