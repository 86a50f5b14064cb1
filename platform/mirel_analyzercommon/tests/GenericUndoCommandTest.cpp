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

TEST_F(GenericUndoCommandTest, CallsItsFunctionsWhereThereAreSomeAndAnswersTextAndId)
{
    const auto subject = command("A", 5);
    subject->redo();
    subject->undo();
    EXPECT_EQ(log, "rA uA ");
    EXPECT_EQ(subject->text(), "A");
    EXPECT_EQ(subject->id(), 5);
    EXPECT_EQ(command("A")->id(), -1);

    GenericUndoCommand empty(nothing, nothing, nullptr, "nothing", -1);
    EXPECT_NO_THROW(empty.redo());
    EXPECT_NO_THROW(empty.undo());
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

TEST_F(GenericUndoCommandTest, IsInertAndObsoleteAndReleasesItsFunctionsOnceItsObjectIsDestroyed)
{
    auto object = std::make_unique<DeleteSignaler>();
    command("destroyed before its object", -1, object.get()).reset();
    const auto held = std::make_shared<int>(1);
    GenericUndoCommand subject([held, this] { log += "r"; }, [held, this] { log += "u"; },
                               object.get(), "holding", -1);
    EXPECT_FALSE(subject.isObsolete());
    EXPECT_GT(held.use_count(), 1);

    object.reset();
    subject.redo();
    subject.undo();

    EXPECT_EQ(log, "");
    EXPECT_TRUE(subject.isObsolete());
    EXPECT_EQ(held.use_count(), 1);
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

TEST_F(GenericUndoCommandTest, MergesOnlyCommandsOfOneIdAndObjectWithoutParts)
{
    auto one = std::make_unique<DeleteSignaler>();
    const DeleteSignaler other;
    const QUndoCommand foreign("foreign");
    EXPECT_TRUE(command("A", 0)->mergeWith(command("B", 0).get())) << "without an object";
    EXPECT_FALSE(command("A", -1)->mergeWith(command("B", -1).get()));
    EXPECT_FALSE(command("A", -2)->mergeWith(command("B", -2).get()));
    EXPECT_FALSE(command("A", 3)->mergeWith(command("B", 4).get()));
    EXPECT_FALSE(command("A", 3)->mergeWith(&foreign));
    EXPECT_FALSE(command("A", 3, one.get())->mergeWith(command("B", 3, &other).get()));
    EXPECT_FALSE(command("A", 3, one.get())->mergeWith(command("B", 3).get()));

    const auto older = command("A", 3);
    const auto newer = command("B", 3);
    (void)command("part", -1, nullptr, newer.get()).release(); // its parent owns it
    EXPECT_FALSE(older->mergeWith(newer.get()));
    EXPECT_FALSE(newer->mergeWith(older.get()));

    const auto ofOne = command("A", 3, one.get());
    const auto alsoOfOne = command("B", 3, one.get());
    one.reset();
    EXPECT_FALSE(ofOne->mergeWith(alsoOfOne.get())) << "its object is destroyed";
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
