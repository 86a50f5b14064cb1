#pragma once

#include <surrogate_session/Export.h>

#include <cstddef>
#include <vector>

/**
 * Splits cases into folds for cross-validation. Copies of a case (the same inputs and outputs, as
 * ReplicatedCases compares them) stay in one fold, since a model fitted to one of them would know
 * the others; replicates with other outputs are not copies. The folds depend on nothing but the
 * cases and their order, and are the same on every machine.
 */
class SURROGATE_SESSION_EXPORT CaseFolds
{
public:
    /** @param columns one of `cases` finite numbers per input and per output; borrowed for the
     *  call. */
    CaseFolds(const std::vector<const double*>& columns, std::size_t cases);

    /** The largest number of folds: that of the distinct cases. */
    std::size_t max() const;

    /**
     * The fold of each case, from 0. Every fold has a case; their sizes differ by no more than the
     * largest number of copies.
     * @param folds from 1 to max().
     */
    std::vector<std::size_t> split(std::size_t folds) const;

private:
    std::vector<std::size_t> groups;     ///< one per case: the group of its copies, from 0
    std::vector<std::size_t> groupSizes; ///< one per group: the number of its cases
};
