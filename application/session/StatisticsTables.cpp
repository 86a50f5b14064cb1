#include "session/StatisticsTables.h"

#include "session/InputSymbols.h"
#include "session/NumberText.h"
#include "session/QuotedText.h"
#include "session/TextTable.h"

#include <cstddef>

using SessionJson::Json;

namespace {
/** Of a probability, or a factor that nobody reads closer. */
constexpr int fewDigits = 4;

std::string nameOf(const CoefficientStatistics& one, const std::vector<std::string>& inputs)
{
    return termWithInputNames(one.term, inputs);
}

/** @param isCoded has the inflation of the variance, which is the same in all units. */
StatisticsTables::Table coefficientTable(const std::vector<CoefficientStatistics>& coefficients,
                                         const std::vector<std::string>& inputs, bool isCoded)
{
    StatisticsTables::Table table;
    table.title = isCoded ? "Coefficients, inputs coded to [-1, 1]" : "Coefficients";
    table.heading = {"Term", "Estimate", "Std. error", "t", "p", "95 % lower", "95 % upper"};
    if (isCoded) {
        table.heading.push_back("VIF");
    }
    for (const CoefficientStatistics& one : coefficients) {
        std::vector<std::string> row = {nameOf(one, inputs)};
        if (one.isKept) {
            row.insert(row.end(), {shownNumber(one.estimate), shownNumber(one.standardError),
                                   shownNumber(one.t, fewDigits), shownNumber(one.p, fewDigits),
                                   shownNumber(one.lower), shownNumber(one.upper)});
            if (isCoded) {
                row.push_back(shownNumber(one.varianceInflation, fewDigits));
            }
        } else {
            row.push_back("dropped");
            row.resize(table.heading.size());
        }
        table.rows.push_back(std::move(row));
    }
    return table;
}

StatisticsTables::Table anovaTable(const std::vector<AnovaRow>& anova)
{
    StatisticsTables::Table table;
    table.title = "Analysis of variance";
    table.heading = {"Source", "DF", "Sum of squares", "Mean square", "F", "p"};
    for (const AnovaRow& row : anova) {
        table.rows.push_back({row.source, std::to_string(row.degreesOfFreedom),
                              shownNumber(row.sumOfSquares), shownNumber(row.meanSquare),
                              shownNumber(row.f, fewDigits), shownNumber(row.p, fewDigits)});
    }
    return table;
}

Json coefficientsJson(const std::vector<CoefficientStatistics>& coefficients,
                      const std::vector<std::string>& inputs)
{
    Json json = Json::array();
    for (const CoefficientStatistics& one : coefficients) {
        json.push_back({{"term", one.term},
                        {"name", nameOf(one, inputs)},
                        {"estimate", one.estimate},
                        {"standardError", one.standardError},
                        {"t", one.t},
                        {"p", one.p},
                        {"lower", one.lower},
                        {"upper", one.upper}});
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

Json droppedTermsJson(const std::vector<std::string>& terms, const std::vector<std::string>& inputs)
{
    Json json = Json::array();
    for (const std::string& term : terms) {
        json.push_back({{"term", term}, {"name", termWithInputNames(term, inputs)}});
    }
    return json;
}
} // namespace

std::vector<StatisticsTables::Table>
StatisticsTables::tables(const ResponseSurfaceStatistics& statistics,
                         const std::vector<std::string>& inputs)
{
    return {coefficientTable(statistics.coefficients, inputs, false),
            coefficientTable(statistics.codedCoefficients, inputs, true),
            anovaTable(statistics.anova)};
}

std::string StatisticsTables::stationaryPointText(const ResponseSurfaceStatistics& statistics,
                                                  const std::vector<std::string>& inputs)
{
    if (!statistics.stationaryPoint) {
        return "There is no stationary point: the polynomial is not curved.";
    }
    const StationaryPoint& point = *statistics.stationaryPoint;
    std::string place;
    for (std::size_t i = 0; i < point.coordinates.size() && i < inputs.size(); ++i) {
        place +=
            (place.empty() ? "" : ", ") + inputs[i] + " = " + shownNumber(point.coordinates[i]);
    }
    return std::string("The stationary point is a ") + natureName(point.nature) + " of " +
           shownNumber(point.value) + " at " + place + ", " +
           (point.isInsideData ? "inside" : "outside") + " the ranges of the cases.";
}

std::string StatisticsTables::text(const ResponseSurfaceStatistics& statistics,
                                   const std::vector<std::string>& inputs)
{
    std::string text;
    for (const Table& one : tables(statistics, inputs)) {
        std::vector<bool> alignsRight(one.heading.size(), true);
        alignsRight[0] = false;
        TextTable table(std::move(alignsRight));
        table.add(one.heading);
        for (const std::vector<std::string>& row : one.rows) {
            table.add(row);
        }
        text += "\n  " + one.title + '\n' + table.text("    ");
    }
    return text + "\n  " + oneLineText(stationaryPointText(statistics, inputs)) + '\n';
}

Json StatisticsTables::json(const ResponseSurfaceStatistics& statistics,
                            const std::vector<std::string>& inputs)
{
    Json json = {{"coefficients", coefficientsJson(statistics.coefficients, inputs)},
                 {"codedCoefficients", coefficientsJson(statistics.codedCoefficients, inputs)},
                 {"anova", anovaJson(statistics.anova)},
                 {"stationaryPoint", stationaryPointJson(statistics.stationaryPoint)},
                 {"droppedTerms", droppedTermsJson(statistics.droppedTerms, inputs)}};
    for (std::size_t i = 0; i < statistics.codedCoefficients.size(); ++i) {
        json["codedCoefficients"][i]["varianceInflation"] =
            statistics.codedCoefficients[i].varianceInflation;
    }
    return json;
}
