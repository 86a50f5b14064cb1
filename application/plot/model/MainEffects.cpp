#include "plot/model/MainEffects.h"

#include "plot/drawing/AxisScale.h"

#include <session/model/CaseSession.h>

#include <algorithm>
#include <cmath>

MainEffects::MainEffects(CaseSession& session)
{
    for (std::size_t input = 0; input < session.inputs().size(); ++input) {
        const auto [least, most] = session.inputs()[input].lock()->range();
        if (least < most) {
            cuts.push_back(ModelCut::overRanges(session, {input}, ModelCut::sweepValues));
        }
    }
}

std::vector<const ModelCut*> MainEffects::mostInfluential(std::size_t output) const
{
    constexpr std::size_t maxSweeps = 6;
    const auto influence = [output](const ModelCut* cut) {
        const double width = AxisScale::range(cut->outputs[output].values).width();
        return std::isnan(width) ? 0.0 : width; // NaN has no place in an order
    };
    std::vector<const ModelCut*> order;
    for (const ModelCut& cut : cuts) {
        order.push_back(&cut);
    }
    std::stable_sort(order.begin(), order.end(), [&](const ModelCut* left, const ModelCut* right) {
        return influence(left) > influence(right);
    });
    order.resize(std::min(order.size(), maxSweeps));
    return order;
}
