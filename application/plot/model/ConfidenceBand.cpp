#include "plot/model/ConfidenceBand.h"

#include "plot/model/ModelCut.h"

#include <session/model/CaseSession.h>

#include <mirel_fitting/FittedModel.h>

#include <algorithm>
#include <cmath>
#include <utility>

ConfidenceBand ConfidenceBand::of(CaseSession& session, const ModelCut& cut, std::size_t output)
{
    constexpr double level = 0.95;
    const FittedModel* const model = session.fittedModel();
    if (model == nullptr) {
        return {};
    }
    if (session.fit().outputs[output].modelled.transform != OutputTransform::None) {
        return {}; // what lies so many standard errors off is no limit of the output
    }
    const int offset = session.outputOffsets()[output];
    std::vector<double*> points;
    for (const ModelCut::Column& input : cut.inputs) {
        points.push_back(const_cast<double*>(input.values.data())); // only read
    }
    std::vector<double> errors =
        model->standardErrors(points, offset, FittedModel::ErrorKind::Mean, cut.points());
    if (!std::all_of(errors.begin(), errors.end(),
                     [](double error) { return std::isfinite(error); })) {
        return {};
    }
    return {model->confidenceQuantile(offset, level), std::move(errors)};
}
