#pragma once

#include <session/diagnosis/DiagnosedCases.h>
#include <session/diagnosis/Finding.h>

#include <surrogate_session/Export.h>

#include <vector>

/** What can be seen in single columns. Needs eight cases; constants() two. */
namespace ColumnFindings {
/** Inputs and outputs that are the same in every case, and inputs that are in all cases but one or
 *  vary by less than a millionth of their size: "constantInput", "constantOutput",
 *  "nearlyConstantInput". */
SURROGATE_SESSION_EXPORT std::vector<Finding> constants(const DiagnosedCases& cases);

/** Inputs of two values, "fewValuesInput"; outputs of two to four, "fewValuesOutput". */
SURROGATE_SESSION_EXPORT std::vector<Finding> fewValues(const DiagnosedCases& cases);

/** Columns of which one or few cases lie further from the others than these from each other:
 *  "farCase", or "missingCode" where all have the same number such as -999. Not said where that is
 * a matter of scale, that is for values over decades. */
SURROGATE_SESSION_EXPORT std::vector<Finding> farCases(const DiagnosedCases& cases);

/** Positive columns that are even in their logarithm but not themselves: "inputOverDecades",
 *  "skewedOutput". */
SURROGATE_SESSION_EXPORT std::vector<Finding> decades(const DiagnosedCases& cases);

/** Inputs with a wide interval between two groups of cases: "gap". */
SURROGATE_SESSION_EXPORT std::vector<Finding> gaps(const DiagnosedCases& cases);
} // namespace ColumnFindings
