#include "session/report/SummaryReport.h"

#include "session/cases/ColumnFigures.h"
#include "session/cases/VariableNames.h"
#include "session/model/Workspace.h"
#include "session/report/FindingsReport.h"
#include "session/report/ReportHeading.h"
#include "session/text/DecimalText.h"
#include "session/text/QuotedText.h"
#include "session/text/TextTable.h"

#include <mirel_datamanagement/Project.h>
#include <mirel_fitting/numerics/TextPieces.h>

#include <algorithm>
#include <cstddef>
#include <tuple>
#include <vector>

using ReportJson::Json;

namespace {
struct VariableSummary
{
    std::string name;
    std::string unit;
    bool isNumeric = true;
    ColumnRole role;
    ColumnFigures figures;
};

VariableSummary summaryOf(const Project& project, const VarPtr& handle, const ColumnRole& role)
{
    const auto variable = handle.lock();
    VariableSummary summary;
    summary.name = variable->name();
    summary.isNumeric = variable->isNumeric();
    summary.role = role;
    if (!summary.isNumeric) {
        summary.figures = ColumnFigures::of(project.textValues(handle));
        return summary;
    }
    summary.figures = ColumnFigures::of(project.numericValues(handle));
    if (summary.figures.count > 0) { // the range may be the user's
        std::tie(summary.figures.minimum, summary.figures.maximum) = variable->range();
    }
    return summary;
}

std::vector<VariableSummary> summariesOf(const Workspace& workspace)
{
    std::vector<VariableSummary> summaries;
    const std::vector<ColumnRole> roles = workspace.columnRoles();
    const std::vector<VarPtr> variables = workspace.project().variables();
    summaries.reserve(variables.size());
    for (std::size_t i = 0; i < variables.size(); ++i) {
        summaries.push_back(summaryOf(workspace.project(), variables[i], roles[i]));
        summaries.back().unit = workspace.unitOf(summaries.back().name);
    }
    return summaries;
}

std::string distinctText(const ColumnFigures& figures)
{
    return (figures.hasMoreDistinct ? "> " : "") + std::to_string(figures.distinct);
}

/** Empty for columns without a number. */
std::string figureText(double figure)
{
    return std::isnan(figure) ? "" : shownNumber(figure);
}

std::string tableText(const std::vector<VariableSummary>& variables)
{
    TextTable table({false, false, false, true, true, true, true, true, true, false});
    table.add({"Variable", "Unit", "Role", "Count", "Missing", "Minimum", "Median", "Maximum",
               "Distinct", "Why"});
    for (const VariableSummary& variable : variables) {
        const ColumnFigures& figures = variable.figures;
        table.add({shortText(variable.name), shortText(variable.unit), roleName(variable.role.role),
                   std::to_string(figures.count), std::to_string(figures.missing),
                   figureText(figures.minimum), figureText(figures.median),
                   figureText(figures.maximum), distinctText(figures),
                   !variable.role.reason.empty() ? variable.role.reason
                   : variable.isNumeric          ? ""
                                                 : "text"});
    }
    return table.text("");
}
} // namespace

std::string SummaryReport::text(const Workspace& workspace, const std::string& roleLine)
{
    std::string text = tableText(summariesOf(workspace)) + '\n' + roleLine +
                       "Cases: " + ReportHeading::caseText(workspace) + '\n';
    const std::vector<ColumnRole> roles = workspace.columnRoles();
    const std::vector<std::string> names = namesOf(workspace.project().variables());
    for (std::size_t i = 0; i < roles.size(); ++i) {
        const CaseColumn& column = *workspace.source().find(names[i]);
        if (roles[i].role != ColumnRole::None || !column.lacksNumbers()) {
            continue; // those with a role are among the findings
        }
        const CellsWithoutNumber& cells = column.withoutNumber;
        text += shortText(names[i]) + ": " + cells.text() +
                (cells.count == 1 ? ": it counts as missing.\n" : ": they count as missing.\n");
    }
    const std::vector<std::string> outputs = shownNamesOf(workspace.outputs());
    for (std::size_t i = 0; i < outputs.size(); ++i) {
        text += outputs[i] + " alone would have " +
                countedText(workspace.counts().validAlone[i], "valid case") + ".\n";
    }
    return text + '\n' + FindingsReport::text(SessionFindings::ofCases(workspace));
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
    for (const VariableSummary& variable : summariesOf(workspace)) {
        const ColumnFigures& figures = variable.figures;
        json["variables"].push_back({{"name", variable.name},
                                     {"kind", variable.isNumeric ? "numeric" : "text"},
                                     {"role", roleName(variable.role.role)},
                                     {"reason", variable.role.reason},
                                     {"unit", variable.unit},
                                     {"count", figures.count},
                                     {"missing", figures.missing},
                                     {"minimum", figures.minimum},
                                     {"median", figures.median},
                                     {"maximum", figures.maximum},
                                     {"distinct", figures.distinct},
                                     {"hasMoreDistinct", figures.hasMoreDistinct}});
    }
    json["suggested"] = {{"inputs", namesOf(workspace.inputs())},
                         {"outputs", namesOf(workspace.outputs())}};
    json["outputs"] = Json::array();
    const std::vector<std::string> outputs = namesOf(workspace.outputs());
    for (std::size_t i = 0; i < outputs.size(); ++i) {
        json["outputs"].push_back(
            {{"name", outputs[i]}, {"validAlone", workspace.counts().validAlone[i]}});
    }
    const SessionFindings findings = SessionFindings::ofCases(workspace);
    json["findings"] = FindingsReport::json(findings);
    json["comparedCases"] = findings.comparedCases; // of many a sample
    return json;
}
