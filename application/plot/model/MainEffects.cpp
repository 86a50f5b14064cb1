#include "plot/model/MainEffects.h"

#include "plot/drawing/AxisScale.h"

#include <session/cases/VariableNames.h>
#include <session/model/CaseSession.h>

#include <algorithm>
#include <cmath>

namespace {
/** The change of an output over a cut. */
double changeOf(const ModelCut& cut, std::size_t output)
{
    const double width = AxisScale::range(cut.outputs[output].values).width();
    return std::isnan(width) ? 0.0 : width; // NaN has no place in an order
}
} // namespace

MainEffects::MainEffects(CaseSession& session, const std::vector<std::size_t>& left,
                         std::size_t values)
{
    const ModelCut::FittedCases cases(session);
    for (std::size_t input = 0; input < session.inputs().size(); ++input) {
        const auto [least, most] = cases.ranges[input];
        if (least < most && std::find(left.begin(), left.end(), input) == left.end()) {
            cuts.push_back(ModelCut::overRanges(session, {input}, values, cases));
        }
    }
    heldInputs = ModelCut::heldText(session);
}

std::vector<const ModelCut*> MainEffects::strongest(std::size_t output, std::size_t count) const
{
    std::vector<const ModelCut*> order;
    for (const ModelCut& cut : cuts) {
        order.push_back(&cut);
    }
    std::stable_sort(order.begin(), order.end(), [&](const ModelCut* a, const ModelCut* b) {
        return changeOf(*a, output) > changeOf(*b, output);
    });
    order.resize(std::min(order.size(), count));
    return order;
}

std::vector<std::pair<std::size_t, double>> MainEffects::ranking(std::size_t output) const
{
    std::vector<std::pair<std::size_t, double>> shares;
    double largest = 0.0;
    for (const ModelCut* const cut : strongest(output, cuts.size())) {
        const double change = changeOf(*cut, output);
        largest = std::max(largest, change);
        shares.emplace_back(cut->swept.front(), largest > 0.0 ? change / largest : 0.0);
    }
    return shares;
}

std::vector<std::size_t> MainEffects::strongestInputs(std::size_t count) const
{
    std::vector<std::pair<std::size_t, double>> sums;
    for (const ModelCut& cut : cuts) {
        sums.emplace_back(cut.swept.front(), 0.0);
    }
    const std::size_t outputs = cuts.empty() ? 0 : cuts.front().outputs.size();
    for (std::size_t output = 0; output < outputs; ++output) {
        for (const auto& [input, share] : ranking(output)) {
            for (auto& [each, sum] : sums) {
                sum += each == input ? share : 0.0;
            }
        }
    }
    std::stable_sort(sums.begin(), sums.end(),
                     [](const auto& a, const auto& b) { return a.second > b.second; });
    std::vector<std::size_t> inputs;
    for (std::size_t i = 0; i < std::min(count, sums.size()); ++i) {
        inputs.push_back(sums[i].first);
    }
    std::sort(inputs.begin(), inputs.end());
    return inputs;
}
