#include <mirel_fitting/machine/OrderedChunks.h>

#include <mirel_fitting/FitProgress.h>
#include <mirel_fitting/machine/SingleThreadedBlas.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace {

class Schedule
{
public:
    Schedule(std::size_t chunks, double work)
        : chunks(chunks), workPerChunk(work / static_cast<double>(chunks))
    {}

    /** Takes chunks until there are none, or something failed. FitProgress ignores reports of other
     *  threads than that of the fit. */
    void run(OrderedChunks::Worker& worker)
    {
        std::size_t reported = 0;
        try {
            for (std::size_t chunk = take(); chunk < chunks; chunk = take()) {
                FitProgress::advance(workPerChunk * static_cast<double>(chunk + 1 - reported));
                reported = chunk + 1;
                worker.compute(chunk);
                if (!waitForTurn(chunk)) {
                    return;
                }
                worker.handOver(chunk);
                endTurn();
            }
        } catch (...) {
            stop(std::current_exception());
        }
    }

    void rethrowFailure() const
    {
        if (failure) {
            std::rethrow_exception(failure);
        }
    }

private:
    std::size_t take()
    {
        const std::lock_guard<std::mutex> lock(mutex);
        return failure ? chunks : next++;
    }

    // No deadlock: the thread that has the earliest chunk not yet handed over never waits.
    bool waitForTurn(std::size_t chunk)
    {
        constexpr std::chrono::milliseconds interval(50); // often enough for progress bars

        std::unique_lock<std::mutex> lock(mutex);
        while (!changed.wait_for(lock, interval, [&] { return turn == chunk || failure; })) {
            lock.unlock(); // the report may take long, or throw
            FitProgress::advance();
            lock.lock();
        }
        return !failure;
    }

    void endTurn()
    {
        const std::lock_guard<std::mutex> lock(mutex);
        ++turn;
        changed.notify_all();
    }

    void stop(std::exception_ptr reason)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        if (!failure) {
            failure = std::move(reason);
        }
        changed.notify_all();
    }

    std::size_t chunks;
    double workPerChunk;
    std::size_t next = 0;
    std::size_t turn = 0;
    std::exception_ptr failure;
    std::mutex mutex;
    std::condition_variable changed;
};

class Independent : public OrderedChunks::Worker
{
public:
    explicit Independent(OrderedChunks::Work work) : work(std::move(work)) {}

    void compute(std::size_t chunk) override { work(chunk); }
    void handOver(std::size_t /*chunk*/) override {}

private:
    OrderedChunks::Work work;
};

} // namespace

OrderedChunks::Worker::~Worker() = default;

void OrderedChunks::runEach(std::size_t chunks, int threads, const std::function<Work()>& makeWork,
                            double work)
{
    run(
        chunks, threads, [&] { return std::make_unique<Independent>(makeWork()); }, work);
}

void OrderedChunks::run(std::size_t chunks, int threads,
                        const std::function<std::unique_ptr<Worker>()>& makeWorker, double work)
{
    const auto wanted = static_cast<int>(
        std::clamp<std::size_t>(chunks, 1, static_cast<std::size_t>(std::max(threads, 1))));
    const auto used = static_cast<std::size_t>(SingleThreadedBlas::affordableThreads(wanted));
    std::vector<std::unique_ptr<Worker>> workers;
    workers.reserve(used);
    for (std::size_t k = 0; k < used; ++k) {
        workers.push_back(makeWorker());
    }

    Schedule schedule(chunks, work);
    std::vector<std::thread> others;
    others.reserve(used);
    try {
        for (std::size_t k = 1; k < used; ++k) {
            others.emplace_back([&schedule, worker = workers[k].get()] { schedule.run(*worker); });
        }
    } catch (const std::system_error&) {
        // The system refuses more threads: those already started take all chunks.
    }
    schedule.run(*workers[0]);
    for (std::thread& other : others) {
        other.join();
    }
    schedule.rethrowFailure();
}
