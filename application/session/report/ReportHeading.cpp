#include "session/report/ReportHeading.h"

#include "session/cases/VariableNames.h"
#include "session/diagnosis/FindingWords.h"
#include "session/model/SessionFindings.h"
#include "session/model/Workspace.h"
#include "session/text/QuotedText.h"
#include "session/text/SettingHint.h"

#include <mirel_datamanagement/Project.h>
#include <mirel_fitting/TermFormula.h>
#include <mirel_fitting/numerics/TextPieces.h>

namespace {
std::vector<std::string> roleNotes(const Workspace& workspace)
{
    std::vector<std::string> notes;
    const ReasonedNames reasons = workspace.reasonsAgainstInputs();
    if (!reasons.empty()) {
        notes.push_back("Not taken as " +
                        std::string(reasons.size() == 1 ? "input: " : "inputs: ") +
                        reasonsText(reasons) + "; name the inputs to decide otherwise" +
                        settingHint(Setting::Inputs) + '.');
    }
    const std::vector<ColumnRole> roles = workspace.columnRoles();
    const std::vector<std::string> names = namesOf(workspace.project().variables());
    std::vector<std::string> behind;
    std::vector<std::string> alike;
    for (std::size_t i = 0; i < roles.size(); ++i) {
        if (roles[i].role == ColumnRole::Input && roles[i].reason == ColumnRoles::behindOutput) {
            behind.push_back(names[i]);
        } else if (roles[i].role == ColumnRole::Input &&
                   roles[i].reason == ColumnRoles::likeOutput) {
            alike.push_back(names[i]);
        } else if (roles[i].role == ColumnRole::Input && !roles[i].reason.empty()) {
            notes.push_back(quotedText(names[i]) + ": " + roles[i].reason + '.');
        }
    }
    const auto addDoubt = [&](const std::vector<std::string>& columns, const std::string& doubt) {
        const bool isOne = columns.size() == 1;
        if (!columns.empty()) {
            notes.push_back(FindingWords::names(columns) + doubt +
                            (isOne ? " and is an input" : " and are inputs") + " here: if " +
                            (isOne ? "it is an output" : "they are outputs") + ", name the inputs" +
                            settingHint(Setting::Inputs) + '.');
        }
    };
    addDoubt(behind,
             (behind.size() == 1 ? " stands" : " stand") + std::string(" behind the output"));
    addDoubt(alike, alike.size() == 1 ? " looks like an output, too," : " look like outputs, too,");
    return notes;
}

/** Of chosen terms, with the linear ones that these need. */
std::string formulaText(const Workspace& workspace)
{
    const std::vector<std::string> names = namesOf(workspace.inputs());
    const std::string formula = workspace.modelChoices().responseSurface.formula;
    const TermFormula terms(formula, names);
    std::vector<std::string> added;
    for (const std::size_t input : terms.addedInputs()) {
        added.push_back(names[input]);
    }
    return ", terms " + formula +
           (added.empty() ? "" : " (" + joinedText(added) + " added to them)");
}
} // namespace

std::string ReportHeading::modelText(const Workspace& workspace)
{
    if (workspace.modelType() == Workspace::Kriging) {
        return "Kriging";
    }
    const ModelChoices choices = workspace.modelChoices();
    const CaseDesignColumns& design = choices.designColumns;
    const PolynomialTerms terms = choices.responseSurface.terms;
    const char* const polynomial = terms == PolynomialTerms::Linear ? ", linear"
                                   : terms == PolynomialTerms::Interactions
                                       ? ", linear with interactions"
                                       : "";
    const std::string formula = terms == PolynomialTerms::Chosen ? formulaText(workspace) : "";
    return std::string("response surface") + polynomial + formula +
           (choices.selectsTerms() ? ", terms selected by AICc" : "") +
           (design.weights.empty() ? "" : ", weights " + design.weights) +
           (design.blocks.empty() ? "" : ", blocks " + design.blocks);
}

std::string ReportHeading::caseText(const Workspace& workspace)
{
    const CaseCounts& counts = workspace.counts();
    std::string text = std::to_string(counts.read) + " read, " + std::to_string(counts.valid) +
                       " valid, " + std::to_string(counts.excluded) + " excluded, " +
                       std::to_string(counts.invalid) + " invalid";
    std::vector<std::string> reasons;
    for (const auto& [name, cases] : invalidCases(workspace)) {
        reasons.push_back(name + ' ' + std::to_string(cases));
    }
    return reasons.empty() ? text : text + " (" + joinedText(reasons) + ')';
}

std::vector<std::pair<std::string, std::size_t>>
ReportHeading::invalidCases(const Workspace& workspace)
{
    std::vector<std::pair<std::string, std::size_t>> result;
    const CaseCounts& counts = workspace.counts();
    const auto append = [&result](const std::vector<VarPtr>& variables,
                                  const std::vector<std::size_t>& invalid) {
        for (std::size_t i = 0; i < variables.size(); ++i) {
            if (invalid[i] > 0) {
                result.emplace_back(variables[i].lock()->name(), invalid[i]);
            }
        }
    };
    append(workspace.inputs(), counts.invalidByInput);
    append(workspace.outputs(), counts.invalidByOutput);
    result.insert(result.end(), counts.leftOutByDesign.begin(), counts.leftOutByDesign.end());
    return result;
}

std::vector<std::string> ReportHeading::readingNotes(const Workspace& workspace)
{
    std::vector<std::string> notes = roleNotes(workspace);
    for (const Finding& missing : SessionFindings::missingCells(workspace)) {
        if (workspace.source().find(missing.columns.front())->lacksNumbers()) {
            notes.push_back(missing.text);
        }
    }
    return notes;
}

ReportJson::Json ReportHeading::layoutJson(const CaseFileLayout& layout)
{
    return {
        {"encoding", encodingWord(layout.encoding)},
        {"separator", wordFor(layout.separator, separatorWords)},
        {"decimalMark", layout.hasDecimalComma ? "comma" : "point"},
        {"thousandsSeparator", layout.thousandsSeparator == '\0'
                                   ? ReportJson::Json()
                                   : ReportJson::Json(std::string(1, layout.thousandsSeparator))},
        {"heading", layout.hasHeading},
        {"headingInComment", layout.isHeadingComment},
        {"titleLines", layout.titleLines},
        {"commentLines", layout.commentLines},
        {"unitsRow", layout.hasUnitsRow},
        {"rowNames", layout.hasRowNames},
        {"unitsInCells", layout.unitsInCells},
        {"errorsInCells", layout.errorsInCells},
        {"repeatedHeadings", layout.repeatedHeadings},
        {"linesBelow", layout.linesBelow}};
}

ReportJson::Json ReportHeading::casesJson(const Workspace& workspace)
{
    const CaseCounts& counts = workspace.counts();
    ReportJson::Json json = {{"read", counts.read},
                             {"valid", counts.valid},
                             {"excluded", counts.excluded},
                             {"invalid", counts.invalid}};
    if (workspace.exportedReport().empty()) {
        json["layout"] = layoutJson(workspace.source().layout);
    }
    for (const CaseColumn& column : workspace.source().columns) {
        if (column.lacksNumbers()) {
            json["withoutNumber"].push_back({{"name", column.name},
                                             {"cells", column.withoutNumber.count},
                                             {"spellings", column.withoutNumber.spellings},
                                             {"firstLine", column.withoutNumber.firstLine}});
        }
    }
    return json;
}

void ReportHeading::addInputs(const Workspace& workspace, ReportJson::Json& json)
{
    json["inputs"] = namesOf(workspace.inputs());
    for (const auto& [name, reason] : workspace.reasonsAgainstInputs()) {
        json["notInputs"].push_back({{"name", name}, {"reason", reason}});
    }
    const std::vector<ColumnRole> roles = workspace.columnRoles();
    const std::vector<std::string> names = namesOf(workspace.project().variables());
    for (std::size_t i = 0; i < roles.size(); ++i) {
        if (roles[i].role == ColumnRole::Input && !roles[i].reason.empty()) {
            json["doubtfulInputs"].push_back({{"name", names[i]}, {"reason", roles[i].reason}});
        }
    }
}

ReportJson::Json ReportHeading::modelJson(const Workspace& workspace)
{
    ReportJson::Json json = {
        {"schema", ReportJson::schemaVersion},
        {"cases", casesJson(workspace)},
        {"model", workspace.modelType() == Workspace::Kriging ? "kriging" : "response-surface"}};
    if (workspace.modelType() == Workspace::ResponseSurface) {
        ReportJson::addResponseSurface(workspace.modelChoices(), json);
    }
    addInputs(workspace, json);
    json["outputs"] = ReportJson::Json::array();
    return json;
}

std::string ReportHeading::transformName(OutputTransform transform)
{
    return transform == OutputTransform::Logarithm    ? "logarithm"
           : transform == OutputTransform::SquareRoot ? "square root"
                                                      : "";
}

std::string ReportHeading::modelledText(OutputTransform transform, const std::string& output)
{
    const std::string name = transformName(transform);
    return name.empty() ? output + " itself" : "the " + name + " of " + output;
}
