#pragma once

#include "session/report/ReportJson.h"

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

class CaseSession;

/** What several reports begin with. */
namespace ReportHeading {
/** "Kriging", "response surface", "response surface, linear, terms selected by AICc": the default
 *  terms are not mentioned. */
std::string modelText(const CaseSession& session);

/** "11 read, 9 valid, 0 excluded, 2 invalid (Pressure 1, Stress 1)". */
std::string caseText(const CaseSession& session);

/** The inputs and outputs that make cases invalid, each with the number of these. */
std::vector<std::pair<std::string, std::size_t>> invalidCases(const CaseSession& session);

/** Whether terms of response surfaces are selected. */
bool selectsTerms(const CaseSession& session);

/** The first members of the reports of a model: "schema" to "inputs", and empty "outputs". */
ReportJson::Json modelJson(const CaseSession& session);
} // namespace ReportHeading
