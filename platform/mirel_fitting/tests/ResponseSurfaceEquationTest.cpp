#include "ResponseSurfaceTestSupport.h"

#include <gtest/gtest.h>

using namespace fittingtest;

// The equation

TEST(ResponseSurfaceEquation, EquationGivesTheValuesOfTheModel)
{
    const Cases cases = twoInputs(40, 1.0);
    const Model model = fit(cases);

    // 1e-9 of the output's spread, which is about 15; the text reads back exactly, so that only
    // the order of the operations differs.
    EXPECT_LT(largestDifference(valuesOfText(model, cases.inputs), predict(model, cases.inputs)),
              1e-12);
    EXPECT_EQ(model.surfaceCoefficientInformation(0).find('('), std::string::npos);
}

TEST(ResponseSurfaceEquation, EquationIsAccurateForEveryOriginOfTheInputs)
{
    for (double shift = 1.0; shift < 1e13; shift *= 10.0) {
        Cases cases = twoInputs(40, 1.0);
        for (Column& column : cases.inputs) {
            for (double& value : column) {
                value += shift;
            }
        }
        const Model model = fit(cases);
        EXPECT_LT(
            largestDifference(valuesOfText(model, cases.inputs), predict(model, cases.inputs)),
            1e-9 * 15.0)
            << shift;
    }
}
