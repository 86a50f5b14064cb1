#pragma once

#include <mirel_analyzercommon/GuardedUndoStack.h>

#include <mirel_analyzercommon/Export.h>

/**
 * A handle on the one undo stack of the application. The stack is made on first use, needs no
 * application object and stays valid until the process has ended, static destruction included.
 * Main thread only.
 *
 * While a command runs or a macro is open, undo(), redo(), setIndex() and clear() of the stack have
 * no effect, whoever calls them: a shortcut, a view, or a listener of what the command changes. A
 * command pushed while another one runs is done at once, within it, and not recorded. The order of
 * effects of one step is thus: the command's redo() with all that it sets off, then the recording,
 * then the signals of the stack; of an undo: the command's undo() with all that it sets off, then
 * the move of the index, then the signals. Listeners of these signals may undo and redo. A listener
 * of indexChanged() reads index() instead of trusting its argument: of a call without effect, Qt
 * announces the index to which it would have moved, too.
 */
class MIREL_ANALYZERCOMMON_EXPORT UndoStack
{
public:
    UndoStack();

    /**
     * Calls the redo() of `command`, which becomes the stack's, and records it: as a part of the
     * open macro if there is one, else as a step of its own that discards the steps that could be
     * redone. Runs redo() while recording is suspended, like every later undo and redo.
     *
     * A command that is not a GenericUndoCommand is wrapped, so that the same applies to it; its
     * text, id, merging and obsolescence are kept. A command that is obsolete, before its redo()
     * or after it, is deleted and leaves no trace.
     *
     * While recording is suspended, redo() is called and the command is deleted. If redo() throws,
     * the command is deleted, nothing is recorded, and the exception passes.
     */
    void push(QUndoCommand* command);

    class Macro;
    class SuspendUndoRecording;

    /** For views and actions, valid for the life of the process; push through push(). */
    GuardedUndoStack& stack() const;
};

/**
 * While one lives, pushed commands are parts of one step titled `text`. Macros nest: inner ones
 * join the outermost and take its text. The step is opened by the first push only: a macro in
 * which nothing was pushed leaves no step behind and keeps the steps that could be redone. A macro
 * opened while recording is suspended does nothing.
 */
class MIREL_ANALYZERCOMMON_EXPORT UndoStack::Macro
{
public:
    /** @param text what the user reads in menus and lists. */
    explicit Macro(const QString& text);

    /**
     * Closes the step, which emits the stack's signals. What their slots throw passes, unless
     * another exception is propagating; the step is closed either way.
     */
    ~Macro() noexcept(false);

    Macro(const Macro&) = delete;
    Macro& operator=(const Macro&) = delete;

private:
    bool isLive;
};

/** While one lives, pushed commands are done but not recorded. Nests. */
class MIREL_ANALYZERCOMMON_EXPORT UndoStack::SuspendUndoRecording
{
public:
    SuspendUndoRecording();
    ~SuspendUndoRecording();

    SuspendUndoRecording(const SuspendUndoRecording&) = delete;
    SuspendUndoRecording& operator=(const SuspendUndoRecording&) = delete;
};
