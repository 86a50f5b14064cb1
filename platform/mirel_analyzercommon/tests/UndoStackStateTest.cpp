// What all handles share, through the handles: the library does not export it.
#include "UndoStackFixture.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>

namespace {

struct UndoStackStateTest : UndoStackFixture
{};

} // namespace

TEST_F(UndoStackStateTest, GroupsWhatIsPushedInAMacroAndInnerOnesIntoOneStep)
{
    {
        const UndoStack::Macro outer("outer");
        {
            const UndoStack::Macro inner("inner");
            push("A");
        }
        push("B");
    }

    EXPECT_EQ(stack.count(), 1);
    EXPECT_EQ(stack.undoText(), "outer");
    EXPECT_EQ(stack.command(0)->childCount(), 2);
    EXPECT_EQ(stack.command(0)->child(0)->text(), "A");
    log.clear();
    stack.undo();
    stack.redo();
    EXPECT_EQ(log, "uB uA rA rB ");
}

TEST_F(UndoStackStateTest, LeavesNoTraceOfAMacroWithoutPushesOrWhoseOnlyCommandThrew)
{
    push("A");
    push("B");
    stack.undo();
    int signalsFromTheStack = 0;
    const auto connection =
        QObject::connect(&stack, &QUndoStack::indexChanged, [&] { ++signalsFromTheStack; });
    {
        const UndoStack::Macro outer("outer");
        const UndoStack::Macro inner("inner");
        EXPECT_TRUE(stack.canUndo());
        EXPECT_TRUE(stack.canRedo());
        EXPECT_THROW(push([] { throw StackError(); }, nothing), StackError);
    }
    QObject::disconnect(connection);

    EXPECT_EQ(stack.count(), 2);
    EXPECT_EQ(stack.index(), 1);
    EXPECT_EQ(stack.undoText(), "A");
    EXPECT_EQ(stack.redoText(), "B");
    EXPECT_EQ(signalsFromTheStack, 0);
}

TEST_F(UndoStackStateTest, KeepsWhatWasPushedInAMacroThatAnExceptionLeaves)
{
    try {
        const UndoStack::Macro macro("interrupted");
        push("A");
        throw StackError();
    } catch (const StackError&) {
    }

    EXPECT_EQ(stack.count(), 1);
    EXPECT_EQ(stack.undoText(), "interrupted");
    EXPECT_TRUE(stack.canUndo());
}

TEST_F(UndoStackStateTest, LeavesNoTraceOfAMacroThatIsOpenedWhileSuspended)
{
    {
        const UndoStack::SuspendUndoRecording suspension;
        const UndoStack::Macro macro("suspended");
        push("A");
    }

    EXPECT_EQ(log, "rA ");
    EXPECT_EQ(stack.count(), 0);
}

TEST_F(UndoStackStateTest, IgnoresAMacroOpenedWhileSuspendedAlsoWhenItOutlivesTheSuspension)
{
    auto suspension = std::make_unique<UndoStack::SuspendUndoRecording>();
    {
        const UndoStack::Macro macro("suspended");
        suspension.reset();
        push("A");
    }

    EXPECT_EQ(stack.count(), 1);
    EXPECT_EQ(stack.undoText(), "A");
}

TEST_F(UndoStackStateTest, ClosesAMacroWithinASuspensionThatBeganAfterIt)
{
    auto macro = std::make_unique<UndoStack::Macro>("macro");
    push("A");
    {
        const UndoStack::SuspendUndoRecording suspension;
        push("B");
        macro.reset();
    }

    EXPECT_EQ(stack.count(), 1);
    EXPECT_EQ(stack.command(0)->childCount(), 1);
    EXPECT_TRUE(stack.canUndo());
}

TEST_F(UndoStackStateTest, MergesWithinAMacroButNotWithTheStepBeforeIt)
{
    push("A", 3);
    {
        const UndoStack::Macro macro("macro");
        push("B", 3);
        push("C", 3);
    }

    EXPECT_EQ(stack.count(), 2);
    EXPECT_EQ(stack.command(1)->childCount(), 1);
}

TEST_F(UndoStackStateTest, DropsAMacroWhoseCommandsCancelEachOtherOut)
{
    struct Cancelling : QUndoCommand
    {
        int id() const override { return 4; }
        bool mergeWith(const QUndoCommand*) override
        {
            setObsolete(true);
            return true;
        }
    };
    push("A");
    {
        const UndoStack::Macro macro("macro");
        UndoStack().push(new Cancelling);
        UndoStack().push(new Cancelling);
    }

    EXPECT_EQ(stack.count(), 1);
    EXPECT_EQ(stack.undoText(), "A");
    EXPECT_TRUE(stack.canUndo());
}

TEST_F(UndoStackStateTest, MayBeClearedWithinAMacroWhichThenEndsQuietly)
{
    static int warnings;
    warnings = 0;
    const QtMessageHandler before = qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext&, const QString&) { ++warnings; });
    {
        const UndoStack::Macro macro("macro");
        push("A");
        stack.clear();
    }
    qInstallMessageHandler(before);
    EXPECT_EQ(warnings, 0);
    EXPECT_EQ(stack.count(), 0);
    {
        const UndoStack::Macro macro("macro");
        push("A");
        stack.clear();
        push("B");
    }
    EXPECT_EQ(stack.count(), 1);
    EXPECT_EQ(stack.undoText(), "macro");
    EXPECT_TRUE(stack.canUndo());
}

TEST_F(UndoStackStateTest, LeavesNoStepWhenAListenerThrowsAtItsBeginning)
{
    push("A");
    const auto connection =
        QObject::connect(&stack, &QUndoStack::canUndoChanged, [] { throw StackError(); });
    const auto pushInMacro = [this] {
        const UndoStack::Macro macro("macro");
        push("B");
    };

    EXPECT_THROW(pushInMacro(), StackError);
    QObject::disconnect(connection);

    EXPECT_EQ(stack.count(), 1);
    EXPECT_EQ(stack.undoText(), "A");
    EXPECT_TRUE(stack.canUndo());
}

TEST_F(UndoStackStateTest, JoinsAMacroOfTheHostsOwnAndLeavesItOpen)
{
    stack.beginMacro("host");
    {
        const UndoStack::Macro macro("macro");
        push("A");
    }
    push("B");
    stack.endMacro();

    EXPECT_EQ(stack.count(), 1);
    EXPECT_EQ(stack.undoText(), "host");
    EXPECT_EQ(stack.command(0)->childCount(), 2);
}

TEST_F(UndoStackStateTest, LetsWhatAListenerThrowsPassOutOfTheEndOfAMacroUnlessAnotherDoes)
{
    const auto connection =
        QObject::connect(&stack, &QUndoStack::indexChanged, [] { throw StackError(); });
    const auto pushInMacro = [this](bool fails) {
        const UndoStack::Macro macro("macro");
        push("A");
        if (fails) {
            throw std::logic_error("first");
        }
    };

    EXPECT_THROW(pushInMacro(false), StackError);
    EXPECT_THROW(pushInMacro(true), std::logic_error);
    QObject::disconnect(connection);

    EXPECT_EQ(stack.count(), 2);
    EXPECT_EQ(stack.index(), 2);
    EXPECT_TRUE(stack.canUndo());
}

TEST_F(UndoStackStateTest, DoesACommandAndDeletesItWithoutRecordingWhileSuspended)
{
    push("A");
    stack.undo();
    for (const bool fails : {false, true}) {
        auto held = std::make_shared<int>(1);
        const std::weak_ptr<int> watched = held;
        const auto done = [held, fails, this] {
            log += "r ";
            if (fails) {
                throw StackError();
            }
        };
        log.clear();
        {
            const UndoStack::SuspendUndoRecording suspension;
            if (fails) {
                EXPECT_THROW(push(done, nothing), StackError);
            } else {
                push(done, nothing);
            }
        }
        EXPECT_EQ(log, "r ");
        EXPECT_EQ(watched.use_count(), 2) << "the command has not been deleted";
        EXPECT_EQ(stack.count(), 1);
        EXPECT_EQ(stack.redoText(), "A") << "what could be redone is kept";
    }
}

TEST_F(UndoStackStateTest, StaysSuspendedUntilTheOutermostSuspensionEnds)
{
    {
        const UndoStack::SuspendUndoRecording outer;
        {
            const UndoStack::SuspendUndoRecording inner;
        }
        push("A");
        EXPECT_EQ(stack.count(), 0);
    }
    push("B");
    EXPECT_EQ(stack.count(), 1);
}
