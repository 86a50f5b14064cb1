#include <mirel_fitting/kriging/grid/AxisGroup.h>

#include <algorithm>

AxisGroup::AxisGroup(const FittedKriging& model, const std::vector<double*>& columns,
                     const ProductGrid& grid, const std::vector<std::size_t>& chosen)
{
    for (const std::size_t a : chosen) {
        axes.emplace_back(model, columns, grid.firstRow(), grid.axes()[a], size);
        size *= grid.axes()[a].size;
    }
}

double AxisGroup::Input::centred(std::size_t combination) const
{
    return KrigingTrend::centred(axis->coordinates[index][axis->valueAt(combination)]);
}

AxisGroup::Input AxisGroup::find(std::size_t input) const
{
    for (const GridAxis& axis : axes) {
        const auto found = std::find(axis.inputs.begin(), axis.inputs.end(), input);
        if (found != axis.inputs.end()) {
            return {&axis, static_cast<std::size_t>(found - axis.inputs.begin())};
        }
    }
    return {nullptr, 0};
}

bool AxisGroup::isFinite(std::size_t combination) const
{
    return std::all_of(axes.begin(), axes.end(), [combination](const GridAxis& axis) {
        return axis.isFinite[axis.valueAt(combination)];
    });
}

double AxisGroup::Polynomial::at(std::size_t combination) const
{
    double sum = 0.0;
    for (const Term& term : terms) {
        double value = term.coefficient;
        for (const Input& input : term.factors) {
            value *= input.centred(combination);
        }
        sum += value;
    }
    return sum;
}

std::vector<double> AxisGroup::Polynomial::along(std::size_t values) const
{
    std::vector<double> sums(values, 0.0);
    for (const Term& term : terms) {
        const double* x = nullptr;
        const double* y = nullptr;
        for (const Input& input : term.factors) {
            (x ? y : x) = input.axis->coordinates[input.index].data();
        }
        for (std::size_t v = 0; v < values; ++v) {
            const double product =
                x ? term.coefficient * KrigingTrend::centred(x[v]) : term.coefficient;
            sums[v] += y ? product * KrigingTrend::centred(y[v]) : product;
        }
    }
    return sums;
}
