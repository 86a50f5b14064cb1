#pragma once

#include <QString>
#include <QUndoStack>

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

    QUndoStack& stack() { return undoStack; }

    void suspend() { ++suspensions; }
    void resume() { --suspensions; }
    bool isSuspended() const { return suspensions > 0; }

    /** Suspends recording while it lives: what a command sets off records nothing. */
    class Suspension
    {
    public:
        Suspension() { instance().suspend(); }
        ~Suspension() { instance().resume(); }
        Suspension(const Suspension&) = delete;
        Suspension& operator=(const Suspension&) = delete;
    };

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
    UndoStackState() = default;
    ~UndoStackState() = default;

    bool isStepOpen() const;
    void dropStepWithoutParts();

    QUndoStack undoStack;
    const QUndoCommand* doneBeforePush = nullptr;
    int suspensions = 0;
    int openMacros = 0;
    bool hasBegunStep = false;
    QString macroText;
};
