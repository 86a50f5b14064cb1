#include <mirel_modelexport/PointFormulas.h>

#include "ExportTestSupport.h"

using namespace exporttest;

namespace {

/** y = 10 + 2 x + 3 x^2 with x = (V1 - 4) / 2. */
ExportedModel parabola()
{
    ExportedModel model;
    model.inputs = {{"a", 0.0, 8.0}};
    model.outputs.resize(1);
    PredictorDescription& predictor = model.outputs[0].model.predictor;
    predictor.inputs = {{0.0, 8.0, false}};
    predictor.coordinates = {{0, 4.0, 2.0}};
    predictor.terms = {{0, PredictorDescription::noFactor, 2.0}, {0, 0, 3.0}};
    predictor.offset = 10.0;
    return model;
}

} // namespace

TEST(PointFormulas, ReferToCellsOfTheirRowAndKnowTheirValues)
{
    const ExportedModel model = parabola();
    const PointFormulas formulas(model, {1, 3}); // input in column B, steps from D on

    ASSERT_EQ(formulas.stepCount(), 1u);
    EXPECT_EQ(formulas.stepHeading(0), "x1");
    EXPECT_EQ(formulas.stepFormula(0, 6), "($B7 - 4)/2");
    EXPECT_EQ(formulas.outputFormula(0, 6), "10+($D7*(2 + 3*$D7))");

    EXPECT_EQ(PointFormulas(model, {1, 3}).stepValues({7.0}), (std::vector<double>{1.5}));
}

TEST(PointFormulas, ShareStepsBetweenOutputs)
{
    ExportedModel model = parabola();
    model.outputs.push_back(model.outputs[0]);

    EXPECT_EQ(PointFormulas(model, {1, 3}).stepCount(), 1u);
}
