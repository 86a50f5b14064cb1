#pragma once

#include <QUndoCommand>

#include <memory>

/**
 * A foreign command on the application's stack: runs it while recording is suspended and answers
 * with its text, id, merging and obsolescence. Internal to this library.
 */
class WrappedUndoCommand : public QUndoCommand
{
public:
    explicit WrappedUndoCommand(std::unique_ptr<QUndoCommand> command);
    ~WrappedUndoCommand() override;

    int id() const override;
    bool mergeWith(const QUndoCommand* other) override;
    void redo() override;
    void undo() override;

private:
    void adoptTextAndObsolescence();

    std::unique_ptr<QUndoCommand> command;
    bool isRecorded = false;
};
