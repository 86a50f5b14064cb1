#pragma once

#include <cstddef>
#include <functional>
#include <memory>

/**
 * Work on numbered chunks by several threads. Each hands its results over in the order of the
 * chunks, so that what is summed there comes out the same whatever the number of threads. No
 * thread is left when the work is done.
 */
class OrderedChunks
{
public:
    /** What one thread works with: its buffers and its part of the result. */
    class Worker
    {
    public:
        virtual ~Worker();

        /** At the same time as other workers. */
        virtual void compute(std::size_t chunk) = 0;

        /** Gives away what compute() made of the chunk; after all earlier chunks, and never while
         *  another worker does. */
        virtual void handOver(std::size_t chunk) = 0;
    };

    /**
     * @param threads    the calling one included; no more are used than there are chunks.
     * @param makeWorker is called on the calling thread, once per thread used.
     * @param report     is called on the calling thread before each chunk that it takes; ascending.
     * @param pause      is called on the calling thread about every 50 ms while that waits for
     *                   the others.
     * What any of them throws ends the work, and is thrown from here.
     */
    static void run(std::size_t chunks, int threads,
                    const std::function<std::unique_ptr<Worker>()>& makeWorker,
                    const std::function<void(std::size_t chunk)>& report,
                    const std::function<void()>& pause = nullptr);

    using Work = std::function<void(std::size_t chunk)>;

    /**
     * The same where nothing is handed over, since what a chunk gives has a place of its own.
     * @param makeWork is called like makeWorker; what it returns may own buffers, as it is called
     *                 by one thread only.
     */
    static void runEach(std::size_t chunks, int threads, const std::function<Work()>& makeWork,
                        const Work& report);
};
