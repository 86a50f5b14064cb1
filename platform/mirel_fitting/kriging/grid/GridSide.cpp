#include <mirel_fitting/kriging/grid/GridSide.h>

#include <algorithm>

GridSide::GridSide(const KrigingPredictor::Parts& parts, const std::vector<double*>& columns,
                   const ProductGrid& grid, const std::vector<std::size_t>& chosen)
{
    for (const std::size_t a : chosen) {
        axes.emplace_back(parts, columns, grid.firstRow(), grid.axes()[a], size);
        size *= grid.axes()[a].size;
    }
}

double GridSide::Place::centred(std::size_t combination) const
{
    return KrigingTrend::centred(axis->coordinates[index][axis->valueAt(combination)]);
}

GridSide::Place GridSide::placeOf(std::size_t input) const
{
    for (const GridAxis& axis : axes) {
        const auto found = std::find(axis.inputs.begin(), axis.inputs.end(), input);
        if (found != axis.inputs.end()) {
            return {&axis, static_cast<std::size_t>(found - axis.inputs.begin())};
        }
    }
    return {nullptr, 0};
}

bool GridSide::isFinite(std::size_t combination) const
{
    return std::all_of(axes.begin(), axes.end(), [combination](const GridAxis& axis) {
        return axis.isFinite[axis.valueAt(combination)];
    });
}

double GridSide::Polynomial::at(std::size_t combination) const
{
    double sum = 0.0;
    for (const Term& term : terms) {
        double value = term.coefficient;
        for (const Place& place : term.factors) {
            value *= place.centred(combination);
        }
        sum += value;
    }
    return sum;
}

std::vector<double> GridSide::Polynomial::along(std::size_t values) const
{
    std::vector<double> sums(values, 0.0);
    for (const Term& term : terms) {
        const double* x = nullptr;
        const double* y = nullptr;
        for (const Place& place : term.factors) {
            (x ? y : x) = place.axis->coordinates[place.index].data();
        }
        for (std::size_t v = 0; v < values; ++v) {
            const double product =
                x ? term.coefficient * KrigingTrend::centred(x[v]) : term.coefficient;
            sums[v] += y ? product * KrigingTrend::centred(y[v]) : product;
        }
    }
    return sums;
}
