#include <mirel_fitting/kriging/prediction/KrigingPredictor.h>

#include <mirel_fitting/SurrogateModelInterface.h>
#include <mirel_fitting/ThreadCount.h>
#include <mirel_fitting/kriging/grid/KrigingGrid.h>
#include <mirel_fitting/kriging/prediction/KrigingVariance.h>
#include <mirel_fitting/machine/OrderedChunks.h>
#include <mirel_fitting/machine/SingleThreadedBlas.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr std::size_t blockSize = 1024;
// So many points are handed to a thread at once.
constexpr std::size_t chunkSize = 8 * blockSize;

} // namespace

double KrigingPredictor::Parts::coordinate(std::size_t k, double value) const
{
    constexpr double farAway = 1e150;
    return std::min(std::max((value - minimum[k]) / range[k], -farAway), farAway);
}

PredictorDescription KrigingPredictor::Parts::description() const
{
    if (neighbours) {
        throw SurrogateModelInterface::Error(
            "Each prediction of the model asks for the nearest of its many cases, which no "
            "exported model holds: leave out cases until no more than 10 000 are left, or take a "
            "response surface.");
    }
    PredictorDescription description;
    description.kind = PredictorDescription::Kind::Kriging;
    for (std::size_t k = 0; k < inputs.size(); ++k) {
        description.coordinates.push_back({inputs[k], minimum[k], range[k]});
    }
    for (std::size_t t = 0; t < coefficients.size(); ++t) {
        const QuadraticBasis::Term term = trend->keptTerms()[t];
        description.terms.push_back({term.first, term.second, coefficients[t]});
    }
    description.offset = offset;
    description.scale = scale;
    if (correlation) {
        description.lengths = correlation->lengths();
        description.cases = data->coordinates;
        description.weights = weights;
    }
    return description;
}

KrigingPredictor::Parts KrigingPredictor::Parts::of(const PredictorDescription& description)
{
    Parts parts;
    for (const PredictorDescription::Coordinate& coordinate : description.coordinates) {
        parts.inputs.push_back(coordinate.input);
        parts.minimum.push_back(coordinate.origin);
        parts.range.push_back(coordinate.unit);
    }
    std::vector<QuadraticBasis::Term> terms;
    for (const PredictorDescription::Term& term : description.terms) {
        terms.push_back({term.first, term.second});
        parts.coefficients.push_back(term.coefficient);
    }
    parts.trend = std::make_shared<KrigingTrend>(parts.inputs.size(), std::move(terms));
    parts.offset = description.offset;
    parts.scale = description.scale;
    if (!description.weights.empty()) {
        auto correlation = std::make_shared<MaternCorrelation>(
            description.weights.size(), parts.inputs.size(), description.cases.data());
        correlation->setLengths(description.lengths);
        parts.correlation = std::move(correlation);
        parts.weights = description.weights;
    }
    return parts;
}

/** The coordinates of some points, with zeros in place of a point that is not finite. */
class KrigingPredictor::Block
{
public:
    explicit Block(const Parts& parts)
        : parts(parts), coordinates(parts.inputs.size() * blockSize), notFinite(blockSize)
    {
        for (std::size_t k = 0; k < parts.inputs.size(); ++k) {
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
        for (std::size_t k = 0; k < parts.inputs.size(); ++k) {
            const double* column = columns[parts.inputs[k]] + first;
            double* coordinate = coordinates.data() + k * blockSize;
            for (std::size_t i = 0; i < size; ++i) {
                const double u = parts.coordinate(k, column[i]);
                coordinate[i] = notFinite[i] == 0.0 ? u : 0.0;
            }
        }
    }

    const Parts& parts;
    std::vector<double> coordinates;
    std::vector<double> notFinite; // NaN for a point that is not finite, else 0
    std::vector<const double*> points;
};

KrigingPredictor::KrigingPredictor(Parts parts) : parts(std::move(parts)) {}

void KrigingPredictor::predict(const GridPoints& points, double* result) const
{
    // What is held per value of an axis stays below ten megabytes.
    constexpr std::size_t mostValues = std::size_t{1} << 17;

    for (const ProductGrid& grid : points.grids()) {
        if (!KrigingGrid::isWorthwhile(parts, grid)) {
            predictScattered(points.columns(), grid.firstRow(), grid.rowCount(),
                             result + grid.firstRow());
            continue;
        }
        for (const ProductGrid& part : grid.cut(mostValues)) {
            predictGrid(points.columns(), part, result + part.firstRow());
        }
    }
    points.markFilled(result);
}

void KrigingPredictor::predictGrid(const std::vector<double*>& columns, const ProductGrid& grid,
                                   double* result) const
{
    if (!KrigingGrid::isWorthwhile(parts, grid)) {
        predictScattered(columns, grid.firstRow(), grid.rowCount(), result);
        return;
    }
    KrigingGrid(parts, columns, grid).predict(result);
    addNeighbours(columns, grid.firstRow(), grid.rowCount(), result);
}

void KrigingPredictor::predict(const std::vector<double*>& columns, std::size_t count,
                               double* result) const
{
    predict(GridPoints(columns, count), result);
}

void KrigingPredictor::predictScattered(const std::vector<double*>& columns, std::size_t first,
                                        std::size_t count, double* result) const
{
    // Fewer correlations are computed before another thread has started.
    constexpr std::size_t worthAThread = 1000000;

    const auto makeWork = [&]() -> OrderedChunks::Work {
        auto block = std::make_shared<Block>(parts);
        auto sums = std::make_shared<std::vector<double>>(blockSize);
        return [&, block, sums](std::size_t chunk) {
            const std::size_t end = std::min(count, (chunk + 1) * chunkSize);
            for (std::size_t start = chunk * chunkSize; start < end; start += blockSize) {
                const std::size_t size = std::min(blockSize, end - start);
                block->read(columns, first + start, size);
                std::fill(sums->begin(), sums->end(), 0.0);
                parts.trend->add(block->points, size, parts.coefficients, sums->data());
                if (parts.correlation) {
                    parts.correlation->addWeightedSums(block->points, size, parts.weights.data(),
                                                       sums->data());
                }
                for (std::size_t i = 0; i < size; ++i) {
                    result[start + i] =
                        parts.offset + parts.scale * (*sums)[i] + block->notFinite[i];
                }
            }
        };
    };
    const bool isLarge = count > worthAThread / std::max<std::size_t>(parts.weights.size(), 1);
    OrderedChunks::runEach((count + chunkSize - 1) / chunkSize, isLarge ? threadCount() : 1,
                           makeWork, nullptr);
    addNeighbours(columns, first, count, result);
}

void KrigingPredictor::addNeighbours(const std::vector<double*>& columns, std::size_t first,
                                     std::size_t count, double* result) const
{
    if (!parts.neighbours) {
        return;
    }
    Block block(parts);
    std::vector<double> sums(blockSize);
    for (std::size_t start = 0; start < count; start += blockSize) {
        const std::size_t size = std::min(blockSize, count - start);
        block.read(columns, first + start, size);
        std::fill(sums.begin(), sums.end(), 0.0);
        parts.neighbours->add(block.points, size, sums.data());
        for (std::size_t i = 0; i < size; ++i) {
            // Added, so that NaN stays.
            result[start + i] += parts.scale * sums[i];
        }
    }
}

void KrigingPredictor::differentiate(const std::vector<double*>& columns, std::size_t count,
                                     const std::vector<double*>& gradients) const
{
    const std::size_t inputs = parts.inputs.size();
    Block block(parts);
    std::vector<double> slopes(inputs * blockSize);
    std::vector<double*> slopeColumns;
    for (std::size_t k = 0; k < inputs; ++k) {
        slopeColumns.push_back(slopes.data() + k * blockSize);
    }

    for (std::size_t first = 0; first < count; first += blockSize) {
        const std::size_t size = std::min(blockSize, count - first);
        block.read(columns, first, size);
        std::fill(slopes.begin(), slopes.end(), 0.0);
        parts.trend->addGradients(block.points, size, parts.coefficients, slopeColumns);
        if (parts.correlation) {
            parts.correlation->addWeightedGradients(block.points, size, parts.weights.data(),
                                                    slopeColumns);
        }
        if (parts.neighbours) {
            parts.neighbours->addGradients(block.points, size, slopeColumns);
        }
        for (double* gradient : gradients) {
            std::copy_n(block.notFinite.data(), size, gradient + first);
        }
        for (std::size_t k = 0; k < inputs; ++k) {
            double* gradient = gradients[parts.inputs[k]] + first;
            for (std::size_t i = 0; i < size; ++i) {
                // Added, so that NaN stays; divided last, since scale / range may have no double.
                gradient[i] += slopeColumns[k][i] * parts.scale / parts.range[k];
            }
        }
    }
}

void KrigingPredictor::standardErrors(const std::vector<double*>& columns, std::size_t count,
                                      bool ofObservation, double* result) const
{
    if (parts.neighbours) {
        neighbourErrors(columns, count, ofObservation, result);
        raiseOutside(columns, count, ofObservation, result);
    } else {
        exactErrors(columns, count, ofObservation, result);
    }
}

/** Those of the exact model, of the subset if there are neighbours. */
void KrigingPredictor::exactErrors(const std::vector<double*>& columns, std::size_t count,
                                   bool ofObservation, double* result) const
{
    const SingleThreadedBlas singleThreaded;
    if (!variance) {
        variance = std::make_shared<KrigingVariance>(partsOfProcess());
    }
    const double noise = ofObservation ? variance->noise() : 0.0;
    const auto makeWork = [&]() -> OrderedChunks::Work {
        auto block = std::make_shared<Block>(parts);
        auto workspace = std::make_shared<KrigingVariance::Workspace>(*variance, blockSize);
        return [&, block, workspace](std::size_t chunk) {
            const std::size_t first = chunk * blockSize;
            const std::size_t size = std::min(blockSize, count - first);
            block->read(columns, first, size);
            variance->evaluate(block->points, size, *workspace, result + first);
            for (std::size_t i = 0; i < size; ++i) {
                const double squared = parts.processVariance * (result[first + i] + noise);
                result[first + i] = parts.scale * std::sqrt(squared) + block->notFinite[i];
            }
        };
    };
    OrderedChunks::runEach((count + blockSize - 1) / blockSize, threadCount(), makeWork, nullptr);
}

/** With the correlation of the subset's process, also where it is no part of the prediction. */
KrigingPredictor::Parts KrigingPredictor::partsOfProcess() const
{
    Parts result = parts;
    if (parts.neighbours) {
        auto correlation = std::make_shared<MaternCorrelation>(
            parts.data->cases, parts.inputs.size(), parts.data->coordinates.data());
        correlation->setLengths(parts.corrected.lengths);
        result.correlation = std::move(correlation);
    }
    return result;
}

/**
 * What the neighbours do not know of what the first layer leaves. That is alike everywhere between
 * the cases, and knows no bounds outside of them: there, what they do not know of the first layer's
 * process is more.
 */
void KrigingPredictor::neighbourErrors(const std::vector<double*>& columns, std::size_t count,
                                       bool ofObservation, double* result) const
{
    const double noise = ofObservation ? parts.neighbours->parameters().nugget : 0.0;
    Block block(parts);
    std::vector<double> outer(blockSize);
    for (std::size_t first = 0; first < count; first += blockSize) {
        const std::size_t size = std::min(blockSize, count - first);
        block.read(columns, first, size);
        const NearestNeighbourKriging& kriging = *parts.neighbours;
        kriging.variances(block.points, size, kriging.parameters(), result + first);
        if (parts.correctedVariance > 0.0) {
            kriging.variances(block.points, size, parts.corrected, outer.data());
        }
        for (std::size_t i = 0; i < size; ++i) {
            const double squared = std::max(parts.neighbourVariance * (result[first + i] + noise),
                                            parts.correctedVariance * outer[i]);
            result[first + i] = parts.scale * std::sqrt(squared) + block.notFinite[i];
        }
    }
}

/**
 * Outside of the ranges of the cases the errors are no less than those of the subset's exact model:
 * neighbours do not know what the trend, estimated between the cases, is worth out there.
 */
void KrigingPredictor::raiseOutside(const std::vector<double*>& columns, std::size_t count,
                                    bool ofObservation, double* result) const
{
    constexpr std::size_t mostAtOnce = 64 * blockSize;

    std::vector<std::size_t> outside;
    for (std::size_t i = 0; i < count; ++i) {
        if (isOutside(columns, i)) {
            outside.push_back(i);
        }
        if (outside.empty() || (outside.size() < mostAtOnce && i + 1 < count)) {
            continue;
        }
        std::vector<std::vector<double>> values(columns.size());
        std::vector<double*> points;
        for (std::size_t k = 0; k < columns.size(); ++k) {
            for (const std::size_t index : outside) {
                values[k].push_back(columns[k][index]);
            }
            points.push_back(values[k].data());
        }
        std::vector<double> errors(outside.size());
        exactErrors(points, errors.size(), ofObservation, errors.data());
        for (std::size_t j = 0; j < errors.size(); ++j) {
            // NaN stays.
            result[outside[j]] = std::max(result[outside[j]], errors[j]);
        }
        outside.clear();
    }
}

bool KrigingPredictor::isOutside(const std::vector<double*>& columns, std::size_t point) const
{
    for (std::size_t k = 0; k < parts.inputs.size(); ++k) {
        const double u = parts.coordinate(k, columns[parts.inputs[k]][point]);
        if (u < 0.0 || u > 1.0) {
            return true;
        }
    }
    return false;
}
