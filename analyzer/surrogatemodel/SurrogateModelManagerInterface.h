#pragma once

#include <surrogatemodel/Export.h>
#include <surrogatemodel/SurrogateModelUserDistCollection.h>

#include <mirel_datamanagement/Variable.h>
#include <mirel_fitting/SurrogateModelInterface.h>
#include <property/PropertyAbstract.h>

#include <boost/shared_ptr.hpp>
#include <boost/signals2/signal.hpp>

#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

/**
 * The surrogate models of a project: the three settings that decide which model is fitted, the
 * fitted model itself, and the signal that it is invalidated.
 *
 * The dependent variables of a model are the project's numeric variables of nature
 * Variable::Dependent, in project order; the offset of a dependent is its position among them,
 * from 0. The independent ones are the entries of independentVars() whose nature is
 * Variable::Independent. One thread; signals are delivered before the call that caused them
 * returns.
 */
class SURROGATEMODEL_EXPORT SurrogateModelManagerInterface
{
public:
    /** Which model is fitted: Kriging for 0, the response surface for every other value. */
    enum ModelType : std::int32_t
    {
        Kriging = 0,        ///< by default universal Kriging with a linear trend
        ResponseSurface = 1 ///< by default a full quadratic polynomial
    };

    /** The signal does not say why the model is invalidated. */
    using ModelChangedSignal = boost::signals2::signal<void()>;

    SurrogateModelManagerInterface();

    SurrogateModelManagerInterface(const SurrogateModelManagerInterface&) = delete;
    SurrogateModelManagerInterface& operator=(const SurrogateModelManagerInterface&) = delete;

private:
    /** Runs after each connect operation below, when the new slot is connected. Empty here. */
    virtual void signalModelChangedConnected() const;

public:
    /**
     * The model fitted for `dependents`; fits one if the model held is for another set.
     * @return a reference into the manager: valid until another set is asked for, a setting that
     *         decides on the model changes, or the data change.
     * @throw SurrogateModelInterface::Error if no model can be fitted. The next request for the
     *        same set may then answer the model of the set before, see SurrogateModelManager.
     */
    virtual SurrogateModelInterface& model(const std::set<VarPtr>& dependents) const = 0;

    /** The same, the dependents given by their offsets; an offset that no dependent has names a
     *  variable without any values, so that no model can be fitted. */
    virtual SurrogateModelInterface& model(const std::set<int>& dependentOffsets) const = 0;

    /** The chosen independent variables; a model's inputs follow the order of this list. */
    virtual boost::shared_ptr<veska::PropertyAbstract<std::vector<VarPtr>>>
    independentVars() const = 0;

    /** The type of the model. */
    virtual boost::shared_ptr<veska::PropertyAbstract<ModelType>> type() const = 0;

    /** For each independent variable, by name, the text of the value (or values) at which the
     *  model is evaluated where the variable is not swept. */
    virtual boost::shared_ptr<veska::PropertyAbstract<SurrogateModelUserDistCollection>>
    evaluationPoint() const = 0;

    /**
     * Whether `variable` is an input of the model: of nature Variable::Independent and in the list.
     * @throw HandleError for a null handle or one whose variable is destroyed.
     */
    virtual bool isVariableInSurrogateModel(VarPtr variable) const = 0;

    /** The offset of the first dependent variable with this name, compared byte by byte. An
     *  unknown name also answers 0, so the result cannot tell absence. */
    virtual std::size_t offsetForVariableName(const std::string& name) const = 0;

    /** Disconnects every listener of signalModelChanged. */
    virtual ~SurrogateModelManagerInterface();

    /**
     * Connects `slot` to signalModelChanged, runs the hook, returns the connection. A listener
     * drops what it derived from the model; it does not ask for a model before it has returned,
     * and tolerates two calls in a row.
     */
    boost::signals2::connection
    connectSignalModelChanged(const ModelChangedSignal::slot_type& slot) const;

    /** The same for a slot that is handed its own connection. */
    boost::signals2::connection
    connectSignalModelChangedExtended(const ModelChangedSignal::extended_slot_type& slot) const;

    /** The fitted model has been discarded. Connecting here directly does not run the hook. */
    mutable ModelChangedSignal signalModelChanged;
};
