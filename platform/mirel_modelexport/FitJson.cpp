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

Json anovaJson(const std::vector<AnovaRow>& anova)
{
    Json json = Json::array();
    for (const AnovaRow& row : anova) {
        json.push_back({{"source", row.source},
                        {"degreesOfFreedom", row.degreesOfFreedom},
                        {"sumOfSquares", row.sumOfSquares},
                        {"meanSquare", row.meanSquare},
                        {"f", row.f},
                        {"p", row.p}});
    }
    return json;
}

Json partialTestsJson(const std::vector<PartialTest>& tests, const std::vector<std::string>& inputs)
{
    Json json = Json::array();
    for (const PartialTest& test : tests) {
        json.push_back(
            {{"term", test.row.source},
             {"name", test.factors.empty() ? test.row.source : termName(test.factors, inputs)},
             {"degreesOfFreedom", test.row.degreesOfFreedom},
             {"sumOfSquares", test.row.sumOfSquares},
             {"f", test.row.f},
             {"p", test.row.p}});
    }
    return json;
}

Json residualsJson(const ResponseSurfaceStatistics& statistics)
{
    Json largest = Json::array();
    for (const std::size_t k : FitReportParts::largestResiduals(statistics)) {
        const CaseDiagnostics& one = statistics.cases[k];
        largest.push_back({{"case", one.row + 1},
                           {"output", one.output},
                           {"residual", one.residual},
                           {"internallyStudentised", one.internallyStudentised},
                           {"externallyStudentised", one.externallyStudentised},
                           {"leverage", one.leverage},
                           {"cooksDistance", one.cooksDistance}});
    }
    Json outliers = Json::array();
    for (const std::size_t k : statistics.suspectedOutliers()) {
        outliers.push_back(statistics.cases[k].row + 1);
    }
    return {{"largest", std::move(largest)},
            {"outlierLimit", statistics.outlierLimit},
            {"suspectedOutliers", std::move(outliers)}};
}

Json canonicalDirectionsJson(const std::vector<CanonicalDirection>& directions)
{
    Json json = Json::array();
    for (const CanonicalDirection& one : directions) {
        json.push_back({{"curvature", one.curvature}, {"components", one.components}});
    }
    return json;
}

Json ridgeJson(const std::vector<RidgePoint>& ridge)
{
    Json json = Json::array();
    for (const RidgePoint& point : ridge) {
        json.push_back({{"distance", point.distance},
                        {"coordinates", point.coordinates},
                        {"value", point.value},
                        {"standardError", point.standardError}});
    }
    return json;
}

Json leverageJson(const ResponseSurfaceStatistics& statistics)
{
    Json largest = Json::array();
    for (const CaseLeverage& one : statistics.largestLeverages) {
        largest.push_back({{"case", one.row + 1}, {"leverage", one.leverage}});
    }
    return {{"mean", statistics.meanLeverage}, {"largest", std::move(largest)}};
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
    Json worst = Json::array();
    for (const KrigingReport::LeftOutCase& one : report.worstCases) {
        worst.push_back(
            {{"case", one.row + 1}, {"output", one.output}, {"predicted", one.predicted}});
    }
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
            {"worstCases", worst}};
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
        {"anova", anovaJson(statistics.anova)}};
    if (statistics.coding == InputCoding::Factorial) {
        json["factorialInputs"] = Json::array();
        for (const std::size_t input : statistics.factorialInputs) {
            json["factorialInputs"].push_back(inputs[input]);
        }
    }
    if (statistics.repeatsAreCopies) {
        json["lackOfFitNote"] = FitReportParts::lackOfFitNote(statistics);
    }
    json["partialTests"] = partialTestsJson(statistics.partialTests, inputs);
    for (const BlockEffect& one : statistics.blockEffects) {
        json["blockEffects"].push_back({{"block", one.name}, {"effect", one.effect}});
    }
    json["leverage"] = leverageJson(statistics);
    json["residuals"] = residualsJson(statistics);
    json["stationaryPoint"] = stationaryPointJson(statistics.stationaryPoint);
    if (std::string note = FitReportParts::canonicalNote(statistics); !note.empty()) {
        json["stationaryPointNote"] = std::move(note);
    }
    json["canonicalDirections"] = canonicalDirectionsJson(statistics.canonicalDirections);
    json["ascent"] = ridgeJson(statistics.ascent);
    json["descent"] = ridgeJson(statistics.descent);
    json["droppedTerms"] = droppedTermsJson(statistics.coefficients, inputs);
    return json;
}
