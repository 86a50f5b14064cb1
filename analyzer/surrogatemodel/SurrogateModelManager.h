#pragma once

#include <surrogatemodel/SurrogateModelManagerInterface.h>

#include <memory>

class DataPipelineManagerInterface;
class SurrogateModelFactory;

/**
 * The one implementation of SurrogateModelManagerInterface: fits on demand from the valid cases of
 * the data pipeline and keeps one fitted model.
 *
 * A change of the data, of the list of independent variables, of the type or of how the factory
 * makes models of that type discards the model;
 * asking for another set of dependents replaces it without a signal. The set asked for counts as
 * the one that the model is for from the start of a request: when a request fails while a model of
 * an earlier set is held, repeating it answers that earlier model. A view therefore stops at the
 * first error until something changes.
 *
 * Every change made through the manager's properties is an undo step. The properties may outlive
 * the manager: they then only keep their values.
 */
class SURROGATEMODEL_EXPORT SurrogateModelManager : public virtual SurrogateModelManagerInterface
{
public:
    /**
     * Sets the type to ResponseSurface as an undoable change: this leaves one step on the undo
     * stack, unless the caller has suspended recording. The pipeline is not asked for its table.
     * @param pipeline kept as long as the manager lives. Its cases are those of the open project
     *        (Project::project()), which is opened before: that is where the manager looks up
     *        variables and records. Whenever it reports a change, entries
     *        that are no variable of the project or not of nature Variable::Independent leave the
     *        list (an undo step, if there are any), the model is dropped and signalModelChanged
     *        emitted.
     * @throw std::invalid_argument if `pipeline` is null.
     */
    explicit SurrogateModelManager(boost::shared_ptr<const DataPipelineManagerInterface> pipeline);

    /**
     * The same with a factory of one's own; the other constructor takes the default one.
     * @param factory kept as long as the manager lives. When it reports that it makes models of the
     *        chosen type differently, the model is dropped and signalModelChanged emitted once; a
     *        report about the other type changes nothing.
     * @throw std::invalid_argument if `pipeline` or `factory` is null.
     */
    SurrogateModelManager(boost::shared_ptr<const DataPipelineManagerInterface> pipeline,
                          boost::shared_ptr<const SurrogateModelFactory> factory);
    ~SurrogateModelManager() override;

    /**
     * @throw SurrogateModelInterface::Error if there is no valid case, or what the factory throws;
     *        the model held so far is kept.
     */
    SurrogateModelInterface& model(const std::set<VarPtr>& dependents) const override;
    SurrogateModelInterface& model(const std::set<int>& dependentOffsets) const override;

    /** A variable that enters the list for the first time gets the lower end of its range as its
     *  evaluation point, in the same undo step; variables that leave keep theirs. */
    boost::shared_ptr<veska::PropertyAbstract<std::vector<VarPtr>>>
    independentVars() const override;
    boost::shared_ptr<veska::PropertyAbstract<ModelType>> type() const override;
    boost::shared_ptr<veska::PropertyAbstract<SurrogateModelUserDistCollection>>
    evaluationPoint() const override;

    bool isVariableInSurrogateModel(VarPtr variable) const override;
    std::size_t offsetForVariableName(const std::string& name) const override;

private:
    class Impl;
    std::unique_ptr<Impl> impl;
};
