#include "session/report/SummaryReport.h"

#include "session/cases/VariableNames.h"
#include "session/model/Workspace.h"
#include "session/report/ReportHeading.h"
#include "session/text/NumberText.h"
#include "session/text/TextTable.h"

#include <mirel_datamanagement/Project.h>

#include <cmath>
#include <cstddef>
#include <tuple>
#include <vector>

using ReportJson::Json;

namespace {
struct VariableSummary
{
    std::string name;
    bool isNumeric = true;
    std::string role;
    double minimum = std::nan("");
    double maximum = std::nan("");
    std::size_t missing = 0;
};

VariableSummary summaryOf(const Project& project, const VarPtr& handle)
{
    const auto variable = handle.lock();
    VariableSummary summary;
    summary.name = variable->name();
    summary.isNumeric = variable->isNumeric();
    summary.role = variable->nature() == Variable::Independent ? "input"
                   : variable->nature() == Variable::Dependent ? "output"
                                                               : "none";
    if (!summary.isNumeric) {
        for (const std::string& text : project.textValues(handle)) {
            summary.missing += text.empty() ? 1 : 0;
        }
        return summary;
    }

    bool hasFiniteValue = false;
    for (const double value : project.numericValues(handle)) {
        summary.missing += std::isnan(value) ? 1 : 0;
        hasFiniteValue = hasFiniteValue || std::isfinite(value);
    }
    if (hasFiniteValue) {
        std::tie(summary.minimum, summary.maximum) = variable->range();
    }
    return summary;
}

std::vector<VariableSummary> summariesOf(const Project& project)
{
    std::vector<VariableSummary> summaries;
    const std::vector<VarPtr> variables = project.variables();
    summaries.reserve(variables.size());
    for (const VarPtr& variable : variables) {
        summaries.push_back(summaryOf(project, variable));
    }
    return summaries;
}
} // namespace

std::string SummaryReport::text(const Workspace& workspace)
{
    TextTable table({false, false, false, true, true, true});
    table.add({"Variable", "Kind", "Role", "Minimum", "Maximum", "Missing"});
    for (const VariableSummary& variable : summariesOf(workspace.project())) {
        table.add({variable.name, variable.isNumeric ? "numeric" : "text",
                   variable.role == "none" ? "-" : variable.role, shownNumber(variable.minimum),
                   shownNumber(variable.maximum), std::to_string(variable.missing)});
    }

    std::string text = table.text("") + "\nCases: " + ReportHeading::caseText(workspace) + '\n';
    for (const auto& [name, cells] : workspace.cellsWithoutNumber()) {
        text += name + ": " + cells.text() +
                (cells.count == 1 ? ": it counts as missing.\n" : ": they count as missing.\n");
    }
    const std::vector<std::string> outputs = namesOf(workspace.outputs());
    for (std::size_t i = 0; i < outputs.size(); ++i) {
        text += outputs[i] + " alone would have " +
                std::to_string(workspace.counts().validAlone[i]) + " valid cases.\n";
    }
    return text;
}

ReportJson::Json SummaryReport::json(const Workspace& workspace)
{
    Json json = {{"schema", ReportJson::schemaVersion},
                 {"cases", ReportHeading::casesJson(workspace)}};
    json["cases"]["invalidBy"] = Json::array();
    for (const auto& [name, cases] : ReportHeading::invalidCases(workspace)) {
        json["cases"]["invalidBy"].push_back({{"name", name}, {"cases", cases}});
    }

    json["variables"] = Json::array();
    for (const VariableSummary& variable : summariesOf(workspace.project())) {
        json["variables"].push_back({{"name", variable.name},
                                     {"kind", variable.isNumeric ? "numeric" : "text"},
                                     {"role", variable.role},
                                     {"minimum", variable.minimum},
                                     {"maximum", variable.maximum},
                                     {"missing", variable.missing}});
    }
    json["outputs"] = Json::array();
    const std::vector<std::string> outputs = namesOf(workspace.outputs());
    for (std::size_t i = 0; i < outputs.size(); ++i) {
        json["outputs"].push_back(
            {{"name", outputs[i]}, {"validAlone", workspace.counts().validAlone[i]}});
    }
    return json;
}
