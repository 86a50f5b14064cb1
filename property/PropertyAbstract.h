#pragma once

#include <property/ValidatorInterface.h>

#include <mirel_property/InvalidPropertyValueException.h>
#include <mirel_property/PropertyItemInterface.h>
#include <mirel_signals/EmitSignal.h>

#include <boost/enable_shared_from_this.hpp>
#include <boost/shared_ptr.hpp>
#include <boost/signals2/signal.hpp>

#include <stdexcept>
#include <utility>

namespace veska {

/**
 * One observable value of type T, which is copyable and has ==. A candidate value is validated,
 * compared, stored, announced, in this order; equal values are validated but neither stored nor
 * announced. The subclass decides where the value is stored.
 *
 * Held by boost::shared_ptr: a listener may drop the last one during set(), which then keeps the
 * property until it is done. Main thread only.
 */
template <class T>
class PropertyAbstract : public virtual PropertyItemInterface,
                         public boost::enable_shared_from_this<PropertyAbstract<T>>
{
public:
    /** Slots are given the new value, borrowed for the call. */
    using ChangedSignal = boost::signals2::signal<void(const T&)>;

    /**
     * Emitted with the new value after every change; get() already answers it. Listeners of the
     * untyped signal are called for the same change; which of the two come first is not promised.
     */
    mutable ChangedSignal signalChanged;

    /** Connects `slot` to signalChanged. */
    boost::signals2::connection
    connectSignalChanged(const typename ChangedSignal::slot_type& slot) const
    {
        return signalChanged.connect(slot);
    }

    /**
     * The one way to change the value.
     * @throw InvalidPropertyValueException with the validator's text if it refuses `value`; nothing
     *        is stored or emitted then. What a listener throws passes, with the value stored.
     */
    void set(const T& value)
    {
        const boost::shared_ptr<PropertyAbstract> self = this->weak_from_this().lock();
        validate(value);
        if (isEqual(value)) {
            return;
        }
        setValue(value);
        emitChanged(value);
    }

    /** Checks candidate values; never null, shared. */
    boost::shared_ptr<const ValidatorInterface<T>> validator() const { return valueValidator; }

protected:
    /** @throw std::invalid_argument if `validator` is null. */
    explicit PropertyAbstract(boost::shared_ptr<const ValidatorInterface<T>> validator)
        : valueValidator(std::move(validator))
    {
        if (!valueValidator) {
            throw std::invalid_argument("A property needs a validator, but got a null pointer.");
        }
        changedChain =
            signalChanged.connect([this](const T&) { emitSignal(signalPropertyChanged()); });
    }

    // The virtual operations keep this order, the destructor last: it is the order of their slots.

    /** Not called by this class. It keeps the first slot; a subclass may give it a meaning. */
    virtual void hook() {}

    /** Stores `value`, without check or notification. */
    virtual void setValue(const T& value) = 0;

    /** Whether set() takes `value` for the present one, and changes nothing. */
    virtual bool isEqual(const T& value) const { return get() == value; }

    /** @throw InvalidPropertyValueException if the validator refuses `value`. */
    virtual void validate(const T& value) const
    {
        const ValidationResult result = valueValidator->validate(value);
        if (!result.isValid()) {
            throw InvalidPropertyValueException(result.errorString());
        }
    }

public:
    /** The current value. */
    virtual T get() const = 0;

protected:
    /** Emits signalChanged. */
    virtual void emitChanged(const T& value) { emitSignal(signalChanged, value); }

public:
    /** Disconnects every listener, also those that a running emission has yet to reach. */
    ~PropertyAbstract() override
    {
        changedChain.disconnect();
        signalChanged.disconnect_all_slots();
    }

private:
    boost::shared_ptr<const ValidatorInterface<T>> valueValidator;

    // Passes every emission of signalChanged on to the untyped signal.
    boost::signals2::connection changedChain;
};

} // namespace veska
