#pragma once

#include <session/report/ReportJson.h>

#include <surrogate_session/Export.h>

#include <string>

class Workspace;

/** The variables and the cases; needs no model. */
namespace SummaryReport {
SURROGATE_SESSION_EXPORT std::string text(const Workspace& workspace);
SURROGATE_SESSION_EXPORT ReportJson::Json json(const Workspace& workspace);
} // namespace SummaryReport
