#include <mirel_fitting/machine/OrderedChunks.h>

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
    explicit Schedule(std::size_t chunks) : chunks(chunks) {}

    /** Takes chunks until there are none, or something failed. */
    void work(OrderedChunks::Worker& worker, const std::function<void(std::size_t)>& report,
              const std::function<void()>& pause)
    {
        try {
            for (std::size_t chunk = take(); chunk < chunks; chunk = take()) {
                if (report) {
                    report(chunk);
                }
                worker.compute(chunk);
                if (!waitForTurn(chunk, pause)) {
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
    bool waitForTurn(std::size_t chunk, const std::function<void()>& pause)
    {
        constexpr std::chrono::milliseconds interval(50); // often enough for progress bars

        std::unique_lock<std::mutex> lock(mutex);
        while (!changed.wait_for(lock, interval, [&] { return turn == chunk || failure; })) {
            if (pause) {
                lock.unlock(); // pause() may take long, or throw
                pause();
                lock.lock();
            }
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
                            const Work& report)
{
    run(
        chunks, threads, [&] { return std::make_unique<Independent>(makeWork()); }, report);
}

void OrderedChunks::run(std::size_t chunks, int threads,
                        const std::function<std::unique_ptr<Worker>()>& makeWorker,
                        const std::function<void(std::size_t chunk)>& report,
                        const std::function<void()>& pause)
{
    const std::size_t used =
        std::clamp<std::size_t>(chunks, 1, static_cast<std::size_t>(std::max(threads, 1)));
    std::vector<std::unique_ptr<Worker>> workers;
    workers.reserve(used);
    for (std::size_t k = 0; k < used; ++k) {
        workers.push_back(makeWorker());
    }

    Schedule schedule(chunks);
    std::vector<std::thread> others;
    others.reserve(used);
    try {
        for (std::size_t k = 1; k < used; ++k) {
            others.emplace_back([&schedule, worker = workers[k].get()] {
                schedule.work(*worker, nullptr, nullptr);
            });
        }
    } catch (const std::system_error&) {
        // The system refuses more threads: those already started take all chunks.
    }
    schedule.work(*workers[0], report, pause);
    for (std::thread& other : others) {
        other.join();
    }
    schedule.rethrowFailure();
}
