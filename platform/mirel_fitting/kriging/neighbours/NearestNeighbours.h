#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

/** Finds the nearest of many points by a tree of their coordinates (nanoflann). */
class NearestNeighbours
{
public:
    /**
     * Takes O(count log count) time and some 20 bytes per point. Calls FitProgress::advance() every
     * few milliseconds.
     * @param coordinates point by point, `count` x `inputs`; borrowed for life.
     */
    NearestNeighbours(const double* coordinates, std::size_t count, std::size_t inputs);
    ~NearestNeighbours();

    /**
     * May be called by several threads at once.
     * @param indices receives at most `wanted` of them, the nearest first.
     * @param squares receives their squared distances.
     * @return how many were found: `wanted`, or all points if there are fewer; 0 where the
     *         distances are NaN.
     */
    std::size_t find(const double* point, std::size_t wanted, std::uint32_t* indices,
                     double* squares) const;

private:
    class Impl;
    std::unique_ptr<Impl> impl;
};
