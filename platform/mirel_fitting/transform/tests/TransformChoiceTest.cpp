#include <mirel_fitting/transform/TransformChoice.h>

#include "FittingTestSupport.h"

#include <mirel_fitting/SurrogateResponseSurfaceModel.h>

#include <gtest/gtest.h>

#include <cmath>

using namespace fittingtest;

namespace {

/** Of a polynomial's choice for an output over 40 values of one input, with a little noise. */
template <class Function>
TransformChoice choiceFor(const Function& function)
{
    Random random(4);
    Column input;
    Column output;
    for (int i = 0; i < 40; ++i) {
        input.push_back(i / 39.0);
        output.push_back(function(input.back() + 0.01 * random.normal()));
    }
    return TransformChoice::of(
        {input}, output, {},
        [](const std::vector<double*>& inputs, const std::vector<double*>& outputs,
           std::size_t rows, const CaseDesign& /*design*/) {
            return std::make_unique<SurrogateResponseSurfaceModel>(inputs, outputs, rows);
        });
}

} // namespace

TEST(TransformChoice, IsTheOneThatGainsMostOrNoneIfThatIsLittle)
{
    const TransformChoice ofPower = choiceFor([](double v) { return std::exp(4.0 * v); });
    EXPECT_EQ(ofPower.transform, OutputTransform::Logarithm);
    EXPECT_GT(ofPower.gain, 5.0);

    const TransformChoice ofSquare = choiceFor([](double v) { return std::pow(0.5 + v, 4.0); });
    EXPECT_EQ(ofSquare.transform, OutputTransform::SquareRoot);

    const TransformChoice ofLine = choiceFor([](double v) { return 1.0 + 2.0 * v; });
    EXPECT_EQ(ofLine.transform, OutputTransform::None);
    EXPECT_LT(ofLine.gain, 5.0);
}

TEST(TransformChoice, LeavesOutATransformThatPredictsWorseInTheOutputsUnits)
{
    // The logarithm gains most. The exponential of its parabola passes 1 by little with a slope of
    // 20 (1.08 times the error), by far with one of 30 (1.66 times).
    const auto choiceOfStep = [](double slope) {
        return choiceFor([&](double v) { return 1.0 / (1.0 + std::exp(-slope * (v - 0.5))); });
    };

    EXPECT_EQ(choiceOfStep(20.0).transform, OutputTransform::Logarithm);
    EXPECT_EQ(choiceOfStep(30.0).transform, OutputTransform::SquareRoot);
}

TEST(TransformChoice, IsWorthwhileForAWideRangeOfNotTooManyCases)
{
    EXPECT_TRUE(TransformChoice::isWorthwhile(2.0, 3.1, 5000));
    EXPECT_FALSE(TransformChoice::isWorthwhile(2.0, 3.0, 5000));
    EXPECT_FALSE(TransformChoice::isWorthwhile(2.0, 3.1, 5001));
}
