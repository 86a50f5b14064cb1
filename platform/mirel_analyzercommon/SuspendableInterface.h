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

    /** Stops the reactions until resume(). Whether calls are counted, and whether changes made
     *  meanwhile are reacted to later, is for the class that implements it to say. */
    virtual void suspend() = 0;

    /** Ends the suspension; without one it does nothing. */
    virtual void resume() = 0;
};
