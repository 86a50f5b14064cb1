#pragma once

/**
 * Sets OpenBLAS to one thread while an object of this class exists, then restores the previous
 * number. OpenBLAS rounds differently with each number of threads, and nearly singular matrices
 * amplify that to digits that users see. The setting is global to the process: of several objects,
 * in whatever threads, the first one changes it and the last one restores it.
 *
 * OpenBLAS maps 128 MB for each call that runs at the same time, keeps them, and where it gets none
 * tries again for ever. The memory is thus reserved before the first call, and again whenever more
 * threads are wanted than had memory before. One case is left: where another thread is within a
 * call meanwhile, its buffer is not available, and one more is mapped without asking for its
 * memory.
 */
class SingleThreadedBlas
{
public:
    /** @throw std::bad_alloc if there is no memory for a single call. */
    SingleThreadedBlas();
    ~SingleThreadedBlas();

    /** How many threads can call OpenBLAS at the same time: `wanted`, or fewer where memory is
     *  short, at least 1. */
    static int affordableThreads(int wanted);

    SingleThreadedBlas(const SingleThreadedBlas&) = delete;
    SingleThreadedBlas& operator=(const SingleThreadedBlas&) = delete;
};
