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
    EXPECT_EQ(model.fitNotes(0), model.fitWarnings(0));
    EXPECT_EQ(model.fitMetrics(0).terms, 4u);
    EXPECT_EQ(sourcesOf(statistics),
              (std::vector<std::string>{"Model", "Linear", "Interaction", "Residual", "Lack of fit",
                                        "Pure error", "Total"}));
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
