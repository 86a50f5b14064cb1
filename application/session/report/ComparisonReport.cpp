#include "session/report/ComparisonReport.h"

#include "session/cases/VariableNames.h"
#include "session/comparison/ModelComparison.h"
#include "session/model/Workspace.h"
#include "session/report/ReportHeading.h"
#include "session/text/DecimalText.h"
#include "session/text/QuotedText.h"
#include "session/text/TextTable.h"

#include <mirel_fitting/numerics/TextPieces.h>
#include <mirel_modelexport/FitJson.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

using ReportJson::Json;

namespace {
std::string shownSeconds(double seconds)
{
    constexpr int digits = 3;
    return shownNumber(seconds, digits);
}

void addRow(TextTable& table, const std::string& model, const CrossValidationMetrics& figures)
{
    const std::string place =
        figures.cases == 0 ? "-" : std::to_string(figures.largestErrorCase + 1);
    table.add({model, shownNumber(figures.q2), shownNumber(figures.rmse),
               shownNumber(figures.largestError), place, shownSeconds(figures.fitSeconds)});
}

/** What of the output was modelled: empty where it is the output itself, in the folds and in the
 * fit to all cases. */
std::string transformNote(const std::string& model, const std::string& output,
                          const CrossValidationMetrics& figures)
{
    if (figures.transforms.size() == 1 && figures.transforms.begin()->first == figures.transform) {
        return figures.transform == OutputTransform::None
                   ? std::string()
                   : model + " models " + ReportHeading::modelledText(figures.transform, output) +
                         ".";
    }
    std::vector<std::string> folds;
    for (const auto& [transform, count] : figures.transforms) {
        folds.push_back(ReportHeading::modelledText(transform, output) + " in " +
                        std::to_string(count));
    }
    return folds.empty()
               ? std::string()
               : model + " models " + joinedText(folds) + " of the folds, and with all cases " +
                     ReportHeading::modelledText(figures.transform, output) + ".";
}

std::string notesOf(const std::string& model, const std::string& output,
                    const CrossValidationMetrics& figures, std::size_t folds)
{
    const std::string note = transformNote(model, output, figures);
    std::string text = note.empty() ? note : "  Note: " + oneLineText(note) + '\n';
    if (!figures.failures.empty()) {
        const CrossValidationMetrics::Failure& first = figures.failures.front();
        text += "  Warning: " + model + " cannot be fitted in " +
                std::to_string(figures.failures.size()) + " of " + std::to_string(folds) +
                " folds, whose cases are left out of all figures; in fold " +
                std::to_string(first.fold + 1) + ": " + oneLineText(first.sentence) + '\n';
    }
    for (const std::string& remark : figures.remarks) {
        text += "  Warning: " + model + ": " + oneLineText(remark) + '\n';
    }
    return text;
}

/** A sentence, or nothing if no fold has intervals. */
std::string intervalText(const OutputComparison& output)
{
    std::vector<std::string> held;
    const auto add = [&held](const char* model, const CrossValidationMetrics& figures) {
        constexpr int digits = 3;
        if (!std::isnan(figures.held95)) {
            held.push_back(shownNumber(100.0 * figures.held95, digits) + " % (" + model + ")");
        }
    };
    add("response surface", output.responseSurface);
    add("Kriging", output.kriging);
    return held.empty()
               ? std::string()
               : "  The 95 % intervals held " + joinedText(held) + " of the left-out cases.\n";
}

std::string outputText(const OutputComparison& output, std::size_t folds)
{
    TextTable table({false, true, true, true, true, true});
    table.add({"Model", "Q2", "Cross-validated RMSE", "Largest error", "At case", "Seconds a fit"});
    addRow(table, "response surface", output.responseSurface);
    addRow(table, "Kriging", output.kriging);
    return '\n' + oneLineText(output.name) + '\n' + table.text("  ") + "  " +
           output.recommendation + '\n' + intervalText(output) +
           notesOf("The response surface", output.name, output.responseSurface, folds) +
           notesOf("Kriging", output.name, output.kriging, folds);
}

Json modelJson(const char* name, const CrossValidationMetrics& figures)
{
    Json failures = Json::array();
    for (const CrossValidationMetrics::Failure& failure : figures.failures) {
        failures.push_back({{"fold", failure.fold + 1}, {"message", failure.sentence}});
    }
    Json transforms = Json::object();
    for (const auto& [transform, count] : figures.transforms) {
        transforms[OutputTransforms::word(transform)] = count;
    }
    Json json = {{"model", name},
                 {"transform", OutputTransforms::word(figures.transform)},
                 {"foldTransforms", transforms},
                 {"cases", figures.cases},
                 {"q2", figures.q2},
                 {"rmse", figures.rmse},
                 {"largestError", figures.largestError},
                 {"largestErrorCase", nullptr},
                 {"held95", figures.held95},
                 {"looRmse", figures.looRmse},
                 {"fitSeconds", figures.fitSeconds},
                 {"failures", failures},
                 {"warnings", figures.remarks}};
    if (figures.kriging) {
        json["criterion"] = FitJson::criterionWord(figures.kriging->criterion);
        json["trend"] = figures.kriging->trendTerms;
    }
    if (figures.cases > 0) {
        json["largestErrorCase"] = figures.largestErrorCase + 1;
    }
    return json;
}

const char* nameOf(OutputComparison::Verdict verdict)
{
    switch (verdict) {
    case OutputComparison::ResponseSurface:
        return "response-surface";
    case OutputComparison::Kriging:
        return "kriging";
    case OutputComparison::Either:
        return "either";
    default:
        return "neither";
    }
}
const char* confidenceOf(const OutputComparison& output)
{
    const bool isForOne = output.verdict == OutputComparison::ResponseSurface ||
                          output.verdict == OutputComparison::Kriging;
    return !isForOne ? "none" : output.isClear ? "clear" : "lean";
}

Json differenceJson(const PairedErrors& errors)
{
    return {
        {"logRmseRatio", errors.logRatio},
        {"standardError", errors.standardError},
        {"p", errors.p},
        {"folds", errors.folds},
        {"nearer",
         {{"response-surface", errors.responseSurfaceNearer}, {"kriging", errors.krigingNearer}}}};
}
} // namespace

std::string ComparisonReport::text(const Workspace& workspace, const ModelComparison& comparison)
{
    std::string text = "Cases   " + ReportHeading::caseText(workspace) + '\n';
    text += "Inputs  " + oneLineText(joinedText(shownNamesOf(workspace.inputs()))) + '\n';
    text += "Folds   " + std::to_string(comparison.folds) +
            ", each predicted by models of the cases of all others\n";
    const auto& outputs = comparison.outputs;
    const auto isKnown = [](const OutputComparison& output) { return output.kriging.kriging; };
    const auto known = std::find_if(outputs.begin(), outputs.end(), isKnown);
    if (known != outputs.end()) {
        text += "Kriging by " + known->kriging.kriging->criterionText() + '\n';
    }
    const ModelChoices choices = workspace.modelChoices();
    const PolynomialTerms terms = choices.responseSurface.terms;
    if (terms == PolynomialTerms::Chosen) {
        text += "Terms   those of the response surface are " +
                oneLineText(choices.responseSurface.formula) + '\n';
    } else if (terms != PolynomialTerms::Quadratic) {
        text += std::string("Order   the response surface is linear") +
                (terms == PolynomialTerms::Linear ? "\n" : " with interactions\n");
    }
    if (choices.selectsTerms()) {
        text += "Terms   those of the response surface selected by AICc, anew in each fold\n";
    }
    const CaseDesignColumns& design = choices.designColumns;
    if (!design.weights.empty()) {
        text += "Weights " + oneLineText(design.weights) +
                ", of the response surface and of the errors of both; Kriging is fitted without\n";
    }
    if (!design.blocks.empty()) {
        text += "Blocks  " + oneLineText(design.blocks) +
                ", of the response surface; Kriging is fitted without\n";
    }
    for (const OutputComparison& output : comparison.outputs) {
        text += outputText(output, comparison.folds);
    }
    return text;
}

ReportJson::Json ComparisonReport::json(const Workspace& workspace,
                                        const ModelComparison& comparison, double readSeconds)
{
    Json json = {{"schema", ReportJson::schemaVersion},
                 {"cases", ReportHeading::casesJson(workspace)}};
    ReportHeading::addInputs(workspace, json);
    json["folds"] = comparison.folds;
    json["outputs"] = Json::array();
    for (const OutputComparison& output : comparison.outputs) {
        json["outputs"].push_back({{"name", output.name},
                                   {"models",
                                    {modelJson("response-surface", output.responseSurface),
                                     modelJson("kriging", output.kriging)}},
                                   {"difference", differenceJson(output.errors)},
                                   {"recommended", nameOf(output.verdict)},
                                   {"confidence", confidenceOf(output)},
                                   {"recommendation", output.recommendation}});
    }
    ReportJson::addResponseSurface(workspace.modelChoices(), json);
    json["seconds"] = {{"read", readSeconds}, {"compare", comparison.seconds}};
    return json;
}
