#include <mirel_fitting/kriging/prediction/KrigingSupport.h>

#include <mirel_fitting/cases/SpaceFillingSubset.h>
#include <mirel_fitting/kriging/correlation/MaternCorrelation.h>
#include <mirel_fitting/kriging/likelihood/KrigingEquations.h>
#include <mirel_fitting/kriging/search/SearchPolicy.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>

namespace {

constexpr std::size_t mostCases = 300;

/** Makes any number of different points sound, and is far below what is left between them. */
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
    auto some = std::make_shared<KrigingData>(all.subset(spaceFillingSubset(all, mostCases)));
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
        std::vector<double> variances;
        equations.leaveOneOutResiduals(&variances);
        for (const double variance : variances) {
            largest = std::max(largest, variance - nugget); // false for NaN
        }
    }
    return largest;
}

} // namespace

KrigingSupport::KrigingSupport(const KrigingCases& cases, const CaseRanges& ranges) : ranges(ranges)
{
    constexpr double negligible = 1.1;

    if (cases.activeInputs().empty()) {
        return;
    }
    const std::shared_ptr<const KrigingData> data = someOf(cases);
    const std::vector<double> lengths(data->inputs, SearchPolicy().priorLength);
    const double largest = largestVariance(data, lengths);
    if (!(largest > 0.0)) {
        return;
    }
    largestError = std::sqrt(negligible * largest);

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
}

std::vector<char> KrigingSupport::unsupported(const std::vector<double*>& points,
                                              std::size_t count) const
{
    constexpr std::size_t pointsAtOnce = 16384; // bounds the memory

    std::vector<char> flags(count, 0);
    if (!process) {
        return flags;
    }
    std::vector<std::vector<double>> values(points.size(), std::vector<double>(pointsAtOnce));
    std::vector<double*> columns;
    for (std::vector<double>& column : values) {
        columns.push_back(column.data());
    }
    std::vector<double> errors(pointsAtOnce);
    for (std::size_t first = 0; first < count; first += pointsAtOnce) {
        const std::size_t size = std::min(pointsAtOnce, count - first);
        for (std::size_t input = 0; input < points.size(); ++input) {
            ranges.clamp(input, points[input] + first, size, columns[input]);
        }
        process->standardErrors(columns, size, false, errors.data());
        for (std::size_t i = 0; i < size; ++i) {
            flags[first + i] = errors[i] > largestError ? 1 : 0;
        }
    }
    return flags;
}
