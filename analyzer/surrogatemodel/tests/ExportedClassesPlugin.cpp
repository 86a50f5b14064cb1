#include "ExportedClassesPlugin.h"

#include <surrogatemodel/InterpolationVariablesAbstract.h>
#include <surrogatemodel/SurfaceCoefficientExporter.h>
#include <surrogatemodel/SurrogateModelInputTableBuilder.h>
#include <surrogatemodel/SurrogateModelManager.h>
#include <surrogatemodel/SurrogateModelManagerSerializer.h>
#include <surrogatemodel/SurrogateModelQueryToTable.h>
#include <surrogatemodel/SurrogateModelUserDist.h>
#include <surrogatemodel/SurrogateModelUserDistCollection.h>
#include <surrogatemodel/SurrogateModelUserDistCollectionSerializer.h>

#include <mirel_fitting/SurrogateModelInterface.h>
#include <property/Property.h>

#include <boost/make_shared.hpp>

#include <QDomDocument>

#include <vtkCallbackCommand.h>
#include <vtkDoubleArray.h>
#include <vtkNew.h>
#include <vtkTable.h>

#include <sstream>

namespace {

class Manager : public SurrogateModelManager
{
public:
    using SurrogateModelManager::SurrogateModelManager;
};

class RefusingManager : public virtual SurrogateModelManagerInterface
{
public:
    explicit RefusingManager(std::string message) : message(std::move(message)) {}

    SurrogateModelInterface& model(const std::set<VarPtr>&) const override
    {
        throw SurrogateModelInterface::Error(message);
    }
    SurrogateModelInterface& model(const std::set<int>&) const override
    {
        throw SurrogateModelInterface::Error(message);
    }
    boost::shared_ptr<veska::PropertyAbstract<std::vector<VarPtr>>> independentVars() const override
    {
        return list;
    }
    boost::shared_ptr<veska::PropertyAbstract<ModelType>> type() const override
    {
        return modelType;
    }
    boost::shared_ptr<veska::PropertyAbstract<SurrogateModelUserDistCollection>>
    evaluationPoint() const override
    {
        return points;
    }
    bool isVariableInSurrogateModel(VarPtr) const override { return false; }
    std::size_t offsetForVariableName(const std::string&) const override { return 0; }

private:
    std::string message;
    boost::shared_ptr<veska::Property<std::vector<VarPtr>>> list =
        boost::make_shared<veska::Property<std::vector<VarPtr>>>();
    boost::shared_ptr<veska::Property<ModelType>> modelType =
        boost::make_shared<veska::Property<ModelType>>();
    boost::shared_ptr<veska::Property<SurrogateModelUserDistCollection>> points =
        boost::make_shared<veska::Property<SurrogateModelUserDistCollection>>();
};

class Spread : public InterpolationVariablesAbstract::DistributedPoints
{
public:
    using DistributedPoints::DistributedPoints;
};

class OnePoint : public virtual InterpolationPointsInterface
{
public:
    void get(std::vector<double>& values) const override { values.push_back(1.0); }
};

/** Sweeps the first variable it was given, keeps the others at one point. */
class Sweep : public InterpolationVariablesAbstract
{
public:
    using InterpolationVariablesAbstract::InterpolationVariablesAbstract;

    std::set<VarPtr> dependentVariables() const override { return {dependent}; }

    VarPtr swept;
    VarPtr dependent;

protected:
    boost::shared_ptr<InterpolationPointsInterface>
    interpolationPoints(VarPtr variable) const override
    {
        if (variable == swept) {
            return boost::make_shared<Spread>(std::make_pair(0.0, 2.0), 3);
        }
        return boost::make_shared<OnePoint>();
    }
};

/** Passes another object's answers on, as its own. */
class Relay : public InterpolationVariablesInterface
{
public:
    explicit Relay(boost::shared_ptr<Sweep> sweep) : sweep(std::move(sweep)) {}

    boost::shared_ptr<std::map<VarPtr, std::vector<double>>>
    inputIndependentVariables() const override
    {
        return sweep->inputIndependentVariables();
    }
    std::set<VarPtr> dependentVariables() const override { return sweep->dependentVariables(); }
    bool isVariableEmployed(VarPtr variable) const override
    {
        return sweep->isVariableEmployed(variable);
    }
    void suspend() override { sweep->suspend(); }
    void resume() override { sweep->resume(); }

private:
    boost::shared_ptr<Sweep> sweep;
};

class Builder : public SurrogateModelInputTableBuilder
{
public:
    using SurrogateModelInputTableBuilder::SurrogateModelInputTableBuilder;
};

class Text : public SurrogateModelUserDist
{
public:
    using SurrogateModelUserDist::SurrogateModelUserDist;
};

class Texts : public SurrogateModelUserDistCollection
{};

class Settings : public SurrogateModelManagerSerializer
{
public:
    using SurrogateModelManagerSerializer::SurrogateModelManagerSerializer;
};

class TextsSerializer : public SurrogateModelUserDistCollectionSerializer
{
public:
    using SurrogateModelUserDistCollectionSerializer::SurrogateModelUserDistCollectionSerializer;
};

void load(const SerializerInterface& serializer, const std::string& text)
{
    QDomDocument document;
    document.setContent(QByteArray::fromStdString(text));
    QDomElement root = document.documentElement();
    serializer.deserialize(root);
}

} // namespace

boost::shared_ptr<SurrogateModelManagerInterface>
plugin::makeManager(const boost::shared_ptr<const DataPipelineManagerInterface>& pipeline)
{
    return boost::make_shared<Manager>(pipeline);
}

boost::shared_ptr<SurrogateModelManagerInterface>
plugin::makeRefusingManager(const std::string& message)
{
    return boost::make_shared<RefusingManager>(message);
}

std::vector<double>
plugin::evaluate(const boost::shared_ptr<const SurrogateModelManagerInterface>& manager,
                 const VarPtr& dependent, std::string& error)
{
    const veska::Property<SurrogateModelUserDistCollection> userDistributions;
    const auto sweep = boost::make_shared<Sweep>(manager, userDistributions);
    const std::vector<VarPtr> list = manager->independentVars()->get();
    sweep->swept = list.empty() ? VarPtr() : list.front();
    sweep->dependent = dependent;
    const auto relay = boost::make_shared<Relay>(sweep);

    const Builder builder(*manager, *relay);
    const vtkSmartPointer<SurrogateModelQueryToTable> filter =
        SurrogateModelQueryToTable::New(manager, relay);
    filter->AddObserver(vtkCommand::ErrorEvent, vtkNew<vtkCallbackCommand>());
    filter->Update();
    error = filter->getLastError();

    auto* const column = vtkArrayDownCast<vtkDoubleArray>(
        filter->GetOutput()->GetColumnByName(dependent.lock()->name().c_str()));
    if (!error.empty() || column == nullptr ||
        column->GetNumberOfValues() != builder.resultDependentVarValues()->GetNumberOfRows()) {
        return {};
    }
    return {column->GetPointer(0), column->GetPointer(0) + column->GetNumberOfValues()};
}

std::string plugin::equations(const SurrogateModelManagerInterface& manager,
                              const std::set<VarPtr>& dependents)
{
    std::ostringstream text;
    SurfaceCoefficientExporter(manager, dependents, text).exportData();
    return text.str();
}

std::string plugin::errorOfRequest(const SurrogateModelManagerInterface& manager,
                                   const std::set<VarPtr>& dependents)
{
    try {
        manager.model(dependents);
    } catch (const SurrogateModelInterface::Error& error) {
        return error.what();
    }
    return {};
}

std::vector<double> plugin::valuesOf(const std::string& text)
{
    std::vector<double> values;
    Text(text).get(values);
    return values;
}

std::string plugin::keepText(const std::string& name, const std::string& text)
{
    Texts texts;
    texts.setUserDistString(name, text);
    const SurrogateModelUserDistCollection copy = texts;
    return copy.getUserDistString(name);
}

std::string plugin::savedSettings(const boost::shared_ptr<SurrogateModelManagerInterface>& manager)
{
    QDomDocument document;
    document.appendChild(Settings(manager).serialize(document));
    return document.toString().toStdString();
}

void plugin::loadSettings(const boost::shared_ptr<SurrogateModelManagerInterface>& manager,
                          const std::string& text)
{
    load(Settings(manager), text);
}

std::string plugin::loadedDistribution(const std::string& name, const std::string& text)
{
    const auto property = boost::make_shared<veska::Property<SurrogateModelUserDistCollection>>();
    load(TextsSerializer(property), text);
    return property->get().getUserDistString(name);
}
