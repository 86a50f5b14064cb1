#include <mirel_analyzercommon/SuspendableInterface.h>

#include <gtest/gtest.h>

#include <memory>

namespace {

class LeftSuspendable : public virtual SuspendableInterface
{};

class RightSuspendable : public virtual SuspendableInterface
{};

class SuspendableByTwoPaths : public LeftSuspendable, public RightSuspendable
{
public:
    SuspendableByTwoPaths(int& depth, bool& destroyed) : depth(depth), destroyed(destroyed) {}
    ~SuspendableByTwoPaths() override { destroyed = true; }
    void suspend() override { ++depth; }
    void resume() override { --depth; }

private:
    int& depth;
    bool& destroyed;
};

} // namespace

TEST(SuspendableInterface, IsOneBaseWhenInheritedVirtuallyByTwoPaths)
{
    int depth = 0;
    bool destroyed = false;
    std::unique_ptr<SuspendableInterface> suspendable =
        std::make_unique<SuspendableByTwoPaths>(depth, destroyed);

    suspendable->suspend();
    EXPECT_EQ(depth, 1);
    suspendable->resume();
    EXPECT_EQ(depth, 0);

    suspendable.reset();
    EXPECT_TRUE(destroyed);
}
