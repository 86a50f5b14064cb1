#pragma once

#include <session/diagnosis/DiagnosedCases.h>
#include <session/diagnosis/Finding.h>

#include <surrogate_session/Export.h>

#include <cstddef>
#include <optional>
#include <vector>

/** Whether the cases determine the terms of a response surface. */
namespace TermFindings {
/**
 * The number of terms that the cases separate: the rank of the design matrix in coded inputs. None
 * for more than 300 terms, 100 000 cases, or where cases * terms^2 is above 1e8.
 */
SURROGATE_SESSION_EXPORT std::optional<std::size_t> rank(const DiagnosedCases& cases);

/**
 * "inestimableTerms": those that are sums of others in every case, with these others. Not said of
 * squares of two values and products with inputs that vary in one case alone (ColumnFindings), of
 * terms with an input that depends on others (DependenceFindings), nor for fewer cases than terms
 * (SizeFindings).
 */
SURROGATE_SESSION_EXPORT std::vector<Finding> find(const DiagnosedCases& cases);
} // namespace TermFindings
