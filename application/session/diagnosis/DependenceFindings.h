#pragma once

#include <session/diagnosis/DiagnosedCases.h>
#include <session/diagnosis/Finding.h>

#include <surrogate_session/Export.h>

#include <vector>

/** Inputs that depend on each other linearly. */
namespace DependenceFindings {
/**
 * "dependentInput" for an input that is a linear combination of inputs before it, exactly or up to
 * the rounding of its last digit, with the formula; "collinearInputs" for groups of inputs with
 * variance inflation factors above 10.
 *
 * At most 300 inputs are considered. Nothing is said of an input that has four cases or fewer more
 * than there are inputs to explain it: these explain anything. O(cases * inputs^2).
 */
SURROGATE_SESSION_EXPORT std::vector<Finding> find(const DiagnosedCases& cases);
} // namespace DependenceFindings
