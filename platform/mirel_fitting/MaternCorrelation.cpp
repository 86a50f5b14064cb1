#include <mirel_fitting/MaternCorrelation.h>

#include <mirel_fitting/SimdLanes.h>

#include <algorithm>
#include <cmath>

namespace {

// Beyond this scaled distance the correlation is 0 to every digit that counts. The cap keeps the
// polynomials finite, however far away a point lies.
constexpr double farAway = 1000.0;

// So many inputs at a time: a product of more polynomials could overflow before the exponential
// makes it small again.
constexpr std::size_t inputsPerGroup = 32;

const double rootOfFive = std::sqrt(5.0);

/** result = correlation of eight cases, whose scaled coordinates begin at `column`, with a point.
 */
SURROGATE_LANE_OPERATION correlateLanes(const double* column, std::size_t stride,
                                        const double* point, std::size_t pointStride,
                                        std::size_t inputs, Lanes& result)
{
    result = Lanes{} + 1.0;
    for (std::size_t first = 0; first < inputs; first += inputsPerGroup) {
        const std::size_t last = std::min(inputs, first + inputsPerGroup);
        Lanes sum = Lanes{};
        for (std::size_t k = first; k < last; ++k) {
            Lanes x;
            Lanes z;
            loadLanes(column + k * stride, x);
            cappedDistance(x, Lanes{} + point[k * pointStride], farAway, z);
            sum += z;
            result *= 1.0 + z * (1.0 + z * (1.0 / 3.0));
        }
        Lanes decay;
        expOfNegative(sum, decay);
        result *= decay;
    }
}

/** One column of the lower triangle, in whole lanes from `first` on: out[i - first]. */
SURROGATE_SIMD void correlationColumn(const double* columns, std::size_t stride, std::size_t inputs,
                                      std::size_t column, std::size_t first, std::size_t cases,
                                      double* out)
{
    std::size_t i = first;
    for (; i + laneCount <= cases; i += laneCount) {
        Lanes value;
        correlateLanes(columns + i, stride, columns + column, stride, inputs, value);
        storeLanes(value, out + (i - first));
    }
    if (i < cases) {
        Lanes value;
        double rest[laneCount];
        correlateLanes(columns + i, stride, columns + column, stride, inputs, value);
        storeLanes(value, rest);
        std::copy(rest, rest + (cases - i), out + (i - first));
    }
}

/** Adds to sums[8 k ...] what `count` <= blockSize cases of a column contribute. */
SURROGATE_SIMD void derivativeColumn(const double* columns, std::size_t stride, std::size_t inputs,
                                     std::size_t column, std::size_t first, std::size_t count,
                                     const double* weights, double* sums)
{
    for (std::size_t k = 0; k < inputs; ++k) {
        const double* x = columns + k * stride + first;
        const Lanes center = Lanes{} + columns[k * stride + column];
        Lanes total;
        loadLanes(sums + laneCount * k, total);
        for (std::size_t i = 0; i < count; i += laneCount) {
            Lanes value;
            Lanes z;
            Lanes weight;
            loadLanes(x + i, value);
            loadLanes(weights + i, weight);
            cappedDistance(value, center, farAway, z);
            // d ln c / d ln length = z^2 (1 + z) / (3 + 3 z + z^2)
            total += weight * (z * z * (1.0 + z)) / (3.0 + z * (3.0 + z));
        }
        storeLanes(total, sums + laneCount * k);
    }
}

/** sums[i] += weight c(point i, case), for eight points at `points`. */
SURROGATE_SIMD void addCases(const double* points, std::size_t pointStride, std::size_t blockPoints,
                             const double* columns, std::size_t stride, std::size_t cases,
                             std::size_t inputs, const double* weights, double* sums)
{
    for (std::size_t i = 0; i < blockPoints; i += laneCount) {
        Lanes total;
        loadLanes(sums + i, total);
        for (std::size_t j = 0; j < cases; ++j) {
            Lanes value;
            correlateLanes(points + i, pointStride, columns + j, stride, inputs, value);
            total += weights[j] * value;
        }
        storeLanes(total, sums + i);
    }
}

} // namespace

MaternCorrelation::MaternCorrelation(std::size_t cases, std::size_t inputs,
                                     const double* coordinates)
    : caseCount(cases), inputCount(inputs),
      stride((cases + laneCount - 1) / laneCount * laneCount + laneCount),
      columns(stride * inputs, 0.0), scaledColumns(columns.size(), 0.0), scales(inputs, 1.0)
{
    for (std::size_t k = 0; k < inputs; ++k) {
        std::copy(coordinates + k * cases, coordinates + (k + 1) * cases,
                  columns.begin() + static_cast<std::ptrdiff_t>(k * stride));
    }
}

std::size_t MaternCorrelation::cases() const
{
    return caseCount;
}

std::size_t MaternCorrelation::inputs() const
{
    return inputCount;
}

void MaternCorrelation::setLengths(const std::vector<double>& lengths)
{
    for (std::size_t k = 0; k < inputCount; ++k) {
        scales[k] = rootOfFive / lengths[k];
        for (std::size_t i = 0; i < stride; ++i) {
            scaledColumns[k * stride + i] = columns[k * stride + i] * scales[k];
        }
    }
}

void MaternCorrelation::fillLower(double* matrix) const
{
    for (std::size_t j = 0; j < caseCount; ++j) {
        double* column = matrix + j * caseCount;
        column[j] = 1.0;
        correlationColumn(scaledColumns.data(), stride, inputCount, j, j + 1, caseCount,
                          column + j + 1);
    }
}

void MaternCorrelation::weightedDerivatives(const double* correlation, const double* inverse,
                                            const double* a, double factor,
                                            std::vector<double>& result) const
{
    // A block of weights stays in the first-level cache while every input passes over it.
    constexpr std::size_t blockSize = 512;
    double weights[blockSize];
    std::vector<double> sums(laneCount * inputCount, 0.0);

    for (std::size_t j = 0; j < caseCount; ++j) {
        const double* correlations = correlation + j * caseCount;
        const double* inverses = inverse + j * caseCount;
        for (std::size_t first = j + 1; first < caseCount; first += blockSize) {
            const std::size_t count = std::min(blockSize, caseCount - first);
            for (std::size_t i = 0; i < count; ++i) {
                weights[i] =
                    (a[first + i] * a[j] * factor - inverses[first + i]) * correlations[first + i];
            }
            // What fills the last lanes weighs nothing.
            const std::size_t padded = (count + laneCount - 1) / laneCount * laneCount;
            std::fill(weights + count, weights + padded, 0.0);
            derivativeColumn(scaledColumns.data(), stride, inputCount, j, first, padded, weights,
                             sums.data());
        }
    }

    result.assign(inputCount, 0.0);
    for (std::size_t k = 0; k < inputCount; ++k) {
        for (std::size_t lane = 0; lane < laneCount; ++lane) {
            result[k] += sums[laneCount * k + lane];
        }
    }
}

void MaternCorrelation::addWeightedSums(const std::vector<const double*>& points, std::size_t count,
                                        const double* weights, double* result) const
{
    constexpr std::size_t blockPoints = 256;
    std::vector<double> block(blockPoints * inputCount, 0.0);
    double sums[blockPoints];

    for (std::size_t first = 0; first < count; first += blockPoints) {
        const std::size_t size = std::min(blockPoints, count - first);
        for (std::size_t k = 0; k < inputCount; ++k) {
            for (std::size_t i = 0; i < size; ++i) {
                block[k * blockPoints + i] = points[k][first + i] * scales[k];
            }
        }
        std::copy(result + first, result + first + size, sums);
        const std::size_t padded = (size + laneCount - 1) / laneCount * laneCount;
        std::fill(sums + size, sums + padded, 0.0);
        addCases(block.data(), blockPoints, padded, scaledColumns.data(), stride, caseCount,
                 inputCount, weights, sums);
        std::copy(sums, sums + size, result + first);
    }
}
