#pragma once

#include <mirel_analyzercommon/Export.h>

#include <boost/signals2/signal.hpp>

#include <memory>

/**
 * Base of an object that others refer to without owning it: emits a signal when it is destroyed.
 * Undo commands rely on it, since they can stay on the stack longer than the objects they change.
 */
class MIREL_ANALYZERCOMMON_EXPORT DeleteSignaler
{
public:
    DeleteSignaler();

    /**
     * Calls every connected slot. The derived parts of the object are already destroyed then. An
     * exception from a slot is swallowed, so that the other slots are called all the same.
     */
    virtual ~DeleteSignaler();

    DeleteSignaler(const DeleteSignaler&) = delete;
    DeleteSignaler& operator=(const DeleteSignaler&) = delete;

    /** `slot` is called once, from the destructor. */
    boost::signals2::connection
    connectSignalDeleted(const boost::signals2::signal<void()>::slot_type& slot) const;

private:
    class Impl;
    std::unique_ptr<Impl> impl;
};
