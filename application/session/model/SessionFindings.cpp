#include "session/model/SessionFindings.h"

#include "session/cases/CaseNumbers.h"
#include "session/cases/VariableNames.h"
#include "session/diagnosis/ColumnFindings.h"
#include "session/diagnosis/Diagnosis.h"
#include "session/diagnosis/FindingWords.h"
#include "session/diagnosis/FitFindings.h"
#include "session/model/Workspace.h"
#include "session/text/QuotedText.h"
#include "session/text/SettingHint.h"

#include <mirel_datamanagement/Project.h>
#include <mirel_datapipeline/isInvalidValue.h>
#include <mirel_fitting/ResponseSurfaceStatistics.h>
#include <mirel_fitting/TermFormula.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <string>
#include <string_view>

namespace {
std::vector<DiagnosedCases::Column> columnsOf(const Workspace& workspace,
                                              const std::vector<VarPtr>& variables,
                                              const std::vector<std::size_t>& rows)
{
    std::vector<DiagnosedCases::Column> columns;
    const std::vector<std::string> names = namesOf(variables);
    for (std::size_t i = 0; i < variables.size(); ++i) {
        columns.push_back(
            {names[i], valuesAt(workspace.project().numericValues(variables[i]), rows)});
    }
    return columns;
}

DiagnosedCases diagnosedCases(const Workspace& workspace)
{
    DiagnosedCases cases;
    cases.positions = workspace.validCases();
    cases.inputs = columnsOf(workspace, workspace.inputs(), cases.positions);
    cases.outputs = columnsOf(workspace, workspace.outputs(), cases.positions);
    const ModelChoices choices = workspace.modelChoices();
    const std::vector<std::size_t> blocks =
        choices.designColumns.design(workspace.project(), cases.positions).blocks;
    cases.blocks.assign(blocks.begin(), blocks.end());
    cases.isKriging = workspace.modelType() == Workspace::Kriging;
    cases.responseSurface = choices.responseSurface;
    if (cases.responseSurface.terms == PolynomialTerms::Chosen) {
        cases.responseSurface.formula =
            TermFormula(cases.responseSurface.formula, namesOf(workspace.inputs())).symbols();
    }
    cases.transformsOutputs =
        transformFor(choices.transform, cases.isKriging) != TransformSetting::None;
    return cases;
}

/** Columns that lack a number in the same included cases, and why. */
struct MissingCells
{
    std::vector<std::string> names;
    std::vector<std::size_t> cases;
    std::string cause;
    bool areOutputs = false;
};

/** `3 empty, 2 "#DIV/0!"`, without counts where all are of one kind or, of excluded cases too, they
 *  are not the counts of the missing cells. */
std::string spellingsText(const MissingSpellings& spellings, std::size_t missing)
{
    std::size_t sum = 0;
    for (const auto& [spelling, count] : spellings) {
        sum += count;
    }
    std::string text;
    for (const auto& [spelling, count] : spellings) {
        text += text.empty() ? "" : ", ";
        text += spellings.size() > 1 && sum == missing ? std::to_string(count) + ' ' : "";
        text += spelling.empty() ? "empty" : quotedText(spelling);
    }
    return text;
}

/** Why cells of a column are no numbers, as far as the file says. */
std::string causeText(const Workspace& workspace, const std::string& name,
                      const std::vector<double>& values, const std::vector<std::size_t>& cases)
{
    const CaseColumn& column = *workspace.source().find(name);
    const auto infinite = std::count_if(cases.begin(), cases.end(),
                                        [&](std::size_t i) { return std::isinf(values[i]); });
    const bool areUnknown = column.lacksNumbers();
    std::string text =
        spellingsText(column.missing, cases.size() - (areUnknown ? column.withoutNumber.count : 0) -
                                          static_cast<std::size_t>(infinite));
    if (infinite > 0) {
        text += (text.empty() ? "" : ", ") + std::to_string(infinite) + " infinite";
    }
    if (areUnknown && text.empty() && column.withoutNumber.count == cases.size()) {
        return " (" + column.withoutNumber.whichText() + ')';
    }
    if (areUnknown) {
        return ", " + column.withoutNumber.text() + (text.empty() ? "" : ", others: " + text);
    }
    return text.empty() ? text : " (" + text + ')';
}

bool hasUnknownCells(const Workspace& workspace, const std::string& name)
{
    return workspace.source().find(name)->lacksNumbers();
}

std::vector<MissingCells> missingGroups(const Workspace& workspace)
{
    std::vector<bool> isIncluded(workspace.counts().read, true);
    for (const std::size_t position : workspace.project().excludedRows()) {
        isIncluded[position] = false;
    }
    std::vector<MissingCells> groups;
    for (const auto* const variables : {&workspace.outputs(), &workspace.inputs()}) {
        for (const VarPtr& variable : *variables) {
            const std::vector<double>& values = workspace.project().numericValues(variable);
            const std::string name = variable.lock()->name();
            std::vector<std::size_t> cases;
            for (std::size_t i = 0; i < values.size(); ++i) {
                if (isIncluded[i] && isInvalidNumber(values[i])) {
                    cases.push_back(i);
                }
            }
            if (cases.empty()) {
                continue;
            }
            const std::string cause = causeText(workspace, name, values, cases);
            const auto same = std::find_if(groups.begin(), groups.end(), [&](const auto& group) {
                const bool areBothUnknown = hasUnknownCells(workspace, name) &&
                                            hasUnknownCells(workspace, group.names.front());
                return group.cases == cases && (group.cause == cause || areBothUnknown);
            });
            if (same != groups.end()) {
                same->names.push_back(name);
            } else {
                groups.push_back(
                    {{name}, std::move(cases), cause, variables == &workspace.outputs()});
            }
        }
    }
    return groups;
}

/** Whether cells of a column say "<0.01" or the like. */
bool hasLimits(const Workspace& workspace, const std::string& name)
{
    const CaseColumn* const column = workspace.source().find(name);
    return column != nullptr && column->lacksNumbers() &&
           std::any_of(
               column->withoutNumber.spellings.begin(), column->withoutNumber.spellings.end(),
               [](const std::string& text) { return text.front() == '<' || text.front() == '>'; });
}

/** Names cases that may be sums or means of the others. */
std::vector<Finding> casesOfFigures(const Workspace& workspace)
{
    constexpr std::size_t most = 8; // more are names of cases
    const std::vector<std::size_t> valid = workspace.validCases();
    std::vector<std::size_t> cases;
    for (const std::size_t number : workspace.source().layout.casesOfFigures) {
        if (std::binary_search(valid.begin(), valid.end(), number - 1)) {
            cases.push_back(number - 1);
        }
    }
    if (cases.empty() || cases.size() > most || 2 * cases.size() > valid.size()) {
        return {};
    }
    const bool isOne = cases.size() == 1;
    std::string text = FindingWords::cases(cases);
    text[0] = 'C';
    return {{"casesOfFigures",
             Finding::Warning,
             {},
             text + (isOne ? " begins" : " begin") + " with a word such as Total, Mean or Max: " +
                 (isOne ? "it is taken for a measurement; if it sums up the other cases, exclude it"
                        : "they are taken for measurements; if they sum up the other cases, "
                          "exclude them") +
                 settingHint(Setting::ExcludedCases, caseNumbersText(cases)) + '.'}};
}

/** By the warnings of the model, or by the note about the cells of a column that are no numbers. */
bool isSaidElsewhere(const Finding& finding, const Workspace& workspace)
{
    if (finding.kind == "missingCells") {
        return finding.severity != Finding::Severe &&
               hasUnknownCells(workspace, finding.columns.front());
    }
    static const std::vector<std::string_view> byResponseSurface = {
        "constantInput", "fewValuesInput", "inestimableTerms", "saturatedFit"};
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
    const auto add = [&findings](const char* kind, const std::string& text) {
        findings.push_back({kind, Finding::Severe, {}, text});
    };
    if (workspace.counts().read == 0) {
        add("noCases", "The file names columns and holds no case: there is nothing to model; "
                       "add a row for each case.");
    } else if (workspace.outputs().empty()) {
        add("noOutput", "No column is left to be an output" + columns +
                            "; if they hold numbers, check the separator" +
                            settingHint(Setting::Separator) + ", the decimal mark" +
                            settingHint(Setting::DecimalMark) + " and where the table begins" +
                            settingHint(Setting::SkippedLines) + ", or name inputs" +
                            settingHint(Setting::Inputs) + " and outputs" +
                            settingHint(Setting::Outputs) + ".");
    } else if (workspace.inputs().empty()) {
        add("noInput",
            "No column is left to be an input" +
                (reasons.empty() ? ": there is no other column; if the file has more, "
                                   "name what separates them" +
                                       settingHint(Setting::Separator) + "."
                                 : columns + "; name inputs" + settingHint(Setting::Inputs) +
                                       ", or code texts as numbers."));
    } else if (workspace.counts().valid == 1) {
        add("oneCase", "There is only one valid case: the model is its output everywhere; "
                       "add cases, or complete those that are left out.");
    }
}
} // namespace

std::vector<Finding> SessionFindings::missingCells(const Workspace& workspace)
{
    std::vector<Finding> findings;
    constexpr std::size_t fewParts = 20; // of the cases: fewer missing are hardly a loss
    const CaseCounts& counts = workspace.counts();
    const std::size_t included = counts.read - counts.excluded;
    for (const MissingCells& group : missingGroups(workspace)) {
        const std::size_t missing = group.cases.size();
        const bool isOne = missing == 1;
        const bool isColumn = group.names.size() == 1;
        const std::string name = FindingWords::names(group.names);
        std::string remedy = "complete " + std::string(isOne ? "it" : "them");
        if (!isColumn) {
            remedy += isOne ? ", or delete the line if it is no case"
                            : ", or delete the lines if they are no cases";
        } else if (!group.areOutputs && workspace.inputs().size() > 1) {
            remedy += " or leave " + name + " out of the inputs" + settingHint(Setting::Inputs);
        } else if (group.areOutputs && workspace.outputs().size() > 1) {
            remedy += " or model the outputs one by one, so that they do not lose the cases of "
                      "each other";
        }
        const bool isLimit = isColumn && hasLimits(workspace, group.names.front());
        if (isLimit) {
            remedy =
                "a cell such as \"<0.01\" gives a limit of the value, and without its case the "
                "model is biased: write a number for it, such as the limit";
        }
        const CaseColumn& first = *workspace.source().find(group.names.front());
        const bool areTexts =
            isColumn && first.lacksNumbers() && first.withoutNumber.count == missing;
        const std::string what =
            areTexts ? name + ": " + first.withoutNumber.text()
                     : name + (isColumn ? " lacks a number in " : " lack numbers in the same ") +
                           std::to_string(missing) + " of " + std::to_string(included) + " cases" +
                           group.cause;
        findings.push_back({"missingCells",
                            2 * missing > included          ? Finding::Severe
                            : fewParts * missing > included ? Finding::Warning
                                                            : Finding::Note,
                            group.names,
                            what + ": " + (isOne ? "this case is" : "these cases are") +
                                " left out; " + remedy + "."});
    }
    return findings;
}

SessionFindings SessionFindings::ofCases(const Workspace& workspace)
{
    SessionFindings result;
    const DiagnosedCases cases = diagnosedCases(workspace);
    result.validCases = cases.count();
    addMissingRoles(workspace, result.findings);
    const Diagnosis diagnosis = Diagnosis::of(cases);
    result.comparedCases = diagnosis.comparedCases;
    for (const std::vector<Finding>& found :
         {missingCells(workspace), casesOfFigures(workspace), diagnosis.findings}) {
        result.findings.insert(result.findings.end(), found.begin(), found.end());
    }
    sortBySeverity(result.findings);
    return result;
}

SessionFindings SessionFindings::ofFit(const Workspace& workspace,
                                       const std::vector<ResponseSurfaceStatistics>& statistics)
{
    if (!workspace.exportedReport().empty()) {
        return {};
    }
    SessionFindings result = ofCases(workspace);
    result.findings.erase(
        std::remove_if(result.findings.begin(), result.findings.end(),
                       [&](const Finding& finding) { return isSaidElsewhere(finding, workspace); }),
        result.findings.end());
    const std::vector<std::string> outputs = namesOf(workspace.outputs());
    for (std::size_t i = 0; i < statistics.size(); ++i) {
        const bool hasFarCase = std::any_of(
            result.findings.begin(), result.findings.end(), [&](const Finding& finding) {
                return (finding.kind == "farCase" || finding.kind == "missingCode") &&
                       finding.columns.front() == outputs[i];
            });
        for (const Finding& finding : FitFindings::find(outputs[i], statistics[i])) {
            if (!hasFarCase || finding.kind != "suspectedOutliers") {
                result.findings.push_back(finding);
            }
        }
    }
    sortBySeverity(result.findings);
    return result;
}

std::vector<Finding> SessionFindings::severe(const Workspace& workspace)
{
    // Of all that Diagnosis looks for only these are severe.
    std::vector<Finding> findings;
    const DiagnosedCases cases = diagnosedCases(workspace);
    for (const std::vector<Finding>& found :
         {missingCells(workspace), ColumnFindings::constants(cases),
          ColumnFindings::farCases(cases)}) {
        findings.insert(findings.end(), found.begin(), found.end());
    }
    findings.erase(
        std::remove_if(findings.begin(), findings.end(),
                       [](const Finding& finding) { return finding.severity != Finding::Severe; }),
        findings.end());
    return findings;
}
