#include <mirel_modelexport/CheckPoints.h>

#include "ExportTestSupport.h"

using namespace exporttest;

TEST(CheckPoints, LieInsideTheRangesOfTheCases)
{
    for (NamedCases& variety : varieties()) {
        const ExportedModel model = variety.cases.exported(Polynomial);
        const CheckPoints check(model);
        ASSERT_EQ(check.points.size(), 10u);
        for (const Column& point : check.points) {
            for (std::size_t k = 0; k < point.size(); ++k) {
                EXPECT_GE(point[k], model.inputs[k].minimum) << variety.name;
                EXPECT_LE(point[k], model.inputs[k].maximum) << variety.name;
            }
        }
    }
}

TEST(CheckPoints, AreTheSameEveryTimeAndExpectWhatTheModelPredicts)
{
    Cases cases = cvd();
    const ExportedModel model = cases.exported(Kriging);

    EXPECT_EQ(CheckPoints(model).points, CheckPoints(model).points);
    EXPECT_NE(CheckPoints(model).points[0], CheckPoints(model).points[1]);

    const CheckPoints check(model);
    const std::vector<Column> expected = predictions(model, check.points);
    for (std::size_t i = 0; i < CheckPoints::count; ++i) {
        EXPECT_NEAR(check.values[1][i], expected[i][1], check.tolerances[1][i]);
    }
}

TEST(CheckPoints, AllowRoundingOnly)
{
    for (NamedCases& variety : varieties()) {
        const ExportedModel model = variety.cases.exported(Kriging);
        const CheckPoints check(model);
        for (std::size_t i = 0; i < CheckPoints::count; ++i) {
            const double scale = model.outputs[0].model.predictor.scale;
            EXPECT_GT(check.tolerances[0][i], 0.0) << variety.name;
            EXPECT_LT(check.tolerances[0][i], 1e-6 * (scale + std::fabs(check.values[0][i])))
                << variety.name;
        }
    }
}
