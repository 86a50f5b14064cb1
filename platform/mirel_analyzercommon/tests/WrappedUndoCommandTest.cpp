#include "CleanUndoStack.h"

#include <mirel_analyzercommon/DeleteSignaler.h>

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <string>

namespace {

const boost::function<void()> nothing;

// An application's own command: adds `amount` to `total`.
class AddCommand : public QUndoCommand
{
public:
    AddCommand(int& total, int amount, int commandId = -1)
        : total(total), amount(amount), commandId(commandId)
    {
        setText(describe());
    }

    int id() const override { return commandId; }

    bool mergeWith(const QUndoCommand* other) override
    {
        amount += static_cast<const AddCommand*>(other)->amount;
        setText(describe());
        setObsolete(amount == 0);
        return true;
    }

    void redo() override
    {
        total += amount;
        setText(describe());
    }

    void undo() override
    {
        total -= amount;
        setObsolete(isObsoleteOnceUndone);
    }

    bool isObsoleteOnceUndone = false;

private:
    QString describe() const { return QString("Add %1").arg(amount); }

    int& total;
    int amount;
    int commandId;
};

class SelfObsoleteCommand : public QUndoCommand
{
public:
    void redo() override { setObsolete(true); }
};

struct WrappedUndoCommandTest : testing::Test
{
    CleanUndoStack cleanUndoStack;
    QUndoStack& stack = UndoStack().stack();
    int total = 0;
};

} // namespace

TEST_F(WrappedUndoCommandTest, ShowsTheTextsOfTheCommand)
{
    const std::array<QString, 3> texts[] = {
        {"Add 5", "Add 5", "Add 5"},
        {"in the list\nin the menu", "in the list", "in the menu"},
        {"", "", ""},
    };
    for (const auto& [text, inList, inMenu] : texts) {
        UndoStack().push(new QUndoCommand(text));
        EXPECT_EQ(stack.text(stack.count() - 1), inList);
        EXPECT_EQ(stack.undoText(), inMenu);
    }
}

TEST_F(WrappedUndoCommandTest, MergesAsTheCommandDoesAndShowsItsNewText)
{
    UndoStack().push(new AddCommand(total, 5, 12));
    UndoStack().push(new AddCommand(total, 6, 12));

    EXPECT_EQ(stack.count(), 1);
    EXPECT_EQ(stack.undoText(), "Add 11");
    EXPECT_EQ(stack.command(0)->id(), 12);
    EXPECT_EQ(total, 11);
    stack.undo();
    EXPECT_EQ(total, 0);
    stack.redo();
    EXPECT_EQ(total, 11);
}

TEST_F(WrappedUndoCommandTest, DoesNotMergeWithAGenericCommandOfTheSameId)
{
    UndoStack().push(new AddCommand(total, 5, 12));
    UndoStack().push(new GenericUndoCommand(nothing, nothing, nullptr, "generic", 12));
    UndoStack().push(new AddCommand(total, 6, 12));

    EXPECT_EQ(stack.count(), 3);
}

TEST_F(WrappedUndoCommandTest, LeavesTheStackWhenMergingOrUndoMakesTheCommandObsolete)
{
    UndoStack().push(new AddCommand(total, 5, 12));
    UndoStack().push(new AddCommand(total, -5, 12));
    EXPECT_EQ(stack.count(), 0);
    EXPECT_EQ(total, 0);

    auto* command = new AddCommand(total, 5);
    command->isObsoleteOnceUndone = true;
    UndoStack().push(command);
    stack.undo();
    EXPECT_EQ(total, 0);
    EXPECT_EQ(stack.count(), 0);
}

TEST_F(WrappedUndoCommandTest, IsNotRunAgainByCallsOfTheStackThatItSetsOff)
{
    struct Restless : QUndoCommand
    {
        explicit Restless(std::string& calls) : log(calls) {}
        void redo() override
        {
            log += "r ";
            UndoStack().stack().redo();
        }
        void undo() override
        {
            log += "u ";
            UndoStack().stack().undo();
        }
        std::string& log;
    };
    std::string log;
    UndoStack().push(new Restless(log));
    UndoStack().push(new Restless(log));

    stack.undo();
    stack.redo();

    EXPECT_EQ(log, "r r u r ");
    EXPECT_EQ(stack.index(), 2);
}

TEST_F(WrappedUndoCommandTest, DoesNothingOfACommandThatIsObsolete)
{
    auto* pushedObsolete = new AddCommand(total, 7);
    pushedObsolete->setObsolete(true);
    UndoStack().push(pushedObsolete);
    EXPECT_EQ(total, 0);
    EXPECT_EQ(stack.count(), 0);

    auto* command = new AddCommand(total, 5);
    UndoStack().push(command);
    command->setObsolete(true);
    stack.undo();
    EXPECT_EQ(total, 5) << "made obsolete meanwhile";
    EXPECT_EQ(stack.count(), 0);
}

TEST_F(WrappedUndoCommandTest, LeavesNoTraceWhenItsFirstRedoMakesItObsolete)
{
    UndoStack().push(new AddCommand(total, 5));
    stack.undo();

    UndoStack().push(new SelfObsoleteCommand);

    EXPECT_EQ(stack.count(), 1);
    EXPECT_TRUE(stack.canRedo());
}

TEST_F(WrappedUndoCommandTest, RunsThePartsOfTheCommand)
{
    struct Part : QUndoCommand
    {
        Part(int& total, QUndoCommand* parent) : QUndoCommand(parent), total(total) {}
        void redo() override { ++total; }
        void undo() override { --total; }
        int& total;
    };
    auto* whole = new QUndoCommand("whole");
    new Part(total, whole);
    new Part(total, whole);

    UndoStack().push(whole);
    EXPECT_EQ(total, 2);

    stack.undo();
    EXPECT_EQ(total, 0);
}

TEST_F(WrappedUndoCommandTest, RunsTheCommandWhileRecordingIsSuspended)
{
    struct Pushing : QUndoCommand
    {
        explicit Pushing(int& total) : total(total) {}
        void redo() override { UndoStack().push(new AddCommand(total, 1)); }
        void undo() override { UndoStack().push(new AddCommand(total, 10)); }
        int& total;
    };

    UndoStack().push(new Pushing(total));
    EXPECT_EQ(stack.count(), 1);
    stack.undo();
    stack.redo();

    EXPECT_EQ(total, 12);
    EXPECT_EQ(stack.count(), 1);
    EXPECT_EQ(stack.index(), 1);
}

TEST_F(WrappedUndoCommandTest, WrapsSubclassesOfTheGenericCommandThatBringTheirOwnRedo)
{
    class Pushing : public GenericUndoCommand
    {
    public:
        explicit Pushing(int& total)
            : GenericUndoCommand(nothing, nothing, nullptr, "pushing", -1), total(total)
        {}
        void redo() override { UndoStack().push(new AddCommand(total, 1)); }

    private:
        int& total;
    };

    UndoStack().push(new Pushing(total));

    EXPECT_EQ(total, 1);
    EXPECT_EQ(stack.count(), 1);
    EXPECT_EQ(stack.undoText(), "pushing");
}
