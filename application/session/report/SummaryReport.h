#pragma once

#include <session/report/ReportJson.h>

#include <surrogate_session/Export.h>

#include <string>

class Workspace;

/** The variables and the cases; needs no model. */
namespace SummaryReport {
/** @param roleLine a line about the roles, behind the table of variables. */
SURROGATE_SESSION_EXPORT std::string text(const Workspace& workspace,
                                          const std::string& roleLine = "");
SURROGATE_SESSION_EXPORT ReportJson::Json json(const Workspace& workspace);
} // namespace SummaryReport
