#pragma once

#include <mirel_signals/Export.h>

#include <boost/signals2/connection.hpp>

#include <memory>

/**
 * The connections that an object has made, so that they end with it and can be blocked together.
 * Not copyable; one thread.
 */
class MIREL_SIGNALS_EXPORT SignalConnectionCollection
{
public:
    SignalConnectionCollection();

    /** Disconnects every connection. */
    ~SignalConnectionCollection();

    SignalConnectionCollection(const SignalConnectionCollection&) = delete;
    SignalConnectionCollection& operator=(const SignalConnectionCollection&) = delete;

    /** Takes `connection` over; while the collection is blocked, it is blocked too. */
    void add(boost::signals2::connection connection);

    /** Blocks every connection. Not counted: a second call changes nothing. */
    void block();

    /** Unblocks, however often block() was called; missed signals are not delivered later. */
    void unblock();

private:
    class Impl;
    std::unique_ptr<Impl> impl;
};
