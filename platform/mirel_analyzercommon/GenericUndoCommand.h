#pragma once

#include <mirel_analyzercommon/Export.h>

#include <QUndoCommand>

#include <boost/function.hpp>

#include <memory>

class DeleteSignaler;

/**
 * An undo command made of two functions. Both run while undo recording is suspended, so that what
 * they set off cannot corrupt the stack they run on, and both are copied before they are called:
 * they may destroy the command's object.
 *
 * When the object that the functions act on has been destroyed, the command is inert: redo() and
 * undo() do nothing but make it obsolete, so that the stack deletes it when it is next reached, and
 * both functions are released.
 * An exception from a function passes; the command can be tried again.
 */
class MIREL_ANALYZERCOMMON_EXPORT GenericUndoCommand : public QUndoCommand
{
public:
    /**
     * @param redo           makes the change; an empty function does nothing.
     * @param undo           takes it back; an empty function does nothing.
     * @param deleteSignaler the object that the functions act on, borrowed until it emits its
     *                       signal; null: none, the functions are always called.
     * @param text           what the user reads in menus and lists.
     * @param id             commands of the same non-negative id and the same object merge.
     * @param parent         the command that this one is a part of, and that owns it then.
     */
    GenericUndoCommand(boost::function<void()> redo, boost::function<void()> undo,
                       const DeleteSignaler* deleteSignaler, const QString& text, int id,
                       QUndoCommand* parent = nullptr);
    ~GenericUndoCommand() override;

    /** The constructor's; Qt asks only commands of equal, non-negative ids to merge. */
    int id() const override;

    /**
     * Takes over the redo function of `other`, a newer command of the same non-negative id and the
     * same object, and keeps the own undo function; anything else is refused with false. Commands
     * that have parts do not merge, nor does one whose object is destroyed.
     */
    bool mergeWith(const QUndoCommand* other) override;

    /** Calls the redo function, then redoes the parts. */
    void redo() override;

    /** Undoes the parts, last one first, then calls the undo function. */
    void undo() override;

private:
    class Impl;
    std::unique_ptr<Impl> impl;
};
