#pragma once

/**
 * Sets OpenBLAS to one thread while an object of this class exists, then restores the previous
 * number. OpenBLAS rounds differently with each number of threads, and nearly singular matrices
 * amplify that to digits that users see. The setting is global to the process: of several objects,
 * in whatever threads, the first one changes it and the last one restores it.
 */
class SingleThreadedBlas
{
public:
    SingleThreadedBlas();
    ~SingleThreadedBlas();

    SingleThreadedBlas(const SingleThreadedBlas&) = delete;
    SingleThreadedBlas& operator=(const SingleThreadedBlas&) = delete;
};
