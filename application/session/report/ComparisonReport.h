#pragma once

#include <session/report/ReportJson.h>

#include <surrogate_session/Export.h>

#include <string>

class Workspace;
struct ModelComparison;

/** A comparison of the models, as text for people and as JSON for programs. */
namespace ComparisonReport {
SURROGATE_SESSION_EXPORT std::string text(const Workspace& workspace,
                                          const ModelComparison& comparison);

/** @param readSeconds the time that reading the case file took. */
SURROGATE_SESSION_EXPORT ReportJson::Json
json(const Workspace& workspace, const ModelComparison& comparison, double readSeconds);
} // namespace ComparisonReport
