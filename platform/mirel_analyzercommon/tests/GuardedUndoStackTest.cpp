#include <mirel_analyzercommon/GuardedUndoStack.h>

#include <gtest/gtest.h>

TEST(GuardedUndoStack, IsClearedUnlessItIsBlocked)
{
    bool isBlocked = true;
    GuardedUndoStack stack([&] { return isBlocked; });
    stack.push(new QUndoCommand);

    stack.clear();
    EXPECT_EQ(stack.count(), 1);

    isBlocked = false;
    stack.clear();
    EXPECT_EQ(stack.count(), 0);
}
