#include "session/report/StatisticsTables.h"

#include "session/report/ReportHeading.h"
#include "session/text/DecimalText.h"
#include "session/text/QuotedText.h"
#include "session/text/TextTable.h"

#include <mirel_fitting/numerics/TextPieces.h>
#include <mirel_modelexport/FitReportParts.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

namespace {
/** Digits of a probability or a factor: more are never of use. */
constexpr int fewDigits = 4;

/** @param isCoded has the inflation of the variance, which is the same in all units. */
StatisticsTables::Table coefficientTable(const std::vector<CoefficientStatistics>& coefficients,
                                         const std::vector<std::string>& inputs, bool isCoded)
{
    StatisticsTables::Table table = {
        isCoded ? "Coefficients, inputs coded to [-1, 1]" : "Coefficients",
        {"Term", "Estimate", "Std. error", "t", "p", "95 % lower", "95 % upper"}};
    if (isCoded) {
        table.heading.push_back("VIF");
    }
    for (const CoefficientStatistics& one : coefficients) {
        std::vector<std::string> row = {FitReportParts::termName(one.factors, inputs)};
        if (one.isKept) {
            row.insert(row.end(), {shownNumber(one.estimate), shownNumber(one.standardError),
                                   shownNumber(one.t, fewDigits),
                                   std::isfinite(one.t) ? shownProbability(one.p) : "-",
                                   shownNumber(one.lower), shownNumber(one.upper)});
            if (isCoded) {
                row.push_back(one.factors.empty() ? ""
                                                  : shownNumber(one.varianceInflation, fewDigits));
            }
        } else {
            row.push_back("dropped");
            row.resize(table.heading.size());
        }
        table.rows.push_back(std::move(row));
    }
    return table;
}

StatisticsTables::Table codedTable(const ResponseSurfaceStatistics& statistics,
                                   const std::vector<std::string>& inputs)
{
    StatisticsTables::Table table = coefficientTable(statistics.codedCoefficients, inputs, true);
    if (statistics.coding == InputCoding::Factorial) {
        table.title = "Coefficients, inputs coded to -1 and 1 at their factorial points";
        std::vector<std::string> others = inputs;
        for (auto input = statistics.factorialInputs.rbegin();
             input != statistics.factorialInputs.rend(); ++input) {
            others.erase(others.begin() + static_cast<std::ptrdiff_t>(*input));
        }
        if (!others.empty()) {
            table.note = "Inputs without the five levels of a central composite design have -1 "
                         "and 1 at the ends of their ranges: " +
                         joinedText(others) + '.';
        }
    }
    return table;
}

/** Empty where there is nothing to compute: rows that others are tested against have no F and p,
 *  those without degrees of freedom no mean square either. */
std::vector<std::string> anovaCells(const std::string& source, const AnovaRow& row)
{
    const bool isTested = row.source != "Residual" && row.source != "Pure error" &&
                          row.source != "Total" && row.degreesOfFreedom > 0;
    return {source,
            std::to_string(row.degreesOfFreedom),
            std::isnan(row.sumOfSquares) ? "" : shownNumber(row.sumOfSquares),
            row.degreesOfFreedom == 0 ? "" : shownNumber(row.meanSquare),
            isTested ? shownNumber(row.f, fewDigits) : "",
            isTested ? shownProbability(row.p) : ""};
}

const std::vector<std::string> anovaHeading = {"Source",      "DF", "Sum of squares",
                                               "Mean square", "F",  "p"};

StatisticsTables::Table anovaTable(const ResponseSurfaceStatistics& statistics)
{
    StatisticsTables::Table table = {"Analysis of variance", anovaHeading};
    for (const AnovaRow& row : statistics.anova) {
        table.rows.push_back(anovaCells(row.source, row));
    }
    table.note = FitReportParts::lackOfFitNote(statistics);
    return table;
}

StatisticsTables::Table partialTable(const std::vector<PartialTest>& tests,
                                     const std::vector<std::string>& inputs)
{
    StatisticsTables::Table table = {
        "Each term given all others (type III), inputs coded to [-1, 1]", anovaHeading};
    for (const PartialTest& test : tests) {
        table.rows.push_back(anovaCells(
            test.factors.empty() ? test.row.source : FitReportParts::termName(test.factors, inputs),
            test.row));
    }
    return table;
}

/** After the name of a figure that is one of the modelled transform; empty without one. */
std::string scaleText(OutputTransform transform)
{
    const std::string name = ReportHeading::transformName(transform);
    return name.empty() ? name : " of the " + name;
}

StatisticsTables::Table blockTable(const std::vector<BlockEffect>& effects,
                                   OutputTransform transform)
{
    StatisticsTables::Table table = {
        "Effects of the blocks" + scaleText(transform) + ", which sum to 0", {"Block", "Effect"}};
    for (const BlockEffect& one : effects) {
        table.rows.push_back({one.name, shownNumber(one.effect)});
    }
    return table;
}

/** Suspected outliers are among the findings, with what to do about them. */
std::string outlierText(const ResponseSurfaceStatistics& statistics)
{
    if (std::isnan(statistics.outlierLimit) || !statistics.suspectedOutliers().empty()) {
        return "";
    }
    return "No case is suspected to be an outlier: no externally studentised residual exceeds " +
           shownNumber(statistics.outlierLimit, fewDigits) + " (Bonferroni at 5 %).";
}

StatisticsTables::Table residualTable(const ResponseSurfaceStatistics& statistics,
                                      OutputTransform transform)
{
    StatisticsTables::Table table = {"Largest studentised residuals",
                                     {"Case", "Output", "Residual" + scaleText(transform),
                                      "Internally", "Externally", "Leverage", "Cook's distance"}};
    for (const std::size_t k : FitReportParts::largestResiduals(statistics)) {
        const CaseDiagnostics& one = statistics.cases[k];
        table.rows.push_back({std::to_string(one.row + 1), shownNumber(one.output),
                              shownNumber(one.residual, fewDigits),
                              shownNumber(one.internallyStudentised, fewDigits),
                              shownNumber(one.externallyStudentised, fewDigits),
                              shownNumber(one.leverage, fewDigits),
                              shownNumber(one.cooksDistance, fewDigits)});
    }
    table.note = outlierText(statistics);
    return table;
}

/** "0.96 A - 0.28 B": the largest components first, without negligible ones. */
std::string directionText(const std::vector<double>& components,
                          const std::vector<std::string>& inputs)
{
    constexpr double negligible = 0.05;
    constexpr std::size_t maxShown = 6;
    constexpr int digits = 3;
    std::vector<std::size_t> order;
    for (std::size_t i = 0; i < components.size() && i < inputs.size(); ++i) {
        if (std::abs(components[i]) >= negligible) {
            order.push_back(i);
        }
    }
    std::stable_sort(order.begin(), order.end(), [&](std::size_t left, std::size_t right) {
        return std::abs(components[left]) > std::abs(components[right]);
    });
    order.resize(std::min(order.size(), maxShown));
    std::string text;
    for (const std::size_t i : order) {
        const bool isNegative = components[i] < 0.0;
        text += text.empty() ? (isNegative ? "-" : "") : (isNegative ? " - " : " + ");
        text += shownNumber(std::abs(components[i]), digits) + ' ' + inputs[i];
    }
    return text;
}

StatisticsTables::Table canonicalTable(const std::vector<CanonicalDirection>& directions,
                                       const std::vector<std::string>& inputs,
                                       OutputTransform transform)
{
    StatisticsTables::Table table = {
        "Canonical analysis, inputs coded to [-1, 1] over their ranges",
        {"Direction", "Curvature" + scaleText(transform)}};
    for (const CanonicalDirection& one : directions) {
        table.rows.push_back(
            {directionText(one.components, inputs), shownNumber(one.curvature, fewDigits)});
    }
    return table;
}

/** A column for every second point. */
StatisticsTables::Table ridgeTable(const std::string& title, const std::vector<RidgePoint>& ridge,
                                   const std::vector<std::string>& inputs)
{
    StatisticsTables::Table table = {title, {}};
    if (ridge.empty()) {
        return table;
    }
    table.heading = {"Distance from the middle"};
    table.rows = {{"Value"}, {"Std. error"}};
    for (std::size_t input = 0; input < inputs.size(); ++input) {
        table.rows.push_back({inputs[input]});
    }
    for (std::size_t k = 0; k < ridge.size(); k += 2) {
        const RidgePoint& point = ridge[k];
        table.heading.push_back(shownNumber(point.distance, fewDigits));
        table.rows[0].push_back(shownNumber(point.value));
        table.rows[1].push_back(shownNumber(point.standardError, fewDigits));
        for (std::size_t input = 0; input < inputs.size(); ++input) {
            const double coordinate = point.coordinates[input];
            table.rows[2 + input].push_back(std::isnan(coordinate) ? "any"
                                                                   : shownNumber(coordinate));
        }
    }
    return table;
}

} // namespace

std::vector<StatisticsTables::Table>
StatisticsTables::tables(const ResponseSurfaceStatistics& statistics,
                         const std::vector<std::string>& inputs, OutputTransform transform)
{
    std::vector<Table> tables = {
        coefficientTable(statistics.coefficients, inputs, false),
        codedTable(statistics, inputs),
        anovaTable(statistics),
        blockTable(statistics.blockEffects, transform),
        partialTable(statistics.partialTests, inputs),
        residualTable(statistics, transform),
        canonicalTable(statistics.canonicalDirections, inputs, transform),
        ridgeTable("Ridge of steepest ascent: the largest values within the ranges",
                   statistics.ascent, inputs),
        ridgeTable("Ridge of steepest descent: the smallest values within the ranges",
                   statistics.descent, inputs)};
    tables.erase(std::remove_if(tables.begin(), tables.end(),
                                [](const Table& table) { return table.rows.empty(); }),
                 tables.end());
    return tables;
}

std::string StatisticsTables::stationaryPointText(const ResponseSurfaceStatistics& statistics,
                                                  const std::vector<std::string>& inputs)
{
    const std::string note = FitReportParts::canonicalNote(statistics);
    if (!note.empty()) {
        return note;
    }
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
                (place.empty() ? "" : ", ") + inputs[i] + " = " + shownFigure(point.coordinates[i]);
        }
    }
    place += anywhere;
    return std::string("The stationary point is a ") + natureName(point.nature) + " of " +
           shownFigure(point.value) + " at " + place + ", " +
           (point.isInsideData ? "inside" : "outside") + " the ranges of the cases.";
}

std::string StatisticsTables::text(const ResponseSurfaceStatistics& statistics,
                                   const std::vector<std::string>& inputs,
                                   OutputTransform transform)
{
    std::string text;
    for (const Table& one : tables(statistics, inputs, transform)) {
        std::vector<bool> alignsRight(one.heading.size(), true);
        alignsRight[0] = false;
        TextTable table(std::move(alignsRight));
        table.add(one.heading);
        for (const std::vector<std::string>& row : one.rows) {
            table.add(row);
        }
        text += "\n  " + one.title + '\n' + table.text("    ");
        text += one.note.empty() ? one.note : "    " + oneLineText(one.note) + '\n';
    }
    return text + "\n  " + oneLineText(stationaryPointText(statistics, inputs)) + '\n';
}
