#pragma once

#include <mirel_analyzercommon/Export.h>

#include <QUndoStack>

#include <functional>

/** The application's stack, which is not cleared while a command runs or a macro is open. Qt's own
 *  clear(), called through a QUndoStack, does not ask and must not be called from a command. */
class MIREL_ANALYZERCOMMON_EXPORT GuardedUndoStack : public QUndoStack
{
public:
    /** @param isBlocked whether the stack is not to be cleared now. */
    explicit GuardedUndoStack(std::function<bool()> isBlocked);
    ~GuardedUndoStack() override;

    /** Deletes all commands, or does nothing while that is blocked. */
    void clear();

private:
    std::function<bool()> isBlocked;
};
