#pragma once

#include <mirel_fitting/SurrogateResponseSurfaceModel.h>

#include "EquationEvaluator.h"
#include "FittingTestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

namespace fittingtest {

using Model = SurrogateResponseSurfaceModel;

inline Model fit(Cases cases, int highestOrder = 2)
{
    return {cases.inputPointers(), cases.outputPointers(), cases.count(), highestOrder};
}

inline Model fit(Cases cases, PolynomialTerms terms,
                 Model::Selection selection = Model::Selection::All)
{
    return {cases.inputPointers(), cases.outputPointers(), cases.count(),
            ResponseSurfaceOptions{terms, selection}};
}

/** A 3 x 3 grid with one case twice: small enough to write its figures down. */
inline Cases grid()
{
    return {{{-1, 0, 1, -1, 0, 1, -1, 0, 1, 0}, {-1, -1, -1, 0, 0, 0, 1, 1, 1, 0}},
            {{3, 1, 4, 1, 5, 9, 2, 6, 5, 3}}};
}

inline std::vector<std::string> termsOf(const Model& model, bool kept)
{
    std::vector<std::string> terms;
    for (const CoefficientStatistics& coefficient :
         model.responseSurfaceStatistics(0).coefficients) {
        if (coefficient.isKept == kept) {
            terms.push_back(coefficient.term);
        }
    }
    return terms;
}

inline Column pointOf(const std::vector<Column>& columns, std::size_t row)
{
    Column point;
    for (const Column& column : columns) {
        point.push_back(column[row]);
    }
    return point;
}

/** The equation's values at the cases. */
inline Column valuesOfText(const Model& model, const std::vector<Column>& points)
{
    Column values;
    for (std::size_t row = 0; row < points[0].size(); ++row) {
        values.push_back(
            EquationEvaluator(model.surfaceCoefficientInformation(0), pointOf(points, row))
                .value());
    }
    return values;
}

inline Cases withoutCase(Cases cases, std::size_t row)
{
    for (std::vector<Column>* columns : {&cases.inputs, &cases.outputs}) {
        for (Column& column : *columns) {
            column.erase(column.begin() + static_cast<long>(row));
        }
    }
    return cases;
}

/** Columns of one point: what models are evaluated at and what they write to. */
inline std::vector<Column> caseAt(const Cases& cases, std::size_t row)
{
    std::vector<Column> point;
    for (const Column& column : cases.inputs) {
        point.push_back({column[row]});
    }
    return point;
}

inline Model select(const Cases& cases)
{
    return fit(cases, PolynomialTerms::Quadratic, Model::Selection::BackwardAicc);
}

inline ResponseSurfaceStatistics statisticsOf(const Cases& cases, int highestOrder = 2)
{
    return fit(cases, highestOrder).responseSurfaceStatistics(0);
}

/**
 * Eleven runs of a chemical vapour deposition process: pressure and gas ratio; uniformity. The case
 * in the middle is there three times. NIST/SEMATECH e-Handbook of Statistical Methods, 5.4.7.3.
 * The figures about it below are what response_surface_statistics.R prints.
 */
inline Cases vapourDeposition()
{
    return {{{80, 42, 68.87, 15.13, 4, 42, 15.13, 42, 68.87, 42, 42},
             {6, 6, 3.17, 8.83, 6, 6, 3.17, 2, 8.83, 10, 6}},
            {{4.6, 6.2, 3.4, 6.9, 7.3, 6.4, 8.6, 6.3, 5.1, 5.4, 5.0}}};
}

/** At a single point. */
inline double standardError(const Model& model, std::vector<Column> point,
                            FittedModel::ErrorKind kind)
{
    return model.standardErrors(pointersTo(point), 0, kind, 1)[0];
}

/** Relative to its size, or to 1e-3 for less. R prints 15 digits. */
inline void expectFigure(double value, double expected, const std::string& what)
{
    EXPECT_NEAR(value, expected, 1e-10 * std::max(std::fabs(expected), 1e-3)) << what;
}

inline std::vector<std::string> sourcesOf(const ResponseSurfaceStatistics& statistics)
{
    std::vector<std::string> sources;
    for (const AnovaRow& row : statistics.anova) {
        sources.push_back(row.source);
    }
    return sources;
}

} // namespace fittingtest
