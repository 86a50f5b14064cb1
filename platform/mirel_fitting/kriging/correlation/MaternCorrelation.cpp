#include <mirel_fitting/kriging/correlation/MaternCorrelation.h>

#include <mirel_fitting/machine/SimdLanes.h>

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

/** |a - b|, capped where some cases are farther apart. */
template <bool isCapped>
SURROGATE_LANE_OPERATION distanceOf(const Lanes& a, const Lanes& b, Lanes& result)
{
    if (isCapped) {
        cappedDistance(a, b, farAway, result);
    } else {
        distance(a, b, result);
    }
}

/** result = correlation of eight cases, whose scaled coordinates begin at `column`, with a point.
 */
template <bool isCapped>
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
            distanceOf<isCapped>(x, Lanes{} + point[k * pointStride], z);
            sum += z;
            result *= 1.0 + z * (1.0 + z * (1.0 / 3.0));
        }
        Lanes decay;
        expOfNegative(sum, decay);
        result *= decay;
    }
}

template <bool isCapped>
SURROGATE_LANE_OPERATION correlateColumn(const double* columns, std::size_t stride,
                                         std::size_t inputs, std::size_t column, std::size_t first,
                                         std::size_t cases, double* out)
{
    std::size_t i = first;
    for (; i + laneCount <= cases; i += laneCount) {
        Lanes value;
        correlateLanes<isCapped>(columns + i, stride, columns + column, stride, inputs, value);
        storeLanes(value, out + (i - first));
    }
    if (i < cases) {
        Lanes value;
        double rest[laneCount];
        correlateLanes<isCapped>(columns + i, stride, columns + column, stride, inputs, value);
        storeLanes(value, rest);
        std::copy(rest, rest + (cases - i), out + (i - first));
    }
}

/** One column of the lower triangle, in whole lanes from `first` on: out[i - first]. */
SURROGATE_SIMD void correlationColumn(bool isCapped, const double* columns, std::size_t stride,
                                      std::size_t inputs, std::size_t column, std::size_t first,
                                      std::size_t cases, double* out)
{
    if (isCapped) {
        correlateColumn<true>(columns, stride, inputs, column, first, cases, out);
    } else {
        correlateColumn<false>(columns, stride, inputs, column, first, cases, out);
    }
}

/** What the kernel of the derivatives works on: eight columns and rows at most `blockSize` long. */
struct DerivativeBlock
{
    const double* columns; // scaled coordinates; those of input k begin at k stride
    std::size_t stride;
    std::size_t column;
    std::size_t first; // row of the block
    std::size_t count; // in whole lanes
    const double* correlations;
    const double* weights;
    const double* a;
    bool isCapped;
};

/**
 * The rows of a block of one column, for so many inputs: sums[8 k ...] += weight dc / d ln length,
 * products[k stride + row] += a[column] dc / d ln length, and ownProducts[8 k ...] the same with
 * a[row]. d ln c / d ln length = z^2 (1 + z) / (3 + 3 z + z^2), and one division does for all of
 * the inputs.
 */
template <bool isCapped, std::size_t inputs>
SURROGATE_LANE_OPERATION derivatives(const DerivativeBlock& block, std::size_t input,
                                     double* products, double* sums, double* ownProducts)
{
    const double* x = block.columns + input * block.stride + block.first;
    double* product = products + input * block.stride + block.first;
    const Lanes factor = Lanes{} + block.a[block.column];
    Lanes centers[inputs];
    Lanes totals[inputs];
    Lanes ownTotals[inputs];
    for (std::size_t k = 0; k < inputs; ++k) {
        centers[k] = Lanes{} + block.columns[(input + k) * block.stride + block.column];
        loadLanes(sums + laneCount * (input + k), totals[k]);
        loadLanes(ownProducts + laneCount * (input + k), ownTotals[k]);
    }
    for (std::size_t i = 0; i < block.count; i += laneCount) {
        Lanes numerators[inputs];
        Lanes denominators[inputs];
        Lanes before[inputs]; // the product of the denominators of earlier inputs
        Lanes all = Lanes{} + 1.0;
        for (std::size_t k = 0; k < inputs; ++k) {
            Lanes value;
            Lanes z;
            loadLanes(x + k * block.stride + i, value);
            distanceOf<isCapped>(value, centers[k], z);
            numerators[k] = z * z * (1.0 + z);
            denominators[k] = 3.0 + z * (3.0 + z);
            before[k] = all;
            all *= denominators[k];
        }
        Lanes correlation;
        Lanes weight;
        Lanes other;
        loadLanes(block.correlations + i, correlation);
        loadLanes(block.weights + i, weight);
        loadLanes(block.a + block.first + i, other);
        Lanes inverse = 1.0 / all;
        for (std::size_t k = inputs; k-- > 0;) {
            const Lanes ratio = numerators[k] * (inverse * before[k]);
            inverse *= denominators[k];
            totals[k] += weight * ratio;
            const Lanes derivative = correlation * ratio;
            ownTotals[k] += derivative * other;
            Lanes sum;
            loadLanes(product + k * block.stride + i, sum);
            sum += derivative * factor;
            storeLanes(sum, product + k * block.stride + i);
        }
    }
    for (std::size_t k = 0; k < inputs; ++k) {
        storeLanes(totals[k], sums + laneCount * (input + k));
        storeLanes(ownTotals[k], ownProducts + laneCount * (input + k));
    }
}

template <bool isCapped>
SURROGATE_LANE_OPERATION derivativesOfInputs(const DerivativeBlock& block, std::size_t inputs,
                                             double* products, double* sums, double* ownProducts)
{
    std::size_t k = 0;
    for (; k + 4 <= inputs; k += 4) {
        derivatives<isCapped, 4>(block, k, products, sums, ownProducts);
    }
    switch (inputs - k) {
    case 3:
        derivatives<isCapped, 3>(block, k, products, sums, ownProducts);
        break;
    case 2:
        derivatives<isCapped, 2>(block, k, products, sums, ownProducts);
        break;
    case 1:
        derivatives<isCapped, 1>(block, k, products, sums, ownProducts);
        break;
    default:
        break;
    }
}

SURROGATE_SIMD void derivativesOfColumn(const DerivativeBlock& block, std::size_t inputs,
                                        double* products, double* sums, double* ownProducts)
{
    if (block.isCapped) {
        derivativesOfInputs<true>(block, inputs, products, sums, ownProducts);
    } else {
        derivativesOfInputs<false>(block, inputs, products, sums, ownProducts);
    }
}

/** How many points at a time: their coordinates stay in the first-level cache. */
constexpr std::size_t blockPoints = 256;

} // namespace

MaternCorrelation::MaternCorrelation(std::size_t cases, std::size_t inputs,
                                     const double* coordinates)
    : caseCount(cases), inputCount(inputs),
      stride((cases + laneCount - 1) / laneCount * laneCount + laneCount),
      columns(stride * inputs, 0.0), scaledColumns(columns.size()), scaledRows(cases * inputs),
      scales(inputs, 1.0), nearLowest(inputs, 0.0), nearHighest(inputs, 0.0), lowest(inputs, 0.0),
      highest(inputs, 0.0)
{
    for (std::size_t k = 0; k < inputs; ++k) {
        const double* column = coordinates + k * cases;
        std::copy(column, column + cases,
                  columns.begin() + static_cast<std::ptrdiff_t>(k * stride));
        const auto [smallest, largest] = std::minmax_element(column, column + cases);
        smallestCoordinates.push_back(*smallest);
        largestCoordinates.push_back(*largest);
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
    chosenLengths = lengths;
    for (std::size_t k = 0; k < inputCount; ++k) {
        scales[k] = rootOfFive / lengths[k];
    }
    scaleCases();
}

void MaternCorrelation::scaleCases()
{
    farthestReach = MaternKernels::Reach::Far;
    double extent = 0.0;
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
        nearLowest[k] = smallest;
        nearHighest[k] = largest;
        lowest[k] = smallest - farAway;
        highest[k] = largest + farAway;
        extent += largest - smallest;
        if (largest - smallest > farAway) {
            farthestReach = MaternKernels::Reach::Unlimited;
        }
    }
    // Negative where even the cases are too far apart: then no point lies between.
    const double margin = (MaternKernels::nearSum - extent) / static_cast<double>(inputCount);
    for (std::size_t k = 0; k < inputCount; ++k) {
        nearLowest[k] -= margin;
        nearHighest[k] += margin;
    }
}

void MaternCorrelation::fillLower(std::size_t first, std::size_t last, double* matrix) const
{
    const bool isCapped = farthestReach == MaternKernels::Reach::Unlimited;
    for (std::size_t j = first; j < last; ++j) {
        double* column = matrix + j * caseCount;
        column[j] = 1.0;
        correlationColumn(isCapped, scaledColumns.data(), stride, inputCount, j, j + 1, caseCount,
                          column + j + 1);
    }
}

std::size_t MaternCorrelation::productStride() const
{
    return stride;
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
            // What fills the last lanes weighs nothing.
            const std::size_t padded = (count + laneCount - 1) / laneCount * laneCount;
            std::fill(correlations + count, correlations + padded, 0.0);
            std::fill(weights + count, weights + padded, 0.0);
            derivativesOfColumn({scaledColumns.data(), stride, j, begin, padded, correlations,
                                 weights, a, farthestReach == MaternKernels::Reach::Unlimited},
                                inputCount, products, laneSums.data(), ownProducts.data());
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

/** result[i * resultStep] = scaled coordinate i, moved to where correlations are 0 if it is so far
 *  away that its polynomial could overflow. */
void MaternCorrelation::scale(std::size_t input, const double* coordinates, std::size_t count,
                              std::size_t resultStep, double* result) const
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
        int outside = 0;
        for (std::size_t k = 0; k < correlation.inputCount; ++k) {
            double* x = scaled.data() + k * blockPoints;
            correlation.scale(k, points[k] + first, size, 1, x);
            // What fills the last registers is a point like the others.
            std::fill(x + size, x + AlignedBuffer::padded(size), x[0]);
            const double from = correlation.nearLowest[k];
            const double to = correlation.nearHighest[k];
            for (std::size_t i = 0; i < size; ++i) {
                outside |= static_cast<int>(!(x[i] >= from)) | static_cast<int>(!(x[i] <= to));
            }
        }
        reach = outside == 0 ? MaternKernels::Reach::Near : correlation.farthestReach;
    }

    MaternKernels::Points points() const
    {
        return {scaled.data(), blockPoints, AlignedBuffer::padded(size)};
    }
    MaternKernels::Cases cases() const
    {
        return {correlation.scaledRows.data(), correlation.inputCount, correlation.caseCount,
                reach};
    }

private:
    const MaternCorrelation& correlation;
    AlignedBuffer scaled;
    std::size_t size = 0;
    MaternKernels::Reach reach = MaternKernels::Reach::Unlimited;
};

void MaternCorrelation::addWeightedSums(const std::vector<const double*>& points, std::size_t count,
                                        const double* weights, double* result) const
{
    const MaternKernels& kernels = MaternKernels::best();
    PointBlock block(*this);
    AlignedBuffer sums(blockPoints);
    for (std::size_t first = 0; first < count; first += blockPoints) {
        const std::size_t size = std::min(blockPoints, count - first);
        block.read(points, first, size);
        std::copy(result + first, result + first + size, sums.data());
        kernels.addWeightedSums(block.points(), block.cases(), weights, sums.data());
        std::copy(sums.data(), sums.data() + size, result + first);
    }
}

void MaternCorrelation::addWeightedGradients(const std::vector<const double*>& points,
                                             std::size_t count, const double* weights,
                                             const std::vector<double*>& gradients) const
{
    const MaternKernels& kernels = MaternKernels::best();
    PointBlock block(*this);
    for (std::size_t first = 0; first < count; first += blockPoints) {
        const std::size_t size = std::min(blockPoints, count - first);
        block.read(points, first, size);
        AlignedBuffer sums(blockPoints * inputCount);
        kernels.addWeightedGradients(block.points(), block.cases(), weights, sums.data(),
                                     blockPoints);
        for (std::size_t k = 0; k < inputCount; ++k) {
            for (std::size_t i = 0; i < size; ++i) {
                gradients[k][first + i] += sums.data()[k * blockPoints + i] * scales[k];
            }
        }
    }
}

std::size_t MaternCorrelation::correlationStride() const
{
    return AlignedBuffer::padded(caseCount);
}

// Correlations are symmetric: here the cases fill the registers, and the points come one by one.

void MaternCorrelation::correlate(const std::vector<const double*>& points, std::size_t count,
                                  double* result) const
{
    std::vector<double> rows(count * inputCount);
    for (std::size_t k = 0; k < inputCount; ++k) {
        scale(k, points[k], count, inputCount, rows.data() + k);
    }
    MaternKernels::best().correlate({scaledColumns.data(), stride, correlationStride()},
                                    {rows.data(), inputCount, count, farthestReach}, result,
                                    correlationStride());
}

void MaternCorrelation::correlateInput(std::size_t input, const double* coordinates,
                                       std::size_t count, double* result) const
{
    std::vector<double> scaled(count);
    scale(input, coordinates, count, 1, scaled.data());
    MaternKernels::best().correlate(
        {scaledColumns.data() + input * stride, stride, correlationStride()},
        {scaled.data(), 1, count, farthestReach}, result, correlationStride());
}

const double* MaternCorrelation::scaledCases(std::size_t input) const
{
    return scaledColumns.data() + input * stride;
}

void MaternCorrelation::scale(std::size_t input, const double* coordinates, std::size_t count,
                              double* result) const
{
    scale(input, coordinates, count, 1, result);
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
