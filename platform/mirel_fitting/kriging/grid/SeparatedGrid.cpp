#include <mirel_fitting/kriging/grid/SeparatedGrid.h>

#include <algorithm>
#include <cmath>

namespace {

std::vector<std::size_t> axesWithout(const ProductGrid& grid, const std::vector<std::size_t>& some)
{
    std::vector<std::size_t> others;
    for (std::size_t a = 0; a < grid.axes().size(); ++a) {
        if (std::find(some.begin(), some.end(), a) == some.end()) {
            others.push_back(a);
        }
    }
    return others;
}

} // namespace

SeparatedGrid::SeparatedGrid(const FittedKriging& model, const std::vector<double*>& columns,
                             const ProductGrid& grid, const std::vector<std::size_t>& fastAxes)
    : fast(model, columns, grid, fastAxes), slow(model, columns, grid, axesWithout(grid, fastAxes))
{
    slow.factors = model.weights;
    separateTrend(model, fixInputs(model, columns, grid));
}

/** Multiplies the weights with the correlations by the inputs that do not vary, and returns the
 *  coordinates of those inputs, 0 for the others. */
std::vector<double> SeparatedGrid::fixInputs(const FittedKriging& model,
                                             const std::vector<double*>& columns,
                                             const ProductGrid& grid)
{
    const MaternCorrelation& correlation = *model.correlation;
    std::vector<double> fixed(model.inputs.size(), 0.0);
    AlignedBuffer factor(correlation.correlationStride());
    for (const std::size_t column : grid.constantColumns()) {
        const double value = columns[column][grid.firstRow()];
        isNowhereFinite = isNowhereFinite || !std::isfinite(value);
        const auto input = std::find(model.inputs.begin(), model.inputs.end(), column);
        if (isNowhereFinite || input == model.inputs.end()) {
            continue;
        }
        const auto k = static_cast<std::size_t>(input - model.inputs.begin());
        fixed[k] = model.coordinate(k, value);
        correlation.correlateInput(k, &fixed[k], 1, factor.data());
        for (std::size_t j = 0; j < slow.factors.size(); ++j) {
            slow.factors[j] *= factor.data()[j];
        }
    }
    return fixed;
}

void SeparatedGrid::separateTrend(const FittedKriging& model, const std::vector<double>& fixed)
{
    const AxisGroup::Polynomial one{{{1.0, {}}}};
    fast.trend = {one, {}};
    slow.trend = {{}, one};
    constexpr std::size_t none = 0;
    std::vector<std::size_t> productOf(model.inputs.size(), none); // t of each fast input
    for (std::size_t term = 0; term < model.coefficients.size(); ++term) {
        const QuadraticBasis::Term& inputs = model.trend->keptTerms()[term];
        AxisGroup::Polynomial::Term onFast{1.0, {}};
        AxisGroup::Polynomial::Term onSlow{model.coefficients[term], {}};
        std::size_t fastInput = 0;
        for (const std::size_t input : inputs.inputs()) {
            const AxisGroup::Input inFast = fast.find(input);
            const AxisGroup::Input inSlow = slow.find(input);
            if (inFast.axis) {
                onFast.factors.push_back(inFast);
                fastInput = input;
            } else if (inSlow.axis) {
                onSlow.factors.push_back(inSlow);
            } else {
                onSlow.coefficient *= KrigingTrend::centred(fixed[input]);
            }
        }
        if (onFast.factors.empty()) {
            slow.trend[0].terms.push_back(onSlow);
        } else if (onSlow.factors.empty()) {
            onFast.coefficient = onSlow.coefficient;
            fast.trend[1].terms.push_back(onFast);
        } else {
            if (productOf[fastInput] == none) {
                productOf[fastInput] = fast.trend.size();
                fast.trend.push_back({{onFast}});
                slow.trend.emplace_back();
            }
            slow.trend[productOf[fastInput]].terms.push_back(onSlow);
        }
    }
}
