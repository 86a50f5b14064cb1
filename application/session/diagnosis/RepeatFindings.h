#pragma once

#include <session/diagnosis/DiagnosedCases.h>
#include <session/diagnosis/Finding.h>

#include <surrogate_session/Export.h>

#include <vector>

/** Cases with the same inputs (as ReplicatedCases compares them), or almost. */
namespace RepeatFindings {
/**
 * "exactCopies": more cases repeat inputs and outputs of others than do so by chance, which they do
 * where outputs have few values; a note where they are few. "unexplainedOutput": repeats vary by
 * more than half of the variance of all cases; then R2 is at most 1 - pure error / total, as sums
 * of squares. "conflictingRepeats": two of them differ by 40 % of the output's range, while the
 * others lie close. O(n log n) in cases.
 */
SURROGATE_SESSION_EXPORT std::vector<Finding> repeats(const DiagnosedCases& cases);

/** "nearCopies": ten times as many pairs of cases as by chance differ by less than a thousandth of
 *  the range in every input. O(n^2) in cases. */
SURROGATE_SESSION_EXPORT std::vector<Finding> nearCopies(const DiagnosedCases& cases);
} // namespace RepeatFindings
