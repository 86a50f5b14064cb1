#include <mirel_analyzercommon/WrappedUndoCommand.h>

#include <mirel_analyzercommon/UndoStackState.h>

#include <utility>

WrappedUndoCommand::WrappedUndoCommand(std::unique_ptr<QUndoCommand> wrapped)
    : command(std::move(wrapped))
{
    adoptTextAndObsolescence();
}

WrappedUndoCommand::~WrappedUndoCommand() = default;

int WrappedUndoCommand::id() const
{
    return command->id();
}

bool WrappedUndoCommand::mergeWith(const QUndoCommand* other)
{
    // An application's ids say nothing about the commands that come in without a wrapper.
    const auto* newer = dynamic_cast<const WrappedUndoCommand*>(other);
    if (!newer || !command->mergeWith(newer->command.get())) {
        return false;
    }
    adoptTextAndObsolescence();
    return true;
}

void WrappedUndoCommand::redo()
{
    UndoStackState& state = UndoStackState::instance();
    if (state.takeDoneBeforePush(this)) {
        isRecorded = true;
        return;
    }
    if (isRecorded && state.isBlocked()) {
        return;
    }
    const UndoStackState::Run run;
    if (!command->isObsolete()) {
        command->redo();
    }
    adoptTextAndObsolescence();
}

void WrappedUndoCommand::undo()
{
    if (isRecorded && UndoStackState::instance().isBlocked()) {
        return;
    }
    const UndoStackState::Run run;
    if (!command->isObsolete()) {
        command->undo();
    }
    adoptTextAndObsolescence();
}

// Qt asks the command on its stack, without a virtual call, and commands change both as they run.
void WrappedUndoCommand::adoptTextAndObsolescence()
{
    // Qt splits at a newline, but not at one that is the first character.
    const bool hasOwnActionText = command->actionText() != command->text();
    setText(hasOwnActionText ? command->text() + QLatin1Char('\n') + command->actionText()
                             : command->text());
    setObsolete(command->isObsolete());
}
