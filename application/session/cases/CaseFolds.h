#pragma once

#include <surrogate_session/Export.h>

#include <cstddef>
#include <vector>

/**
 * How cases are parted for cross-validation. Copies of a case stay together: one of them among the
 * cases of a fit would give the others away. Repeated measurements are no copies. The parts depend
 * on the cases and their order alone, and are the same on every machine.
 */
class SURROGATE_SESSION_EXPORT CaseFolds
{
public:
    /** @param columns one of `cases` finite numbers per input and per output; borrowed for the
     *  call. */
    CaseFolds(const std::vector<const double*>& columns, std::size_t cases);

    /** How many folds there can be: the cases without copies. */
    std::size_t most() const;

    /**
     * The fold of each case, from 0. Every fold has a case; their sizes differ by no more than the
     * largest number of copies.
     * @param folds from 1 to most().
     */
    std::vector<std::size_t> split(std::size_t folds) const;

private:
    std::vector<std::size_t> groups;     ///< one per case: that of its copies, from 0
    std::vector<std::size_t> groupSizes; ///< one per group: its cases
};
