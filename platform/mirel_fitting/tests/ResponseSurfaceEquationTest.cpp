#include "ResponseSurfaceTestSupport.h"

#include <gtest/gtest.h>

#include <regex>

using namespace fittingtest;

// The equation

TEST(ResponseSurfaceEquation, WritesTheTermsOfTheEquationInTheirOrder)
{
    const std::string text = fit(twoInputs(40, 1.0)).surfaceCoefficientInformation(0);
    const std::string number = "[0-9]+[.][0-9]+";

    EXPECT_TRUE(
        std::regex_match(text, std::regex(number + " - " + number + " [*] V1 [+] " + number +
                                          " [*] V2 [+] " + number + " [*] V1\\^2 - " + number +
                                          " [*] V1 [*] V2 [+] " + number + " [*] V2\\^2\n")))
        << text;
}

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

TEST(ResponseSurfaceEquation, EquationStaysInCentredInputsWhereMultiplyingOutLosesDigits)
{
    Cases cases = twoInputs(40, 1.0);
    for (double& value : cases.inputs[0]) {
        value += 1e9;
    }
    for (double& value : cases.inputs[1]) {
        value -= 1e6;
    }
    const Model model = fit(cases);
    const std::string text = model.surfaceCoefficientInformation(0);

    EXPECT_NE(text.find(" * (V1 - 10000000"), std::string::npos) << text;
    EXPECT_NE(text.find(" * (V2 + 9999"), std::string::npos) << text;
    EXPECT_LT(largestDifference(valuesOfText(model, cases.inputs), predict(model, cases.inputs)),
              1e-12);
}

TEST(ResponseSurfaceEquation, EquationKeepsItsPromiseForEveryShift)
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
