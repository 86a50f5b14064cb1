#pragma once

#include <session/report/ReportJson.h>

#include <surrogate_session/Export.h>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

class CaseSession;

/** The inputs by position, each with its effect on an output as a share of the largest one, the
 *  strongest first. */
using InputRanking = std::vector<std::pair<std::size_t, double>>;

struct Evaluation;

/** How good the model of each output is, and its parameters. Fits first if need be.
 *  All throw SurrogateModelInterface::Error. */
namespace FitReport {
/** @param rankings one per output, or none at all. */
SURROGATE_SESSION_EXPORT std::string text(CaseSession& session,
                                          const std::vector<InputRanking>& rankings = {});

/** The report that an exported model carries. */
SURROGATE_SESSION_EXPORT ReportJson::Json json(CaseSession& session);

/** The same with what concerns this run alone.
 *  @param readSeconds the time that reading the case file took.
 *  @param evaluation  of the model; null: none.
 *  @param rankings    one per output, or none at all. */
SURROGATE_SESSION_EXPORT ReportJson::Json runJson(CaseSession& session, double readSeconds,
                                                  const Evaluation* evaluation = nullptr,
                                                  const std::vector<InputRanking>& rankings = {});

/** Like runJson(), with the equation of each output instead of its figures. */
SURROGATE_SESSION_EXPORT ReportJson::Json equationsJson(CaseSession& session, double readSeconds);

/** What changed the results: invalid cases, warnings of the fits, points outside the cases,
 *  intervals that do not exist. One line each; empty if there is nothing.
 *  @param evaluation of the model; null: none. */
SURROGATE_SESSION_EXPORT std::string notes(CaseSession& session,
                                           const Evaluation* evaluation = nullptr);
} // namespace FitReport
