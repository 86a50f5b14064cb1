#include "session/model/ModelInterfaces.h"

#include <mirel_fitting/KrigingSurrogateModel.h>
#include <mirel_fitting/SurrogateResponseSurfaceModel.h>
#include <mirel_fitting/TransformedOutput.h>

ModelInterfaces::ModelInterfaces(const SurrogateModelInterface& model) : model(model) {}

const PredictiveModel* ModelInterfaces::predictive() const
{
    return dynamic_cast<const PredictiveModel*>(&model);
}

const FittedModel* ModelInterfaces::fitted() const
{
    return dynamic_cast<const FittedModel*>(&model);
}

ModelledTransform ModelInterfaces::transform(int offset) const
{
    const auto* const outer = dynamic_cast<const TransformedOutput*>(&model);
    return outer == nullptr ? ModelledTransform()
                            : ModelledTransform{outer->transform(offset), outer->gain(offset)};
}

std::optional<KrigingReport> ModelInterfaces::krigingReport(int offset) const
{
    if (const auto* const outer = dynamic_cast<const TransformedOutput*>(&model)) {
        auto report = ModelInterfaces(outer->inner()).krigingReport(outer->innerOffset(offset));
        for (std::size_t i = 0; report && i < report->worstCases.size(); ++i) {
            KrigingReport::LeftOutCase& worst = report->worstCases[i];
            worst.output = OutputTransforms::invert(outer->transform(offset), worst.output);
            worst.predicted = OutputTransforms::invert(outer->transform(offset), worst.predicted);
        }
        return report;
    }
    const auto* const kriging = dynamic_cast<const KrigingSurrogateModel*>(&model);
    return kriging == nullptr ? std::nullopt : std::make_optional(kriging->krigingReport(offset));
}

std::optional<ResponseSurfaceStatistics>
ModelInterfaces::responseSurfaceStatistics(int offset) const
{
    if (const auto* const outer = dynamic_cast<const TransformedOutput*>(&model)) {
        return ModelInterfaces(outer->inner())
            .responseSurfaceStatistics(outer->innerOffset(offset));
    }
    const auto* const surface = dynamic_cast<const SurrogateResponseSurfaceModel*>(&model);
    return surface == nullptr ? std::nullopt
                              : std::make_optional(surface->responseSurfaceStatistics(offset));
}
