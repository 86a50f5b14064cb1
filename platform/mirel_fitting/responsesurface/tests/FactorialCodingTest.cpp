#include <mirel_fitting/responsesurface/FactorialCoding.h>

#include "FittingTestSupport.h"

#include <gtest/gtest.h>

using namespace fittingtest;

namespace {

/** A coefficient 4 of V1 V1 whose input has these values in the cases, coded to its range. */
ResponseSurfaceStatistics coded(Column levels)
{
    ResponseSurfaceStatistics statistics;
    CoefficientStatistics square;
    square.factors = {0, 0};
    square.estimate = 4.0;
    square.standardError = 0.5;
    statistics.codedCoefficients.push_back(square);
    FactorialCoding({levels.data()}, levels.size()).apply(statistics);
    return statistics;
}

} // namespace

TEST(FactorialCoding, MultipliesByTheFactorialPointsShareOfTheRange)
{
    const ResponseSurfaceStatistics found = coded({15.0, 11.0, 19.0, 13.0, 17.0, 15.0});

    EXPECT_EQ(found.coding, InputCoding::Factorial);
    EXPECT_EQ(found.factorialInputs, std::vector<std::size_t>{0});
    EXPECT_EQ(found.codedCoefficients[0].estimate, 4.0 * 0.5 * 0.5);
    EXPECT_EQ(found.codedCoefficients[0].standardError, 0.5 * 0.5 * 0.5);
}

TEST(FactorialCoding, LeavesInputsWithoutFiveSymmetricLevelsAtTheirRange)
{
    for (const Column& levels :
         {Column{1, 2, 3}, Column{1, 2, 3, 4, 5, 6}, Column{1, 2, 3, 4.5, 5}, Column{7, 7}}) {
        const ResponseSurfaceStatistics found = coded(levels);
        EXPECT_TRUE(found.factorialInputs.empty());
        EXPECT_EQ(found.codedCoefficients[0].estimate, 4.0);
    }
}
