#pragma once

#include <session/report/ReportJson.h>

#include <surrogate_session/Export.h>

#include <string>

class CaseSession;

/** The variables and the cases; needs no model. */
namespace SummaryReport {
SURROGATE_SESSION_EXPORT std::string text(const CaseSession& session);
SURROGATE_SESSION_EXPORT ReportJson::Json json(const CaseSession& session);
} // namespace SummaryReport
