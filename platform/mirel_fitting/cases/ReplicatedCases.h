#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

/**
 * Which cases repeat the inputs of others exactly: how their outputs differ is error that no model
 * of these inputs explains.
 */
class ReplicatedCases
{
public:
    /** Nothing is repeated. */
    ReplicatedCases() = default;

    /**
     * O(cases) time, 36 bytes per case at most during construction, and 4 later if there are
     * replicates.
     * @param columns one array of `cases` finite values per input that counts, borrowed for the
     *                call. Without any, every case repeats the others.
     * @param cases   less than 2^32.
     */
    ReplicatedCases(const std::vector<const double*>& columns, std::size_t cases);

    /** Whether there is any replicate. */
    bool areThere() const { return !pointOfCase.empty(); }

    /** The cases less the distinct points among them. */
    std::size_t degreesOfFreedom() const { return pointOfCase.size() - points; }

    /** The sum of squares of an output about its means at the points; 0 without replicates.
     *  @param values one finite value per case, borrowed for the call. */
    double squaresWithin(const double* values) const;

private:
    std::vector<std::uint32_t> pointOfCase;
    std::size_t points = 0;
};
