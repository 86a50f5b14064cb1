#include <surrogatemodel/SurrogateModelManager.h>

#include <surrogatemodel/SurrogateModelFactory.h>
#include <surrogatemodel/SurrogateModelSourcePoints.h>
#include <surrogatemodel/SurrogateModelUserDistCollection.h>

#include <mirel_datamanagement/NatureSpecificVariableProvider.h>
#include <mirel_datamanagement/NumericVariableProvider.h>
#include <mirel_datamanagement/Project.h>
#include <mirel_datapipeline/DataPipelineManagerInterface.h>
#include <mirel_signals/EmitSignal.h>
#include <mirel_signals/SignalConnectionCollection.h>
#include <property/Property.h>
#include <property/UndoablePropertyProxy.h>

#include <boost/make_shared.hpp>

#include <QString>

#include <vtkTable.h>
#include <vtkTableAlgorithm.h>

#include <algorithm>
#include <stdexcept>

namespace {

/** The project's dependent variables: a dependent's offset is its position here. */
std::vector<VarPtr> dependentVariables()
{
    const NatureSpecificVariableProvider provider(
        NumericVariableProvider(Project::project()->variables()), Variable::Dependent);
    return {provider.begin(), provider.end()};
}

} // namespace

class SURROGATEMODEL_NO_EXPORT SurrogateModelManager::Impl
{
public:
    template <class T>
    class ModelInvalidatingProperty;
    class IndependentVariablesProperty;

    Impl(boost::shared_ptr<const DataPipelineManagerInterface> pipeline,
         boost::shared_ptr<const SurrogateModelFactory> factory, SurrogateModelManager* owner);
    ~Impl();

    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;

    SurrogateModelInterface& modelFor(const std::set<VarPtr>& dependents);
    void dropModel() { model.reset(); }
    void emitModelChanged() const;

    boost::shared_ptr<const DataPipelineManagerInterface> pipeline;
    boost::shared_ptr<const SurrogateModelFactory> factory;
    SurrogateModelManager* owner;

    /** Points to null once this object is destroyed. A listener may destroy the manager from any
     *  signal, and the properties may outlive it: check this after every emission. */
    std::shared_ptr<Impl*> self;

    boost::shared_ptr<SurrogateModelInterface> model;
    boost::shared_ptr<veska::UndoablePropertyProxy<std::vector<VarPtr>>> independentVars;
    boost::shared_ptr<veska::UndoablePropertyProxy<ModelType>> type;
    boost::shared_ptr<veska::UndoablePropertyProxy<SurrogateModelUserDistCollection>>
        evaluationPoint;
    SignalConnectionCollection connections;
    std::set<VarPtr> cachedDependents;
    SurrogateModelSourcePoints sourcePoints;

private:
    void onPipelineChanged();
    void onFactoryChanged(ModelType changedType);
    void invalidateModel();
    void pruneIndependentVariables();
    void buildModel(ModelType modelType);
    vtkSmartPointer<vtkTable> updatedPipelineTable() const;
};

/** A setting on which the fitted model depends: storing a value drops the model, and the signals of
 *  the setting are emitted before signalModelChanged. */
template <class T>
class SURROGATEMODEL_NO_EXPORT SurrogateModelManager::Impl::ModelInvalidatingProperty
    : public veska::Property<T>
{
public:
    explicit ModelInvalidatingProperty(std::shared_ptr<Impl*> manager) : manager(std::move(manager))
    {}

protected:
    /** Null when the manager is destroyed. */
    Impl* impl() const { return *manager; }

    void setValue(const T& value) override
    {
        if (impl() != nullptr) {
            impl()->dropModel();
        }
        veska::Property<T>::setValue(value);
    }

    void emitChanged(const T& value) override
    {
        veska::Property<T>::emitChanged(value);
        if (impl() != nullptr) {
            impl()->emitModelChanged();
        }
    }

private:
    std::shared_ptr<Impl*> manager;
};

/** The list of independent variables: a variable that is listed for the first time gets a default
 *  evaluation point before the list is stored. */
class SURROGATEMODEL_NO_EXPORT SurrogateModelManager::Impl::IndependentVariablesProperty
    : public ModelInvalidatingProperty<std::vector<VarPtr>>
{
public:
    using ModelInvalidatingProperty::ModelInvalidatingProperty;

protected:
    void setValue(const std::vector<VarPtr>& variables) override
    {
        if (impl() != nullptr) {
            assignDefaultEvaluationPoints(variables);
        }
        ModelInvalidatingProperty::setValue(variables);
    }

private:
    void assignDefaultEvaluationPoints(const std::vector<VarPtr>& variables) const;
};

void SurrogateModelManager::Impl::IndependentVariablesProperty::assignDefaultEvaluationPoints(
    const std::vector<VarPtr>& variables) const
{
    // The proxy, not its target: the evaluation points belong to the undo step of the list. Held
    // here, as its listeners may destroy the manager.
    const auto property = impl()->evaluationPoint;
    SurrogateModelUserDistCollection points = property->get();
    std::set<std::string> names = points.getVarNameSet();

    bool changed = false;
    for (const VarPtr& variable : variables) {
        const boost::shared_ptr<Variable> locked = variable.lock();
        const std::string name = locked->name();
        if (!names.insert(name).second) {
            continue;
        }
        // Six digits are what the user reads and edits; a longer minimum is rounded.
        const QString minimum = QString::number(locked->range().first, 'g', 6);
        points.setMode(name, SurrogateModelUserDistCollection::UserDefined);
        points.setUserDistString(name, minimum.toStdString());
        changed = true;
    }
    if (changed) {
        property->set(points);
    }
}

SurrogateModelManager::Impl::Impl(boost::shared_ptr<const DataPipelineManagerInterface> pipeline,
                                  boost::shared_ptr<const SurrogateModelFactory> factory,
                                  SurrogateModelManager* owner)
    : pipeline(std::move(pipeline)), factory(std::move(factory)), owner(owner),
      self(std::make_shared<Impl*>(this)),
      independentVars(boost::make_shared<veska::UndoablePropertyProxy<std::vector<VarPtr>>>(
          "Surrogate Model Variables", boost::make_shared<IndependentVariablesProperty>(self))),
      type(boost::make_shared<veska::UndoablePropertyProxy<ModelType>>(
          "Surrogate Model Type", boost::make_shared<ModelInvalidatingProperty<ModelType>>(self))),
      evaluationPoint(
          boost::make_shared<veska::UndoablePropertyProxy<SurrogateModelUserDistCollection>>(
              "Surrogate Model Evaluation Point",
              boost::make_shared<veska::Property<SurrogateModelUserDistCollection>>()))
{
    // Listeners of the undo stack run during these calls, when the owner has no Impl yet: nothing
    // they reach may use owner->impl.
    type->set(ResponseSurface);
    connections.add(this->pipeline->connectSignalChanged([this] { onPipelineChanged(); }));
    connections.add(this->factory->connectSignalChanged(
        [this](ModelType changedType) { onFactoryChanged(changedType); }));
    onPipelineChanged();
}

SurrogateModelManager::Impl::~Impl()
{
    *self = nullptr;
    // The pipeline and the factory may outlive this object; their slots must find all of it or
    // none.
    connections.block();
}

SurrogateModelInterface& SurrogateModelManager::Impl::modelFor(const std::set<VarPtr>& dependents)
{
    if (model != nullptr && dependents == cachedDependents) {
        return *model;
    }
    // Before anything can fail, and kept after a failure: see SurrogateModelManager.
    cachedDependents = dependents;

    const vtkSmartPointer<vtkTable> table = updatedPipelineTable();

    // After the update: a pipeline that reports a change while it updates has dropped the model,
    // and the list of rows with invalid inputs is out of date with it.
    const bool fullRebuild = model == nullptr;
    sourcePoints.rebuild(independentVars->get(), dependents, table, fullRebuild);
    if (sourcePoints.sourceTable()->GetNumberOfRows() == 0 && factory->needsCases()) {
        throw SurrogateModelInterface::Error(
            "There are not enough valid cases to create the surrogate model.");
    }
    buildModel(type->get());
    return *model;
}

vtkSmartPointer<vtkTable> SurrogateModelManager::Impl::updatedPipelineTable() const
{
    if (const vtkSmartPointer<vtkTableAlgorithm> algorithm = pipeline->outputAlgorithm()) {
        algorithm->Update();
    }
    // Asked again: the application may exchange its algorithm during the update.
    const vtkSmartPointer<vtkTableAlgorithm> algorithm = pipeline->outputAlgorithm();
    vtkTable* const output = algorithm != nullptr ? algorithm->GetOutput() : nullptr;
    return output != nullptr ? vtkSmartPointer<vtkTable>(output) : vtkSmartPointer<vtkTable>::New();
}

void SurrogateModelManager::Impl::buildModel(ModelType modelType)
{
    // The new model is complete before the old one is destroyed: a failed fit changes nothing.
    model = factory->makeModel(modelType, sourcePoints.independentColumns(),
                               sourcePoints.dependentColumns(),
                               static_cast<int>(sourcePoints.sourceTable()->GetNumberOfRows()));
}

void SurrogateModelManager::Impl::emitModelChanged() const
{
    emitSignal(owner->signalModelChanged);
}

void SurrogateModelManager::Impl::invalidateModel()
{
    dropModel();
    emitModelChanged();
}

void SurrogateModelManager::Impl::onPipelineChanged()
{
    const std::shared_ptr<Impl*> manager = self;
    try {
        pruneIndependentVariables();
    } catch (...) {
        // A listener of the list has thrown. The model of the former data must not stay.
        if (*manager != nullptr) {
            dropModel();
        }
        throw;
    }
    if (*manager != nullptr) {
        invalidateModel();
    }
}

void SurrogateModelManager::Impl::onFactoryChanged(ModelType changedType)
{
    // Every type but Kriging is the response surface.
    if ((changedType == Kriging) == (type->get() == Kriging)) {
        invalidateModel();
    }
}

void SurrogateModelManager::Impl::pruneIndependentVariables()
{
    const std::vector<VarPtr> projectVariables = Project::project()->variables();
    const std::set<VarPtr> known(projectVariables.begin(), projectVariables.end());
    const auto property = independentVars;
    std::vector<VarPtr> variables = property->get();

    // Only then the natures: a handle that the project does not know may lead to no variable.
    const auto drop = [&variables](const auto& isUnwanted) {
        variables.erase(std::remove_if(variables.begin(), variables.end(), isUnwanted),
                        variables.end());
    };
    drop([&known](const VarPtr& variable) { return known.count(variable) == 0; });
    drop([](const VarPtr& variable) { return variable.lock()->nature() != Variable::Independent; });
    property->set(variables);
}

SurrogateModelManager::SurrogateModelManager(
    boost::shared_ptr<const DataPipelineManagerInterface> pipeline)
    : SurrogateModelManager(std::move(pipeline), boost::make_shared<SurrogateModelFactory>())
{}

SurrogateModelManager::SurrogateModelManager(
    boost::shared_ptr<const DataPipelineManagerInterface> pipeline,
    boost::shared_ptr<const SurrogateModelFactory> factory)
{
    if (pipeline == nullptr) {
        throw std::invalid_argument("A surrogate-model manager needs the data pipeline that holds "
                                    "the cases, but was given none.");
    }
    if (factory == nullptr) {
        throw std::invalid_argument("A surrogate-model manager needs the factory that makes its "
                                    "models, but was given none.");
    }
    impl = std::make_unique<Impl>(std::move(pipeline), std::move(factory), this);
}

SurrogateModelManager::~SurrogateModelManager() = default;

SurrogateModelInterface& SurrogateModelManager::model(const std::set<VarPtr>& dependents) const
{
    return impl->modelFor(dependents);
}

SurrogateModelInterface& SurrogateModelManager::model(const std::set<int>& dependentOffsets) const
{
    const std::vector<VarPtr> variables = dependentVariables();
    std::set<VarPtr> dependents;
    for (const int offset : dependentOffsets) {
        const bool exists = offset >= 0 && static_cast<std::size_t>(offset) < variables.size();
        dependents.insert(exists ? variables[static_cast<std::size_t>(offset)] : VarPtr());
    }
    return model(dependents);
}

boost::shared_ptr<veska::PropertyAbstract<std::vector<VarPtr>>>
SurrogateModelManager::independentVars() const
{
    return impl->independentVars;
}

boost::shared_ptr<veska::PropertyAbstract<SurrogateModelManagerInterface::ModelType>>
SurrogateModelManager::type() const
{
    return impl->type;
}

boost::shared_ptr<veska::PropertyAbstract<SurrogateModelUserDistCollection>>
SurrogateModelManager::evaluationPoint() const
{
    return impl->evaluationPoint;
}

bool SurrogateModelManager::isVariableInSurrogateModel(VarPtr variable) const
{
    if (variable.lock()->nature() != Variable::Independent) {
        return false;
    }
    const std::vector<VarPtr> variables = impl->independentVars->get();
    return std::find(variables.begin(), variables.end(), variable) != variables.end();
}

std::size_t SurrogateModelManager::offsetForVariableName(const std::string& name) const
{
    const std::vector<VarPtr> variables = dependentVariables();
    const auto found =
        std::find_if(variables.begin(), variables.end(),
                     [&name](const VarPtr& variable) { return variable.lock()->name() == name; });
    return found != variables.end() ? static_cast<std::size_t>(found - variables.begin()) : 0;
}
