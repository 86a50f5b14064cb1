#include <mirel_fitting/kriging/prediction/KrigingPredictor.h>

#include <mirel_fitting/ColumnPointers.h>
#include <mirel_fitting/ThreadCount.h>
#include <mirel_fitting/kriging/prediction/KrigingVariance.h>
#include <mirel_fitting/machine/OrderedChunks.h>
#include <mirel_fitting/machine/SingleThreadedBlas.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

// Points that are computed together: their coordinates and sums stay in the first-level cache.
constexpr std::size_t blockSize = 1024;
// Points that a thread takes at once: few enough that threads end at about the same time, and
// enough that a chunk takes longer than the 0.1 ms of starting a thread unless cases are few.
constexpr std::size_t chunkSize = 8 * blockSize;

} // namespace

/** The scaled coordinates of up to blockSize points; zeros for a point that is not finite. */
class KrigingPredictor::Block
{
public:
    explicit Block(const FittedKriging& fitted)
        : fitted(fitted), coordinates(fitted.inputs.size() * blockSize), notFinite(blockSize)
    {
        for (std::size_t k = 0; k < fitted.inputs.size(); ++k) {
            points.push_back(coordinates.data() + k * blockSize);
        }
    }

    void read(const std::vector<double*>& columns, std::size_t first, std::size_t size)
    {
        std::fill(notFinite.begin(), notFinite.end(), 0.0);
        for (const double* column : columns) {
            // 0 times a finite number is 0, and NaN otherwise.
            for (std::size_t i = 0; i < size; ++i) {
                notFinite[i] += 0.0 * column[first + i];
            }
        }
        for (std::size_t k = 0; k < fitted.inputs.size(); ++k) {
            const double* column = columns[fitted.inputs[k]] + first;
            double* coordinate = coordinates.data() + k * blockSize;
            for (std::size_t i = 0; i < size; ++i) {
                const double u = fitted.coordinate(k, column[i]);
                coordinate[i] = notFinite[i] == 0.0 ? u : 0.0;
            }
        }
    }

    const FittedKriging& fitted;
    std::vector<double> coordinates;
    std::vector<double> notFinite; // NaN for a point that is not finite, else 0
    std::vector<const double*> points;
};

KrigingPredictor::KrigingPredictor(FittedKriging model) : fitted(std::move(model)) {}

void KrigingPredictor::predict(const std::vector<double*>& columns, std::size_t first,
                               std::size_t count, double* result) const
{
    const auto makeWork = [&]() -> OrderedChunks::Work {
        auto block = std::make_shared<Block>(fitted);
        auto sums = std::make_shared<std::vector<double>>(blockSize);
        return [&, block, sums](std::size_t chunk) {
            const std::size_t end = std::min(count, (chunk + 1) * chunkSize);
            for (std::size_t start = chunk * chunkSize; start < end; start += blockSize) {
                const std::size_t size = std::min(blockSize, end - start);
                block->read(columns, first + start, size);
                std::fill(sums->begin(), sums->end(), 0.0);
                fitted.trend->add(block->points, size, fitted.coefficients, sums->data());
                if (fitted.correlation) {
                    fitted.correlation->addWeightedSums(block->points, size, fitted.weights.data(),
                                                        sums->data());
                }
                for (std::size_t i = 0; i < size; ++i) {
                    result[start + i] =
                        fitted.offset + fitted.scale * (*sums)[i] + block->notFinite[i];
                }
            }
        };
    };
    OrderedChunks::runEach((count + chunkSize - 1) / chunkSize, threadCount(), makeWork);
    addNeighbours(columns, first, count, result);
}

void KrigingPredictor::addNeighbours(const std::vector<double*>& columns, std::size_t first,
                                     std::size_t count, double* result) const
{
    if (!fitted.neighbours) {
        return;
    }
    Block block(fitted);
    std::vector<double> sums(blockSize);
    for (std::size_t start = 0; start < count; start += blockSize) {
        const std::size_t size = std::min(blockSize, count - start);
        block.read(columns, first + start, size);
        std::fill(sums.begin(), sums.end(), 0.0);
        fitted.neighbours->add(block.points, size, sums.data());
        for (std::size_t i = 0; i < size; ++i) {
            result[start + i] += fitted.scale * sums[i];
        }
    }
}

void KrigingPredictor::differentiate(const std::vector<double*>& columns, std::size_t count,
                                     const std::vector<double*>& gradients) const
{
    const std::size_t inputs = fitted.inputs.size();
    Block block(fitted);
    std::vector<double> slopes(inputs * blockSize);
    std::vector<double*> slopeColumns;
    for (std::size_t k = 0; k < inputs; ++k) {
        slopeColumns.push_back(slopes.data() + k * blockSize);
    }

    for (std::size_t first = 0; first < count; first += blockSize) {
        const std::size_t size = std::min(blockSize, count - first);
        block.read(columns, first, size);
        std::fill(slopes.begin(), slopes.end(), 0.0);
        fitted.trend->addGradients(block.points, size, fitted.coefficients, slopeColumns);
        if (fitted.correlation) {
            fitted.correlation->addWeightedGradients(block.points, size, fitted.weights.data(),
                                                     slopeColumns);
        }
        if (fitted.neighbours) {
            fitted.neighbours->addGradients(block.points, size, slopeColumns);
        }
        for (double* gradient : gradients) {
            std::copy_n(block.notFinite.data(), size, gradient + first);
        }
        for (std::size_t k = 0; k < inputs; ++k) {
            double* gradient = gradients[fitted.inputs[k]] + first;
            for (std::size_t i = 0; i < size; ++i) {
                // Divided last: scale / range may overflow although the slope does not.
                gradient[i] += slopeColumns[k][i] * fitted.scale / fitted.range[k];
            }
        }
    }
}

void KrigingPredictor::standardErrors(const std::vector<double*>& columns, std::size_t count,
                                      bool ofObservation, double* result) const
{
    if (fitted.neighbours) {
        neighbourErrors(columns, count, ofObservation, result);
        raiseOutside(columns, count, ofObservation, result);
    } else {
        exactErrors(columns, count, ofObservation, result);
    }
}

/** Standard errors by the exact model of all cases, or of the subset if there are neighbours. */
void KrigingPredictor::exactErrors(const std::vector<double*>& columns, std::size_t count,
                                   bool ofObservation, double* result) const
{
    const SingleThreadedBlas singleThreaded;
    if (!variance) {
        variance = std::make_shared<KrigingVariance>(modelOfProcess());
    }
    const double noise = ofObservation ? variance->noise() : 0.0;
    const auto makeWork = [&]() -> OrderedChunks::Work {
        auto block = std::make_shared<Block>(fitted);
        auto workspace = std::make_shared<KrigingVariance::Workspace>(*variance, blockSize);
        return [&, block, workspace](std::size_t chunk) {
            const std::size_t first = chunk * blockSize;
            const std::size_t size = std::min(blockSize, count - first);
            block->read(columns, first, size);
            variance->evaluate(block->points, size, *workspace, result + first);
            for (std::size_t i = 0; i < size; ++i) {
                const double squared = fitted.processVariance * (result[first + i] + noise);
                result[first + i] = fitted.scale * std::sqrt(squared) + block->notFinite[i];
            }
        };
    };
    OrderedChunks::runEach((count + blockSize - 1) / blockSize, threadCount(), makeWork);
}

/** With the correlation of the subset, which a model with neighbours may predict without. */
FittedKriging KrigingPredictor::modelOfProcess() const
{
    FittedKriging result = fitted;
    if (fitted.neighbours) {
        result.correlation = std::make_shared<MaternCorrelation>(
            fitted.data->cases, fitted.inputs.size(), fitted.data->coordinates.data(),
            fitted.subsetParameters.lengths);
    }
    return result;
}

/**
 * The larger of two kriging variances given the nearest cases: of the residual process, which is
 * bounded by its process variance however far from the cases, and of the first layer's process,
 * which grows outside the cases.
 */
void KrigingPredictor::neighbourErrors(const std::vector<double*>& columns, std::size_t count,
                                       bool ofObservation, double* result) const
{
    const double noise = ofObservation ? fitted.neighbours->parameters().nugget : 0.0;
    Block block(fitted);
    std::vector<double> outer(blockSize);
    for (std::size_t first = 0; first < count; first += blockSize) {
        const std::size_t size = std::min(blockSize, count - first);
        block.read(columns, first, size);
        const NearestNeighbourKriging& kriging = *fitted.neighbours;
        kriging.variances(block.points, size, kriging.parameters(), result + first);
        if (fitted.subsetVariance > 0.0) {
            kriging.variances(block.points, size, fitted.subsetParameters, outer.data());
        }
        for (std::size_t i = 0; i < size; ++i) {
            const double squared = std::max(fitted.neighbourVariance * (result[first + i] + noise),
                                            fitted.subsetVariance * outer[i]);
            result[first + i] = fitted.scale * std::sqrt(squared) + block.notFinite[i];
        }
    }
}

/**
 * Extrapolating, the standard errors are at least those of the subset's exact model: these include
 * the uncertainty of the trend, which the nearest cases do not show.
 */
void KrigingPredictor::raiseOutside(const std::vector<double*>& columns, std::size_t count,
                                    bool ofObservation, double* result) const
{
    std::vector<std::size_t> outside;
    for (std::size_t i = 0; i < count; ++i) {
        if (isOutside(columns, i)) {
            outside.push_back(i);
        }
    }
    if (outside.empty()) {
        return; // without factorising the subset's matrix
    }
    std::vector<std::vector<double>> values(columns.size());
    for (std::size_t k = 0; k < columns.size(); ++k) {
        for (const std::size_t index : outside) {
            values[k].push_back(columns[k][index]);
        }
    }
    std::vector<double> errors(outside.size());
    exactErrors(pointersTo(values), errors.size(), ofObservation, errors.data());
    for (std::size_t j = 0; j < errors.size(); ++j) {
        // std::max(NaN, x) is NaN.
        result[outside[j]] = std::max(result[outside[j]], errors[j]);
    }
}

bool KrigingPredictor::isOutside(const std::vector<double*>& columns, std::size_t point) const
{
    for (std::size_t k = 0; k < fitted.inputs.size(); ++k) {
        const double u = fitted.coordinate(k, columns[fitted.inputs[k]][point]);
        if (u < 0.0 || u > 1.0) {
            return true;
        }
    }
    return false;
}
