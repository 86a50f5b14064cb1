#include <mirel_fitting/cases/KrigingData.h>

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
