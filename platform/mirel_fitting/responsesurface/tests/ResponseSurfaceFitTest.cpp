#include <mirel_fitting/responsesurface/ResponseSurfaceFit.h>

#include "FittingTestSupport.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace fittingtest;

namespace {

using Selection = ResponseSurfaceOptions::Selection;

ResponseSurfaceFit fit(Cases cases, Selection selection = Selection::All)
{
    return {cases.inputPointers(), cases.outputPointers(), cases.count(),
            PolynomialForm::of({}, cases.inputs.size()), selection};
}

} // namespace

TEST(ResponseSurfaceFit, SelectsTheTermsOfEachOutputByItself)
{
    Cases cases = twoInputs(60, 0.01);
    cases.outputs.push_back({});
    for (std::size_t k = 0; k < 60; ++k) {
        cases.outputs[1].push_back(1.0 + 2.0 * cases.inputs[1][k] + 1e-3 * (k % 3));
    }
    const ResponseSurfaceFit both = fit(cases, Selection::BackwardAicc);

    EXPECT_TRUE(both.warnings(0).empty());
    EXPECT_EQ(both.warnings(1),
              (std::vector<std::string>{
                  "AICc is lower without V1, V1^2, V1 V2 and V2^2: they were left out."}));
    EXPECT_EQ(both.degreesOfFreedom(0), 54u);
    EXPECT_EQ(both.degreesOfFreedom(1), 58u);
}

TEST(ResponseSurfaceFit, DescribesAPolynomialWithoutTheTermsThatAreZero)
{
    Cases cases = twoInputs(20, 0.1);
    cases.inputs[1] = cases.inputs[0];

    EXPECT_EQ(fit(cases).description(0).terms.size(), 2u); // V1 and V1^2
}

TEST(ResponseSurfaceFit, TakesInputsThatVaryByRoundingForReplicates)
{
    const Cases cases{{{0, 0, 1, 1, 2, 3}, {0.3, 0.1 + 0.2, 0.3, 0.3, 0.3, 0.3}},
                      {{1, 3, 5, 5, 9, 7}}};

    const std::vector<AnovaRow> anova = fit(cases).statistics(0, 0.95).anova;

    ASSERT_EQ(anova[anova.size() - 2].source, "Pure error");
    EXPECT_EQ(anova[anova.size() - 2].degreesOfFreedom, 2u);
    EXPECT_NEAR(anova[anova.size() - 2].sumOfSquares, 2.0, 1e-14);
}

TEST(ResponseSurfaceFit, WithholdsTheCanonicalAnalysisOfSquaresThatTheCasesDoNotSeparate)
{
    // Corners and centre points: V2^2 equals V1^2 in all cases.
    Cases cases{{{-1, 1, -1, 1, 0, 0, 0}, {-1, -1, 1, 1, 0, 0, 0}}, {{3, 1, 4, 1, 5, 9, 2}}};

    const ResponseSurfaceStatistics aliased = fit(cases).statistics(0, 0.95);

    EXPECT_TRUE(aliased.isCurved);
    EXPECT_FALSE(aliased.stationaryPoint);
    EXPECT_TRUE(aliased.canonicalDirections.empty());
    EXPECT_TRUE(aliased.ascent.empty());
    EXPECT_TRUE(aliased.descent.empty());
    EXPECT_NE(fit(cases).qualityText(0).find("Stationary point: not available (the cases cannot "
                                             "separate the second-order terms from each other)\n"),
              std::string::npos);
}

TEST(ResponseSurfaceFit, GivesTheCanonicalAnalysisWhereASquareIsTakenForNothing)
{
    // V1 has two levels.
    const Cases cases{{{0, 1, 0, 1, 0, 1, 0}, {0, 0, 1, 1, 2, 2, 1}}, {{3, 1, 4, 1, 5, 9, 2}}};

    const ResponseSurfaceStatistics statistics = fit(cases).statistics(0, 0.95);

    EXPECT_EQ(statistics.droppedTerms, std::vector<std::string>{"V1^2"});
    EXPECT_EQ(statistics.canonicalDirections.size(), 2u);
    EXPECT_TRUE(statistics.stationaryPoint);
    EXPECT_FALSE(statistics.ascent.empty());
}

TEST(ResponseSurfaceFit, WarnsOfAPolynomialThatPredictsNoBetterThanTheMean)
{
    const Cases noise{{{0, 1, 2, 3, 4, 5, 6, 7}}, {{3, 1, 4, 1, 5, 1, 4, 2}}};

    EXPECT_EQ(fit(noise).warnings(0),
              std::vector<std::string>{"Left-out cases are predicted no better than by the mean of "
                                       "the cases: do not rely on this model."});
}

TEST(ResponseSurfaceFit, GivesNoTestsOfRoundingErrors)
{
    Cases exact{{{0, 1, 2, 3, 4, 5, 6, 7}}, {{}}};
    for (const double x : exact.inputs[0]) {
        exact.outputs[0].push_back(0.1 + 0.3 * x + 0.7 * x * x);
    }

    const ResponseSurfaceStatistics statistics = fit(exact).statistics(0, 0.95);

    EXPECT_TRUE(std::isnan(statistics.aicc));
    EXPECT_TRUE(std::isnan(statistics.anova[0].f));
    EXPECT_TRUE(std::isnan(statistics.anova[0].p));
    EXPECT_TRUE(std::isnan(statistics.partialTests[0].row.f));
    EXPECT_TRUE(std::isnan(statistics.coefficients[1].p));
    EXPECT_EQ(fit(exact).notes(0, InputNames()),
              std::vector<std::string>{"The polynomial passes through all cases up to rounding: F, "
                                       "t, p and AICc would be those of rounding errors and are "
                                       "not given."});
}
