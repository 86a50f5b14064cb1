#include "session/report/FindingsReport.h"

#include "session/cases/VariableNames.h"
#include "session/diagnosis/ColumnFindings.h"
#include "session/diagnosis/Diagnosis.h"
#include "session/diagnosis/FindingWords.h"
#include "session/model/CaseSession.h"
#include "session/text/CountedText.h"

#include <mirel_datamanagement/Project.h>
#include <mirel_datapipeline/isInvalidValue.h>
#include <mirel_fitting/ResponseSurfaceStatistics.h>
#include <mirel_fitting/TermFormula.h>

#include <algorithm>
#include <cmath>
#include <string_view>

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

bool transformsOutputs(const Workspace& workspace)
{
    const TransformSetting setting = workspace.transform();
    return setting == TransformSetting::Usual ? workspace.modelType() == Workspace::Kriging
                                              : setting != TransformSetting::None;
}

std::vector<DiagnosedCases::Column> columnsOf(const Workspace& workspace,
                                              const std::vector<VarPtr>& variables,
                                              const std::vector<std::size_t>& rows)
{
    std::vector<DiagnosedCases::Column> columns;
    const std::vector<std::string> names = shownNamesOf(variables);
    for (const VarPtr& variable : variables) {
        const std::vector<double>& values = workspace.project().numericValues(variable);
        DiagnosedCases::Column& column = columns.emplace_back();
        column.name = names[columns.size() - 1];
        column.values.reserve(rows.size());
        for (const std::size_t row : rows) {
            column.values.push_back(values[row]);
        }
    }
    return columns;
}

DiagnosedCases diagnosedCases(const Workspace& workspace)
{
    DiagnosedCases cases;
    cases.positions = workspace.validCases();
    cases.inputs = columnsOf(workspace, workspace.inputs(), cases.positions);
    cases.outputs = columnsOf(workspace, workspace.outputs(), cases.positions);
    const std::vector<std::size_t> blocks =
        workspace.designColumns().design(workspace.project(), cases.positions).blocks;
    cases.blocks.assign(blocks.begin(), blocks.end());
    cases.isKriging = workspace.modelType() == Workspace::Kriging;
    cases.responseSurface = workspace.responseSurface();
    if (cases.responseSurface.terms == PolynomialTerms::Chosen) {
        cases.responseSurface.formula =
            TermFormula(cases.responseSurface.formula, namesOf(workspace.inputs())).symbols();
    }
    cases.transformsOutputs = transformsOutputs(workspace);
    return cases;
}

/** Why the cells of a column are no numbers, as far as the file says. */
std::string causeText(const Workspace& workspace, const std::string& name, std::size_t missing)
{
    const auto found = workspace.cellsWithoutNumber().find(name);
    if (found == workspace.cellsWithoutNumber().end()) {
        return " (empty, marked as missing or infinite)";
    }
    // Cells of excluded cases count there, too.
    return ", " + found->second.text() +
           (found->second.count < missing ? ", others are empty" : "");
}

/** Columns that lack a number in the same included cases. */
struct MissingCells
{
    std::vector<std::string> names;
    std::vector<std::size_t> cases;
    bool areOutputs = false;
};

std::vector<MissingCells> missingCells(const Workspace& workspace)
{
    std::vector<bool> isIncluded(workspace.counts().read, true);
    for (const std::size_t position : workspace.project().excludedRows()) {
        isIncluded[position] = false;
    }
    std::vector<MissingCells> groups;
    for (const auto* const variables : {&workspace.outputs(), &workspace.inputs()}) {
        for (const VarPtr& variable : *variables) {
            const std::vector<double>& values = workspace.project().numericValues(variable);
            std::vector<std::size_t> cases;
            for (std::size_t i = 0; i < values.size(); ++i) {
                if (isIncluded[i] && isInvalidNumber(values[i])) {
                    cases.push_back(i);
                }
            }
            const auto same = std::find_if(groups.begin(), groups.end(),
                                           [&](const auto& group) { return group.cases == cases; });
            if (!cases.empty() && same != groups.end()) {
                same->names.push_back(variable.lock()->name());
            } else if (!cases.empty()) {
                groups.push_back({{variable.lock()->name()},
                                  std::move(cases),
                                  variables == &workspace.outputs()});
            }
        }
    }
    return groups;
}

void addMissingCells(const Workspace& workspace, std::vector<Finding>& findings)
{
    constexpr std::size_t fewParts = 20; // of the cases: fewer missing are hardly a loss
    const CaseCounts& counts = workspace.counts();
    const std::size_t included = counts.read - counts.excluded;
    for (const MissingCells& group : missingCells(workspace)) {
        const std::size_t missing = group.cases.size();
        const bool isOne = missing == 1;
        const bool isColumn = group.names.size() == 1;
        const std::string name = FindingWords::names(group.names);
        std::string remedy = "complete " + std::string(isOne ? "it" : "them");
        if (!isColumn) {
            remedy += isOne ? ", or delete the line if it is no case"
                            : ", or delete the lines if they are no cases";
        } else if (!group.areOutputs && workspace.inputs().size() > 1) {
            remedy += " or leave " + name + " out of -x";
        } else if (group.areOutputs && workspace.outputs().size() > 1) {
            remedy += " or model the outputs one by one, so that they do not lose the cases of "
                      "each other";
        }
        findings.push_back(
            {"missingCells",
             2 * missing > included          ? Finding::Severe
             : fewParts * missing > included ? Finding::Warning
                                             : Finding::Note,
             group.names,
             name + (isColumn ? " lacks a number in " : " lack numbers in the same ") +
                 std::to_string(missing) + " of " + std::to_string(included) + " cases" +
                 causeText(workspace, group.names.front(), missing) + ": " +
                 (isOne ? "this case is" : "these cases are") + " left out; " + remedy + "."});
    }
}

/** By the warnings of the model, or by the note about the cells of a column that are no numbers. */
bool isSaidElsewhere(const Finding& finding, const Workspace& workspace)
{
    if (finding.kind == "missingCells") {
        return finding.severity != Finding::Severe &&
               workspace.cellsWithoutNumber().count(finding.columns.front()) > 0;
    }
    static const std::vector<std::string_view> byResponseSurface = {
        "constantInput", "fewValuesInput", "inestimableTerms", "tooFewCases", "saturatedFit"};
    static const std::vector<std::string_view> byKriging = {"constantInput", "exactCopies",
                                                            "nearCopies"};
    const auto& said = workspace.modelType() == Workspace::Kriging ? byKriging : byResponseSurface;
    return std::find(said.begin(), said.end(), finding.kind) != said.end();
}

/** Why there is nothing to model, if so. */
void addMissingRoles(const Workspace& workspace, std::vector<Finding>& findings)
{
    if (!workspace.exportedReport().empty()) {
        return;
    }
    const ReasonedNames reasons = workspace.reasonsAgainstInputs();
    const std::string columns = reasons.empty() ? "" : ": " + reasonsText(reasons);
    if (workspace.counts().read == 0) {
        findings.push_back({"noCases",
                            Finding::Severe,
                            {},
                            "The file names columns and holds no case: there is nothing to model; "
                            "add a row for each case."});
    } else if (workspace.outputs().empty()) {
        findings.push_back({"noOutput",
                            Finding::Severe,
                            {},
                            "No column is left to be an output" + columns +
                                "; if they hold numbers, check how the file was read "
                                "(--separator, --decimal, --skip), or name columns with -x and "
                                "-y."});
    } else if (workspace.inputs().empty()) {
        findings.push_back({"noInput",
                            Finding::Severe,
                            {},
                            "No column is left to be an input" + columns +
                                "; name inputs with -x, or code texts as numbers."});
    }
}

std::vector<std::size_t> sortedRows(const std::vector<CaseDiagnostics>& cases)
{
    std::vector<std::size_t> rows;
    for (const CaseDiagnostics& diagnostics : cases) {
        rows.push_back(diagnostics.row);
    }
    std::sort(rows.begin(), rows.end());
    return rows;
}

/** Whether the design cannot tell which of two cases is the outlier: then their residuals are equal
 *  in size. Those of copies of one case are, too. */
bool areMirrored(const CaseDiagnostics& left, const CaseDiagnostics& right)
{
    constexpr double rounding = 1e-6;
    const double size = std::fabs(left.externallyStudentised);
    const bool areCopies =
        left.output == right.output &&
        std::fabs(left.residual - right.residual) <= rounding * std::fabs(left.residual);
    return !areCopies &&
           std::fabs(size - std::fabs(right.externallyStudentised)) <= rounding * size;
}

void addOutliers(const std::string& output, const ResponseSurfaceStatistics& statistics,
                 std::vector<Finding>& findings)
{
    std::vector<CaseDiagnostics> suspected; // the largest residual first
    for (const std::size_t k : statistics.suspectedOutliers()) {
        suspected.push_back(statistics.cases[k]);
    }
    const bool isNamedAlready =
        std::any_of(findings.begin(), findings.end(), [&](const Finding& finding) {
            return (finding.kind == "farCase" || finding.kind == "missingCode") &&
                   finding.columns.front() == output;
        });
    if (suspected.empty() || isNamedAlready) {
        return;
    }
    const std::string name = FindingWords::names({output});
    const auto others = std::find_if(suspected.begin() + 1, suspected.end(),
                                     [&](const CaseDiagnostics& diagnostics) {
                                         return !areMirrored(suspected.front(), diagnostics);
                                     });
    const std::vector<CaseDiagnostics> mirrored(suspected.begin(), others);
    if (mirrored.size() > 1) {
        const bool areTwo = mirrored.size() == 2;
        const std::vector<std::size_t> rows = sortedRows(mirrored);
        const std::string which = areTwo ? "Either case " + std::to_string(rows[0] + 1) +
                                               " or case " + std::to_string(rows[1] + 1)
                                         : "One of " + FindingWords::cases(rows);
        findings.push_back({"suspectedOutliers",
                            Finding::Warning,
                            {output},
                            which + " lies far from the fit of " + name +
                                " to the others, and the design cannot tell which: it bends the "
                                "fit and widens the intervals; check " +
                                (areTwo ? "both" : "them") +
                                ", exclude one with --exclude and look again."});
        suspected.erase(suspected.begin(), others);
    }
    if (suspected.empty()) {
        return;
    }
    const bool isOne = suspected.size() == 1;
    std::string text = FindingWords::cases(sortedRows(suspected));
    text[0] = 'C';
    findings.push_back(
        {"suspectedOutliers",
         Finding::Warning,
         {output},
         text + (isOne ? " lies" : " lie") + " far from the fit of " + name + " to the others (" +
             (isOne ? "its" : "their") + " externally studentised residual" +
             (isOne ? " exceeds " : "s exceed ") + FindingWords::figure(statistics.outlierLimit) +
             ", Bonferroni at 5 %): " + (isOne ? "it bends" : "they bend") + " the fit and widen" +
             (isOne ? "s" : "") + " the intervals; check " + (isOne ? "it" : "them") +
             ", and fit once more with --exclude."});
}

/** Cases that the fit passes near whatever their output is, and that move it. */
void addInfluentialCases(const std::string& output, const ResponseSurfaceStatistics& statistics,
                         std::vector<Finding>& findings)
{
    constexpr double nearOne = 0.9;
    constexpr double fromTheMean = 1.5; // of designs with few cases more than terms all are near 1
    constexpr double largestDistance = 1.0; // Cook, Weisberg
    std::vector<CaseDiagnostics> influential;
    for (const CaseDiagnostics& diagnostics : statistics.cases) {
        if (diagnostics.leverage > std::max(nearOne, fromTheMean * statistics.meanLeverage) &&
            diagnostics.cooksDistance > largestDistance) {
            influential.push_back(diagnostics);
        }
    }
    if (influential.empty()) {
        return;
    }
    const bool isOne = influential.size() == 1;
    const std::string figures =
        isOne ? " (leverage " + FindingWords::figure(influential[0].leverage) +
                    ", Cook's distance " + FindingWords::figure(influential[0].cooksDistance) + ")"
              : "";
    findings.push_back({"influentialCases",
                        Finding::Warning,
                        {output},
                        "The fit of " + FindingWords::names({output}) + " rests on " +
                            FindingWords::cases(sortedRows(influential)) + figures +
                            ": it passes near " + (isOne ? "this case" : "these cases") +
                            " whatever the output there, so that a fault would not show; check " +
                            (isOne ? "it" : "them") + ", and repeat " + (isOne ? "it" : "them") +
                            " or add cases nearby."});
}

void addPoorPrediction(const std::string& output, const ResponseSurfaceStatistics& statistics,
                       std::vector<Finding>& findings)
{
    constexpr double farBelow = 0.3;
    constexpr double good = 0.5; // of a smaller R2 nobody expects predictions
    if (!(statistics.r2 >= good && statistics.r2 - statistics.predictedR2 > farBelow)) {
        return;
    }
    const bool isWorthless = statistics.predictedR2 <= 0.0;
    findings.push_back({"poorPrediction",
                        Finding::Warning,
                        {output},
                        "The fit of " + FindingWords::names({output}) + " explains " +
                            FindingWords::percent(statistics.r2) +
                            " of the variance of its own cases, but predicts left-out ones " +
                            (isWorthless ? std::string("no better than their mean") : "far worse") +
                            " (Q2 " + FindingWords::figure(statistics.predictedR2) +
                            "): it has many terms for so few cases, or single cases decide it; "
                            "add cases, or choose fewer terms with --terms or --select-terms."});
}
} // namespace

SessionFindings SessionFindings::ofCases(const Workspace& workspace)
{
    SessionFindings result;
    const DiagnosedCases cases = diagnosedCases(workspace);
    result.validCases = cases.count();
    addMissingRoles(workspace, result.findings);
    addMissingCells(workspace, result.findings);
    const Diagnosis diagnosis = Diagnosis::of(cases);
    result.comparedCases = diagnosis.comparedCases;
    result.findings.insert(result.findings.end(), diagnosis.findings.begin(),
                           diagnosis.findings.end());
    sortBySeverity(result.findings);
    return result;
}

SessionFindings SessionFindings::ofFit(CaseSession& session)
{
    if (!session.exportedReport().empty()) {
        return {};
    }
    SessionFindings result = ofCases(session);
    result.findings.erase(
        std::remove_if(result.findings.begin(), result.findings.end(),
                       [&](const Finding& finding) { return isSaidElsewhere(finding, session); }),
        result.findings.end());
    const std::vector<std::string> outputs = shownNamesOf(session.outputs());
    const std::vector<ResponseSurfaceStatistics>& statistics = session.statistics();
    for (std::size_t i = 0; i < statistics.size(); ++i) {
        addOutliers(outputs[i], statistics[i], result.findings);
        addInfluentialCases(outputs[i], statistics[i], result.findings);
        addPoorPrediction(outputs[i], statistics[i], result.findings);
    }
    sortBySeverity(result.findings);
    return result;
}

std::vector<std::string> FindingsReport::sentences(const SessionFindings& findings)
{
    std::vector<std::string> sentences;
    for (const Finding& finding : findings.findings) {
        const char* const word = finding.severity == Finding::Severe    ? "Severe: "
                                 : finding.severity == Finding::Warning ? "Warning: "
                                                                        : "Note: ";
        sentences.push_back(word + finding.text);
    }
    return sentences;
}

std::string FindingsReport::severeNotes(const Workspace& workspace)
{
    std::vector<std::pair<const Finding*, std::size_t>> kinds;
    // Of all that Diagnosis looks for only these are severe.
    std::vector<Finding> findings;
    const DiagnosedCases cases = diagnosedCases(workspace);
    addMissingCells(workspace, findings);
    for (const std::vector<Finding>& found :
         {ColumnFindings::constants(cases), ColumnFindings::farCases(cases)}) {
        findings.insert(findings.end(), found.begin(), found.end());
    }
    for (const Finding& finding : findings) {
        if (finding.severity != Finding::Severe) {
            continue;
        }
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
