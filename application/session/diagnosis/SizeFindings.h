#pragma once

#include <session/diagnosis/DiagnosedCases.h>
#include <session/diagnosis/Finding.h>

#include <surrogate_session/Export.h>

#include <vector>

/** Whether there are enough cases. */
namespace SizeFindings {
/**
 * "tooFewCases" if fewer different cases than terms of the response surface, or fewer than twice
 * the inputs for Kriging, with the number that would do, unless more cases on the same levels would
 * not separate more terms (TermFindings::rank()); "saturatedFit" for as many cases as terms;
 * "fewDegreesOfFreedom" for one or two cases more. Inputs that do not vary do not count.
 */
SURROGATE_SESSION_EXPORT std::vector<Finding> find(const DiagnosedCases& cases);
} // namespace SizeFindings
