#pragma once

#include <mirel_analyzercommon/Export.h>

#include <boost/signals2/signal.hpp>

#include <memory>

/**
 * Base of an object that others refer to without owning it: it says when it goes. Undo commands
 * rely on it, since they stay on the stack longer than the objects they change.
 */
class MIREL_ANALYZERCOMMON_EXPORT DeleteSignaler
{
public:
    DeleteSignaler();

    /**
     * Calls every connected slot. What derives from this class is already destroyed then. A slot
     * that throws is passed over: the others must learn of the deletion all the same.
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
