#pragma once

#include <session/model/CaseSession.h>

#include <surrogate_session/Export.h>

#include <string>
#include <utility>
#include <vector>

/**
 * What a session has to say, as text for people and as JSON for programs.
 *
 * The JSON texts are objects with "schema": 1; a number that is not finite is null in them. A
 * caller adds members of its own with openedForMember().
 */
namespace SessionReport {
/** The variables and the cases; needs no model. */
SURROGATE_SESSION_EXPORT std::string summaryText(const CaseSession& session);
SURROGATE_SESSION_EXPORT std::string summaryJson(const CaseSession& session);

/** The fit of each output; fits first if need be. @throw SurrogateModelInterface::Error */
SURROGATE_SESSION_EXPORT std::string fitText(CaseSession& session);

/** The figures of one output's fit, each with its name, as fitText() shows them.
 *  @param inputs     the names of the model's inputs.
 *  @param statistics of a response surface; null if there are none. */
SURROGATE_SESSION_EXPORT std::vector<std::pair<std::string, std::string>>
figures(const OutputFit& fit, const std::vector<std::string>& inputs,
        const ResponseSurfaceStatistics* statistics);

/** @param readSeconds the time that reading the case file took.
 *  @param evaluation  of the model, if there is one; null: none. */
SURROGATE_SESSION_EXPORT std::string fitJson(CaseSession& session, double readSeconds,
                                             const Evaluation* evaluation = nullptr);

/** The fit's object without what concerns this run alone: what an exported model says about itself.
 */
SURROGATE_SESSION_EXPORT std::string exportJson(CaseSession& session);

/** The fit's object, with the equation of each output instead of its metrics. */
SURROGATE_SESSION_EXPORT std::string equationsJson(CaseSession& session, double readSeconds);

/** What changed the results and must not go unsaid: cases left out, warnings of the fits, points
 * outside the cases, limits that do not exist. One line each; empty if there is nothing.
 * @param evaluation of the model, if there is one; null: none. */
SURROGATE_SESSION_EXPORT std::string notes(CaseSession& session,
                                           const Evaluation* evaluation = nullptr);

/** "Kriging", "response surface", "response surface, linear, terms selected by AICc": the usual
 * terms go without saying. */
SURROGATE_SESSION_EXPORT std::string modelText(const CaseSession& session);

/** "11 read, 9 valid, 0 excluded, 2 invalid (Pressure 1, Stress 1)". */
SURROGATE_SESSION_EXPORT std::string caseText(const CaseSession& session);

/** Opens a JSON object again for one more member: "{...}" becomes `{...,"name":`. */
SURROGATE_SESSION_EXPORT std::string openedForMember(std::string object, const std::string& name);
} // namespace SessionReport
