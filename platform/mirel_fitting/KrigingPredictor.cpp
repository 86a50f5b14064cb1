#include <mirel_fitting/KrigingPredictor.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

KrigingPredictor::KrigingPredictor(Parts parts) : parts(std::move(parts)) {}

void KrigingPredictor::predict(const std::vector<double*>& columns, std::size_t count,
                               double* result) const
{
    constexpr std::size_t blockSize = 1024;
    // So far away the correlation is 0; products of two such coordinates are still finite.
    constexpr double farAway = 1e150;

    const std::size_t inputs = parts.inputs.size();
    std::vector<double> coordinates(inputs * blockSize);
    std::vector<const double*> points;
    for (std::size_t k = 0; k < inputs; ++k) {
        points.push_back(coordinates.data() + k * blockSize);
    }
    std::vector<double> sums(blockSize);
    std::vector<char> isFinite(blockSize);

    for (std::size_t first = 0; first < count; first += blockSize) {
        const std::size_t size = std::min(blockSize, count - first);
        isFinite.assign(blockSize, 1);
        for (const double* column : columns) {
            for (std::size_t i = 0; i < size; ++i) {
                isFinite[i] = isFinite[i] && std::isfinite(column[first + i]);
            }
        }
        for (std::size_t k = 0; k < inputs; ++k) {
            const double* column = columns[parts.inputs[k]] + first;
            for (std::size_t i = 0; i < size; ++i) {
                const double u =
                    isFinite[i] ? (column[i] - parts.minimum[k]) / parts.range[k] : 0.0;
                coordinates[k * blockSize + i] = std::min(std::max(u, -farAway), farAway);
            }
        }

        std::fill(sums.begin(), sums.end(), 0.0);
        parts.trend->add(points, size, parts.coefficients, sums.data());
        if (parts.correlation) {
            parts.correlation->addWeightedSums(points, size, parts.weights.data(), sums.data());
        }
        for (std::size_t i = 0; i < size; ++i) {
            result[first + i] = isFinite[i] ? parts.offset + parts.scale * sums[i]
                                            : std::numeric_limits<double>::quiet_NaN();
        }
    }
}
