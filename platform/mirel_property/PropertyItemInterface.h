#pragma once

#include <mirel_property/Export.h>

#include <boost/signals2/signal.hpp>

namespace veska {

/**
 * The untyped face of a property: "something changed", for listeners that do not need the value.
 * Virtual base of every typed property; not copyable, since listeners know one object.
 */
class MIREL_PROPERTY_EXPORT PropertyItemInterface
{
public:
    /** Slots are not given the value: they ask the property. */
    using PropertyChangedSignal = boost::signals2::signal<void()>;

    PropertyItemInterface();

    /** Disconnects every listener, also those that a running emission has yet to reach. */
    virtual ~PropertyItemInterface();

    PropertyItemInterface(const PropertyItemInterface&) = delete;
    PropertyItemInterface& operator=(const PropertyItemInterface&) = delete;

    /**
     * Connects `slot`, runs the hook signalPropertyChangedConnected(), returns the connection.
     * The slot is called once per change, on the thread that makes it; whether before or after
     * the listeners of the typed signal is not promised.
     */
    boost::signals2::connection
    connectSignalPropertyChanged(const PropertyChangedSignal::slot_type& slot) const;

protected:
    /** For subclasses, which emit it once per change, with the new value stored. */
    PropertyChangedSignal& signalPropertyChanged() const;

private:
    /** Runs after each connect, when the new slot is already connected. Empty here. */
    virtual void signalPropertyChangedConnected() const;

    mutable PropertyChangedSignal changedSignal;
};

} // namespace veska
