#include "session/model/ModelInterfaces.h"

#include <mirel_fitting/KrigingSurrogateModel.h>
#include <mirel_fitting/SurrogateResponseSurfaceModel.h>

ModelInterfaces::ModelInterfaces(const SurrogateModelInterface& model) : model(model) {}

const PredictiveModel* ModelInterfaces::predictive() const
{
    return dynamic_cast<const PredictiveModel*>(&model);
}

const FittedModel* ModelInterfaces::fitted() const
{
    return dynamic_cast<const FittedModel*>(&model);
}

std::optional<KrigingReport> ModelInterfaces::krigingReport(int offset) const
{
    const auto* const kriging = dynamic_cast<const KrigingSurrogateModel*>(&model);
    return kriging == nullptr ? std::nullopt : std::make_optional(kriging->krigingReport(offset));
}

std::optional<ResponseSurfaceStatistics>
ModelInterfaces::responseSurfaceStatistics(int offset) const
{
    const auto* const surface = dynamic_cast<const SurrogateResponseSurfaceModel*>(&model);
    return surface == nullptr ? std::nullopt
                              : std::make_optional(surface->responseSurfaceStatistics(offset));
}
