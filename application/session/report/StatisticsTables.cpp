#include "session/report/StatisticsTables.h"

#include "session/report/TermName.h"
#include "session/text/NumberText.h"
#include "session/text/QuotedText.h"
#include "session/text/TextTable.h"

#include <cmath>
#include <cstddef>
#include <utility>

using ReportJson::Json;

namespace {
/** Digits of a probability or a factor: more are never of use. */
constexpr int fewDigits = 4;

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
        std::vector<std::string> row = {termName(one.factors, inputs)};
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
        return statistics.isCurved ? "There is no stationary point: the polynomial rises along a "
                                     "direction in which it is not curved."
                                   : "There is no stationary point: the polynomial is not curved.";
    }
    const StationaryPoint& point = *statistics.stationaryPoint;
    std::string place;
    std::string anywhere;
    for (std::size_t i = 0; i < point.coordinates.size() && i < inputs.size(); ++i) {
        if (std::isnan(point.coordinates[i])) {
            anywhere += ", any " + inputs[i];
        } else {
            place +=
                (place.empty() ? "" : ", ") + inputs[i] + " = " + shownNumber(point.coordinates[i]);
        }
    }
    place += anywhere;
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
    return {{"coefficients", coefficientsJson(statistics.coefficients, inputs, false)},
            {"codedCoefficients", coefficientsJson(statistics.codedCoefficients, inputs, true)},
            {"anova", anovaJson(statistics.anova)},
            {"leverage", leverageJson(statistics)},
            {"stationaryPoint", stationaryPointJson(statistics.stationaryPoint)},
            {"droppedTerms", droppedTermsJson(statistics.coefficients, inputs)}};
}
