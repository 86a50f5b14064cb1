#include <mirel_analyzercommon/DeleteSignaler.h>
#include <mirel_analyzercommon/GenericUndoCommand.h>

#include "UndoStackFixture.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

struct GenericUndoCommandTest : UndoStackFixture
{
    // A command that logs "r" and `name` when redone, "u" and `name` when undone.
    std::unique_ptr<GenericUndoCommand> command(const std::string& name, int id = -1,
                                                const DeleteSignaler* object = nullptr,
                                                QUndoCommand* parent = nullptr)
    {
        return std::make_unique<GenericUndoCommand>(logging("r" + name + " "),
                                                    logging("u" + name + " "), object,
                                                    QString::fromStdString(name), id, parent);
    }
};

} // namespace

TEST_F(GenericUndoCommandTest, CallsItsFunctions)
{
    const auto subject = command("A");

    subject->redo();
    subject->undo();

    EXPECT_EQ(log, "rA uA ");
}

TEST_F(GenericUndoCommandTest, AnswersTextAndId)
{
    EXPECT_EQ(command("A", 5)->text(), "A");
    EXPECT_EQ(command("A", 5)->id(), 5);
    EXPECT_EQ(command("A")->id(), -1);
}

TEST_F(GenericUndoCommandTest, DoesNothingForAnEmptyFunction)
{
    GenericUndoCommand subject(nothing, nothing, nullptr, "nothing", -1);

    EXPECT_NO_THROW(subject.redo());
    EXPECT_NO_THROW(subject.undo());
}

TEST_F(GenericUndoCommandTest, RunsItsFunctionsWhileRecordingIsSuspended)
{
    const auto pushInner = [this] { push("inner"); };
    GenericUndoCommand subject(pushInner, pushInner, nullptr, "outer", -1);

    subject.redo();
    subject.undo();

    EXPECT_EQ(log, "rinner rinner ");
    EXPECT_EQ(stack.count(), 0);
}

TEST_F(GenericUndoCommandTest, EndsTheSuspensionWhenAFunctionThrows)
{
    const auto fail = [] { throw StackError(); };
    GenericUndoCommand subject(fail, fail, nullptr, "failing", -1);

    EXPECT_THROW(subject.redo(), StackError);
    EXPECT_THROW(subject.undo(), StackError);

    push("A");
    EXPECT_EQ(stack.count(), 1);
}

TEST_F(GenericUndoCommandTest, IsInertAndObsoleteOnceItsObjectIsDestroyed)
{
    auto object = std::make_unique<DeleteSignaler>();
    const auto subject = command("A", -1, object.get());
    EXPECT_FALSE(subject->isObsolete());

    object.reset();
    subject->redo();
    subject->undo();

    EXPECT_EQ(log, "");
    EXPECT_TRUE(subject->isObsolete());
}

TEST_F(GenericUndoCommandTest, ReleasesItsFunctionsOnceItsObjectIsDestroyed)
{
    auto object = std::make_unique<DeleteSignaler>();
    auto held = std::make_shared<int>(1);
    const std::weak_ptr<int> watched = held;
    const GenericUndoCommand subject([held] {}, [held] {}, object.get(), "holding", -1);
    held.reset();
    EXPECT_FALSE(watched.expired());

    object.reset();

    EXPECT_TRUE(watched.expired());
}

TEST_F(GenericUndoCommandTest, MayDestroyItsObjectWhileItRuns)
{
    auto object = std::make_unique<DeleteSignaler>();
    const std::string text = "longer than any string that is kept within its object";
    const auto destroyThenLog = [this, &object, text] {
        object.reset();
        log += text; // of the copy that is called: the command has released its own
    };
    GenericUndoCommand subject(destroyThenLog, logging("undone"), object.get(), "A", -1);

    subject.redo();
    subject.undo();

    EXPECT_EQ(log, text);
    EXPECT_TRUE(subject.isObsolete());
}

TEST_F(GenericUndoCommandTest, MayBeDestroyedBeforeItsObject)
{
    auto object = std::make_unique<DeleteSignaler>();
    command("A", -1, object.get()).reset();

    object.reset();

    EXPECT_EQ(log, "");
}

TEST_F(GenericUndoCommandTest, MergesIntoTheOlderUndoAndTheNewerRedo)
{
    const DeleteSignaler object;
    const auto older = command("A", 3, &object);
    const auto newer = command("B", 3, &object);

    EXPECT_TRUE(older->mergeWith(newer.get()));
    older->redo();
    older->undo();

    EXPECT_EQ(log, "rB uA ");
}

TEST_F(GenericUndoCommandTest, MergesCommandsWithoutAnObject)
{
    EXPECT_TRUE(command("A", 0)->mergeWith(command("B", 0).get()));
}

TEST_F(GenericUndoCommandTest, DoesNotMergeNegativeOrDifferentIds)
{
    EXPECT_FALSE(command("A", -1)->mergeWith(command("B", -1).get()));
    EXPECT_FALSE(command("A", -2)->mergeWith(command("B", -2).get()));
    EXPECT_FALSE(command("A", 3)->mergeWith(command("B", 4).get()));
}

TEST_F(GenericUndoCommandTest, DoesNotMergeCommandsOfDifferentObjects)
{
    const DeleteSignaler one;
    const DeleteSignaler other;

    EXPECT_FALSE(command("A", 3, &one)->mergeWith(command("B", 3, &other).get()));
    EXPECT_FALSE(command("A", 3, &one)->mergeWith(command("B", 3).get()));
}

TEST_F(GenericUndoCommandTest, DoesNotMergeOnceItsObjectIsDestroyed)
{
    auto object = std::make_unique<DeleteSignaler>();
    const auto older = command("A", 3, object.get());
    const auto newer = command("B", 3, object.get());

    object.reset();

    EXPECT_FALSE(older->mergeWith(newer.get()));
}

TEST_F(GenericUndoCommandTest, DoesNotMergeAForeignCommand)
{
    const QUndoCommand foreign("foreign");

    EXPECT_FALSE(command("A", 3)->mergeWith(&foreign));
}

TEST_F(GenericUndoCommandTest, DoesNotMergeCommandsWithParts)
{
    const auto older = command("A", 3);
    const auto newer = command("B", 3);
    (void)command("part", -1, nullptr, newer.get()).release(); // its parent owns it

    EXPECT_FALSE(older->mergeWith(newer.get()));
    EXPECT_FALSE(newer->mergeWith(older.get()));
}

TEST_F(GenericUndoCommandTest, RedoesItsPartsAfterItselfAndUndoesThemBefore)
{
    const auto subject = command("A");
    (void)command("1", -1, nullptr, subject.get()).release(); // its parent owns it
    (void)command("2", -1, nullptr, subject.get()).release(); // its parent owns it

    subject->redo();
    subject->undo();

    EXPECT_EQ(log, "rA r1 r2 u2 u1 uA ");
}
