#include "session/report/SessionReport.h"

#include "session/cases/VariableNames.h"
#include "session/model/PolynomialWords.h"
#include "session/report/SessionJson.h"
#include "session/report/StatisticsTables.h"
#include "session/text/NumberText.h"
#include "session/text/TextTable.h"

#include <mirel_datamanagement/Project.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <tuple>
#include <utility>
#include <vector>

using SessionJson::casesJson;
using SessionJson::dumped;
using SessionJson::Json;
using SessionJson::schemaVersion;

namespace {
std::string nameOf(const VarPtr& variable)
{
    return variable.lock()->name();
}

std::string joined(const std::vector<std::string>& texts)
{
    std::string all;
    for (const std::string& text : texts) {
        all += (all.empty() ? "" : ", ") + text;
    }
    return all;
}

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

/** Calls `action` with the name and number of each variable that makes cases invalid. */
template <class Action>
void forEachInvalid(const CaseSession& session, Action action)
{
    const CaseCounts& counts = session.counts();
    const auto walk = [&](const std::vector<VarPtr>& variables,
                          const std::vector<std::size_t>& invalid) {
        for (std::size_t i = 0; i < variables.size(); ++i) {
            if (invalid[i] > 0) {
                action(nameOf(variables[i]), invalid[i]);
            }
        }
    };
    walk(session.inputs(), counts.invalidByInput);
    walk(session.outputs(), counts.invalidByOutput);
}

std::string modelName(const CaseSession& session)
{
    return session.modelType() == CaseSession::Kriging ? "kriging" : "response-surface";
}

bool selectsTerms(const CaseSession& session)
{
    return session.responseSurface().selection == ResponseSurfaceOptions::Selection::BackwardAicc;
}

/** The members that all objects about a model begin with. */
Json modelJson(const CaseSession& session)
{
    Json json = {{"schema", schemaVersion},
                 {"cases", casesJson(session.counts())},
                 {"model", modelName(session)}};
    if (session.modelType() == CaseSession::ResponseSurface) {
        json["terms"] = termsWord(session.responseSurface().terms);
        json["selectsTerms"] = selectsTerms(session);
    }
    json["inputs"] = namesOf(session.inputs());
    json["outputs"] = Json::array();
    return json;
}

Json secondsJson(double readSeconds, double fitSeconds, const Evaluation* evaluation = nullptr)
{
    return {{"read", readSeconds},
            {"fit", fitSeconds},
            {"evaluate", evaluation == nullptr ? 0.0 : evaluation->seconds}};
}

Json metricsJson(const OutputFit& fit)
{
    const FitMetrics& metrics = fit.metrics;
    if (fit.kriging) {
        return {{"rmse", metrics.rmse}, {"looRmse", metrics.looRmse}, {"q2", metrics.q2}};
    }
    return {{"r2", metrics.r2},
            {"adjustedR2", metrics.adjustedR2},
            {"rmse", metrics.rmse},
            {"predictedR2", metrics.predictedR2}};
}

const char* boundName(KrigingReport::Bound bound)
{
    switch (bound) {
    case KrigingReport::Bound::Lower:
        return "lower";
    case KrigingReport::Bound::Upper:
        return "upper";
    default:
        return "none";
    }
}

KrigingReport::Bound lengthBound(const KrigingReport& report, std::size_t input)
{
    return input < report.lengthBounds.size() ? report.lengthBounds[input]
                                              : KrigingReport::Bound::None;
}

std::string boundText(KrigingReport::Bound bound)
{
    const std::string name = boundName(bound);
    return name == "none" ? "" : " (at its " + name + " bound)";
}

Json krigingJson(const KrigingReport& report)
{
    Json bounds = Json::array();
    for (std::size_t i = 0; i < report.correlationLengths.size(); ++i) {
        bounds.push_back(boundName(lengthBound(report, i)));
    }
    Json worst = Json::array();
    for (const KrigingReport::LeftOutCase& one : report.worstCases) {
        worst.push_back(
            {{"case", one.row + 1}, {"output", one.output}, {"predicted", one.predicted}});
    }
    return {{"correlationLengths", report.correlationLengths},
            {"lengthBounds", bounds},
            {"nugget", report.nugget},
            {"nuggetBound", boundName(report.nuggetBound)},
            {"noiseDeviation", report.noiseDeviation},
            {"processVariance", report.processVariance},
            {"logLikelihood", report.logLikelihood},
            {"secondLogLikelihood", report.secondLogLikelihood},
            {"condition", report.condition},
            {"trend", report.trendTerms},
            {"worstCases", worst}};
}

Json fitJson(const OutputFit& fit)
{
    Json json = {{"name", fit.name}, {"metrics", metricsJson(fit)}, {"warnings", fit.warnings}};
    if (fit.kriging) {
        json.update(krigingJson(*fit.kriging));
    }
    return json;
}

/** All about the fit but the times that it took. */
Json fitObject(CaseSession& session)
{
    if (!session.exportedReport().empty()) {
        return Json::parse(session.exportedReport());
    }
    const std::vector<OutputFit>& fits = session.fit().outputs;
    const std::vector<ResponseSurfaceStatistics> statistics = session.statistics();
    const std::vector<std::string> inputs = namesOf(session.inputs());
    Json json = modelJson(session);
    for (std::size_t i = 0; i < fits.size(); ++i) {
        Json output = fitJson(fits[i]);
        if (!statistics.empty()) {
            output["metrics"]["press"] = statistics[i].press;
            output["metrics"]["aicc"] = statistics[i].aicc;
            output["metrics"]["terms"] = fits[i].metrics.terms;
            output["metrics"]["residualDegreesOfFreedom"] = statistics[i].residualDegreesOfFreedom;
            output.update(StatisticsTables::json(statistics[i], inputs));
        }
        json["outputs"].push_back(std::move(output));
    }
    return json;
}

std::string leverageText(const ResponseSurfaceStatistics& statistics)
{
    std::string text;
    for (const CaseLeverage& one : statistics.largestLeverages) {
        text += (text.empty() ? "" : ", ") + shownNumber(one.leverage, 3) + " of case " +
                std::to_string(one.row + 1);
    }
    return text;
}

std::string fitText(const OutputFit& fit, const std::vector<std::string>& inputs,
                    const ResponseSurfaceStatistics* statistics)
{
    TextTable table({false, false});
    for (const auto& [name, figure] : SessionReport::figures(fit, inputs, statistics)) {
        table.add({name, figure});
    }
    std::string text = '\n' + fit.name + '\n' + table.text("  ");
    for (const std::string& warning : fit.warnings) {
        text += "  Warning: " + warning + '\n';
    }
    return text;
}
} // namespace

std::string SessionReport::modelText(const CaseSession& session)
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

std::string SessionReport::caseText(const CaseSession& session)
{
    const CaseCounts& counts = session.counts();
    std::string text = std::to_string(counts.read) + " read, " + std::to_string(counts.valid) +
                       " valid, " + std::to_string(counts.excluded) + " excluded, " +
                       std::to_string(counts.invalid) + " invalid";
    std::vector<std::string> reasons;
    forEachInvalid(session, [&](const std::string& name, std::size_t invalid) {
        reasons.push_back(name + ' ' + std::to_string(invalid));
    });
    return reasons.empty() ? text : text + " (" + joined(reasons) + ')';
}

std::string SessionReport::summaryText(const CaseSession& session)
{
    TextTable table({false, false, false, true, true, true});
    table.add({"Variable", "Kind", "Role", "Minimum", "Maximum", "Missing"});
    for (const VariableSummary& variable : summariesOf(session.project())) {
        table.add({variable.name, variable.isNumeric ? "numeric" : "text",
                   variable.role == "none" ? "-" : variable.role, shownNumber(variable.minimum),
                   shownNumber(variable.maximum), std::to_string(variable.missing)});
    }

    std::string text = table.text("") + "\nCases: " + caseText(session) + '\n';
    for (std::size_t i = 0; i < session.outputs().size(); ++i) {
        text += nameOf(session.outputs()[i]) + " alone would have " +
                std::to_string(session.counts().validAlone[i]) + " valid cases.\n";
    }
    return text;
}

std::string SessionReport::summaryJson(const CaseSession& session)
{
    Json json = {{"schema", schemaVersion}, {"cases", casesJson(session.counts())}};
    json["cases"]["invalidBy"] = Json::array();
    forEachInvalid(session, [&](const std::string& name, std::size_t invalid) {
        json["cases"]["invalidBy"].push_back({{"name", name}, {"cases", invalid}});
    });

    json["variables"] = Json::array();
    for (const VariableSummary& variable : summariesOf(session.project())) {
        json["variables"].push_back({{"name", variable.name},
                                     {"kind", variable.isNumeric ? "numeric" : "text"},
                                     {"role", variable.role},
                                     {"minimum", variable.minimum},
                                     {"maximum", variable.maximum},
                                     {"missing", variable.missing}});
    }
    json["outputs"] = Json::array();
    for (std::size_t i = 0; i < session.outputs().size(); ++i) {
        json["outputs"].push_back({{"name", nameOf(session.outputs()[i])},
                                   {"validAlone", session.counts().validAlone[i]}});
    }
    return dumped(json);
}

std::vector<std::pair<std::string, std::string>>
SessionReport::figures(const OutputFit& fit, const std::vector<std::string>& inputs,
                       const ResponseSurfaceStatistics* statistics)
{
    std::vector<std::pair<std::string, std::string>> figures;
    const FitMetrics& metrics = fit.metrics;
    if (fit.kriging) {
        const KrigingReport& report = *fit.kriging;
        figures.push_back({"RMSE at the cases", shownNumber(metrics.rmse)});
        figures.push_back({"leave-one-out RMSE", shownNumber(metrics.looRmse)});
        figures.push_back({"Q2", shownNumber(metrics.q2)});
        if (!std::isnan(report.logLikelihood)) {
            figures.push_back({"log-likelihood", shownNumber(report.logLikelihood)});
        }
        if (!std::isnan(report.secondLogLikelihood)) {
            figures.push_back(
                {"of the second-best maximum", shownNumber(report.secondLogLikelihood)});
        }
        figures.push_back({"process variance", shownNumber(report.processVariance)});
        figures.push_back({"nugget", shownNumber(report.nugget) + " of the process variance" +
                                         boundText(report.nuggetBound)});
        if (report.noiseDeviation > 0.0) {
            figures.push_back({"noise, standard deviation", shownNumber(report.noiseDeviation)});
        }
        figures.push_back({"condition of the correlations", shownNumber(report.condition)});
        figures.push_back({"trend", joined(report.trendTerms)});
        for (std::size_t i = 0; i < report.correlationLengths.size() && i < inputs.size(); ++i) {
            figures.push_back(
                {"correlation length of " + inputs[i],
                 shownNumber(report.correlationLengths[i]) + boundText(lengthBound(report, i))});
        }
        for (const KrigingReport::LeftOutCase& worst : report.worstCases) {
            constexpr int fewestDigits = 6;
            const int digits = worst.digits(fewestDigits);
            figures.push_back({"left out, case " + std::to_string(worst.row + 1),
                               shownNumber(worst.predicted, digits) + " instead of " +
                                   shownNumber(worst.output, digits)});
        }
    } else {
        figures.push_back({"R2", shownNumber(metrics.r2)});
        figures.push_back({"adjusted R2", shownNumber(metrics.adjustedR2)});
        figures.push_back({"predicted R2", shownNumber(metrics.predictedR2)});
        figures.push_back({"RMSE", shownNumber(metrics.rmse)});
        figures.push_back({"PRESS", shownNumber(metrics.press)});
        if (statistics != nullptr) {
            figures.push_back({"AICc", shownNumber(statistics->aicc)});
            figures.push_back({"residual degrees of freedom",
                               std::to_string(statistics->residualDegreesOfFreedom)});
        }
        figures.push_back({"coefficients", std::to_string(metrics.terms)});
        if (statistics != nullptr) {
            figures.push_back({"mean leverage", shownNumber(statistics->meanLeverage)});
            figures.push_back({"largest leverages", leverageText(*statistics)});
        }
    }
    return figures;
}

std::string SessionReport::fitText(CaseSession& session)
{
    const std::vector<OutputFit> fits = session.fit().outputs;
    const std::vector<ResponseSurfaceStatistics> statistics = session.statistics();
    const std::vector<std::string> inputs = namesOf(session.inputs());
    std::string text = "Cases   " + caseText(session) + '\n';
    text += "Model   " + modelText(session) + '\n';
    std::vector<std::string> legend;
    legend.reserve(inputs.size());
    for (const std::string& input : inputs) {
        legend.push_back(input + " (V" + std::to_string(legend.size() + 1) + ')');
    }
    text += "Inputs  " + joined(legend) + '\n';
    for (std::size_t i = 0; i < fits.size(); ++i) {
        text += ::fitText(fits[i], inputs, statistics.empty() ? nullptr : &statistics[i]);
        if (!statistics.empty()) {
            text += StatisticsTables::text(statistics[i], inputs);
        }
    }
    return text;
}

std::string SessionReport::fitJson(CaseSession& session, double readSeconds,
                                   const Evaluation* evaluation)
{
    Json json = fitObject(session);
    if (evaluation != nullptr && !evaluation->extrapolation.empty()) {
        json["extrapolation"] = evaluation->extrapolation;
    }
    if (evaluation != nullptr && !evaluation->intervalFaults.empty()) {
        json["intervalFaults"] = evaluation->intervalFaults;
    }
    json["seconds"] = secondsJson(readSeconds, session.fit().seconds, evaluation);
    return dumped(json);
}

std::string SessionReport::exportJson(CaseSession& session)
{
    return fitObject(session).dump();
}

std::string SessionReport::equationsJson(CaseSession& session, double readSeconds)
{
    const std::vector<std::string> equations = session.equations();
    Json json = modelJson(session);
    for (std::size_t i = 0; i < equations.size(); ++i) {
        json["outputs"].push_back(
            {{"name", nameOf(session.outputs()[i])}, {"equation", equations[i]}});
    }
    json["seconds"] = secondsJson(readSeconds, session.fit().seconds);
    return dumped(json);
}

std::string SessionReport::notes(CaseSession& session, const Evaluation* evaluation)
{
    std::string text;
    if (session.counts().invalid > 0) {
        text += "Cases: " + caseText(session) + ".\n";
    }
    for (const OutputFit& fit : session.fit().outputs) {
        for (const std::string& warning : fit.warnings) {
            text += "Warning for " + fit.name + ": " + warning + '\n';
        }
    }
    if (evaluation == nullptr) {
        return text;
    }
    if (!evaluation->extrapolation.empty()) {
        text += "Warning: " + evaluation->extrapolation + '\n';
    }
    for (const std::string& fault : evaluation->intervalFaults) {
        text += "Warning: " + fault + '\n';
    }
    return text;
}

std::string SessionReport::openedForMember(std::string object, const std::string& name)
{
    object.erase(object.rfind('}'));
    object.erase(object.find_last_not_of(" \n") + 1);
    return object + ",\n  " + Json(name).dump() + ": ";
}
