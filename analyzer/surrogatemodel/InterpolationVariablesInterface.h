#pragma once

#include <surrogatemodel/Export.h>

#include <mirel_analyzercommon/SuspendableInterface.h>
#include <mirel_datamanagement/Variable.h>

#include <boost/shared_ptr.hpp>
#include <boost/signals2/signal.hpp>

#include <map>
#include <set>
#include <vector>

/**
 * Where a surrogate model is evaluated and what is wanted there: for each independent variable a
 * list of values, whose combinations are the points of a grid, and a set of dependent variables.
 *
 * Shared between the view that made it and the evaluation filter. While suspended it emits no
 * signal. One thread; signals are delivered before the call that caused them returns.
 */
class SURROGATEMODEL_EXPORT InterpolationVariablesInterface : public virtual SuspendableInterface
{
public:
    /** The signal does not say what has changed: slots read the variables again. */
    using InterpolationVariablesChangedSignal = boost::signals2::signal<void()>;

    InterpolationVariablesInterface();

    InterpolationVariablesInterface(const InterpolationVariablesInterface&) = delete;
    InterpolationVariablesInterface& operator=(const InterpolationVariablesInterface&) = delete;

    /** Disconnects every listener of signalInterpolationVariablesChanged. */
    ~InterpolationVariablesInterface() override;

    /**
     * For every independent variable of the model the values at which it is evaluated, in the
     * variable's units. Never null; a new map on each call, which the caller may keep and change.
     */
    virtual boost::shared_ptr<std::map<VarPtr, std::vector<double>>>
    inputIndependentVariables() const = 0;

    /** The dependent variables whose values are wanted. */
    virtual std::set<VarPtr> dependentVariables() const = 0;

    /** Whether `variable` is swept, instead of staying at the manager's evaluation point. */
    virtual bool isVariableEmployed(VarPtr variable) const = 0;

private:
    /** Runs after the connect operation below, when the new slot is connected. Empty here. */
    virtual void signalInterpolationVariablesChangedConnected() const;

public:
    /** Connects `slot` to signalInterpolationVariablesChanged, runs the hook, returns the
     *  connection. */
    boost::signals2::connection connectSignalInterpolationVariablesChanged(
        const InterpolationVariablesChangedSignal::slot_type& slot) const;

    /**
     * What inputIndependentVariables() answers may have changed. Connecting here directly does not
     * run the hook.
     */
    mutable InterpolationVariablesChangedSignal signalInterpolationVariablesChanged;
};
