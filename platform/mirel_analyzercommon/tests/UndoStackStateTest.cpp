// What all handles share, through the handles: the library does not export it.
#include "UndoStackFixture.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>

namespace {

struct UndoStackStateTest : UndoStackFixture
{};

} // namespace

TEST_F(UndoStackStateTest, GroupsWhatIsPushedInAMacroIntoOneStep)
{
    {
        const UndoStack::Macro macro("both");
        push("A");
        push("B");
    }

    EXPECT_EQ(stack.count(), 1);
    EXPECT_EQ(stack.undoText(), "both");
    EXPECT_EQ(stack.command(0)->childCount(), 2);
    log.clear();
    stack.undo();
    stack.redo();
    EXPECT_EQ(log, "uB uA rA rB ");
}

TEST_F(UndoStackStateTest, JoinsInnerMacrosToTheOutermost)
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
}

TEST_F(UndoStackStateTest, LeavesNoTraceOfAMacroWithoutPushes)
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
    }
    QObject::disconnect(connection);

    EXPECT_EQ(stack.count(), 2);
    EXPECT_EQ(stack.index(), 1);
    EXPECT_EQ(stack.undoText(), "A");
    EXPECT_EQ(stack.redoText(), "B");
    EXPECT_EQ(signalsFromTheStack, 0);
}

TEST_F(UndoStackStateTest, LeavesNoTraceOfAMacroWhoseOnlyCommandThrew)
{
    push("A");
    stack.undo();
    {
        const UndoStack::Macro macro("failing");
        EXPECT_THROW(push([] { throw StackError(); }, nothing), StackError);
    }

    EXPECT_EQ(stack.count(), 1);
    EXPECT_TRUE(stack.canRedo());
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

TEST_F(UndoStackStateTest, MayBeClearedWithinAMacro)
{
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

TEST_F(UndoStackStateTest, EndsQuietlyWhenTheStackWasClearedWithinIt)
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

TEST_F(UndoStackStateTest, LetsWhatAListenerThrowsPassOutOfTheEndOfAMacro)
{
    const auto connection =
        QObject::connect(&stack, &QUndoStack::indexChanged, [] { throw StackError(); });
    const auto pushInMacro = [this] {
        const UndoStack::Macro macro("macro");
        push("A");
    };

    EXPECT_THROW(pushInMacro(), StackError);
    QObject::disconnect(connection);

    EXPECT_EQ(stack.count(), 1);
    EXPECT_EQ(stack.index(), 1);
    EXPECT_TRUE(stack.canUndo());
}

TEST_F(UndoStackStateTest, KeepsTheExceptionThatLeavesAMacroWhenAListenerThrowsToo)
{
    const auto connection =
        QObject::connect(&stack, &QUndoStack::indexChanged, [] { throw StackError(); });
    const auto failInMacro = [this] {
        const UndoStack::Macro macro("macro");
        push("A");
        throw std::logic_error("first");
    };

    EXPECT_THROW(failInMacro(), std::logic_error);
    QObject::disconnect(connection);

    EXPECT_EQ(stack.index(), 1);
    EXPECT_TRUE(stack.canUndo());
}

TEST_F(UndoStackStateTest, DoesACommandWithoutRecordingItWhileSuspended)
{
    auto held = std::make_shared<int>(1);
    const std::weak_ptr<int> watched = held;
    {
        const UndoStack::SuspendUndoRecording suspension;
        push([held, this] { log += "r "; }, nothing);
    }
    held.reset();

    EXPECT_EQ(log, "r ");
    EXPECT_EQ(stack.count(), 0);
    EXPECT_TRUE(watched.expired()) << "the command has not been deleted";
}

TEST_F(UndoStackStateTest, KeepsWhatCouldBeRedoneWhileSuspended)
{
    push("A");
    stack.undo();

    const UndoStack::SuspendUndoRecording suspension;
    push("B");

    EXPECT_TRUE(stack.canRedo());
    EXPECT_EQ(stack.redoText(), "A");
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

TEST_F(UndoStackStateTest, DeletesACommandThatThrowsWhileSuspended)
{
    auto held = std::make_shared<int>(1);
    const std::weak_ptr<int> watched = held;
    {
        const UndoStack::SuspendUndoRecording suspension;
        EXPECT_THROW(push([held] { throw StackError(); }, nothing), StackError);
    }
    held.reset();

    EXPECT_TRUE(watched.expired());
}
