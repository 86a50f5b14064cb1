#include "session/model/SessionModelFactory.h"

#include <mirel_fitting/KrigingSurrogateModel.h>
#include <mirel_fitting/SurrogateResponseSurfaceModel.h>
#include <mirel_fitting/TransformedOutput.h>

#include <property/Property.h>
#include <property/UndoablePropertyProxy.h>

#include <boost/make_shared.hpp>

#include <utility>

SessionModelFactory::SessionModelFactory(boost::shared_ptr<SurrogateModelInterface> model)
    : finishedModel(std::move(model))
{
    // Connected to the value itself: the proxy reports an undo twice.
    const auto value = boost::make_shared<veska::Property<ResponseSurfaceOptions>>();
    connection = value->connectSignalChanged([this](const ResponseSurfaceOptions&) {
        emitChanged(SurrogateModelManagerInterface::ResponseSurface);
    });
    responseSurfaceOptions =
        boost::make_shared<veska::UndoablePropertyProxy<ResponseSurfaceOptions>>(
            "Surrogate Model Terms", value);
}

boost::shared_ptr<SurrogateModelInterface>
SessionModelFactory::makeModel(ModelType type, const std::vector<double*>& independentColumns,
                               const std::vector<double*>& dependentColumns, int rowCount) const
{
    if (finishedModel != nullptr) {
        return finishedModel;
    }
    if (type == SurrogateModelManagerInterface::Kriging) {
        return boost::make_shared<TransformedOutput>(
            independentColumns, dependentColumns, static_cast<std::size_t>(rowCount),
            [](const auto& inputs, const auto& outputs, std::size_t rows) {
                return std::make_unique<KrigingSurrogateModel>(
                    inputs, outputs, static_cast<int>(rows), KrigingOptions());
            });
    }
    return boost::make_shared<SurrogateResponseSurfaceModel>(independentColumns, dependentColumns,
                                                             static_cast<std::size_t>(rowCount),
                                                             responseSurfaceOptions->get());
}

bool SessionModelFactory::needsCases() const
{
    return finishedModel == nullptr;
}

boost::shared_ptr<veska::PropertyAbstract<ResponseSurfaceOptions>>
SessionModelFactory::responseSurface() const
{
    return responseSurfaceOptions;
}
