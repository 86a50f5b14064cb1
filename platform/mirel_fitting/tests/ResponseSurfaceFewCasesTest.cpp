#include "ResponseSurfaceTestSupport.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace fittingtest;

// Fewer cases than terms

TEST(ResponseSurfaceFewCases, PassesThroughAsManyCasesAsItHasTerms)
{
    const Cases cases = twoInputs(6, 1.0);
    const Model model = fit(cases);

    EXPECT_EQ(termsOf(model, true).size(), 6u);
    EXPECT_LT(largestDifference(predict(model, cases.inputs), cases.outputs[0]), 1e-10);
    EXPECT_TRUE(model.fitWarnings(0).empty());
    EXPECT_TRUE(std::isnan(model.responseSurfaceStatistics(0).coefficients[1].standardError));
}

TEST(ResponseSurfaceFewCases, LeavesFiguresOutThatNeedMoreCasesThanTerms)
{
    const Model model = fit(twoInputs(6, 1.0));
    const FitMetrics metrics = model.fitMetrics(0);

    EXPECT_NEAR(metrics.r2, 1.0, 1e-12);
    EXPECT_TRUE(std::isnan(metrics.adjustedR2));
    EXPECT_TRUE(std::isnan(metrics.rmse));
    EXPECT_TRUE(std::isnan(metrics.press));
    EXPECT_TRUE(std::isnan(metrics.predictedR2));
    EXPECT_EQ(model.qualityMetricInformation(0),
              "Cases: 6\nTerms: 6\nOrder: full quadratic\nR2: 1\n"
              "Adjusted R2: not available (there are as many terms as cases)\n"
              "RMSE: not available (there are as many terms as cases)\n"
              "PRESS: not available (there are as many terms as cases)\n"
              "Predicted R2: not available (there are as many terms as cases)\n"
              "Model: sum of squares 37.338947 on 5 degrees of freedom\n"
              "Linear: sum of squares 29.457613 on 2 degrees of freedom\n"
              "Interaction: sum of squares 0.65662544 on 1 degree of freedom\n"
              "Square: sum of squares 7.2247087 on 2 degrees of freedom\n"
              "Total: sum of squares 37.338947 on 5 degrees of freedom\n"
              "Leverage: mean 1, largest 1 of case 1, 1 of case 2, 1 of case 3, 1 of case 4, 1 of "
              "case 5\n"
              "Stationary point: minimum of 0.54939224 at V1 = 2.1520425, V2 = 0.26748548, inside "
              "the ranges of the cases\n");
}

TEST(ResponseSurfaceFewCases, LowersTheOrderToLinearAndSaysSo)
{
    for (const std::size_t count : {5u, 4u, 3u}) {
        const Model model = fit(twoInputs(count, 1.0));
        EXPECT_EQ(termsOf(model, true), (std::vector<std::string>{"1", "V1", "V2"}));
        EXPECT_EQ(model.fitWarnings(0).front(),
                  "The order was lowered from full quadratic to linear: 6 terms need at least as "
                  "many cases.");
        EXPECT_NE(model.qualityMetricInformation(0).find("\nThe order was lowered"),
                  std::string::npos);
    }
}

TEST(ResponseSurfaceFewCases, LowersTheOrderToConstantAndSaysSo)
{
    Cases cases = twoInputs(2, 1.0);
    const Model model = fit(cases);

    EXPECT_NEAR(predict(model, {{100.0}, {-100.0}})[0],
                (cases.outputs[0][0] + cases.outputs[0][1]) / 2.0, 1e-14);
    EXPECT_EQ(model.fitWarnings(0),
              (std::vector<std::string>{"The order was lowered from full quadratic to constant: "
                                        "6 terms need at least as many cases."}));
}

TEST(ResponseSurfaceFewCases, IsTheValueOfASingleCase)
{
    const Model model = fit({{{2.0}, {3.0}}, {{7.5}}});

    EXPECT_EQ(predict(model, {{0.0, 1e6}, {3.0, -4.0}}), (Column{7.5, 7.5}));
    EXPECT_EQ(model.surfaceCoefficientInformation(0), "7.5\n");
    EXPECT_TRUE(std::isnan(model.fitMetrics(0).rmse));
    EXPECT_TRUE(std::isnan(model.fitMetrics(0).r2));
}

TEST(ResponseSurfaceFewCases, IsTheMeanWithoutInputs)
{
    const Model model = fit({{}, {{1.0, 2.0, 6.0}}});

    EXPECT_NEAR(predict(model, {})[0], 3.0, 1e-15);
    EXPECT_NEAR(model.fitMetrics(0).rmse, std::sqrt(7.0), 1e-14);
    EXPECT_NEAR(model.fitMetrics(0).r2, 0.0, 1e-15);
    EXPECT_TRUE(model.fitWarnings(0).empty());
}

TEST(ResponseSurfaceFewCases, ExplainsNothingOfTheSpreadByAMean)
{
    for (std::size_t count = 2; count < 12; ++count) {
        Cases cases = twoInputs(count, 1.0);
        cases.inputs.clear();

        EXPECT_EQ(fit(cases).fitMetrics(0).r2, 0.0) << count;
    }
}

// Two levels

namespace {

struct TwoLevels
{
    const char* name;
    std::vector<Column> inputs;
    std::string order; ///< of the quality text
};

const Column a = {-1, 1, -1, 1, -1, 1, -1, 1};
const Column b = {-1, -1, 1, 1, -1, -1, 1, 1};
const Column c = {-1, -1, -1, -1, 1, 1, 1, 1};
const Column threeLevels = {-1, 0, 1, -1, 0, 1, -1, 0};
const Column product = {1, -1, -1, 1, 1, -1, -1, 1};

const TwoLevels tables[] = {{"Factorial", {a, b, c}, "linear with interactions"},
                            {"ThreeLevels", {a, b, threeLevels}, "linear"},
                            {"Aliased", {a, b, product}, "linear"},
                            {"TooManyInputs", {a, b, c, product}, "linear"}};

} // namespace

TEST(ResponseSurfaceTwoLevels, HaveInteractionsWhereTheCasesSeparateThem)
{
    for (const auto& [name, inputs, order] : tables) {
        SCOPED_TRACE(name);
        Cases cases{inputs, {{1.0, 2.1, 3.2, 5.9, 1.2, 2.2, 3.1, 6.3}}};
        const Model model(cases.inputPointers(), cases.outputPointers(), cases.count(),
                          ResponseSurfaceOptions(), {}, Model::Fallback::InteractionsOfTwoLevels);

        const std::string quality = model.qualityMetricInformation(0);
        EXPECT_NE(quality.find("\nOrder: " + order + "\n"), std::string::npos) << quality;
        const std::vector<std::string> notes = model.fitNotes(0);
        const bool isSaid =
            !notes.empty() && notes.front() ==
                                  "Each input has two levels, which show no curvature: the "
                                  "polynomial is linear with interactions.";
        EXPECT_EQ(isSaid, order == "linear with interactions");
        EXPECT_EQ(model.fitWarnings(0).front().rfind("The order was lowered", 0) == 0, !isSaid);
    }
}
