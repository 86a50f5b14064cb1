#pragma once

#include <surrogate_session/Export.h>

#include <string>

class CaseSession;
struct ModelComparison;

/** What a comparison of the models has to say, as text for people and as JSON for programs. */
namespace ComparisonReport {
SURROGATE_SESSION_EXPORT std::string text(const CaseSession& session,
                                          const ModelComparison& comparison);

/** @param readSeconds the time that reading the case file took. */
SURROGATE_SESSION_EXPORT std::string json(const CaseSession& session,
                                          const ModelComparison& comparison, double readSeconds);
} // namespace ComparisonReport
