#include "ResponseSurfaceTestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

using namespace fittingtest;

// Terms that the cases cannot separate

TEST(ResponseSurfaceDependentTerms, DropsAConstantInputAndItsProducts)
{
    Cases cases = twoInputs(40, 0.0);
    const Column reference = predict(fit({{cases.inputs[1]}, cases.outputs}), {{0.25}});
    std::fill(cases.inputs[0].begin(), cases.inputs[0].end(), 1e6 / 3.0);
    const Model model = fit(cases);

    EXPECT_EQ(termsOf(model, true), (std::vector<std::string>{"1", "V2", "V2^2"}));
    EXPECT_EQ(
        model.fitWarnings(0),
        (std::vector<std::string>{"V1 is the same in every case and was left out, and with it "
                                  "V1^2 and V1 V2."}));
    EXPECT_EQ(model.fitWarnings(0, {"Pressure", "Ratio"}),
              (std::vector<std::string>{
                  "\"Pressure\" is the same in every case and was left out, and with it "
                  "\"Pressure\"^2 and \"Pressure\" * \"Ratio\"."}));
    EXPECT_NEAR(predict(model, {{-5.0}, {0.25}})[0], reference[0], 1e-12);
    EXPECT_EQ(model.responseSurfaceStatistics(0).coefficients[1].estimate, 0.0);
    EXPECT_EQ(model.surfaceCoefficientInformation(0).find("V1"), std::string::npos);
    EXPECT_NE(model.qualityMetricInformation(0).find("Terms: 3 of 6\n"), std::string::npos);
}

TEST(ResponseSurfaceDependentTerms, DropsAnInputThatVariesByRoundingOnly)
{
    Cases cases = twoInputs(12, 1.0);
    cases.inputs[1].assign(12, 0.3);
    const Column without = predict(fit(cases), {{2.5}, {0.3}});
    cases.inputs[1][3] = 0.1 + 0.2;
    cases.inputs[1][8] = 0.1 + 0.2;
    const Model model = fit(cases);

    EXPECT_LT(largestDifference(predict(model, {{2.5}, {0.4}}), without), 1e-12);
    EXPECT_EQ(model.fitWarnings(0).front(),
              "V2 is the same in every case and was left out, and with it V1 V2 and V2^2.");
}

TEST(ResponseSurfaceDependentTerms, IsTheMeanWhenEveryInputIsConstant)
{
    const Model model = fit({{{5, 5, 5}, {6, 6, 6}}, {{1, 2, 6}}});

    EXPECT_NEAR(predict(model, {{1.0}, {2.0}})[0], 3.0, 1e-15);
    EXPECT_EQ(model.fitMetrics(0).terms, 1u);
}

TEST(ResponseSurfaceDependentTerms, DropsTheSquareOfAnInputOfTwoLevels)
{
    Cases cases = twoInputs(40, 0.0);
    for (double& value : cases.inputs[0]) {
        value = value > 2.0 ? 3.7 : 1.1;
    }
    const Model model = fit(cases);

    EXPECT_EQ(termsOf(model, false), (std::vector<std::string>{"V1^2"}));
    EXPECT_EQ(model.fitWarnings(0),
              (std::vector<std::string>{
                  "V1^2 cannot be separated from V1 by these cases and was left out."}));
}

TEST(ResponseSurfaceDependentTerms, SaysFromWhichTermsASquareCannotBeSeparated)
{
    // On a circle about (3, -1) the squares add up to a constant and linear terms.
    Cases cases{{{}, {}}, {{}}};
    for (int k = 0; k < 24; ++k) {
        cases.inputs[0].push_back(3.0 + std::cos(0.25 * k));
        cases.inputs[1].push_back(-1.0 + std::sin(0.25 * k));
        cases.outputs[0].push_back(k % 5);
    }

    EXPECT_EQ(fit(cases).fitWarnings(0).front(),
              "V2^2 cannot be separated from V1, V2 and V1^2 by these cases and was left out.");
}

TEST(ResponseSurfaceDependentTerms, NamesNoLinearTermsThatCancel)
{
    // V3 is the product of the two other inputs as they are, far from the origin.
    Cases cases = twoInputs(60, 1.0);
    cases.inputs.emplace_back();
    for (std::size_t k = 0; k < 60; ++k) {
        cases.inputs[0][k] += 50.0;
        cases.inputs[1][k] -= 70.0;
        cases.inputs[2].push_back(cases.inputs[0][k] * cases.inputs[1][k]);
    }

    const std::vector<std::string> warnings = fit(cases).fitWarnings(0);

    ASSERT_FALSE(warnings.empty());
    EXPECT_EQ(warnings[0], "V1 V2 cannot be separated from V3 by these cases and was left out.");
}

TEST(ResponseSurfaceDependentTerms, CountsManyTermsThatCannotBeSeparated)
{
    // Eight inputs, each varied alone: none of their 28 products is determined.
    Cases cases{std::vector<Column>(8, Column(48, 0.0)), {Random(3).column(48, 0.0, 1.0)}};
    for (std::size_t k = 0; k < 48; ++k) {
        cases.inputs[k / 6][k] = static_cast<double>(k % 6) - 2.0;
    }

    EXPECT_EQ(fit(cases).fitWarnings(0).front(),
              "V1 V2, V1 V3, V1 V4 and 25 more cannot be separated from other terms by these cases "
              "and were left out.");
}

TEST(ResponseSurfaceDependentTerms, KeepsSquaresRatherThanProducts)
{
    // On the diagonals of a square V1^2 and V2^2 are the same, and V1 V2 is that up to the sign.
    const Model model =
        fit({{{-2, -1, 0, 1, 2, 3, -3}, {-2, -1, 0, 1, 2, 3, -3}}, {{1, 2, 3, 4, 5, 6, 8}}});

    EXPECT_EQ(termsOf(model, true), (std::vector<std::string>{"1", "V1", "V1^2"}));
    const Model cross = fit(
        {{{-2, -1, 0, 1, 2, -2, 2, 1}, {2, 1, 0, -1, -2, -2, 2, 1}}, {{1, 2, 3, 4, 5, 6, 8, 9}}});
    EXPECT_EQ(termsOf(cross, false), (std::vector<std::string>{"V2^2"}));
}

TEST(ResponseSurfaceDependentTerms, DropsTheLastOfInputsThatAddUp)
{
    // Parts of a mixture, in percent.
    Random random(5);
    Cases cases{{random.column(60, 5.0, 45.0), random.column(60, 5.0, 45.0), {}}, {{}}};
    for (std::size_t k = 0; k < 60; ++k) {
        const double v1 = cases.inputs[0][k];
        const double v2 = cases.inputs[1][k];
        cases.inputs[2].push_back(100.0 - v1 - v2);
        cases.outputs[0].push_back(1.0 + v1 * v2 - v2);
    }
    const Model model = fit(cases);

    EXPECT_EQ(termsOf(model, false), (std::vector<std::string>{"V3", "V1 V3", "V2 V3", "V3^2"}));
    EXPECT_EQ(model.fitWarnings(0).front(),
              "V3 cannot be separated from V1 and V2 by these cases and was left out, and with it "
              "V1 V3, V2 V3 and V3^2.");
    EXPECT_LT(largestDifference(predict(model, cases.inputs), cases.outputs[0]), 1e-9);
}

TEST(ResponseSurfaceDependentTerms, SeesDependenceThroughTheRoundingOfLargeNumbers)
{
    // Seconds since 1970: the end is start and duration up to 1.2e-7 s, a relative error of the
    // duration that is far above rounding.
    Random random(6);
    Cases cases{{random.column(60, 1.7e9, 1.71e9), random.column(60, 1.0, 1000.0), {}}, {{}}};
    for (std::size_t k = 0; k < 60; ++k) {
        cases.inputs[2].push_back(cases.inputs[0][k] + cases.inputs[1][k]);
        cases.outputs[0].push_back(std::sqrt(cases.inputs[1][k]));
    }
    EXPECT_EQ(termsOf(fit(cases, 1), false), (std::vector<std::string>{"V3"}));
}

TEST(ResponseSurfaceDependentTerms, KeepsInputsThatAreAlmostDependent)
{
    Cases cases = twoInputs(60, 0.0);
    for (std::size_t k = 0; k < 60; ++k) {
        cases.inputs[1][k] = cases.inputs[0][k] + 1e-6 * cases.inputs[1][k];
        cases.outputs[0][k] = cases.inputs[0][k] - 2.0 * cases.inputs[1][k];
    }
    const Model model = fit(cases, 1);

    EXPECT_TRUE(model.responseSurfaceStatistics(0).droppedTerms.empty());
    EXPECT_NEAR(model.responseSurfaceStatistics(0).coefficients[2].estimate, -2.0, 1e-8);
}

TEST(ResponseSurfaceDependentTerms, TakesDuplicateCasesForReplicates)
{
    const Model model = fit({{{0, 0, 1, 1, 2, 2}}, {{1, 3, 5, 5, 9, 7}}});

    // Three places, three terms: the curve passes through the means.
    EXPECT_LT(largestDifference(predict(model, {{0, 1, 2}}), {2, 5, 8}), 1e-14);
    EXPECT_NEAR(model.fitMetrics(0).rmse, std::sqrt(4.0 / 3.0), 1e-14);
    EXPECT_TRUE(model.fitWarnings(0).empty());
}
