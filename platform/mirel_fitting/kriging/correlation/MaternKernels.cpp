#include <mirel_fitting/kriging/correlation/MaternKernels.h>

#include <algorithm>

namespace {

// The product of so many polynomials does not overflow before the exponential makes it small.
constexpr std::size_t inputsPerGroup = 32;

// Vectors of points that are computed together: while one waits for an operation, others use the
// processor. The results do not depend on it.
constexpr std::size_t vectorsAtOnce = 4;

/** |a - b|, capped where some points are far away. */
template <bool isCapped>
SURROGATE_LANE_OPERATION distance(const Lanes& a, double b, Lanes& result)
{
    magnitude(a - b, result);
    if (isCapped) {
        const Lanes cap = Lanes{} + MaternKernels::farthest;
        result = (result < cap) ? result : cap;
    }
}

/** The correlations of `count` vectors of points with one case, times `start`. Factors and
 *  exponents first: one exponential does for inputsPerGroup inputs. */
template <std::size_t count, bool isCapped>
SURROGATE_LANE_OPERATION correlations(const double* points, std::size_t stride,
                                      const double* atCase, std::size_t inputs, double start,
                                      Lanes* result)
{
    for (std::size_t u = 0; u < count; ++u) {
        result[u] = Lanes{} + start;
    }
    for (std::size_t first = 0; first < inputs; first += inputsPerGroup) {
        const std::size_t last = std::min(inputs, first + inputsPerGroup);
        Lanes sum[count] = {};
        for (std::size_t k = first; k < last; ++k) {
            for (std::size_t u = 0; u < count; ++u) {
                Lanes x;
                Lanes z;
                loadLanes(points + k * stride + u * laneCount, x);
                distance<isCapped>(x, atCase[k], z);
                sum[u] += z;
                result[u] *= 1.0 + z * (1.0 + z * (1.0 / 3.0));
            }
        }
        for (std::size_t u = 0; u < count; ++u) {
            Lanes decay;
            expOfNegative(sum[u], decay);
            result[u] *= decay;
        }
    }
}

template <std::size_t count, bool isCapped>
SURROGATE_LANE_OPERATION addSums(const double* points, std::size_t stride,
                                 const MaternKernels::Cases& cases, const double* weights,
                                 double* sums)
{
    Lanes total[count] = {};
    for (std::size_t j = 0; j < cases.count; ++j) {
        Lanes value[count];
        correlations<count, isCapped>(points, stride, cases.coordinates + j * cases.inputs,
                                      cases.inputs, weights[j], value);
        for (std::size_t u = 0; u < count; ++u) {
            total[u] += value[u];
        }
    }
    for (std::size_t u = 0; u < count; ++u) {
        Lanes before;
        loadLanes(sums + u * laneCount, before);
        storeLanes(before + total[u], sums + u * laneCount);
    }
}

template <bool isCapped>
SURROGATE_LANE_OPERATION addAllSums(const MaternKernels::Points& points,
                                    const MaternKernels::Cases& cases, const double* weights,
                                    double* sums)
{
    constexpr std::size_t step = vectorsAtOnce * laneCount;
    std::size_t i = 0;
    for (; i + step <= points.count; i += step) {
        addSums<vectorsAtOnce, isCapped>(points.coordinates + i, points.stride, cases, weights,
                                         sums + i);
    }
    for (; i < points.count; i += laneCount) {
        addSums<1, isCapped>(points.coordinates + i, points.stride, cases, weights, sums + i);
    }
}

SURROGATE_SIMD void addWeightedSumsTo(const MaternKernels::Points& points,
                                      const MaternKernels::Cases& cases, bool isCapped,
                                      const double* weights, double* sums)
{
    if (isCapped) {
        addAllSums<true>(points, cases, weights, sums);
    } else {
        addAllSums<false>(points, cases, weights, sums);
    }
}

SURROGATE_SIMD void correlateTo(const MaternKernels::Points& points,
                                const MaternKernels::Cases& cases, double* result,
                                std::size_t stride)
{
    constexpr std::size_t step = vectorsAtOnce * laneCount;
    for (std::size_t j = 0; j < cases.count; ++j) {
        const double* atCase = cases.coordinates + j * cases.inputs;
        double* row = result + j * stride;
        std::size_t i = 0;
        for (; i + step <= points.count; i += step) {
            Lanes value[vectorsAtOnce];
            correlations<vectorsAtOnce, true>(points.coordinates + i, points.stride, atCase,
                                              cases.inputs, 1.0, value);
            for (std::size_t u = 0; u < vectorsAtOnce; ++u) {
                storeLanes(value[u], row + i + u * laneCount);
            }
        }
        for (; i < points.count; i += laneCount) {
            Lanes value[1];
            double lanes[laneCount];
            correlations<1, true>(points.coordinates + i, points.stride, atCase, cases.inputs, 1.0,
                                  value);
            storeLanes(value[0], lanes);
            std::copy_n(lanes, std::min(laneCount, points.count - i), row + i);
        }
    }
}

SURROGATE_SIMD void addWeightedGradientsTo(const MaternKernels::Points& points,
                                           const MaternKernels::Cases& cases, const double* weights,
                                           double* gradients, std::size_t stride)
{
    for (std::size_t i = 0; i < points.count; i += laneCount) {
        for (std::size_t j = 0; j < cases.count; ++j) {
            const double* atCase = cases.coordinates + j * cases.inputs;
            Lanes value[1];
            correlations<1, true>(points.coordinates + i, points.stride, atCase, cases.inputs, 1.0,
                                  value);
            const Lanes factor = value[0] * -weights[j];
            for (std::size_t k = 0; k < cases.inputs; ++k) {
                // d ln c / dx = -(x - x') (1 + z) / (3 + 3 z + z^2)
                Lanes x;
                Lanes z;
                Lanes gradient;
                loadLanes(points.coordinates + k * points.stride + i, x);
                distance<true>(x, atCase[k], z);
                const Lanes difference = (x < atCase[k]) ? -z : z;
                const Lanes slope = difference * (z + 1.0) / (z * (z + 3.0) + 3.0);
                loadLanes(gradients + k * stride + i, gradient);
                storeLanes(gradient + factor * slope, gradients + k * stride + i);
            }
        }
    }
}

/** d ln c / d ln length = z^2 (1 + z) / (3 + 3 z + z^2) */
SURROGATE_SIMD void addDerivativesTo(const MaternKernels::ColumnBlock& block, double* products,
                                     double* sums, double* columnProducts)
{
    const double factor = block.a[block.column];
    for (std::size_t k = 0; k < block.inputs; ++k) {
        const double* x = block.coordinates + k * block.stride;
        double* product = products + k * block.stride;
        Lanes total;
        Lanes columnTotal;
        loadLanes(sums + laneCount * k, total);
        loadLanes(columnProducts + laneCount * k, columnTotal);
        for (std::size_t i = 0; i < block.count; i += laneCount) {
            Lanes value;
            Lanes z;
            Lanes correlation;
            Lanes weight;
            Lanes ofRow;
            Lanes sum;
            loadLanes(x + block.first + i, value);
            loadLanes(block.correlations + i, correlation);
            loadLanes(block.weights + i, weight);
            loadLanes(block.a + block.first + i, ofRow);
            loadLanes(product + block.first + i, sum);
            distance<true>(value, x[block.column], z);
            const Lanes ratio = z * z * (1.0 + z) / (3.0 + z * (3.0 + z));
            const Lanes derivative = correlation * ratio;
            total += weight * ratio;
            columnTotal += derivative * ofRow;
            storeLanes(sum + derivative * factor, product + block.first + i);
        }
        storeLanes(total, sums + laneCount * k);
        storeLanes(columnTotal, columnProducts + laneCount * k);
    }
}

} // namespace

void MaternKernels::addWeightedSums(const Points& points, const Cases& cases, bool isCapped,
                                    const double* weights, double* sums)
{
    addWeightedSumsTo(points, cases, isCapped, weights, sums);
}

void MaternKernels::correlate(const Points& points, const Cases& cases, double* result,
                              std::size_t stride)
{
    correlateTo(points, cases, result, stride);
}

void MaternKernels::addWeightedGradients(const Points& points, const Cases& cases,
                                         const double* weights, double* gradients,
                                         std::size_t stride)
{
    addWeightedGradientsTo(points, cases, weights, gradients, stride);
}

void MaternKernels::addDerivatives(const ColumnBlock& block, double* products, double* sums,
                                   double* columnProducts)
{
    addDerivativesTo(block, products, sums, columnProducts);
}
