#include <mirel_fitting/responsesurface/ResponseSurfaceFit.h>

#include "FittingTestSupport.h"

#include <gtest/gtest.h>

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
