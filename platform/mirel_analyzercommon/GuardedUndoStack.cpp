#include <mirel_analyzercommon/GuardedUndoStack.h>

#include <utility>

GuardedUndoStack::GuardedUndoStack(std::function<bool()> isBlocked)
    : isBlocked(std::move(isBlocked))
{}

GuardedUndoStack::~GuardedUndoStack() = default;

void GuardedUndoStack::clear()
{
    if (!isBlocked()) {
        QUndoStack::clear();
    }
}
