#pragma once

#include "session/report/ReportJson.h"

#include <mirel_fitting/OutputTransform.h>
#include <surrogate_session/Export.h>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

class Workspace;
struct CaseFileLayout;

/** What several reports begin with. */
namespace ReportHeading {
/** "Kriging", "response surface", "response surface, linear, terms selected by AICc": the default
 *  terms are not mentioned. */
SURROGATE_SESSION_EXPORT std::string modelText(const Workspace& workspace);

/** "11 read, 9 valid, 0 excluded, 2 invalid (Pressure 1, Stress 1)". */
SURROGATE_SESSION_EXPORT std::string caseText(const Workspace& workspace);

/** The inputs and outputs that make cases invalid, each with the number of these. */
std::vector<std::pair<std::string, std::size_t>> invalidCases(const Workspace& workspace);

/** A sentence about the columns that are no inputs, though nobody said so, and one about those that
 *  are inputs because there are no others; then for each input and output with cells that are no
 * numbers one about them. */
SURROGATE_SESSION_EXPORT std::vector<std::string> readingNotes(const Workspace& workspace);

/** How a case file was read, as an object. */
SURROGATE_SESSION_EXPORT ReportJson::Json layoutJson(const CaseFileLayout& layout);

/** How many cases there are; "layout": how they were read; "withoutNumber": of every variable,
 * which cells are no numbers. */
SURROGATE_SESSION_EXPORT ReportJson::Json casesJson(const Workspace& workspace);

/** Adds "inputs" and, where nobody named them, "notInputs": the other columns that could be some,
 *  and "doubtfulInputs": those that may be outputs, each with the reason. */
void addInputs(const Workspace& workspace, ReportJson::Json& json);

/** The first members of the reports of a model: "schema" to "inputs", and empty "outputs". */
SURROGATE_SESSION_EXPORT ReportJson::Json modelJson(const Workspace& workspace);

/** "logarithm", "square root"; empty without a transform. */
std::string transformName(OutputTransform transform);

/** What of an output is modelled: "the logarithm of y", "y itself". */
SURROGATE_SESSION_EXPORT std::string modelledText(OutputTransform transform,
                                                  const std::string& output);
} // namespace ReportHeading
