#include "plot/model/MainEffects.h"

#include "plot/drawing/AxisScale.h"

#include <session/cases/VariableNames.h>
#include <session/model/CaseSession.h>

#include <algorithm>
#include <cmath>
#include <map>

namespace {
/** The change of an output over a slice. */
double changeOf(const ModelSlice& slice, std::size_t output)
{
    const double width = AxisScale::range(slice.outputs[output].values).width();
    return std::isnan(width) ? 0.0 : width; // NaN has no place in an order
}
} // namespace

MainEffects::MainEffects(CaseSession& session, const std::vector<std::size_t>& left,
                         std::size_t values)
{
    const ModelSlice::FittedCases cases(session);
    for (std::size_t input = 0; input < session.inputs().size(); ++input) {
        const auto [least, most] = cases.ranges[input];
        if (least < most && std::find(left.begin(), left.end(), input) == left.end()) {
            slices.push_back(ModelSlice::overRanges(session, {input}, values, cases));
        }
    }
    heldInputs = ModelSlice::heldText(session);
}

std::vector<const ModelSlice*> MainEffects::strongest(std::size_t output, std::size_t count) const
{
    std::vector<const ModelSlice*> order;
    for (const ModelSlice& slice : slices) {
        order.push_back(&slice);
    }
    std::stable_sort(order.begin(), order.end(), [&](const ModelSlice* a, const ModelSlice* b) {
        return changeOf(*a, output) > changeOf(*b, output);
    });
    order.resize(std::min(order.size(), count));
    return order;
}

std::vector<std::pair<std::size_t, double>> MainEffects::ranking(std::size_t output) const
{
    std::vector<std::pair<std::size_t, double>> shares;
    double largest = 0.0;
    for (const ModelSlice* const slice : strongest(output, slices.size())) {
        const double change = changeOf(*slice, output);
        largest = std::max(largest, change);
        shares.emplace_back(slice->swept.front(), largest > 0.0 ? change / largest : 0.0);
    }
    return shares;
}

std::vector<std::size_t> MainEffects::strongestInputs(std::size_t count) const
{
    std::map<std::size_t, double> byInput;
    const std::size_t outputs = slices.empty() ? 0 : slices.front().outputs.size();
    for (std::size_t output = 0; output < outputs; ++output) {
        for (const auto& [input, share] : ranking(output)) {
            byInput[input] += share;
        }
    }
    std::vector<std::pair<std::size_t, double>> sums(byInput.begin(), byInput.end());
    std::stable_sort(sums.begin(), sums.end(),
                     [](const auto& a, const auto& b) { return a.second > b.second; });
    std::vector<std::size_t> inputs;
    for (std::size_t i = 0; i < std::min(count, sums.size()); ++i) {
        inputs.push_back(sums[i].first);
    }
    std::sort(inputs.begin(), inputs.end());
    return inputs;
}
