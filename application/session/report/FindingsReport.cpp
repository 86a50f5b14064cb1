#include "session/report/FindingsReport.h"

#include <mirel_fitting/numerics/TextPieces.h>

#include <algorithm>
#include <cctype>
#include <utility>

using ReportJson::Json;

namespace {
const char* severityName(Finding::Severity severity)
{
    switch (severity) {
    case Finding::Severe:
        return "severe";
    case Finding::Warning:
        return "warning";
    default:
        return "note";
    }
}
} // namespace

std::vector<std::string> FindingsReport::sentences(const SessionFindings& findings)
{
    std::vector<std::string> sentences;
    for (const Finding& finding : findings.findings) {
        std::string word = severityName(finding.severity);
        word[0] = static_cast<char>(std::toupper(word[0]));
        sentences.push_back(word + ": " + finding.text);
    }
    return sentences;
}

std::string FindingsReport::severeNotes(const Workspace& workspace)
{
    const std::vector<Finding> findings = SessionFindings::severe(workspace);
    std::vector<std::pair<const Finding*, std::size_t>> kinds; // with the number of others
    for (const Finding& finding : findings) {
        const auto known = std::find_if(kinds.begin(), kinds.end(), [&](const auto& kind) {
            return kind.first->kind == finding.kind;
        });
        if (known == kinds.end()) {
            kinds.emplace_back(&finding, 0);
        } else {
            ++known->second;
        }
    }
    std::string text;
    for (const auto& [finding, others] : kinds) {
        text += "Warning: " + finding->text;
        if (others > 0) {
            text.pop_back();
            text += "; so for " + countedText(others, "other column") + ", which summary names.";
        }
        text += '\n';
    }
    return text;
}

std::string FindingsReport::text(const SessionFindings& findings)
{
    std::string text = "Findings";
    if (findings.comparedCases < findings.validCases) {
        text += " (" + std::to_string(findings.comparedCases) + " of " +
                std::to_string(findings.validCases) + " valid cases are compared with each other)";
    }
    if (findings.findings.empty()) {
        return text + ": none\n";
    }
    text += '\n';
    for (const std::string& sentence : sentences(findings)) {
        text += "  " + sentence + '\n';
    }
    return text;
}

ReportJson::Json FindingsReport::json(const SessionFindings& findings)
{
    Json json = Json::array();
    for (const Finding& finding : findings.findings) {
        json.push_back({{"kind", finding.kind},
                        {"severity", severityName(finding.severity)},
                        {"columns", finding.columns},
                        {"text", finding.text}});
    }
    return json;
}
