#include "session/model/SessionModelFactory.h"

#include <mirel_fitting/ModelSettings.h>
#include <mirel_fitting/TermFormula.h>

#include <property/Property.h>
#include <property/UndoablePropertyProxy.h>

#include <boost/make_shared.hpp>

#include <utility>

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

    const auto columns = boost::make_shared<veska::Property<CaseDesignColumns>>();
    designConnection = columns->connectSignalChanged([this](const CaseDesignColumns&) {
        emitChanged(SurrogateModelManagerInterface::ResponseSurface);
    });
    designColumnsSetting = boost::make_shared<veska::UndoablePropertyProxy<CaseDesignColumns>>(
        "Surrogate Model Weights and Blocks", columns);

    const auto setting = boost::make_shared<veska::Property<TransformSetting>>();
    transformConnection = setting->connectSignalChanged([this](TransformSetting) {
        emitChanged(SurrogateModelManagerInterface::Kriging);
        emitChanged(SurrogateModelManagerInterface::ResponseSurface);
    });
    transformSetting = boost::make_shared<veska::UndoablePropertyProxy<TransformSetting>>(
        "Surrogate Model Transform", setting);

    codingSetting = boost::make_shared<veska::UndoablePropertyProxy<InputCoding>>(
        "Coding of the Coefficients", boost::make_shared<veska::Property<InputCoding>>());
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
    const bool hasDesign = type != SurrogateModelManagerInterface::Kriging && designOfCases &&
                           !designColumnsSetting->get().isEmpty();
    return makeModel(type, independentColumns, dependentColumns, rowCount,
                     hasDesign ? designOfCases() : CaseDesign());
}

boost::shared_ptr<SurrogateModelInterface>
SessionModelFactory::makeModel(ModelType type, const std::vector<double*>& independentColumns,
                               const std::vector<double*>& dependentColumns, int rowCount,
                               const CaseDesign& design, bool findsSecondOptimum) const
{
    if (finishedModel != nullptr) {
        return finishedModel;
    }
    ModelSettings settings;
    settings.isKriging = type == SurrogateModelManagerInterface::Kriging;
    settings.transform = transformSetting->get();
    settings.kriging.findsSecondOptimum = findsSecondOptimum;
    if (!settings.isKriging) {
        settings.responseSurface = optionsOfColumns();
    }
    return settings.fit(independentColumns, dependentColumns, static_cast<std::size_t>(rowCount),
                        design);
}

bool SessionModelFactory::needsCases() const
{
    return finishedModel == nullptr;
}

void SessionModelFactory::setDesign(std::function<CaseDesign()> design)
{
    designOfCases = std::move(design);
}

boost::shared_ptr<veska::PropertyAbstract<CaseDesignColumns>>
SessionModelFactory::designColumns() const
{
    return designColumnsSetting;
}

ModelChoices SessionModelFactory::choices() const
{
    return {responseSurfaceOptions->get(), designColumnsSetting->get(), transformSetting->get(),
            codingSetting->get()};
}

void SessionModelFactory::choose(const ModelChoices& choices)
{
    responseSurfaceOptions->set(choices.responseSurface);
    designColumnsSetting->set(choices.designColumns);
    transformSetting->set(choices.transform);
    codingSetting->set(choices.coding);
}
