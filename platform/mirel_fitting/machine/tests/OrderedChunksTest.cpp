#include <mirel_fitting/machine/OrderedChunks.h>

#include "RecordedWork.h"

#include <gtest/gtest.h>

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
    OrderedChunks::run(chunks, threads, [&] { return std::make_unique<Recorder>(order, failing); });
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
    EXPECT_TRUE(run(0, 3).empty());
}

TEST(OrderedChunks, MakesNoMoreWorkersThanChunks)
{
    int made = 0;
    std::vector<std::size_t> order;
    OrderedChunks::run(2, 5, [&] {
        ++made;
        return std::make_unique<Recorder>(order, noFailure);
    });
    EXPECT_EQ(made, 2);
}

TEST(OrderedChunks, ThrowsWhatAWorkerThrew)
{
    for (const int threads : {1, 2, 4}) {
        EXPECT_THROW(run(50, threads, 20), std::runtime_error);
    }
}

TEST(OrderedChunks, ReportsItsWorkChunkByChunk)
{
    const RecordedWork recorded;
    std::vector<std::size_t> order;

    OrderedChunks::run(
        50, 1, [&] { return std::make_unique<Recorder>(order, noFailure); }, 0.5);

    EXPECT_EQ(recorded.reports(), 50);
    EXPECT_NEAR(recorded.work(), 0.5, 1e-9);
}

TEST(OrderedChunks, EndsWhenTheReportThrows)
{
    const RecordedWork recorded(1.0, 3);

    EXPECT_THROW(run(50, 1), std::runtime_error);
    EXPECT_EQ(recorded.reports(), 3);
}

namespace {

/** Works on the calling thread until another has begun, and on others until the caller, which takes
 *  two chunks at most, reports more often than that. */
class Slow : public OrderedChunks::Worker
{
public:
    Slow(std::atomic<bool>& hasOtherBegun, const std::atomic<int>& reports)
        : hasOtherBegun(hasOtherBegun), reports(reports)
    {}

    void compute(std::size_t /*chunk*/) override
    {
        const bool isCaller = std::this_thread::get_id() == caller;
        hasOtherBegun = hasOtherBegun || !isCaller;
        while (!(isCaller ? hasOtherBegun.load() : reports > 2)) {
            std::this_thread::yield();
        }
    }
    void handOver(std::size_t /*chunk*/) override {}

private:
    const std::thread::id caller = std::this_thread::get_id(); // makes the workers
    std::atomic<bool>& hasOtherBegun;
    const std::atomic<int>& reports;
};

} // namespace

TEST(OrderedChunks, ReportsOnTheCallingThreadWhileItWaitsForOthers)
{
    std::atomic<bool> hasOtherBegun{false};
    std::atomic<int> reports{0};
    const FitProgress progress(
        [&, caller = std::this_thread::get_id()](double, const std::string&) {
            EXPECT_EQ(std::this_thread::get_id(), caller);
            return ++reports > 0;
        });
    const FitProgress::Portion portion(0.0, 1.0, "Working");

    OrderedChunks::run(3, 2, [&] { return std::make_unique<Slow>(hasOtherBegun, reports); });

    EXPECT_GT(reports, 2);
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

        OrderedChunks::runEach(100, threads, makeWork);

        EXPECT_EQ(done, std::vector<int>(100, 1)) << threads;
        EXPECT_EQ(made, threads);
    }
}
