#pragma once

#include <session/diagnosis/DiagnosedCases.h>
#include <session/diagnosis/Finding.h>

#include <surrogate_session/Export.h>

#include <vector>

/** How the cases are spread over all inputs together. */
namespace SpreadFindings {
/**
 * "clusters": two groups of cases that lie apart from each other while the cases in each lie close;
 * "lonelyCases": single cases that lie so. Both by the minimum spanning tree of the cases, each
 * input scaled to its range. Inputs of fewer than eight values do not count: their levels lie
 * apart. Prim: Shortest connection networks, Bell System Technical Journal 36 (1957). O(n^2) in
 * cases.
 */
SURROGATE_SESSION_EXPORT std::vector<Finding> find(const DiagnosedCases& cases);
} // namespace SpreadFindings
