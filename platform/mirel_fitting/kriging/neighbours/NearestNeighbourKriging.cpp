#include <mirel_fitting/kriging/neighbours/NearestNeighbourKriging.h>

#include <mirel_fitting/FitProgress.h>
#include <mirel_fitting/ThreadCount.h>
#include <mirel_fitting/kriging/correlation/MaternKernels.h>
#include <mirel_fitting/kriging/correlation/NuggetBounds.h>
#include <mirel_fitting/machine/AlignedBuffer.h>
#include <mirel_fitting/machine/OrderedChunks.h>
#include <mirel_fitting/machine/SingleThreadedBlas.h>

#include <cblas.h>
#include <lapacke.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

// Lengths are limited in the metric of the tree: coordinates divided by an infinite length would be
// lost, and shorter lengths are tried later.
constexpr double longestInMetric = 1e4;

/** All cases: their coordinates case by case, values and numbers of replicates. */
struct Sources
{
    std::size_t inputs;
    const double* coordinates; // in lengths of the metric
    const double* values;
    const double* replicates;
};

/** Kriging from a handful of cases; one for each thread. */
class LocalKriging
{
public:
    LocalKriging(const Sources& sources, std::size_t maxCases)
        : sources(sources), stride(AlignedBuffer::padded(maxCases)),
          columns(stride * sources.inputs), points((maxCases + 1) * sources.inputs),
          correlations(stride * (maxCases + 1)), factor(maxCases * maxCases), right(maxCases),
          values(maxCases)
    {}

    /**
     * @param factors turn coordinates of the metric into those of the kernels.
     * @param share   the noise of the predicted value, relative to the process variance.
     */
    NearestNeighbourKriging::Prediction predict(const std::uint32_t* cases, std::size_t count,
                                                const double* point,
                                                const std::vector<double>& factors, double nugget,
                                                double share)
    {
        if (count == 0) {
            return {0.0, 1.0 + share};
        }
        correlate(cases, count, point, factors);
        double used = nugget;
        while (used <= std::max(nugget, NuggetBounds::maxRaised)) {
            if (factorise(cases, count, used)) {
                return solve(cases, count, share);
            }
            // The correlation matrix of coinciding cases is singular without a nugget.
            used = std::max(used * NuggetBounds::raise, NuggetBounds::sound);
        }
        return {0.0, 1.0 + share};
    }

    /** slopes[k] = derivative of the mean of the last prediction by coordinate k of the kernels. */
    void differentiate(std::size_t count, double* slopes)
    {
        const std::size_t inputs = sources.inputs;
        std::fill(slopes, slopes + inputs, 0.0);
        if (count == 0) {
            return;
        }
        const int order = static_cast<int>(count);
        cblas_dtrsv(CblasColMajor, CblasLower, CblasTrans, CblasNonUnit, order, factor.data(),
                    order, values.data(), 1);
        const double* correlation = correlations.data() + count * stride;
        const double* point = points.data() + count * inputs;
        for (std::size_t i = 0; i < count; ++i) {
            const double weight = values[i] * correlation[i];
            for (std::size_t k = 0; k < inputs && weight != 0.0; ++k) {
                // d ln c / dx = -(x - x') (1 + z) / (3 + 3 z + z^2)
                const double difference = point[k] - points[i * inputs + k];
                const double z = std::fabs(difference);
                slopes[k] -= weight * difference * (1.0 + z) / (3.0 + z * (3.0 + z));
            }
        }
    }

private:
    void correlate(const std::uint32_t* cases, std::size_t count, const double* point,
                   const std::vector<double>& factors)
    {
        const std::size_t inputs = sources.inputs;
        for (std::size_t i = 0; i < count; ++i) {
            const double* from = sources.coordinates + cases[i] * inputs;
            for (std::size_t k = 0; k < inputs; ++k) {
                const double x = from[k] * factors[k];
                columns.data()[k * stride + i] = x;
                points[i * inputs + k] = x;
            }
        }
        for (std::size_t k = 0; k < inputs; ++k) {
            points[count * inputs + k] = point[k] * factors[k];
        }
        MaternKernels::correlate({columns.data(), stride, AlignedBuffer::padded(count)},
                                 {points.data(), inputs, count + 1}, correlations.data(), stride);
    }

    bool factorise(const std::uint32_t* cases, std::size_t count, double nugget)
    {
        for (std::size_t j = 0; j < count; ++j) {
            const double* from = correlations.data() + j * stride;
            std::copy(from + j, from + count, factor.data() + j * count + j);
            factor[j * count + j] = 1.0 + nugget / sources.replicates[cases[j]];
        }
        const auto order = static_cast<lapack_int>(count);
        return LAPACKE_dpotrf_work(LAPACK_COL_MAJOR, 'L', order, factor.data(), order) == 0;
    }

    NearestNeighbourKriging::Prediction solve(const std::uint32_t* cases, std::size_t count,
                                              double share)
    {
        const double* correlation = correlations.data() + count * stride;
        std::copy(correlation, correlation + count, right.begin());
        for (std::size_t i = 0; i < count; ++i) {
            values[i] = sources.values[cases[i]];
        }
        const int order = static_cast<int>(count);
        for (double* column : {right.data(), values.data()}) {
            cblas_dtrsv(CblasColMajor, CblasLower, CblasNoTrans, CblasNonUnit, order, factor.data(),
                        order, column, 1);
        }
        // Cancellation can make the variance 0 or negative.
        const double smallest = 1e-15;
        const double explained = cblas_ddot(order, right.data(), 1, right.data(), 1);
        return {cblas_ddot(order, right.data(), 1, values.data(), 1),
                std::max(1.0 + share - explained, smallest)};
    }

    Sources sources;
    std::size_t stride;
    AlignedBuffer columns;      // of the cases, scaled
    std::vector<double> points; // the same case by case, and the point
    AlignedBuffer correlations; // of the cases and, last, of the point
    std::vector<double> factor;
    std::vector<double> right;
    std::vector<double> values;
};

} // namespace

/** The memory of one thread. */
struct NearestNeighbourKriging::Workspace
{
    Workspace(const Sources& sources, std::size_t neighbours)
        : kriging(sources, neighbours), indices(neighbours + 1), squares(neighbours + 1),
          point(sources.inputs)
    {}

    LocalKriging kriging;
    std::vector<std::uint32_t> indices; // one more than used: a case is its own neighbour
    std::vector<double> squares;
    std::vector<double> point;
    std::size_t found = 0; // cases that the last prediction used
};

NearestNeighbourKriging::NearestNeighbourKriging(const KrigingData& cases,
                                                 std::vector<double> givenValues,
                                                 const std::vector<double>& lengths,
                                                 std::size_t neighbours)
    : inputs(cases.inputs), used(std::min(neighbours, cases.cases)), metric(lengths),
      coordinates(cases.cases * inputs), values(std::move(givenValues)),
      replicates(cases.replicates)
{
    for (std::size_t k = 0; k < inputs; ++k) {
        FitProgress::advance();
        metric[k] = std::min(metric[k], longestInMetric);
        for (std::size_t i = 0; i < cases.cases; ++i) {
            coordinates[i * inputs + k] = cases.coordinates[k * cases.cases + i] / metric[k];
        }
    }
    search = std::make_unique<NearestNeighbours>(coordinates.data(), cases.cases, inputs);
    setParameters({lengths, 0.0});
}

void NearestNeighbourKriging::setParameters(const Parameters& parameters)
{
    chosen = parameters;
    factors = factorsFor(parameters);
}

std::vector<double> NearestNeighbourKriging::factorsFor(const Parameters& parameters) const
{
    std::vector<double> result;
    for (std::size_t k = 0; k < inputs; ++k) {
        result.push_back(MaternKernels::rootOfFive * metric[k] / parameters.lengths[k]);
    }
    return result;
}

/** @param work is done for each point, by several threads. */
void NearestNeighbourKriging::forPoints(
    std::size_t points, const std::function<void(Workspace&, std::size_t)>& work) const
{
    constexpr std::size_t perChunk = 64; // some milliseconds: starting a thread takes 0.1

    const SingleThreadedBlas singleThreaded;
    const std::size_t chunks = (points + perChunk - 1) / perChunk;
    const auto makeWork = [&]() -> OrderedChunks::Work {
        const auto workspace = std::make_shared<Workspace>(
            Sources{inputs, coordinates.data(), values.data(), replicates.data()}, used);
        return [&, workspace](std::size_t chunk) {
            const std::size_t last = std::min(points, (chunk + 1) * perChunk);
            for (std::size_t i = chunk * perChunk; i < last; ++i) {
                work(*workspace, i);
            }
        };
    };
    OrderedChunks::runEach(chunks, threadCount(), makeWork, static_cast<double>(points));
}

NearestNeighbourKriging::Prediction
NearestNeighbourKriging::predict(Workspace& workspace, const std::vector<const double*>& points,
                                 std::size_t index, const std::vector<double>& scales,
                                 double nugget) const
{
    for (std::size_t k = 0; k < inputs; ++k) {
        workspace.point[k] = points[k][index] / metric[k];
    }
    workspace.found = search->find(workspace.point.data(), used, workspace.indices.data(),
                                   workspace.squares.data());
    constexpr double noise = 0.0; // of the mean
    return workspace.kriging.predict(workspace.indices.data(), workspace.found,
                                     workspace.point.data(), scales, nugget, noise);
}

void NearestNeighbourKriging::add(const std::vector<const double*>& points, std::size_t pointCount,
                                  double* result) const
{
    forPoints(pointCount, [&](Workspace& workspace, std::size_t i) {
        result[i] += predict(workspace, points, i, factors, chosen.nugget).mean;
    });
}

void NearestNeighbourKriging::addGradients(const std::vector<const double*>& points,
                                           std::size_t pointCount,
                                           const std::vector<double*>& gradients) const
{
    forPoints(pointCount, [&](Workspace& workspace, std::size_t i) {
        predict(workspace, points, i, factors, chosen.nugget);
        workspace.kriging.differentiate(workspace.found, workspace.point.data());
        for (std::size_t k = 0; k < inputs; ++k) {
            gradients[k][i] += workspace.point[k] * factors[k] / metric[k];
        }
    });
}

void NearestNeighbourKriging::variances(const std::vector<const double*>& points,
                                        std::size_t pointCount, const Parameters& parameters,
                                        double* result) const
{
    const std::vector<double> scales = factorsFor(parameters);
    forPoints(pointCount, [&](Workspace& workspace, std::size_t i) {
        result[i] = predict(workspace, points, i, scales, parameters.nugget).variance;
    });
}

NearestNeighbourKriging::LeftOut::LeftOut(const NearestNeighbourKriging& givenKriging,
                                          std::vector<std::size_t> givenCases)
    : kriging(givenKriging), cases(std::move(givenCases)), stride(kriging.used),
      neighbours(cases.size() * stride), found(cases.size())
{
    kriging.forPoints(cases.size(), [&](Workspace& workspace, std::size_t i) {
        const std::size_t near = kriging.search->find(
            kriging.at(cases[i]), stride + 1, workspace.indices.data(), workspace.squares.data());
        std::uint32_t* kept = neighbours.data() + i * stride;
        for (std::size_t j = 0; j < near && found[i] < stride; ++j) {
            if (workspace.indices[j] != cases[i]) {
                kept[found[i]++] = workspace.indices[j];
            }
        }
    });
}

std::vector<NearestNeighbourKriging::Prediction>
NearestNeighbourKriging::LeftOut::predict(const Parameters& parameters) const
{
    const std::vector<double> scales = kriging.factorsFor(parameters);
    std::vector<Prediction> result(cases.size());
    kriging.forPoints(result.size(), [&](Workspace& workspace, std::size_t i) {
        result[i] = workspace.kriging.predict(neighbours.data() + i * stride, found[i],
                                              kriging.at(cases[i]), scales, parameters.nugget,
                                              parameters.nugget / kriging.replicates[cases[i]]);
    });
    return result;
}
