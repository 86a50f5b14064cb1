#include <mirel_analyzercommon/UndoStack.h>

#include <mirel_analyzercommon/GenericUndoCommand.h>
#include <mirel_analyzercommon/UndoStackState.h>
#include <mirel_analyzercommon/WrappedUndoCommand.h>

#include <exception>
#include <memory>
#include <typeinfo>

namespace {

// By exact type: a subclass may override redo() and undo(), which then lack the suspension.
bool needsWrapping(const QUndoCommand& command)
{
    return typeid(command) != typeid(GenericUndoCommand);
}

} // namespace

UndoStack::UndoStack() = default;

void UndoStack::push(QUndoCommand* command)
{
    std::unique_ptr<QUndoCommand> owned(command);
    if (needsWrapping(*owned)) {
        owned = std::make_unique<WrappedUndoCommand>(std::move(owned));
    }
    if (owned->isObsolete()) {
        return;
    }
    // Before Qt sees the command: what redo() throws must not leave a half recorded step, and a
    // command that turns out to be obsolete must not cost the steps that could be redone.
    owned->redo();

    UndoStackState& state = UndoStackState::instance();
    if (state.isSuspended() || owned->isObsolete()) {
        return;
    }
    state.record(std::move(owned));
}

GuardedUndoStack& UndoStack::stack() const
{
    return UndoStackState::instance().stack();
}

UndoStack::Macro::Macro(const QString& text) : isLive(!UndoStackState::instance().isSuspended())
{
    if (isLive) {
        UndoStackState::instance().openMacro(text);
    }
}

UndoStack::Macro::~Macro() noexcept(false)
{
    if (!isLive) {
        return;
    }
    try {
        UndoStackState::instance().closeMacro();
    } catch (...) {
        if (std::uncaught_exceptions() == 0) {
            throw;
        }
    }
}

UndoStack::SuspendUndoRecording::SuspendUndoRecording()
{
    UndoStackState::instance().suspend();
}

UndoStack::SuspendUndoRecording::~SuspendUndoRecording()
{
    UndoStackState::instance().resume();
}
