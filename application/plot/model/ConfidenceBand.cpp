#include "plot/model/ConfidenceBand.h"

#include "plot/model/ModelSlice.h"

#include <mirel_fitting/ModelInterfaces.h>
#include <session/model/CaseSession.h>
#include <session/text/DecimalText.h>

#include <mirel_fitting/FittedModel.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {
bool areFinite(const std::vector<double>& values)
{
    return std::all_of(values.begin(), values.end(),
                       [](double value) { return std::isfinite(value); });
}
} // namespace

ConfidenceBand ConfidenceBand::of(CaseSession& session, const ModelSlice& slice, std::size_t output)
{
    return of(session, slice.inputColumns(), slice.points(), output);
}

ConfidenceBand ConfidenceBand::of(CaseSession& session, const std::vector<const double*>& inputs,
                                  std::size_t count, std::size_t output)
{
    constexpr double level = 0.95;
    const FittedModel* const model = session.fittedModel();
    if (model == nullptr) {
        return {};
    }
    const int offset = session.outputOffsets()[output];
    std::vector<double*> points;
    for (const double* const input : inputs) {
        points.push_back(const_cast<double*>(input)); // only read
    }
    PredictionIntervals limits =
        ModelInterfaces(*model).confidenceLimits(points, offset, level, count);
    if (!areFinite(limits.lower) || !areFinite(limits.upper)) {
        return {};
    }
    constexpr int digits = 3;
    return {std::move(limits.lower), std::move(limits.upper),
            "\302\261 " + shownNumber(model->confidenceQuantile(offset, level), digits) +
                " standard errors (95\302\240%)"};
}
