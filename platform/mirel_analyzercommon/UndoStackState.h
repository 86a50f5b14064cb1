#pragma once

#include <mirel_analyzercommon/GuardedUndoStack.h>

#include <QString>

#include <memory>

/**
 * What all UndoStack handles share: the stack, the depth of suspension, the open macro. Internal
 * to this library.
 */
class UndoStackState
{
public:
    /** Made on first use and never destroyed: static objects may still use it while they are
     * destroyed. */
    static UndoStackState& instance();

    GuardedUndoStack& stack() { return undoStack; }

    void suspend() { ++suspensions; }
    void resume() { --suspensions; }
    bool isSuspended() const { return suspensions > 0; }

    /** One lives while a command runs: what the command sets off records nothing. */
    class Run
    {
    public:
        Run()
        {
            instance().suspend();
            ++instance().runs;
        }
        ~Run()
        {
            --instance().runs;
            instance().resume();
        }
        Run(const Run&) = delete;
        Run& operator=(const Run&) = delete;
    };

    /**
     * Whether a macro is open or a command runs: recorded commands do nothing then. Qt, whose slots
     * cannot be overridden, would run a command within itself or move the index permanently.
     */
    bool isBlocked() const { return openMacros > 0 || runs > 0; }

    void openMacro(const QString& text);

    /** Ends the step that the outermost macro began, if it began one and the step still exists. */
    void closeMacro();

    /** Puts a command whose first redo() has been run on the stack. */
    void record(std::unique_ptr<QUndoCommand> command);

    /**
     * Whether Qt calls the redo() of `command` because record() hands it over: true once, and the
     * call is to do nothing.
     */
    bool takeDoneBeforePush(const QUndoCommand* command);

private:
    UndoStackState();
    ~UndoStackState() = default;

    void restoreIndexIfBlocked();
    bool isStepOpen() const;
    void dropStepWithoutParts();

    GuardedUndoStack undoStack;
    const QUndoCommand* doneBeforePush = nullptr;
    int unblockedIndex = 0; ///< of the stack when it was last not blocked
    int suspensions = 0;
    int runs = 0;
    int openMacros = 0;
    bool hasBegunStep = false;
    QString macroText;
};
