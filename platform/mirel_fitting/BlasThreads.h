#pragma once

#include <cstddef>

/**
 * While it lives, OpenBLAS works with the threads that threadCount() allows, or with one where more
 * would cost more than they bring; what was set before is restored. The setting is one of the whole
 * process.
 */
class BlasThreads
{
public:
    /** @param order of the matrices to be factorised. */
    explicit BlasThreads(std::size_t order);
    ~BlasThreads();

    BlasThreads(const BlasThreads&) = delete;
    BlasThreads& operator=(const BlasThreads&) = delete;

private:
    int before;
};
