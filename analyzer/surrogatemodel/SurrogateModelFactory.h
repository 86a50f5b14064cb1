#pragma once

#include <surrogatemodel/SurrogateModelManagerInterface.h>

#include <mirel_fitting/SurrogateModelInterface.h>

/**
 * Makes the models of a SurrogateModelManager; a program can call it directly for models like the
 * manager's. This class makes the default models; a derived class overrides makeModel() and calls
 * the base for the types that it leaves as they are. One thread.
 *
 * A derived class that has settings keeps each in a property and calls emitChanged() when it
 * changes; the manager then discards the cached model. To hand out a finished model, override
 * makeModel() to return it, and needsCases().
 */
class SURROGATEMODEL_EXPORT SurrogateModelFactory
{
public:
    /** The values of SurrogateModelManagerInterface::type(). */
    using ModelType = SurrogateModelManagerInterface::ModelType;
    /** Slots are given the type whose models are made differently from now on. */
    using ChangedSignal = boost::signals2::signal<void(ModelType)>;

    SurrogateModelFactory();

    /** Disconnects every listener. */
    virtual ~SurrogateModelFactory();

    SurrogateModelFactory(const SurrogateModelFactory&) = delete;
    SurrogateModelFactory& operator=(const SurrogateModelFactory&) = delete;

    /**
     * Kriging for ModelType 0: universal Kriging with a linear trend, estimated correlation lengths
     * and an estimated nugget. The full quadratic response surface for every other value.
     * @param independentColumns one array of `rowCount` finite values per input, borrowed for the
     *                           call.
     * @param dependentColumns   one array of `rowCount` values per output, borrowed for the call;
     *                           only the outputs that are asked for need to be finite.
     * @return never null.
     * @throw SurrogateModelInterface::Error if no model can be fitted.
     */
    virtual boost::shared_ptr<SurrogateModelInterface>
    makeModel(ModelType type, const std::vector<double*>& independentColumns,
              const std::vector<double*>& dependentColumns, int rowCount) const;

    /** Whether a model needs at least one case, so that the manager refuses to ask for a model of
     *  none. True here. */
    virtual bool needsCases() const;

    /** Connects a listener, called with a type after each change of how its models are made. */
    boost::signals2::connection connectSignalChanged(const ChangedSignal::slot_type& slot) const;

protected:
    /** Models of `type` are made differently from now on. A listener may destroy this object. */
    void emitChanged(ModelType type) const;

private:
    mutable ChangedSignal changedSignal;
};
