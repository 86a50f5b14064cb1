#include "session/model/SessionModelFactory.h"

#include <mirel_fitting/KrigingSurrogateModel.h>
#include <mirel_fitting/SurrogateResponseSurfaceModel.h>
#include <mirel_fitting/TermFormula.h>
#include <mirel_fitting/TransformedOutput.h>

#include <property/Property.h>
#include <property/UndoablePropertyProxy.h>

#include <boost/make_shared.hpp>

#include <utility>

namespace {
TransformedOutput::Choice choiceOf(TransformSetting setting, bool isKriging)
{
    switch (setting) {
    case TransformSetting::Automatic:
    case TransformSetting::BoxCox:
        return std::nullopt;
    case TransformSetting::None:
        return OutputTransform::None;
    case TransformSetting::SquareRoot:
        return OutputTransform::SquareRoot;
    case TransformSetting::Logarithm:
        return OutputTransform::Logarithm;
    default:
        return isKriging ? std::nullopt : TransformedOutput::Choice(OutputTransform::None);
    }
}
} // namespace

SessionModelFactory::SessionModelFactory(boost::shared_ptr<SurrogateModelInterface> model)
    : finishedModel(std::move(model))
{
    // Connected to the value itself: the proxy reports an undo twice.
    const auto value = boost::make_shared<veska::Property<ResponseSurfaceOptions>>();
    termsConnection = value->connectSignalChanged([this](const ResponseSurfaceOptions&) {
        emitChanged(SurrogateModelManagerInterface::ResponseSurface);
    });
    responseSurfaceOptions =
        boost::make_shared<veska::UndoablePropertyProxy<ResponseSurfaceOptions>>(
            "Surrogate Model Terms", value);

    const auto setting = boost::make_shared<veska::Property<TransformSetting>>();
    transformConnection = setting->connectSignalChanged([this](TransformSetting) {
        emitChanged(SurrogateModelManagerInterface::Kriging);
        emitChanged(SurrogateModelManagerInterface::ResponseSurface);
    });
    transformSetting = boost::make_shared<veska::UndoablePropertyProxy<TransformSetting>>(
        "Surrogate Model Transform", setting);
}

void SessionModelFactory::setInputNames(std::function<std::vector<std::string>()> names)
{
    inputNames = std::move(names);
}

/** With the formula in the symbols of the columns. */
ResponseSurfaceOptions SessionModelFactory::optionsOfColumns() const
{
    ResponseSurfaceOptions options = responseSurfaceOptions->get();
    if (options.terms == PolynomialTerms::Chosen && inputNames) {
        options.formula = TermFormula(options.formula, inputNames()).symbols();
    }
    return options;
}

boost::shared_ptr<SurrogateModelInterface>
SessionModelFactory::makeModel(ModelType type, const std::vector<double*>& independentColumns,
                               const std::vector<double*>& dependentColumns, int rowCount) const
{
    if (finishedModel != nullptr) {
        return finishedModel;
    }
    const bool isKriging = type == SurrogateModelManagerInterface::Kriging;
    const auto fit = [isKriging,
                      options = isKriging ? ResponseSurfaceOptions() : optionsOfColumns()](
                         const std::vector<double*>& inputs, const std::vector<double*>& outputs,
                         std::size_t rows) -> std::unique_ptr<FittedModel> {
        if (isKriging) {
            return std::make_unique<KrigingSurrogateModel>(inputs, outputs, static_cast<int>(rows),
                                                           KrigingOptions());
        }
        return std::make_unique<SurrogateResponseSurfaceModel>(inputs, outputs, rows, options);
    };
    const TransformedOutput::Choice choice = choiceOf(transformSetting->get(), isKriging);
    const auto rows = static_cast<std::size_t>(rowCount);
    if (choice == OutputTransform::None) {
        return fit(independentColumns, dependentColumns, rows);
    }
    const bool isBoxCox = transformSetting->get() == TransformSetting::BoxCox && !isKriging;
    return boost::make_shared<TransformedOutput>(
        independentColumns, dependentColumns, rows, fit, choice,
        isBoxCox ? TransformedOutput::Method::BoxCox : TransformedOutput::Method::Comparison);
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

boost::shared_ptr<veska::PropertyAbstract<TransformSetting>> SessionModelFactory::transform() const
{
    return transformSetting;
}
