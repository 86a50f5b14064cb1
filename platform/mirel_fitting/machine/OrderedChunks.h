#pragma once

#include <cstddef>
#include <functional>
#include <memory>

/**
 * Work on numbered chunks by several threads. Results are handed over in the order of the chunks,
 * one at a time, so that sums have the same bits for every number of threads. All threads have
 * ended when a call returns.
 */
class OrderedChunks
{
public:
    /** One thread's buffers and its part of the result. */
    class Worker
    {
    public:
        virtual ~Worker();

        /** Runs concurrently with the compute() of other workers. */
        virtual void compute(std::size_t chunk) = 0;

        /** Adds the result of compute() to the whole: in the order of the chunks, never
         *  concurrently. */
        virtual void handOver(std::size_t chunk) = 0;
    };

    /**
     * The calling thread reports to FitProgress::advance(), before each chunk that it takes and
     * about every 50 ms while it waits for the other threads.
     * @param threads    the calling one included; no more are used than there are chunks.
     * @param makeWorker is called on the calling thread, once per thread used.
     * @param work       of all chunks together, in the unit of FitProgress::advance().
     * An exception of a worker or of FitProgress stops all threads and is rethrown here.
     */
    static void run(std::size_t chunks, int threads,
                    const std::function<std::unique_ptr<Worker>()>& makeWorker, double work = 0.0);

    using Work = std::function<void(std::size_t chunk)>;

    /**
     * For chunks that write to disjoint places and hand nothing over.
     * @param makeWork is called like makeWorker; each function that it returns is called by one
     *                 thread only, and may own buffers.
     */
    static void runEach(std::size_t chunks, int threads, const std::function<Work()>& makeWork,
                        double work = 0.0);
};
