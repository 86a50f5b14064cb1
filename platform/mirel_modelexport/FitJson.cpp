#include <mirel_modelexport/FitJson.h>

#include <mirel_modelexport/FitReportParts.h>
#include <mirel_modelexport/ModelJsonNames.h>

#include <mirel_fitting/ResponseSurfaceStatistics.h>

#include <cmath>
#include <cstddef>
#include <optional>
#include <utility>

using FitJson::Json;
using FitReportParts::termName;

namespace {
const char* boundWord(KrigingReport::Bound bound)
{
    return bound == KrigingReport::Bound::Lower   ? "lower"
           : bound == KrigingReport::Bound::Upper ? "upper"
                                                  : "none";
}

/** A list with what `write` makes of each item. */
template <class Item, class Write>
Json listJson(const std::vector<Item>& items, Write write)
{
    Json json = Json::array();
    for (const Item& item : items) {
        json.push_back(write(item));
    }
    return json;
}

/** Of the terms that the model has: what is not kept is no part of its formula. */
Json coefficientsJson(const std::vector<CoefficientStatistics>& coefficients,
                      const std::vector<std::string>& inputs, bool isCoded)
{
    Json json = Json::array();
    for (const CoefficientStatistics& one : coefficients) {
        if (!one.isKept) {
            continue;
        }
        json.push_back({{"term", one.term},
                        {"name", termName(one.factors, inputs)},
                        {"estimate", one.estimate},
                        {"standardError", one.standardError},
                        {"t", one.t},
                        {"p", one.p},
                        {"lower", one.lower},
                        {"upper", one.upper}});
        if (isCoded) {
            json.back()["varianceInflation"] = one.varianceInflation;
        }
    }
    return json;
}

Json anovaJson(const AnovaRow& row)
{
    return {{"source", row.source},
            {"degreesOfFreedom", row.degreesOfFreedom},
            {"sumOfSquares", row.sumOfSquares},
            {"meanSquare", row.meanSquare},
            {"f", row.f},
            {"p", row.p}};
}

Json residualsJson(const ResponseSurfaceStatistics& statistics)
{
    const auto residualJson = [&](std::size_t k) -> Json {
        const CaseDiagnostics& one = statistics.cases[k];
        return {{"case", one.row + 1},
                {"output", one.output},
                {"residual", one.residual},
                {"internallyStudentised", one.internallyStudentised},
                {"externallyStudentised", one.externallyStudentised},
                {"leverage", one.leverage},
                {"cooksDistance", one.cooksDistance}};
    };
    return {{"largest", listJson(FitReportParts::largestResiduals(statistics), residualJson)},
            {"outlierLimit", statistics.outlierLimit},
            {"suspectedOutliers", listJson(statistics.suspectedOutliers(), [&](std::size_t k) {
                 return statistics.cases[k].row + 1;
             })}};
}

Json directionJson(const CanonicalDirection& one)
{
    return {{"curvature", one.curvature}, {"components", one.components}};
}

Json ridgeJson(const RidgePoint& point)
{
    return {{"distance", point.distance},
            {"coordinates", point.coordinates},
            {"value", point.value},
            {"standardError", point.standardError}};
}

Json leverageJson(const CaseLeverage& one)
{
    return {{"case", one.row + 1}, {"leverage", one.leverage}};
}

Json stationaryPointJson(const std::optional<StationaryPoint>& point)
{
    if (!point) {
        return nullptr;
    }
    return {{"nature", natureName(point->nature)},
            {"coordinates", point->coordinates},
            {"value", point->value},
            {"isInsideData", point->isInsideData},
            {"curvatures", point->curvatures}};
}

Json droppedTermsJson(const std::vector<CoefficientStatistics>& coefficients,
                      const std::vector<std::string>& inputs)
{
    Json json = Json::array();
    for (const CoefficientStatistics& one : coefficients) {
        if (!one.isKept) {
            json.push_back({{"term", one.term}, {"name", termName(one.factors, inputs)}});
        }
    }
    return json;
}
} // namespace

Json FitJson::of(const FitMetrics& metrics, const ResponseSurfaceStatistics* statistics)
{
    Json json = {{"cases", metrics.cases}, {"terms", metrics.terms}};
    for (const ModelJsonNames::Metric& metric : ModelJsonNames::metrics) {
        json[metric.name] = metrics.*metric.value;
    }
    if (statistics != nullptr) {
        json["aicc"] = statistics->aicc;
        json["residualDegreesOfFreedom"] = statistics->residualDegreesOfFreedom;
    }
    return json;
}

const char* FitJson::criterionWord(KrigingReport::Criterion criterion)
{
    using Criterion = KrigingReport::Criterion;
    return criterion == Criterion::RestrictedLikelihood            ? "restrictedLikelihood"
           : criterion == Criterion::PenalisedRestrictedLikelihood ? "penalisedRestrictedLikelihood"
                                                                   : "none";
}

Json FitJson::of(const KrigingReport& report)
{
    Json bounds = Json::array();
    for (std::size_t i = 0; i < report.correlationLengths.size(); ++i) {
        bounds.push_back(boundWord(i < report.lengthBounds.size() ? report.lengthBounds[i]
                                                                  : KrigingReport::Bound::None));
    }
    const auto leftOutJson = [](const KrigingReport::LeftOutCase& one) -> Json {
        return {{"case", one.row + 1}, {"output", one.output}, {"predicted", one.predicted}};
    };
    return {{"correlationLengths", report.correlationLengths},
            {"lengthBounds", bounds},
            {"nugget", report.nugget},
            {"nuggetBound", boundWord(report.nuggetBound)},
            {"noiseDeviation", report.noiseDeviation},
            {"processVariance", report.processVariance},
            {"criterion", criterionWord(report.criterion)},
            {"logLikelihood", report.logLikelihood},
            {"secondLogLikelihood", report.secondLogLikelihood},
            {"condition", report.condition},
            {"trend", report.trendTerms},
            {"trendCoefficients", report.trendCoefficients},
            {"worstCases", listJson(report.worstCases, leftOutJson)}};
}

Json FitJson::of(const BoxCoxProfile& profile)
{
    return {{"power", profile.power}, {"lower", profile.lower}, {"upper", profile.upper}};
}

Json FitJson::of(const CalibrationReport& calibration)
{
    using Basis = CalibrationReport::Basis;
    Json held = Json::object();
    for (const CalibrationReport::Coverage& one : calibration.coverage) {
        held[std::to_string(std::lround(100.0 * one.level))] = one.share;
    }
    return {{"basis", calibration.basis == Basis::LeaveOneOut ? "leave-one-out"
                      : calibration.basis == Basis::Refits    ? "refits"
                                                              : "distribution"},
            {"factor", calibration.factor},
            {"cases", calibration.cases},
            {calibration.basis == Basis::Distribution ? "held" : "heldByStudentsT", held}};
}

Json FitJson::of(const ResponseSurfaceStatistics& statistics,
                 const std::vector<std::string>& inputs)
{
    Json json = {
        {"coefficients", coefficientsJson(statistics.coefficients, inputs, false)},
        {"codedCoefficients", coefficientsJson(statistics.codedCoefficients, inputs, true)},
        {"anova", listJson(statistics.anova, anovaJson)}};
    if (statistics.coding == InputCoding::Factorial) {
        json["factorialInputs"] =
            listJson(statistics.factorialInputs, [&](std::size_t input) { return inputs[input]; });
    }
    if (statistics.repeatsAreCopies) {
        json["lackOfFitNote"] = FitReportParts::lackOfFitNote(statistics);
    }
    json["partialTests"] = listJson(statistics.partialTests, [&](const PartialTest& test) -> Json {
        return {{"term", test.row.source},
                {"name", test.factors.empty() ? test.row.source : termName(test.factors, inputs)},
                {"degreesOfFreedom", test.row.degreesOfFreedom},
                {"sumOfSquares", test.row.sumOfSquares},
                {"f", test.row.f},
                {"p", test.row.p}};
    });
    for (const BlockEffect& one : statistics.blockEffects) {
        json["blockEffects"].push_back({{"block", one.name}, {"effect", one.effect}});
    }
    json["leverage"] = {{"mean", statistics.meanLeverage},
                        {"largest", listJson(statistics.largestLeverages, leverageJson)}};
    json["residuals"] = residualsJson(statistics);
    json["stationaryPoint"] = stationaryPointJson(statistics.stationaryPoint);
    if (std::string note = FitReportParts::canonicalNote(statistics); !note.empty()) {
        json["stationaryPointNote"] = std::move(note);
    }
    json["canonicalDirections"] = listJson(statistics.canonicalDirections, directionJson);
    json["ascent"] = listJson(statistics.ascent, ridgeJson);
    json["descent"] = listJson(statistics.descent, ridgeJson);
    json["droppedTerms"] = droppedTermsJson(statistics.coefficients, inputs);
    return json;
}
