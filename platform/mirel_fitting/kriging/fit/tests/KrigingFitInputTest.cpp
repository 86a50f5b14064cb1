#include <mirel_fitting/kriging/fit/KrigingFitInput.h>

#include "KrigingFitTestSupport.h"

#include <gtest/gtest.h>

namespace {

/** Seven cases over a constant input and one from 10 to 14. */
class KrigingFitInputTest : public testing::Test
{
protected:
    KrigingFitInput input() const { return {cases, output, options, OutputScale::of(output)}; }

    KrigingData data() const
    {
        KrigingData data;
        data.cases = cases.pointCount();
        data.inputs = cases.activeInputs().size();
        data.coordinates = cases.coordinates();
        data.output = output;
        data.replicates.assign(data.cases, 1.0);
        data.withinSquares.assign(data.cases, 0.0);
        return data;
    }

    Columns inputs = {{3, 3, 3, 3, 3, 3, 3}, {10, 11, 11.5, 12, 13, 13.5, 14}};
    std::vector<double> output = {1, 4, 2, 6, 3, 8, 5};
    KrigingCases cases{pointersTo(inputs), 7};
    KrigingFitOptions options = withTrend(1);
};

} // namespace

TEST_F(KrigingFitInputTest, ScalesFixedLengthsByTheRangesOfInputsThatVary)
{
    EXPECT_TRUE(input().searchSettings().fixedLengths.empty());

    options.correlationLengths = {1.0, 2.0};
    EXPECT_EQ(input().searchSettings().fixedLengths, std::vector<double>{0.5});
    options.correlationLengths = {1.0, 1e-320};
    EXPECT_EQ(input().searchSettings().fixedLengths, std::vector<double>{1e-100});
}

TEST_F(KrigingFitInputTest, TakesASoundNuggetForNoNoise)
{
    options.nugget = 1e-12;
    EXPECT_FALSE(input().isNuggetNoise());
    options.nugget = 1e-4;
    EXPECT_TRUE(input().isNuggetNoise());
}

TEST_F(KrigingFitInputTest, LeavesCasesForTheParametersBesideTheTrend)
{
    options.trendOrder = 2;
    KrigingData all = data();
    EXPECT_EQ(input().addTrend(all)->order(), 2);
    EXPECT_EQ(all.trend.size(), 3 * all.cases);

    KrigingData few = data().subset({0, 3, 6});
    KrigingFit fit(KrigingPredictor(input().emptyModel(nullptr, nullptr)));
    const auto trend = input().addTrend(few);
    input().warnOfTrend(*trend, 3, fit);
    EXPECT_EQ(trend->order(), 0);
    EXPECT_EQ(fit.warnings.size(), 1u);
}

TEST_F(KrigingFitInputTest, GivesModelsTheScalesOfInputsAndOutput)
{
    const FittedKriging model = input().emptyModel(nullptr, nullptr);

    EXPECT_EQ(model.inputs, std::vector<std::size_t>{1});
    EXPECT_EQ(model.minimum, std::vector<double>{10.0});
    EXPECT_EQ(model.range, std::vector<double>{4.0});
    EXPECT_EQ(model.offset, OutputScale::of(output).offset);
    EXPECT_TRUE(model.weights.empty());
}
