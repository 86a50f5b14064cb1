#include <mirel_fitting/machine/OrderedChunks.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <stdexcept>
#include <thread>
#include <vector>

namespace {

/** Notes the chunks that it hands over, and where. */
class Recorder : public OrderedChunks::Worker
{
public:
    Recorder(std::vector<std::size_t>& order, std::size_t failing) : order(order), failing(failing)
    {}

    void compute(std::size_t chunk) override
    {
        if (chunk == failing) {
            throw std::runtime_error("chunk");
        }
        computed = chunk;
    }
    void handOver(std::size_t chunk) override
    {
        EXPECT_EQ(computed, chunk);
        order.push_back(chunk);
    }

private:
    std::vector<std::size_t>& order;
    std::size_t failing;
    std::size_t computed = 0;
};

constexpr std::size_t noFailure = 1000000;

std::vector<std::size_t> run(std::size_t chunks, int threads, std::size_t failing = noFailure)
{
    std::vector<std::size_t> order;
    OrderedChunks::run(
        chunks, threads, [&] { return std::make_unique<Recorder>(order, failing); },
        [](std::size_t) {});
    return order;
}

} // namespace

TEST(OrderedChunks, HandsOverInOrderWhateverTheNumberOfThreads)
{
    std::vector<std::size_t> expected;
    for (std::size_t chunk = 0; chunk < 200; ++chunk) {
        expected.push_back(chunk);
    }
    for (const int threads : {-1, 0, 1, 2, 7}) {
        EXPECT_EQ(run(200, threads), expected) << threads;
    }
}

TEST(OrderedChunks, DoesNothingForNoChunks)
{
    EXPECT_TRUE(run(0, 3).empty());
}

TEST(OrderedChunks, MakesNoMoreWorkersThanChunks)
{
    int made = 0;
    std::vector<std::size_t> order;
    OrderedChunks::run(
        2, 5,
        [&] {
            ++made;
            return std::make_unique<Recorder>(order, noFailure);
        },
        [](std::size_t) {});
    EXPECT_EQ(made, 2);
}

TEST(OrderedChunks, ThrowsWhatAWorkerThrew)
{
    for (const int threads : {1, 2, 4}) {
        EXPECT_THROW(run(50, threads, 20), std::runtime_error);
    }
}

TEST(OrderedChunks, ReportsOnTheCallingThreadInAscendingOrder)
{
    std::vector<std::size_t> order;
    std::vector<std::size_t> reported;
    OrderedChunks::run(
        100, 3, [&] { return std::make_unique<Recorder>(order, noFailure); },
        [&, caller = std::this_thread::get_id()](std::size_t chunk) {
            EXPECT_EQ(std::this_thread::get_id(), caller);
            reported.push_back(chunk);
        });
    EXPECT_TRUE(std::is_sorted(reported.begin(), reported.end()));
}

TEST(OrderedChunks, EndsWhenTheReportThrows)
{
    std::vector<std::size_t> order;
    EXPECT_THROW(OrderedChunks::run(
                     1, 3, [&] { return std::make_unique<Recorder>(order, noFailure); },
                     [](std::size_t) { throw std::logic_error("enough"); }),
                 std::logic_error);
    EXPECT_TRUE(order.empty());
}

namespace {

/** Works on the calling thread until another has begun, and on others until the caller pauses. */
class Slow : public OrderedChunks::Worker
{
public:
    Slow(std::atomic<bool>& hasOtherBegun, std::atomic<bool>& hasPaused)
        : hasOtherBegun(hasOtherBegun), hasPaused(hasPaused)
    {}

    void compute(std::size_t /*chunk*/) override
    {
        const bool isCaller = std::this_thread::get_id() == caller;
        hasOtherBegun = hasOtherBegun || !isCaller;
        while (!(isCaller ? hasOtherBegun : hasPaused)) {
            std::this_thread::yield();
        }
    }
    void handOver(std::size_t /*chunk*/) override {}

private:
    const std::thread::id caller = std::this_thread::get_id(); // makes the workers
    std::atomic<bool>& hasOtherBegun;
    std::atomic<bool>& hasPaused;
};

} // namespace

TEST(OrderedChunks, PausesWhileItWaitsForOthers)
{
    std::atomic<bool> hasOtherBegun{false};
    std::atomic<bool> hasPaused{false};
    std::thread::id where;

    OrderedChunks::run(
        3, 2, [&] { return std::make_unique<Slow>(hasOtherBegun, hasPaused); }, nullptr,
        [&] {
            where = std::this_thread::get_id();
            hasPaused = true;
        });

    EXPECT_EQ(where, std::this_thread::get_id());
}

TEST(OrderedChunks, DoesEachChunkOnceWithTheBuffersOfItsThread)
{
    for (const int threads : {1, 3}) {
        std::vector<int> done(100, 0);
        int made = 0;
        const auto makeWork = [&]() -> OrderedChunks::Work {
            ++made;
            return [&done, buffer = std::vector<int>(1)](std::size_t chunk) mutable {
                buffer[0] = static_cast<int>(chunk);
                done[chunk] += buffer[0] == static_cast<int>(chunk) ? 1 : 0;
            };
        };

        OrderedChunks::runEach(100, threads, makeWork, nullptr);

        EXPECT_EQ(done, std::vector<int>(100, 1)) << threads;
        EXPECT_EQ(made, threads);
    }
}
