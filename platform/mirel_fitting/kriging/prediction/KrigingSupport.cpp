#include <mirel_fitting/kriging/prediction/KrigingSupport.h>

#include <mirel_fitting/ColumnPointers.h>
#include <mirel_fitting/cases/SpaceFillingSubset.h>
#include <mirel_fitting/kriging/correlation/MaternCorrelation.h>
#include <mirel_fitting/kriging/likelihood/KrigingEquations.h>
#include <mirel_fitting/kriging/search/SearchPolicy.h>
#include <mirel_fitting/machine/SingleThreadedBlas.h>

#include <cblas.h>
#include <lapacke.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <memory>
#include <numeric>
#include <utility>

namespace {

/** A point costs the square of their number. */
constexpr std::size_t maxCases = 300;

/** Keeps the factorisation sound; far below the variances between the cases. */
constexpr double nugget = 1e-8;

/** Spread over all, with the trend 1. */
std::shared_ptr<const KrigingData> someOf(const KrigingCases& cases)
{
    KrigingData all;
    all.cases = cases.pointCount();
    all.inputs = cases.activeInputs().size();
    all.coordinates = cases.coordinates();
    all.output.assign(all.cases, 0.0);
    all.replicates.assign(all.cases, 1.0);
    all.withinSquares.assign(all.cases, 0.0);
    auto some = std::make_shared<KrigingData>(all.subset(spaceFillingSubset(all, maxCases)));
    some->terms = 1;
    some->trend.assign(some->cases, 1.0);
    return some;
}

/** Of the variances of all cases, each left out; 0 where none is determined. */
double largestVariance(const std::shared_ptr<const KrigingData>& data,
                       const std::vector<double>& lengths)
{
    KrigingEquations equations(data);
    double largest = 0.0;
    if (equations.solve(lengths, nugget)) {
        const KrigingEquations::LeftOut leftOut = equations.leaveOneOut(true);
        for (const double variance : leftOut.variances) {
            largest = std::max(largest, variance - nugget); // false for NaN
        }
    }
    return largest;
}

} // namespace

KrigingSupport::KrigingSupport(const KrigingCases& cases, const CaseRanges& ranges) : ranges(ranges)
{
    // Of variances: between the cases they are a little larger than at a case that is left out. How
    // many points off a relation are found so: docs/numerics.md, "Extrapolation".
    constexpr double tolerance = 1.1;

    if (cases.activeInputs().empty()) {
        return;
    }
    const std::shared_ptr<const KrigingData> data = someOf(cases);
    const std::vector<double> lengths(data->inputs, SearchPolicy::priorLength);
    const double largest = largestVariance(data, lengths);
    if (!(largest > 0.0)) {
        return;
    }
    largestError = std::sqrt(tolerance * largest);

    auto correlation =
        std::make_shared<MaternCorrelation>(data->cases, data->inputs, data->coordinates.data());
    correlation->setLengths(lengths);
    FittedKriging model;
    model.inputs = cases.activeInputs();
    model.minimum = cases.minimum();
    model.range = cases.range();
    model.trend =
        std::make_shared<KrigingTrend>(data->cases, data->inputs, data->coordinates, 0, 0);
    model.correlation = std::move(correlation);
    model.data = data;
    model.processVariance = 1.0;
    model.nugget = nugget;
    process.emplace(std::move(model));
    addLeverage(*data);
}

/** With fewer than three cases per term the leverage is not judged: nearly every new point would
 * have a larger one than the cases. */
void KrigingSupport::addLeverage(const KrigingData& data)
{
    constexpr std::size_t casesPerTerm = 3;
    // Off a relation that all cases keep exactly, 5 % of a range are tolerated. In a Latin
    // hypercube the corners have twice the largest leverage of the cases.
    constexpr double tolerance = 0.01;
    constexpr double supported = 4.0;

    const std::size_t inputs = data.inputs;
    if (data.cases < casesPerTerm * (inputs + 1)) {
        return;
    }
    const auto cases = static_cast<double>(data.cases);
    std::vector<double> centred = data.coordinates;
    for (std::size_t k = 0; k < inputs; ++k) {
        double* const column = centred.data() + k * data.cases;
        means.push_back(std::accumulate(column, column + data.cases, 0.0) / cases);
        std::for_each(column, column + data.cases, [&](double& value) { value -= means[k]; });
    }
    factor.assign(inputs * inputs, 0.0);
    for (std::size_t k = 0; k < inputs; ++k) {
        factor[k * (inputs + 1)] = tolerance * tolerance;
        for (std::size_t i = k; i < inputs; ++i) {
            const double* const column = centred.data() + k * data.cases;
            factor[k * inputs + i] += std::inner_product(column, column + data.cases,
                                                         centred.data() + i * data.cases, 0.0) /
                                      cases;
        }
    }
    const SingleThreadedBlas singleThreaded;
    const auto order = static_cast<lapack_int>(inputs);
    LAPACKE_dpotrf_work(LAPACK_COL_MAJOR, 'L', order, factor.data(), order);
    std::vector<double> point(inputs);
    for (std::size_t i = 0; i < data.cases; ++i) {
        for (std::size_t k = 0; k < inputs; ++k) {
            point[k] = data.coordinates[k * data.cases + i];
        }
        largestLeverage = std::max(largestLeverage, supported * leverage(point));
    }
}

/** Times the number of cases. OpenBLAS has to work with one thread meanwhile.
 *  @param coordinates are used up. */
double KrigingSupport::leverage(std::vector<double>& coordinates) const
{
    const auto order = static_cast<int>(means.size());
    std::transform(coordinates.begin(), coordinates.end(), means.begin(), coordinates.begin(),
                   std::minus<>());
    cblas_dtrsv(CblasColMajor, CblasLower, CblasNoTrans, CblasNonUnit, order, factor.data(), order,
                coordinates.data(), 1);
    return 1.0 + cblas_ddot(order, coordinates.data(), 1, coordinates.data(), 1);
}

std::vector<char> KrigingSupport::unsupported(const std::vector<double*>& points,
                                              std::size_t count) const
{
    if (!process) {
        return std::vector<char>(count, 0);
    }
    const std::vector<std::size_t> rows = stratifiedRows(count, maxPoints);
    std::vector<std::vector<double>> values;
    for (std::size_t input = 0; input < points.size(); ++input) {
        std::vector<double> column(rows.size());
        std::transform(rows.begin(), rows.end(), column.begin(),
                       [&](std::size_t row) { return points[input][row]; });
        ranges.clamp(input, column.data(), column.size(), column.data());
        values.push_back(std::move(column));
    }
    std::vector<double> errors(rows.size());
    process->standardErrors(pointersTo(values), rows.size(), false, errors.data());

    const SingleThreadedBlas singleThreaded;
    const FittedKriging& model = process->model();
    std::vector<double> point(model.inputs.size());
    std::vector<char> flags(count, CaseRanges::notJudged);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        bool isUnsupported = errors[i] > largestError;
        if (!isUnsupported && largestLeverage > 0.0) {
            for (std::size_t k = 0; k < point.size(); ++k) {
                point[k] = model.coordinate(k, values[model.inputs[k]][i]);
            }
            isUnsupported = leverage(point) > largestLeverage;
        }
        flags[rows[i]] = isUnsupported ? 1 : 0;
    }
    return flags;
}
