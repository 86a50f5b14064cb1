#pragma once

#include <mirel_fitting/SurrogateResponseSurfaceModel.h>

#include "EquationEvaluator.h"
#include "FittingTestSupport.h"

#include <string>
#include <vector>

namespace fittingtest {

using Model = SurrogateResponseSurfaceModel;

inline Model fit(Cases cases, int highestOrder = 2)
{
    return {cases.inputPointers(), cases.outputPointers(), cases.count(), highestOrder};
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

} // namespace fittingtest
