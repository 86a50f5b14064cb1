#include "UndoStackFixture.h"

#include <mirel_analyzercommon/DeleteSignaler.h>

#include <QApplication>
#include <QUndoView>

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

struct UndoStackTest : UndoStackFixture
{};

} // namespace

TEST_F(UndoStackTest, DoesAPushedCommandOnceThenUndoesAndRedoesInOrder)
{
    ASSERT_EQ(QCoreApplication::instance(), nullptr) << "none is needed";
    EXPECT_EQ(&UndoStack().stack(), &UndoStack().stack());
    push("A");
    EXPECT_EQ(log, "rA ");
    EXPECT_EQ(stack.count(), 1);
    EXPECT_EQ(stack.index(), 1);
    EXPECT_EQ(stack.undoText(), "A");
    push("B");
    log.clear();

    stack.undo();
    stack.undo();
    stack.redo();
    EXPECT_EQ(log, "uB uA rA ");
    push("C");
    EXPECT_EQ(stack.count(), 2) << "what could be redone is discarded";
    EXPECT_EQ(stack.undoText(), "C");
}

TEST_F(UndoStackTest, MergesWithThePreviousCommandOfTheSameId)
{
    push("A", 3);
    push("B", 3);
    log.clear();

    EXPECT_EQ(stack.count(), 1);
    stack.undo();
    stack.redo();
    EXPECT_EQ(log, "uA rB ");
}

TEST_F(UndoStackTest, DropsACommandWhoseObjectIsDestroyedDuringItsFirstRedo)
{
    push("A");
    stack.undo();
    auto object = std::make_unique<DeleteSignaler>();
    auto* const borrowed = object.get();

    UndoStack().push(
        new GenericUndoCommand([&] { object.reset(); }, logging("undone"), borrowed, "B", -1));

    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(stack.count(), 1);
    EXPECT_TRUE(stack.canRedo());
}

TEST_F(UndoStackTest, SkipsCommandsAndPartsOfAMacroWhoseObjectIsDestroyed)
{
    auto object = std::make_unique<DeleteSignaler>();
    const auto pushOfObject = [&](const std::string& name) {
        UndoStack().push(new GenericUndoCommand(logging("r" + name), logging("u" + name),
                                                object.get(), QString::fromStdString(name), -1));
    };
    pushOfObject("C");
    {
        const UndoStack::Macro macro("both");
        push("A");
        pushOfObject("B");
    }
    log.clear();

    object.reset();
    stack.undo();
    stack.redo();
    EXPECT_EQ(log, "uA rA ");
    stack.undo();
    log.clear();
    stack.undo();
    EXPECT_EQ(log, "");
    EXPECT_FALSE(stack.canUndo());
}

// Calls of the stack at the wrong moment

namespace {

/** What a view, a shortcut or a listener may do with the stack at any moment. */
const std::vector<std::pair<const char*, void (*)()>> stackCalls = {
    {"undo", [] { UndoStack().stack().undo(); }},
    {"redo", [] { UndoStack().stack().redo(); }},
    {"clear", [] { UndoStack().stack().clear(); }},
    {"undo and redo", [] { UndoStack().stack().undo(), UndoStack().stack().redo(); }},
    {"undo twice", [] { UndoStack().stack().undo(), UndoStack().stack().undo(); }},
    {"to the beginning", [] { UndoStack().stack().setIndex(0); }},
    {"to the end", [] { UndoStack().stack().setIndex(99); }},
};

} // namespace

TEST_F(UndoStackTest, IgnoresCallsOfTheStackWhileACommandRuns)
{
    for (const auto& [name, call] : stackCalls) {
        SCOPED_TRACE(name);
        stack.clear();
        bool calls = false;
        const auto logAndCall = [&, call = call](const std::string& entry) {
            log += entry;
            if (calls) {
                call();
            }
        };
        push("A");
        push([&] { logAndCall("rB "); }, [&] { logAndCall("uB "); });
        push("C");
        stack.undo();
        log.clear();
        calls = true;

        stack.undo();
        EXPECT_EQ(stack.index(), 1);
        stack.redo();
        EXPECT_EQ(stack.index(), 2);
        stack.setIndex(0);
        EXPECT_EQ(stack.index(), 0);
        stack.setIndex(3);
        EXPECT_EQ(log, "uB rB uB uA rA rB rC ");

        log.clear();
        push([&] { logAndCall("rD "); }, nothing);
        EXPECT_EQ(log, "rD ");
        EXPECT_EQ(stack.count(), 4);
        EXPECT_EQ(stack.index(), 4);
    }
}

TEST_F(UndoStackTest, IgnoresCallsOfTheStackWhileAMacroIsOpen)
{
    for (const auto& [name, call] : stackCalls) {
        SCOPED_TRACE(name);
        stack.clear();
        push("A");
        push("B");
        stack.undo();
        log.clear();
        {
            const UndoStack::Macro macro("macro");
            call();
            EXPECT_EQ(stack.count(), 2);
            EXPECT_EQ(stack.index(), 1);
            push("C");
            call();
        }
        EXPECT_EQ(log, "rC ");
        EXPECT_EQ(stack.count(), 2);
        EXPECT_EQ(stack.index(), 2);
    }
}

TEST_F(UndoStackTest, IgnoresCallsOfTheStackByACommandWhoseObjectIsDestroyedAsItRuns)
{
    for (const auto& [name, call] : stackCalls) {
        SCOPED_TRACE(name);
        stack.clear();
        auto object = std::make_unique<DeleteSignaler>();
        auto* const borrowed = object.get();
        push("A");
        UndoStack().push(new GenericUndoCommand(
            nothing, [&, call = call] { object.reset(), call(); }, borrowed, "B", -1));
        log.clear();

        stack.undo();

        EXPECT_EQ(log, "");
        EXPECT_EQ(stack.count(), 1);
        EXPECT_EQ(stack.index(), 1);
    }
}

TEST_F(UndoStackTest, LetsListenersOfTheStackUndo)
{
    push("A");
    bool undoes = true;
    const auto connection = QObject::connect(&stack, &QUndoStack::indexChanged, [&] {
        if (std::exchange(undoes, false)) {
            stack.undo();
        }
    });
    push("B");
    QObject::disconnect(connection);

    EXPECT_EQ(log, "rA rB uB ");
    EXPECT_EQ(stack.index(), 1);
}

// Exceptions

TEST_F(UndoStackTest, RecordsNothingWhenTheFirstRedoThrows)
{
    push("A");
    stack.undo();

    EXPECT_THROW(push([] { throw StackError(); }, nothing), StackError);

    EXPECT_EQ(stack.count(), 1);
    EXPECT_EQ(stack.index(), 0);
    EXPECT_TRUE(stack.canRedo());
}

TEST_F(UndoStackTest, StaysUsableWhenUndoOrRedoThrows)
{
    bool fails = false;
    const auto logOrFail = [&](const std::string& entry) {
        if (fails) {
            throw StackError();
        }
        log += entry;
    };
    push([&] { logOrFail("r "); }, [&] { logOrFail("u "); });

    fails = true;
    EXPECT_THROW(stack.undo(), StackError);
    EXPECT_EQ(stack.index(), 1);
    fails = false;
    stack.undo();

    fails = true;
    EXPECT_THROW(stack.redo(), StackError);
    EXPECT_EQ(stack.index(), 0);
    fails = false;
    stack.redo();

    EXPECT_EQ(log, "r u r ");
    push("A");
    EXPECT_EQ(stack.count(), 2);
}

TEST_F(UndoStackTest, StaysUsableWhenAForeignCommandThrows)
{
    struct Failing : QUndoCommand
    {
        void undo() override { throw StackError(); }
    };
    UndoStack().push(new Failing);

    EXPECT_THROW(stack.undo(), StackError);

    push("A");
    EXPECT_EQ(stack.count(), 2);
    EXPECT_EQ(stack.index(), 2);
}

// Suspension

TEST_F(UndoStackTest, RecordsNothingThatUndoAndRedoSetOff)
{
    const auto pushInMacro = [this] {
        const UndoStack::Macro macro("set off");
        push("B");
    };
    push("A");
    push(pushInMacro, pushInMacro);
    EXPECT_EQ(stack.count(), 2);

    stack.undo();
    EXPECT_EQ(stack.count(), 2);
    EXPECT_EQ(stack.index(), 1);
    stack.redo();

    EXPECT_EQ(log, "rA rB rB rB ");
    EXPECT_EQ(stack.count(), 2);
    EXPECT_EQ(stack.index(), 2);
}

// Life time and application

namespace {

// Uses the stack as it is destroyed, and ends the process with a failure if that goes wrong.
class UserOfTheStackAtExit
{
public:
    ~UserOfTheStackAtExit()
    {
        int done = 0;
        {
            const UndoStack::Macro macro("at exit");
            auto command = std::make_unique<GenericUndoCommand>([&] { ++done; }, [&] { --done; },
                                                                nullptr, "at exit", -1);
            UndoStack().push(command.release());
        }
        const bool isRecorded = UndoStack().stack().undoText() == "at exit";
        UndoStack().stack().undo();
        if (done != 0 || !isRecorded) {
            std::_Exit(EXIT_FAILURE);
        }
        UndoStack().stack().clear();
    }
};

void useStackAndExit()
{
    static UserOfTheStackAtExit user; // before the stack, so that it is destroyed after it
    UndoStack().stack().clear();
    std::exit(EXIT_SUCCESS);
}

} // namespace

TEST(UndoStackDeathTest, ExistsWhileStaticObjectsAreDestroyed)
{
    testing::FLAGS_gtest_death_test_style = "threadsafe"; // a process that has no stack yet
    EXPECT_EXIT(useStackAndExit(), testing::ExitedWithCode(EXIT_SUCCESS), "");
}

namespace {

struct UndoStackInAnApplicationTest : UndoStackTest
{
    int argumentCount = 1;
    char name[5] = "test";
    char* arguments[2] = {name, nullptr};
    QApplication application{argumentCount, arguments};
};

} // namespace

TEST_F(UndoStackInAnApplicationTest, SuspendsRecordingAlsoWhenAViewMovesTheIndex)
{
    push("A");
    push([this] { push("B"); }, [this] { push("C"); });
    QUndoView view(&stack);
    log.clear();

    view.setCurrentIndex(view.model()->index(0, 0)); // the row of the clean state
    EXPECT_EQ(stack.index(), 0);
    view.setCurrentIndex(view.model()->index(2, 0));

    EXPECT_EQ(log, "rC uA rA rB ");
    EXPECT_EQ(stack.count(), 2);
    EXPECT_EQ(stack.index(), 2);
}

TEST_F(UndoStackTest, OutlivesTheApplicationObject)
{
    {
        int argumentCount = 1;
        char name[] = "test";
        char* arguments[] = {name, nullptr};
        const QApplication application(argumentCount, arguments);
        push("A");
    }

    EXPECT_EQ(&UndoStack().stack(), &stack);
    stack.undo();

    EXPECT_EQ(log, "rA uA ");
}
