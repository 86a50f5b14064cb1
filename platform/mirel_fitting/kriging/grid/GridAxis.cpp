#include <mirel_fitting/kriging/grid/GridAxis.h>

#include <mirel_fitting/machine/AlignedBuffer.h>

#include <algorithm>
#include <cmath>
#include <utility>

GridAxis::GridAxis(const FittedKriging& model, const std::vector<double*>& columns,
                   std::size_t firstRow, const ProductGrid::Axis& axis, std::size_t strideInGroup)
    : size(axis.size), stride(strideInGroup), isFinite(axis.size, 1)
{
    for (const std::size_t column : axis.columns) {
        for (std::size_t v = 0; v < size; ++v) {
            const double value = columns[column][firstRow + v * axis.stride];
            isFinite[v] = isFinite[v] && std::isfinite(value);
        }
    }
    for (std::size_t k = 0; k < model.inputs.size(); ++k) {
        const auto& on = axis.columns;
        if (std::find(on.begin(), on.end(), model.inputs[k]) == on.end()) {
            continue;
        }
        inputs.push_back(k);
        std::vector<double> values(size, 0.0);
        for (std::size_t v = 0; v < size; ++v) {
            if (isFinite[v]) {
                const std::size_t row = firstRow + v * axis.stride;
                values[v] = model.coordinate(k, columns[model.inputs[k]][row]);
            }
        }
        coordinates.push_back(std::move(values));
    }
}

void GridAxis::correlate(const MaternCorrelation& correlation, std::size_t first, std::size_t count,
                         double* rows) const
{
    constexpr std::size_t valuesAtATime = 64; // their rows stay in the cache
    const std::size_t rowSize = correlation.correlationStride();
    AlignedBuffer factor(inputs.size() > 1 ? valuesAtATime * rowSize : 0);
    for (std::size_t v = 0; v < count; v += valuesAtATime) {
        const std::size_t values = std::min(valuesAtATime, count - v);
        double* target = rows + v * rowSize;
        correlation.correlateInput(inputs[0], coordinates[0].data() + first + v, values, target);
        for (std::size_t q = 1; q < inputs.size(); ++q) {
            correlation.correlateInput(inputs[q], coordinates[q].data() + first + v, values,
                                       factor.data());
            for (std::size_t i = 0; i < values * rowSize; ++i) {
                target[i] *= factor.data()[i];
            }
        }
    }
}
