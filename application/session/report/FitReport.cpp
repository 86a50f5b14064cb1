#include "session/report/FitReport.h"

#include "session/cases/VariableNames.h"
#include "session/model/CaseSession.h"
#include "session/report/FindingsReport.h"
#include "session/report/FitFigures.h"
#include "session/report/ReportHeading.h"
#include "session/report/StatisticsTables.h"
#include "session/text/DecimalText.h"
#include "session/text/QuotedText.h"
#include "session/text/TextTable.h"

#include <mirel_fitting/numerics/NumberText.h>
#include <mirel_fitting/numerics/TextPieces.h>
#include <mirel_modelexport/FitJson.h>

#include <algorithm>
#include <cmath>
#include <cstddef>

using ReportJson::Json;

namespace {
Json secondsJson(double readSeconds, double fitSeconds, const Evaluation* evaluation = nullptr)
{
    return {{"read", readSeconds},
            {"fit", fitSeconds},
            {"evaluate", evaluation == nullptr ? 0.0 : evaluation->seconds}};
}

Json metricsJson(const OutputFit& fit, const ResponseSurfaceStatistics* statistics)
{
    std::vector<const char*> names = {"r2", "adjustedR2", "rmse", "predictedR2"};
    if (fit.kriging) {
        names = {"rmse", "looRmse", "q2"};
    } else if (statistics != nullptr) {
        names.insert(names.end(), {"press", "aicc", "terms", "residualDegreesOfFreedom"});
    }
    const Json all = FitJson::of(fit.metrics, statistics);
    Json json;
    for (const char* const name : names) {
        json[name] = all[name];
    }
    return json;
}

Json outputJson(const OutputFit& fit, const ResponseSurfaceStatistics* statistics)
{
    Json json = {{"name", fit.name},
                 {"metrics", metricsJson(fit, statistics)},
                 {"notes", FitFigures::notes(fit, statistics)},
                 {"warnings", fit.warnings}};
    json["transform"] = OutputTransforms::word(fit.modelled.transform);
    if (fit.modelled.profile) {
        json["boxCox"] = FitJson::of(*fit.modelled.profile);
    }
    if (fit.kriging) {
        json.update(FitJson::of(*fit.kriging));
    }
    if (fit.calibration) {
        json["calibration"] = FitJson::of(*fit.calibration);
    }
    return json;
}

/** "Pressure 100 %, Power 42 % and 3 more below 10 %". */
std::string rankingText(const InputRanking& ranking, const std::vector<std::string>& inputs)
{
    constexpr std::size_t maxShown = 10;
    std::vector<std::string> texts;
    for (std::size_t i = 0; i < std::min(maxShown, ranking.size()); ++i) {
        texts.push_back(inputs[ranking[i].first] + ' ' + NumberText::percent(ranking[i].second));
    }
    return joinedText(texts) + andMore(ranking.size() - texts.size()) +
           (ranking.size() > maxShown
                ? " of at most " + NumberText::percent(ranking[maxShown].second)
                : "");
}

std::string outputText(const OutputFit& fit, const std::vector<std::string>& inputs,
                       const ResponseSurfaceStatistics* statistics, const InputRanking& ranking)
{
    TextTable table({false, false});
    for (const auto& [name, figure] : FitFigures::of(fit, inputs, statistics)) {
        table.add({name, figure});
    }
    if (!ranking.empty()) {
        table.add({"ranking of the inputs",
                   rankingText(ranking, inputs) + " (change along each, the others held)"});
    }
    std::string text = '\n' + shortText(fit.name) + '\n' + table.text("  ");
    for (const std::string& note : FitFigures::notes(fit, statistics)) {
        text += "  Note: " + note + '\n';
    }
    for (const std::string& warning : fit.warnings) {
        text += "  Warning: " + warning + '\n';
    }
    return text;
}
} // namespace

std::string FitReport::text(CaseSession& session, const std::vector<InputRanking>& rankings)
{
    const std::vector<OutputFit>& fits = session.calibratedFit().outputs;
    const std::vector<ResponseSurfaceStatistics>& statistics = session.statistics();
    const std::vector<std::string> inputs = shownNamesOf(session.inputs());
    std::string text = "Cases   " + ReportHeading::caseText(session) + '\n';
    text += "Model   " + ReportHeading::modelText(session) + '\n';
    std::vector<std::string> legend;
    legend.reserve(inputs.size());
    for (const std::string& input : inputs) {
        legend.push_back(input + " (V" + std::to_string(legend.size() + 1) + ')');
    }
    text += "Inputs  " + joinedText(legend) + '\n';
    for (std::size_t i = 0; i < fits.size(); ++i) {
        text += outputText(fits[i], inputs, statistics.empty() ? nullptr : &statistics[i],
                           rankings.empty() ? InputRanking() : rankings[i]);
        if (!statistics.empty()) {
            text += StatisticsTables::text(statistics[i], inputs, fits[i].modelled.transform);
        }
    }
    const SessionFindings& findings = session.findings();
    return findings.findings.empty() ? text : text + '\n' + FindingsReport::text(findings);
}

ReportJson::Json FitReport::json(CaseSession& session)
{
    if (!session.exportedReport().is_null()) {
        return session.exportedReport();
    }
    const std::vector<OutputFit>& fits = session.calibratedFit().outputs;
    const std::vector<ResponseSurfaceStatistics>& statistics = session.statistics();
    const std::vector<std::string> inputs = namesOf(session.inputs());
    Json json = ReportHeading::modelJson(session);
    for (std::size_t i = 0; i < fits.size(); ++i) {
        Json output = outputJson(fits[i], statistics.empty() ? nullptr : &statistics[i]);
        if (!statistics.empty()) {
            output.update(FitJson::of(statistics[i], inputs));
        }
        json["outputs"].push_back(std::move(output));
    }
    json["findings"] = FindingsReport::json(session.findings());
    return json;
}

ReportJson::Json FitReport::runJson(CaseSession& session, double readSeconds,
                                    const Evaluation* evaluation,
                                    const std::vector<InputRanking>& rankings)
{
    Json json = FitReport::json(session);
    const std::vector<std::string> inputs = namesOf(session.inputs());
    for (std::size_t i = 0; i < rankings.size(); ++i) {
        for (const auto& [input, share] : rankings[i]) {
            json["outputs"][i]["ranking"].push_back({{"name", inputs[input]}, {"share", share}});
        }
    }
    if (evaluation != nullptr) {
        for (const HeldInput& input : evaluation->held) {
            json["held"].push_back({{"name", input.name}, {"value", input.value}});
        }
    }
    if (evaluation != nullptr && !evaluation->extrapolation.points.empty()) {
        json["extrapolation"] = evaluation->extrapolation.text();
    }
    if (evaluation != nullptr && !evaluation->intervalFaults.empty()) {
        json["intervalFaults"] = evaluation->intervalFaults;
    }
    json["seconds"] = secondsJson(readSeconds, session.fit().seconds, evaluation);
    return json;
}

ReportJson::Json FitReport::equationsJson(CaseSession& session, double readSeconds)
{
    const std::vector<std::string> equations = session.equations();
    const std::vector<std::string> outputs = namesOf(session.outputs());
    Json json = ReportHeading::modelJson(session);
    for (std::size_t i = 0; i < equations.size(); ++i) {
        json["outputs"].push_back({{"name", outputs[i]}, {"equation", equations[i]}});
    }
    json["seconds"] = secondsJson(readSeconds, session.fit().seconds);
    return json;
}

namespace {
/** What holds for several outputs is said once. */
struct SentenceOfOutputs
{
    std::string kind;
    std::string sentence;
    std::vector<std::string> outputs;
};

using GroupedSentences = std::vector<SentenceOfOutputs>;

void addTo(GroupedSentences& groups, const std::string& kind, const std::string& sentence,
           const std::string& output)
{
    const auto found = std::find_if(groups.begin(), groups.end(), [&](const auto& group) {
        return group.kind == kind && group.sentence == sentence;
    });
    if (found == groups.end()) {
        groups.push_back({kind, sentence, {output}});
    } else {
        found->outputs.push_back(output);
    }
}
} // namespace

std::string FitReport::notes(CaseSession& session, const Evaluation* evaluation)
{
    std::string text;
    if (session.counts().invalid > 0) {
        text += "Cases: " + ReportHeading::caseText(session) + ".\n";
    }
    GroupedSentences groups;
    for (const OutputFit& fit : session.fit().outputs) {
        const std::string note = FitFigures::transformNote(fit);
        text += note.empty() ? note : "Note: " + note + '\n';
        for (const std::string& sentence : fit.notes) {
            addTo(groups, "Note", sentence, shortText(fit.name));
        }
        for (const std::string& sentence : fit.warnings) {
            addTo(groups, "Warning", sentence, shortText(fit.name));
        }
    }
    if (evaluation != nullptr && !evaluation->intervals.empty()) {
        for (const OutputFit& fit : session.calibratedFit().outputs) {
            if (fit.calibration &&
                fit.calibration->basis != CalibrationReport::Basis::Distribution) {
                addTo(groups, "Note",
                      "95 % intervals are " + FitFigures::widthText(*fit.calibration) + ".",
                      shortText(fit.name));
            }
        }
    }
    for (const SentenceOfOutputs& group : groups) {
        text += group.kind + " for " + joinedText(group.outputs) + ": " + group.sentence + '\n';
    }
    if (session.exportedReport().empty()) {
        text += FindingsReport::severeNotes(session);
    }
    if (evaluation == nullptr) {
        return text;
    }
    if (!evaluation->extrapolation.points.empty()) {
        text += "Warning: " + evaluation->extrapolation.text() + '\n';
    }
    for (const std::string& fault : evaluation->intervalFaults) {
        text += "Warning: " + fault + '\n';
    }
    return text;
}
