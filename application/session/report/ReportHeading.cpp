#include "session/report/ReportHeading.h"

#include "session/cases/VariableNames.h"
#include "session/model/CaseSession.h"
#include "session/model/PolynomialWords.h"
#include "session/text/JoinedText.h"

std::string ReportHeading::modelText(const CaseSession& session)
{
    if (session.modelType() == CaseSession::Kriging) {
        return "Kriging";
    }
    const PolynomialTerms terms = session.responseSurface().terms;
    const char* const polynomial = terms == PolynomialTerms::Linear ? ", linear"
                                   : terms == PolynomialTerms::Interactions
                                       ? ", linear with interactions"
                                       : "";
    return std::string("response surface") + polynomial +
           (selectsTerms(session) ? ", terms selected by AICc" : "");
}

std::string ReportHeading::caseText(const CaseSession& session)
{
    const CaseCounts& counts = session.counts();
    std::string text = std::to_string(counts.read) + " read, " + std::to_string(counts.valid) +
                       " valid, " + std::to_string(counts.excluded) + " excluded, " +
                       std::to_string(counts.invalid) + " invalid";
    std::vector<std::string> reasons;
    for (const auto& [name, cases] : invalidCases(session)) {
        reasons.push_back(name + ' ' + std::to_string(cases));
    }
    return reasons.empty() ? text : text + " (" + joinedText(reasons) + ')';
}

std::vector<std::pair<std::string, std::size_t>>
ReportHeading::invalidCases(const CaseSession& session)
{
    std::vector<std::pair<std::string, std::size_t>> result;
    const CaseCounts& counts = session.counts();
    const auto append = [&result](const std::vector<VarPtr>& variables,
                                  const std::vector<std::size_t>& invalid) {
        for (std::size_t i = 0; i < variables.size(); ++i) {
            if (invalid[i] > 0) {
                result.emplace_back(variables[i].lock()->name(), invalid[i]);
            }
        }
    };
    append(session.inputs(), counts.invalidByInput);
    append(session.outputs(), counts.invalidByOutput);
    return result;
}

bool ReportHeading::selectsTerms(const CaseSession& session)
{
    return session.responseSurface().selection == ResponseSurfaceOptions::Selection::BackwardAicc;
}

ReportJson::Json ReportHeading::modelJson(const CaseSession& session)
{
    ReportJson::Json json = {
        {"schema", ReportJson::schemaVersion},
        {"cases", ReportJson::cases(session.counts())},
        {"model", session.modelType() == CaseSession::Kriging ? "kriging" : "response-surface"}};
    if (session.modelType() == CaseSession::ResponseSurface) {
        json["terms"] = termsWord(session.responseSurface().terms);
        json["selectsTerms"] = selectsTerms(session);
    }
    json["inputs"] = namesOf(session.inputs());
    json["outputs"] = ReportJson::Json::array();
    return json;
}
