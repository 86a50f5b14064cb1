#pragma once

#include <boost/shared_ptr.hpp>

/**
 * Calls `signal` so that a slot may destroy the signal and its owner: the state of the emission is
 * kept until the last slot has returned. A plain `signal(...)` would clean up its list of slots
 * afterwards in memory that has been freed.
 * An exception from a slot passes; later slots are not called.
 */
template <class Signal, class... Arguments>
void emitSignal(const Signal& signal, const Arguments&... arguments)
{
    struct Access : Signal
    {
        static boost::shared_ptr<void> stateOf(const Signal& signal)
        {
            return (signal.*&Access::lock_pimpl)();
        }
    };
    const boost::shared_ptr<void> state = Access::stateOf(signal);
    signal(arguments...);
}
