#pragma once

#include "CleanUndoStack.h"

#include <stdexcept>
#include <string>

/** The application's undo stack, and commands on it that log what is done with them. */
struct UndoStackFixture : testing::Test
{
    CleanUndoStack cleanUndoStack;
    const boost::function<void()> nothing{};
    QUndoStack& stack = UndoStack().stack();
    std::string log;

    boost::function<void()> logging(const std::string& entry)
    {
        return [this, entry] { log += entry; };
    }

    void push(const std::string& name, int id = -1)
    {
        UndoStack().push(new GenericUndoCommand(logging("r" + name + " "),
                                                logging("u" + name + " "), nullptr,
                                                QString::fromStdString(name), id));
    }

    void push(boost::function<void()> redo, boost::function<void()> undo)
    {
        UndoStack().push(new GenericUndoCommand(redo, undo, nullptr, "functions", -1));
    }
};

/** What the commands of these tests throw. */
struct StackError : std::runtime_error
{
    StackError() : std::runtime_error("from a command") {}
};
