#include "session/report/ProjectReport.h"

#include "session/cases/CaseFileLayout.h"
#include "session/cases/CaseNumbers.h"
#include "session/project/ProjectDocument.h"
#include "session/text/DecimalText.h"
#include "session/text/TextTable.h"

#include <mirel_fitting/numerics/TextPieces.h>

#include <algorithm>
#include <cstddef>
#include <map>
#include <optional>
#include <vector>

using ReportJson::Json;

namespace {
const char* roleName(Variable::Nature role)
{
    return role == Variable::Independent ? "input"
           : role == Variable::Dependent ? "output"
                                         : "none";
}

const char* stateName(ProjectDocument::CaseFileState state)
{
    return state == ProjectDocument::Unchanged ? "unchanged"
           : state == ProjectDocument::Changed ? "changed"
                                               : "missing";
}

/** Every other text of the document than the response surface's name means Kriging. */
const char* modelName(const ProjectDocument& document)
{
    return document.modelType() == "ResponseModel" ? "response-surface" : "kriging";
}

/** As the option --coding has it. */
const char* codingWord(InputCoding coding)
{
    return coding == InputCoding::Axial ? "axial" : "factorial";
}

std::string listText(const std::vector<std::string>& names)
{
    return names.empty() ? "none" : joinedText(names);
}

std::string rangeText(const std::optional<ProjectDocument::Range>& range)
{
    return range ? numberText(range->first) + " to " + numberText(range->second) : "of the cases";
}

Json rangeJson(const std::optional<ProjectDocument::Range>& range)
{
    return range ? Json{range->first, range->second} : Json(nullptr);
}

/** What each input is evaluated at, in words. */
std::map<std::string, std::string> valuesByInput(const ProjectDocument& document)
{
    std::map<std::string, std::string> values;
    for (const ProjectDocument::Distribution& point : document.evaluationPoint()) {
        values[point.name] = point.text;
    }
    for (const ProjectDocument::Sweep& sweep : document.sweeps) {
        values[sweep.name] = std::to_string(sweep.count) + " values" +
                             (sweep.range ? " over " + rangeText(sweep.range) : "");
    }
    for (const ProjectDocument::Distribution& typed : document.userDistributions()) {
        const auto isSwept = [&](const ProjectDocument::Sweep& sweep) {
            return sweep.name == typed.name;
        };
        if (typed.mode == "UserDefined" &&
            std::any_of(document.sweeps.begin(), document.sweeps.end(), isSwept)) {
            values[typed.name] = typed.text;
        }
    }
    return values;
}

Json distributionsJson(const std::vector<ProjectDocument::Distribution>& distributions)
{
    Json json = Json::array();
    for (const ProjectDocument::Distribution& distribution : distributions) {
        json.push_back({{"name", distribution.name},
                        {"mode", distribution.mode},
                        {"text", distribution.text}});
    }
    return json;
}
} // namespace

std::string ProjectReport::text(const ProjectDocument& document)
{
    const ProjectDocument::CaseFile& cases = document.caseFile;
    TextTable head({false, false});
    head.add({"Case file", cases.path + " (" + stateName(document.checkCaseFile().state) + ')'});
    head.add({"Read with", (cases.separator == CaseFileLayout::blanks
                                ? std::string("blanks")
                                : wordFor(cases.separator, separatorWords) + 's') +
                               " between cells, decimal " +
                               (cases.hasDecimalComma ? "commas" : "points")});
    head.add({"Excluded", document.excluded.empty() ? "none" : caseNumbersText(document.excluded)});
    head.add({"Model", modelName(document)});
    if (!(document.responseSurface == ResponseSurfaceOptions())) {
        const bool isChosen = document.responseSurface.terms == PolynomialTerms::Chosen;
        head.add({"Terms", (isChosen ? document.responseSurface.formula
                                     : termsWord(document.responseSurface.terms)) +
                               (document.selectsTerms() ? ", selected by AICc" : "") +
                               ", if it is a response surface"});
    }
    if (!document.designColumns.weights.empty()) {
        head.add({"Weights", document.designColumns.weights});
    }
    if (!document.designColumns.blocks.empty()) {
        head.add({"Blocks", document.designColumns.blocks});
    }
    if (document.transform != TransformSetting::Usual) {
        head.add({"Transform", transformWord(document.transform)});
    }
    if (document.coding != InputCoding::Axial) {
        head.add({"Coding", codingWord(document.coding)});
    }
    head.add({"Inputs", listText(document.modelInputs())});
    head.add({"Outputs", listText(document.outputs)});

    TextTable table({false, false, false, false});
    table.add({"Variable", "Role", "Range", "Values"});
    const std::map<std::string, std::string> values = valuesByInput(document);
    for (const ProjectDocument::VariableEntry& variable : document.variables) {
        const auto found = values.find(variable.name);
        const bool isInput = variable.role == Variable::Independent && found != values.end();
        table.add({variable.name, roleName(variable.role), rangeText(variable.range),
                   isInput ? found->second : ""});
    }
    return head.text("") + '\n' + table.text("");
}

ReportJson::Json ProjectReport::json(const ProjectDocument& document)
{
    const ProjectDocument::CaseFile& cases = document.caseFile;
    Json json = {{"schema", ReportJson::schemaVersion},
                 {"caseFile",
                  {{"path", cases.path},
                   {"state", stateName(document.checkCaseFile().state)},
                   {"bytes", cases.fingerprint.bytes},
                   {"sha256", cases.fingerprint.sha256},
                   {"separator", wordFor(cases.separator, separatorWords)},
                   {"decimalMark", cases.hasDecimalComma ? "comma" : "point"}}}};
    json["variables"] = Json::array();
    for (const ProjectDocument::VariableEntry& variable : document.variables) {
        json["variables"].push_back({{"name", variable.name},
                                     {"role", roleName(variable.role)},
                                     {"range", rangeJson(variable.range)}});
    }
    json["excluded"] = Json::array();
    for (const std::size_t position : document.excluded) {
        json["excluded"].push_back(position + 1);
    }
    json["model"] = modelName(document);
    ReportJson::addResponseSurface(document, json);
    json["transform"] = transformWord(document.transform);
    json["coding"] = codingWord(document.coding);
    json["inputs"] = document.modelInputs();
    json["outputs"] = document.outputs;
    json["evaluationPoint"] = distributionsJson(document.evaluationPoint());
    json["userDistributions"] = distributionsJson(document.userDistributions());
    json["sweeps"] = Json::array();
    for (const ProjectDocument::Sweep& sweep : document.sweeps) {
        json["sweeps"].push_back(
            {{"name", sweep.name}, {"count", sweep.count}, {"range", rangeJson(sweep.range)}});
    }
    return json;
}
