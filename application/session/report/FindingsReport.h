#pragma once

#include <session/model/SessionFindings.h>
#include <session/report/ReportJson.h>

#include <surrogate_session/Export.h>

#include <string>
#include <vector>

/** The findings of a session as text for people and as JSON for programs. */
namespace FindingsReport {
/** A heading and a line for each finding; that there are none. */
SURROGATE_SESSION_EXPORT std::string text(const SessionFindings& findings);

/** "Warning: Mass is the same in every case ...", one for each finding. */
SURROGATE_SESSION_EXPORT std::vector<std::string> sentences(const SessionFindings& findings);

/** A warning, as a line, for each kind of severe finding about the cases; empty if there is none.
 *  The first column of a kind stands for the others, whose number is said. */
SURROGATE_SESSION_EXPORT std::string severeNotes(const Workspace& workspace);

/** An array of objects with kind, severity, columns and text. */
SURROGATE_SESSION_EXPORT ReportJson::Json json(const SessionFindings& findings);
} // namespace FindingsReport
