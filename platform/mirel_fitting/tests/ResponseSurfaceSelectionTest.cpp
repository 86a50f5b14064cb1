#include "ResponseSurfaceTestSupport.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace fittingtest;

TEST(ResponseSurfaceSelection, DropsTheTermsThatRDrops)
{
    const Model model = select(vapourDeposition());

    const ResponseSurfaceStatistics statistics = model.responseSurfaceStatistics(0);

    EXPECT_EQ(statistics.droppedTerms, (std::vector<std::string>{"V1^2", "V2^2"}));
    expectFigure(statistics.aicc, 37.6004810496957, "AICc");
    EXPECT_EQ(
        model.fitWarnings(0),
        (std::vector<std::string>{"AICc is lower without V1^2 and V2^2: they were left out."}));
    EXPECT_EQ(model.fitMetrics(0).terms, 4u);
    EXPECT_EQ(sourcesOf(statistics),
              (std::vector<std::string>{"Model", "Linear", "Interaction", "Residual", "Lack of fit",
                                        "Pure error", "Total"}));
}

TEST(ResponseSurfaceSelection, KeepsEverythingUnlessAsked)
{
    EXPECT_TRUE(fit(vapourDeposition()).responseSurfaceStatistics(0).droppedTerms.empty());
}

TEST(ResponseSurfaceSelection, KeepsLinearTermsOfTheProductsThatStay)
{
    // Neither input has an influence of its own about the middle.
    Cases cases = twoInputs(60, 0.1);
    for (std::size_t k = 0; k < 60; ++k) {
        cases.outputs[0][k] += (cases.inputs[0][k] - 2.0) * (cases.inputs[1][k] - 0.5) -
                               surface(cases.inputs[0][k], cases.inputs[1][k]);
    }

    EXPECT_EQ(select(cases).responseSurfaceStatistics(0).droppedTerms,
              (std::vector<std::string>{"V1^2", "V2^2"}));
}

TEST(ResponseSurfaceSelection, FindsTheFunctionBehindExactData)
{
    Cases cases = twoInputs(30, 0.0);
    for (std::size_t k = 0; k < 30; ++k) {
        cases.outputs[0][k] = 3.0 + 2.0 * cases.inputs[1][k];
    }
    const Model model = select(cases);

    EXPECT_EQ(model.surfaceCoefficientInformation(0).find("V1"), std::string::npos);
    EXPECT_LT(largestDifference(predict(model, cases.inputs), cases.outputs[0]), 1e-13);
}

TEST(ResponseSurfaceSelection, StartsFromMoreTermsThanTheCriterionAllows)
{
    // Six terms: of up to eight cases the criterion is infinite.
    for (const std::size_t count : {6u, 7u, 8u}) {
        Cases cases = twoInputs(count, 0.0);
        for (std::size_t k = 0; k < count; ++k) {
            cases.outputs[0][k] = 3.0 + 2.0 * cases.inputs[1][k] + (k % 2 == 0 ? 1e-3 : -1e-3);
        }

        const ResponseSurfaceStatistics statistics = select(cases).responseSurfaceStatistics(0);

        EXPECT_TRUE(std::isfinite(statistics.aicc)) << count;
        EXPECT_TRUE(statistics.coefficients[2].isKept) << count;
        EXPECT_GT(statistics.residualDegreesOfFreedom, 0u) << count;
    }
}

TEST(ResponseSurfaceSelection, KeepsEverythingOfThreeCases)
{
    // The criterion does not even judge a constant.
    const Cases cases{{{0.0, 1.0, 2.0}}, {{1.0, 5.0, 2.0}}};

    EXPECT_TRUE(select(cases).responseSurfaceStatistics(0).droppedTerms.empty());
}

TEST(ResponseSurfaceSelection, IsThatOfEachOutputByItself)
{
    Cases cases = vapourDeposition();
    cases.outputs.push_back(cases.outputs[0]);
    for (std::size_t k = 0; k < cases.count(); ++k) {
        cases.outputs[1][k] = 0.01 * cases.inputs[0][k] * cases.inputs[0][k] + 1e-3 * (k % 3);
    }
    const Model both = select(cases);
    const Column reference = predict(select(vapourDeposition()), cases.inputs);

    EXPECT_EQ(both.responseSurfaceStatistics(0).droppedTerms,
              (std::vector<std::string>{"V1^2", "V2^2"}));
    EXPECT_TRUE(both.responseSurfaceStatistics(1).coefficients[3].isKept);
    EXPECT_LT(largestDifference(predict(both, cases.inputs, 0), reference), 1e-12);
}

TEST(ResponseSurfaceSelection, DoesNotDependOnUnitsAndOrigins)
{
    Cases cases = vapourDeposition();
    for (std::size_t k = 0; k < cases.count(); ++k) {
        cases.inputs[0][k] = 1e9 * cases.inputs[0][k] - 7e11;
        cases.inputs[1][k] = 1e-9 * (cases.inputs[1][k] + 500.0);
        cases.outputs[0][k] = 1e5 - 1e-3 * cases.outputs[0][k];
    }

    EXPECT_EQ(select(cases).responseSurfaceStatistics(0).droppedTerms,
              (std::vector<std::string>{"V1^2", "V2^2"}));
}
