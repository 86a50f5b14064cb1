#include <mirel_fitting/cases/KrigingData.h>

#include <mirel_fitting/machine/SingleThreadedBlas.h>
#include <mirel_fitting/numerics/OrthonormalColumns.h>

#include <algorithm>
#include <numeric>
#include <utility>

namespace {

std::vector<double> pick(const std::vector<double>& columns, std::size_t cases,
                         std::size_t columnCount, const std::vector<std::size_t>& indices)
{
    std::vector<double> result;
    result.reserve(columnCount * indices.size());
    for (std::size_t k = 0; k < columnCount; ++k) {
        for (const std::size_t index : indices) {
            result.push_back(columns[k * cases + index]);
        }
    }
    return result;
}

} // namespace

std::vector<const double*> KrigingData::columns(std::size_t firstCase) const
{
    std::vector<const double*> result;
    for (std::size_t k = 0; k < inputs; ++k) {
        result.push_back(coordinates.data() + k * cases + firstCase);
    }
    return result;
}

double KrigingData::rowCount() const
{
    return std::accumulate(replicates.begin(), replicates.end(), 0.0);
}

bool KrigingData::hasPureError() const
{
    return std::any_of(withinSquares.begin(), withinSquares.end(),
                       [](double squares) { return squares > 0.0; });
}

void KrigingData::averageReplicates()
{
    replicates.assign(cases, 1.0);
    withinSquares.assign(cases, 0.0);
}

void KrigingData::dropDependentTerms()
{
    const SingleThreadedBlas singleThreaded;
    OrthonormalColumns orthonormal(cases, terms);
    std::vector<double> kept;
    for (std::size_t t = 0; t < terms; ++t) {
        const double* column = trend.data() + t * cases;
        if (orthonormal.append(column, OrthonormalColumns::independent)) {
            kept.insert(kept.end(), column, column + cases);
        }
    }
    terms = orthonormal.size();
    trend = std::move(kept);
}

KrigingData KrigingData::subset(const std::vector<std::size_t>& indices) const
{
    KrigingData result;
    result.cases = indices.size();
    result.inputs = inputs;
    result.terms = terms;
    result.coordinates = pick(coordinates, cases, inputs, indices);
    result.trend = pick(trend, cases, terms, indices);
    result.output = pick(output, cases, 1, indices);
    result.replicates = pick(replicates, cases, 1, indices);
    result.withinSquares = pick(withinSquares, cases, 1, indices);
    return result;
}
