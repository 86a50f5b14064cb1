#include "session/SessionReport.h"

#include "session/NumberText.h"
#include "session/SessionJson.h"
#include "session/TextTable.h"
#include "session/VariableNames.h"

#include <mirel_datamanagement/Project.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <tuple>
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

/** The members that all objects about a model begin with. */
Json modelJson(const CaseSession& session)
{
    return {{"schema", schemaVersion},
            {"cases", casesJson(session.counts())},
            {"model", modelName(session)},
            {"inputs", namesOf(session.inputs())},
            {"outputs", Json::array()}};
}

Json secondsJson(const CaseSession& session, double readSeconds)
{
    return {{"read", readSeconds},
            {"fit", session.times().fit},
            {"evaluate", session.times().evaluate}};
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

const char* boundName(const KrigingReport& report, std::size_t input)
{
    if (input >= report.lengthBounds.size() ||
        report.lengthBounds[input] == KrigingReport::Bound::None) {
        return "none";
    }
    return report.lengthBounds[input] == KrigingReport::Bound::Lower ? "lower" : "upper";
}

std::string boundText(const KrigingReport& report, std::size_t input)
{
    const std::string name = boundName(report, input);
    return name == "none" ? "" : " (at its " + name + " bound)";
}

Json krigingJson(const KrigingReport& report)
{
    Json bounds = Json::array();
    for (std::size_t i = 0; i < report.correlationLengths.size(); ++i) {
        bounds.push_back(boundName(report, i));
    }
    Json worst = Json::array();
    for (const KrigingReport::LeftOutCase& one : report.worstCases) {
        worst.push_back(
            {{"case", one.row + 1}, {"output", one.output}, {"predicted", one.predicted}});
    }
    return {{"correlationLengths", report.correlationLengths},
            {"lengthBounds", bounds},
            {"nugget", report.nugget},
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

std::string fitText(const OutputFit& fit, const std::vector<std::string>& inputs)
{
    TextTable table({false, false});
    const FitMetrics& metrics = fit.metrics;
    if (fit.kriging) {
        const KrigingReport& report = *fit.kriging;
        table.add({"RMSE at the cases", shownNumber(metrics.rmse)});
        table.add({"leave-one-out RMSE", shownNumber(metrics.looRmse)});
        table.add({"Q2", shownNumber(metrics.q2)});
        table.add({"log-likelihood", shownNumber(report.logLikelihood)});
        if (!std::isnan(report.secondLogLikelihood)) {
            table.add({"of the second-best maximum", shownNumber(report.secondLogLikelihood)});
        }
        table.add({"process variance", shownNumber(report.processVariance)});
        table.add({"nugget", shownNumber(report.nugget) + " of the process variance"});
        if (report.noiseDeviation > 0.0) {
            table.add({"noise, standard deviation", shownNumber(report.noiseDeviation)});
        }
        table.add({"condition of the correlations", shownNumber(report.condition)});
        table.add({"trend", joined(report.trendTerms)});
        for (std::size_t i = 0; i < report.correlationLengths.size() && i < inputs.size(); ++i) {
            table.add({"correlation length of " + inputs[i],
                       shownNumber(report.correlationLengths[i]) + boundText(report, i)});
        }
        for (const KrigingReport::LeftOutCase& worst : report.worstCases) {
            table.add({"left out, case " + std::to_string(worst.row + 1),
                       shownNumber(worst.predicted) + " instead of " + shownNumber(worst.output)});
        }
    } else {
        table.add({"R2", shownNumber(metrics.r2)});
        table.add({"adjusted R2", shownNumber(metrics.adjustedR2)});
        table.add({"predicted R2", shownNumber(metrics.predictedR2)});
        table.add({"RMSE", shownNumber(metrics.rmse)});
        table.add({"PRESS", shownNumber(metrics.press)});
        table.add({"coefficients", std::to_string(metrics.terms)});
    }

    std::string text = '\n' + fit.name + '\n' + table.text("  ");
    for (const std::string& warning : fit.warnings) {
        text += "  Warning: " + warning + '\n';
    }
    return text;
}
} // namespace

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

std::string SessionReport::fitText(CaseSession& session)
{
    const std::vector<OutputFit> fits = session.fits();
    const std::vector<std::string> inputs = namesOf(session.inputs());
    std::string text = "Cases   " + caseText(session) + '\n';
    text += std::string("Model   ") +
            (session.modelType() == CaseSession::Kriging ? "Kriging" : "response surface") + '\n';
    std::vector<std::string> legend;
    legend.reserve(inputs.size());
    for (const std::string& input : inputs) {
        legend.push_back(input + " (V" + std::to_string(legend.size() + 1) + ')');
    }
    text += "Inputs  " + joined(legend) + '\n';
    for (const OutputFit& fit : fits) {
        text += ::fitText(fit, inputs);
    }
    return text;
}

std::string SessionReport::fitJson(CaseSession& session, double readSeconds)
{
    Json json;
    if (!session.exportedReport().empty()) {
        json = Json::parse(session.exportedReport());
    } else {
        const std::vector<OutputFit> fits = session.fits();
        json = modelJson(session);
        for (const OutputFit& fit : fits) {
            json["outputs"].push_back(::fitJson(fit));
        }
    }
    if (!session.extrapolation().empty()) {
        json["extrapolation"] = session.extrapolation();
    }
    if (!session.limitFaults().empty()) {
        json["intervalFaults"] = session.limitFaults();
    }
    json["seconds"] = secondsJson(session, readSeconds);
    return dumped(json);
}

std::string SessionReport::equationsJson(CaseSession& session, double readSeconds)
{
    const std::vector<std::string> equations = session.equations();
    Json json = modelJson(session);
    for (std::size_t i = 0; i < equations.size(); ++i) {
        json["outputs"].push_back(
            {{"name", nameOf(session.outputs()[i])}, {"equation", equations[i]}});
    }
    json["seconds"] = secondsJson(session, readSeconds);
    return dumped(json);
}

std::string SessionReport::notes(CaseSession& session)
{
    std::string text;
    if (session.counts().invalid > 0) {
        text += "Cases: " + caseText(session) + ".\n";
    }
    for (const OutputFit& fit : session.fits()) {
        for (const std::string& warning : fit.warnings) {
            text += "Warning for " + fit.name + ": " + warning + '\n';
        }
    }
    if (!session.extrapolation().empty()) {
        text += "Warning: " + session.extrapolation() + '\n';
    }
    for (const std::string& fault : session.limitFaults()) {
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
