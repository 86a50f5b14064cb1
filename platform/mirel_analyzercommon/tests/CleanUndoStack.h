#pragma once

#include <mirel_analyzercommon/GenericUndoCommand.h>
#include <mirel_analyzercommon/UndoStack.h>

#include <QUndoStack>

#include <gtest/gtest.h>

#include <memory>

/**
 * For tests: the process has one undo stack, so a test that uses it begins with an empty one and
 * checks at its end that it has left neither a suspension nor a macro open. Use it as a member of
 * the fixture, before what pushes commands.
 */
class CleanUndoStack
{
public:
    CleanUndoStack() { UndoStack().stack().clear(); }

    ~CleanUndoStack()
    {
        QUndoStack& stack = UndoStack().stack();
        stack.clear();
        const boost::function<void()> nothing{};
        // Not recorded while suspended; recorded, but not undoable, within an open macro.
        UndoStack().push(
            std::make_unique<GenericUndoCommand>(nothing, nothing, nullptr, "probe", -1).release());
        EXPECT_EQ(stack.count(), 1) << "a suspension of undo recording is still open";
        EXPECT_EQ(stack.index(), stack.count()) << "an undo macro is still open";
        stack.clear();
    }

    CleanUndoStack(const CleanUndoStack&) = delete;
    CleanUndoStack& operator=(const CleanUndoStack&) = delete;
};
