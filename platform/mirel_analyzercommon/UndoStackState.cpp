#include <mirel_analyzercommon/UndoStackState.h>

#include <utility>

UndoStackState& UndoStackState::instance()
{
    static UndoStackState* const state = new UndoStackState;
    return *state;
}

UndoStackState::UndoStackState() : undoStack([this] { return isBlocked(); })
{
    QObject::connect(&undoStack, &QUndoStack::indexChanged, [this] { restoreIndexIfBlocked(); });
}

// Recorded commands do nothing while the stack is blocked, so that moving the index back changes
// nothing else.
void UndoStackState::restoreIndexIfBlocked()
{
    if (!isBlocked()) {
        unblockedIndex = undoStack.index();
    } else if (undoStack.index() != unblockedIndex) {
        undoStack.setIndex(unblockedIndex);
    }
}

void UndoStackState::openMacro(const QString& text)
{
    if (openMacros++ == 0) {
        macroText = text;
        hasBegunStep = false;
    }
}

void UndoStackState::closeMacro()
{
    if (--openMacros > 0 || !std::exchange(hasBegunStep, false) || !isStepOpen()) {
        return;
    }
    try {
        undoStack.endMacro();
    } catch (...) {
        // From a slot: Qt has closed the step before it emits.
        dropStepWithoutParts();
        throw;
    }
    dropStepWithoutParts();
}

void UndoStackState::record(std::unique_ptr<QUndoCommand> command)
{
    if (openMacros > 0 && !isStepOpen()) {
        hasBegunStep = true;
        undoStack.beginMacro(macroText);
    }
    doneBeforePush = command.get();
    undoStack.push(command.release());
}

bool UndoStackState::takeDoneBeforePush(const QUndoCommand* command)
{
    if (doneBeforePush != command) {
        return false;
    }
    doneBeforePush = nullptr;
    return true;
}

// Asked of Qt, not remembered: clear() ends an open step. While one is open, and only then, a stack
// that holds steps can neither undo nor redo.
bool UndoStackState::isStepOpen() const
{
    return undoStack.count() > 0 && !undoStack.canUndo() && !undoStack.canRedo();
}

// Commands that merge may cancel each other out, and a step that does nothing would cost the user
// an undo without effect. Undoing an obsolete step is Qt's way to delete it.
void UndoStackState::dropStepWithoutParts()
{
    if (undoStack.index() == 0) {
        return;
    }
    const QUndoCommand* step = undoStack.command(undoStack.index() - 1);
    if (step->childCount() == 0) {
        const_cast<QUndoCommand*>(step)->setObsolete(true);
        undoStack.undo();
    }
}
