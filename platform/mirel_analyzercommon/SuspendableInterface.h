#pragma once

#include <mirel_analyzercommon/Export.h>

/**
 * An object that can be told to stop reacting for a while, as long as nobody looks at it. Inherited
 * virtually, since an object may get it from several of its interfaces.
 */
class MIREL_ANALYZERCOMMON_EXPORT SuspendableInterface
{
public:
    virtual ~SuspendableInterface();

    virtual void suspend() = 0;

    /** Ends the suspension; without one it does nothing. */
    virtual void resume() = 0;
};
