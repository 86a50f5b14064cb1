#pragma once

/**
 * While one lives, OpenBLAS works with one thread; what was set before is restored. How its threads
 * share the work decides about the rounding, and where cases lie so close that the matrix is nearly
 * singular, rounding decides about more digits of a fit than users would accept to depend on the
 * number of threads. The setting is one of the whole process: of several that live at a time, in
 * whatever threads, the first one makes it and the last one restores it.
 */
class SingleThreadedBlas
{
public:
    SingleThreadedBlas();
    ~SingleThreadedBlas();

    SingleThreadedBlas(const SingleThreadedBlas&) = delete;
    SingleThreadedBlas& operator=(const SingleThreadedBlas&) = delete;
};
