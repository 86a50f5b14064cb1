#include <mirel_fitting/kriging/correlation/MaternCorrelation.h>

#include <mirel_fitting/machine/SimdLanes.h>

#include <algorithm>
#include <cmath>

namespace {

/** Points of a block: their coordinates stay in the first-level cache. */
constexpr std::size_t blockPoints = 256;

} // namespace

MaternCorrelation::MaternCorrelation(std::size_t cases, std::size_t inputs,
                                     const double* coordinates, const std::vector<double>& lengths)
    : caseCount(cases), inputCount(inputs),
      stride((cases + laneCount - 1) / laneCount * laneCount + laneCount),
      columns(stride * inputs, 0.0), scaledColumns(columns.size()), scaledRows(cases * inputs),
      scales(inputs, 1.0), lowest(inputs, 0.0), highest(inputs, 0.0)
{
    for (std::size_t k = 0; k < inputs; ++k) {
        const double* column = coordinates + k * cases;
        std::copy(column, column + cases,
                  columns.begin() + static_cast<std::ptrdiff_t>(k * stride));
        const auto [smallest, largest] = std::minmax_element(column, column + cases);
        smallestCoordinates.push_back(*smallest);
        largestCoordinates.push_back(*largest);
    }
    if (!lengths.empty()) {
        setLengths(lengths);
    }
}

void MaternCorrelation::setLengths(const std::vector<double>& lengths)
{
    chosenLengths = lengths;
    for (std::size_t k = 0; k < inputCount; ++k) {
        scales[k] = MaternKernels::rootOfFive / lengths[k];
    }
    scaleCases();
}

void MaternCorrelation::scaleCases()
{
    isCapped = false;
    for (std::size_t k = 0; k < inputCount; ++k) {
        double* scaled = scaledColumns.data() + k * stride;
        for (std::size_t i = 0; i < stride; ++i) {
            scaled[i] = columns[k * stride + i] * scales[k];
        }
        for (std::size_t i = 0; i < caseCount; ++i) {
            scaledRows[i * inputCount + k] = scaled[i];
        }
        // Rounding keeps the order: these are the extremes of the scaled ones.
        const double smallest = smallestCoordinates[k] * scales[k];
        const double largest = largestCoordinates[k] * scales[k];
        lowest[k] = smallest - MaternKernels::farthest;
        highest[k] = largest + MaternKernels::farthest;
        isCapped = isCapped || largest - smallest > MaternKernels::farthest;
    }
}

MaternKernels::Cases MaternCorrelation::casesFrom(std::size_t first, std::size_t count) const
{
    return {scaledRows.data() + first * inputCount, inputCount, count};
}

void MaternCorrelation::fillLower(std::size_t first, std::size_t last, double* matrix) const
{
    for (std::size_t j = first; j < last; ++j) {
        double* column = matrix + j * caseCount;
        column[j] = 1.0;
        MaternKernels::correlate({scaledColumns.data() + j + 1, stride, caseCount - j - 1},
                                 casesFrom(j, 1), column + j + 1, caseCount);
    }
}

void MaternCorrelation::addDerivatives(std::size_t first, std::size_t last,
                                       const double* correlation, const double* inverse,
                                       std::size_t inverseStride, const double* a, double factor,
                                       double* sums, double* products) const
{
    // A block stays in the first-level cache while every input passes over it.
    constexpr std::size_t blockSize = 512;
    double correlations[blockSize];
    double weights[blockSize];
    std::vector<double> laneSums(laneCount * inputCount, 0.0);
    std::vector<double> ownProducts(laneCount * inputCount);

    for (std::size_t j = first; j < last; ++j) {
        const double* column = correlation + j * caseCount;
        const double* inverses = inverse + (j - first) * inverseStride;
        std::fill(ownProducts.begin(), ownProducts.end(), 0.0);
        for (std::size_t begin = j + 1; begin < caseCount; begin += blockSize) {
            const std::size_t count = std::min(blockSize, caseCount - begin);
            const double* inverseBlock = inverses + (begin - first);
            for (std::size_t i = 0; i < count; ++i) {
                correlations[i] = column[begin + i];
                weights[i] = (a[begin + i] * a[j] * factor - inverseBlock[i]) * correlations[i];
            }
            // The padding of the last lanes has weight 0.
            const std::size_t padded = (count + laneCount - 1) / laneCount * laneCount;
            std::fill(correlations + count, correlations + padded, 0.0);
            std::fill(weights + count, weights + padded, 0.0);
            MaternKernels::addDerivatives({scaledColumns.data(), stride, inputCount, j, begin,
                                           padded, correlations, weights, a},
                                          products, laneSums.data(), ownProducts.data());
        }
        for (std::size_t k = 0; k < inputCount; ++k) {
            for (std::size_t lane = 0; lane < laneCount; ++lane) {
                products[k * stride + j] += ownProducts[laneCount * k + lane];
            }
        }
    }

    for (std::size_t k = 0; k < inputCount; ++k) {
        for (std::size_t lane = 0; lane < laneCount; ++lane) {
            sums[k] += laneSums[laneCount * k + lane];
        }
    }
}

void MaternCorrelation::scale(std::size_t input, const double* coordinates, std::size_t count,
                              double* result, std::size_t resultStep) const
{
    for (std::size_t i = 0; i < count; ++i) {
        result[i * resultStep] =
            std::min(std::max(coordinates[i] * scales[input], lowest[input]), highest[input]);
    }
}

/** Some points, scaled and arranged for the kernels. */
class MaternCorrelation::PointBlock
{
public:
    explicit PointBlock(const MaternCorrelation& correlation)
        : correlation(correlation), scaled(blockPoints * correlation.inputCount)
    {}

    void read(const std::vector<const double*>& points, std::size_t first, std::size_t count)
    {
        size = count;
        for (std::size_t k = 0; k < correlation.inputCount; ++k) {
            double* x = scaled.data() + k * blockPoints;
            correlation.scale(k, points[k] + first, size, x);
            // The padding of the last lanes repeats a point.
            std::fill(x + size, x + AlignedBuffer::padded(size), x[0]);
        }
    }

    MaternKernels::Points points() const
    {
        return {scaled.data(), blockPoints, AlignedBuffer::padded(size)};
    }

private:
    const MaternCorrelation& correlation;
    AlignedBuffer scaled;
    std::size_t size = 0;
};

void MaternCorrelation::addWeightedSums(const std::vector<const double*>& points, std::size_t count,
                                        const double* weights, double* result) const
{
    PointBlock block(*this);
    AlignedBuffer sums(blockPoints);
    for (std::size_t first = 0; first < count; first += blockPoints) {
        const std::size_t size = std::min(blockPoints, count - first);
        block.read(points, first, size);
        std::copy(result + first, result + first + size, sums.data());
        MaternKernels::addWeightedSums(block.points(), casesFrom(0, caseCount), isCapped, weights,
                                       sums.data());
        std::copy(sums.data(), sums.data() + size, result + first);
    }
}

void MaternCorrelation::addWeightedGradients(const std::vector<const double*>& points,
                                             std::size_t count, const double* weights,
                                             const std::vector<double*>& gradients) const
{
    PointBlock block(*this);
    for (std::size_t first = 0; first < count; first += blockPoints) {
        const std::size_t size = std::min(blockPoints, count - first);
        block.read(points, first, size);
        AlignedBuffer sums(blockPoints * inputCount);
        MaternKernels::addWeightedGradients(block.points(), casesFrom(0, caseCount), weights,
                                            sums.data(), blockPoints);
        for (std::size_t k = 0; k < inputCount; ++k) {
            for (std::size_t i = 0; i < size; ++i) {
                gradients[k][first + i] += sums.data()[k * blockPoints + i] * scales[k];
            }
        }
    }
}

// Correlations are symmetric: here the cases fill the registers, and the points come one by one.

void MaternCorrelation::correlate(const std::vector<const double*>& points, std::size_t count,
                                  double* result) const
{
    std::vector<double> rows(count * inputCount);
    for (std::size_t k = 0; k < inputCount; ++k) {
        scale(k, points[k], count, rows.data() + k, inputCount);
    }
    MaternKernels::correlate({scaledColumns.data(), stride, correlationStride()},
                             {rows.data(), inputCount, count}, result, correlationStride());
}

void MaternCorrelation::correlateInput(std::size_t input, const double* coordinates,
                                       std::size_t count, double* result) const
{
    std::vector<double> scaled(count);
    scale(input, coordinates, count, scaled.data());
    MaternKernels::correlate({scaledColumns.data() + input * stride, stride, correlationStride()},
                             {scaled.data(), 1, count}, result, correlationStride());
}

MaternCorrelation MaternCorrelation::reordered(const std::vector<std::size_t>& order) const
{
    std::vector<double> coordinates(caseCount * inputCount);
    for (std::size_t k = 0; k < inputCount; ++k) {
        for (std::size_t j = 0; j < caseCount; ++j) {
            coordinates[k * caseCount + j] = columns[k * stride + order[j]];
        }
    }
    MaternCorrelation result(caseCount, inputCount, coordinates.data());
    result.scales = scales;
    result.scaleCases();
    return result;
}
