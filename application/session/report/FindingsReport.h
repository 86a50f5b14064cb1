#pragma once

#include <session/diagnosis/Finding.h>
#include <session/report/ReportJson.h>

#include <surrogate_session/Export.h>

#include <cstddef>
#include <string>
#include <vector>

class CaseSession;
class Workspace;

/** What may be wrong with the cases of a session, and with a model of them. */
struct SessionFindings
{
    /** Worst first. */
    std::vector<Finding> findings;
    std::size_t validCases = 0;
    std::size_t comparedCases = 0; ///< with each other: of many valid ones a sample

    /** Of the cases with inputs and outputs, without a fit. */
    SURROGATE_SESSION_EXPORT static SessionFindings ofCases(const Workspace& workspace);

    /**
     * The same without what warnings of the model and notes about the file say already, but with
     * the outliers and influential cases of the fit, and where Q2 is far below R2. None for an exported model, which has no cases.
     * @throw SurrogateModelInterface::Error
     */
    SURROGATE_SESSION_EXPORT static SessionFindings ofFit(CaseSession& session);
};

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
