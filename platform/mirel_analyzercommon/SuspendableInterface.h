#pragma once

#include <mirel_analyzercommon/Export.h>

/**
 * An object that can stop reacting to changes for a while, for example while its view is hidden.
 * Inherited virtually, since an object may get it from several of its interfaces.
 */
class MIREL_ANALYZERCOMMON_EXPORT SuspendableInterface
{
public:
    virtual ~SuspendableInterface();

    virtual void suspend() = 0;

    /** Ends the suspension; without one it does nothing. */
    virtual void resume() = 0;
};
