#include <mirel_fitting/ThreadCount.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

namespace {

class ThreadCount : public testing::Test
{
protected:
    ~ThreadCount() override { setThreadCount(0); }
};

} // namespace

TEST_F(ThreadCount, IsTheNumberOfCoresUnlessItIsSet)
{
    EXPECT_EQ(threadCount(), std::max(1, static_cast<int>(std::thread::hardware_concurrency())));
    setThreadCount(3);
    setThreadCount(-5);

    EXPECT_EQ(threadCount(), std::max(1, static_cast<int>(std::thread::hardware_concurrency())));
    setThreadCount(1);
    EXPECT_EQ(threadCount(), 1);
    setThreadCount(77);
    EXPECT_EQ(threadCount(), 77);
}

TEST_F(ThreadCount, HoldsForEveryThread)
{
    setThreadCount(3);
    int seen = 0;

    std::thread([&] { seen = threadCount(); }).join();

    EXPECT_EQ(seen, 3);
}
