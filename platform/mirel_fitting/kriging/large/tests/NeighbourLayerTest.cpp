#include <mirel_fitting/kriging/large/NeighbourLayer.h>

#include "KrigingTestSupport.h"

#include <gtest/gtest.h>

namespace {

constexpr std::size_t cases = 400;

/** Cases of a smooth function, every tenth of which is left out in turn. */
class NeighbourLayer : public testing::Test
{
protected:
    NeighbourLayer()
    {
        const Columns x = latinHypercube(cases, 2, 5);
        data = *dataOf(x, std::vector<double>(cases, 0.0));
        residuals = valuesOf(
            [](const std::vector<double>& p) {
                return std::sin(9.0 * p[0]) * std::cos(5.0 * p[1]);
            },
            x);
        for (std::size_t i = 0; i < cases; i += 10) {
            leftOut.push_back(i);
        }
    }

    ::NeighbourLayer layer() const
    {
        KrigingSizes sizes;
        sizes.neighbours = 20;
        return {data, residuals, leftOut, {{1.0, 1.0}, 1e-6}, 0.0, sizes};
    }

    KrigingData data;
    std::vector<double> residuals;
    std::vector<std::size_t> leftOut;
};

TEST_F(NeighbourLayer, PredictsCasesLeftOutAndLeavesLittleAtOthers)
{
    EXPECT_LT(layer().error(), 0.01); // the deviation of the values is 0.5

    const ::NeighbourLayer fitted = layer();
    const std::vector<double> left = fitted.residualsAtCases();

    ASSERT_EQ(left.size(), leftOut.size());
    for (const double residual : left) {
        EXPECT_LT(std::fabs(residual), 1e-3);
    }

    double ratios = 0.0;
    for (std::size_t i = 0; i < leftOut.size(); ++i) {
        const double residual = fitted.leaveOneOutResiduals()[i];
        ratios += residual * residual / (fitted.variance() * fitted.leaveOneOutVariances()[i]);
    }

    EXPECT_NEAR(ratios / static_cast<double>(leftOut.size()), 1.0, 1e-12);
}

TEST_F(NeighbourLayer, EstimatesTheNuggetOfNoise)
{
    UniformNumbers numbers(3);
    for (double& residual : residuals) {
        residual += 0.3 * numbers.normal();
    }
    const ::NeighbourLayer fitted = layer();

    EXPECT_GT(fitted.kriging()->parameters().nugget, 1e-3);
    EXPECT_GT(fitted.error(), 0.2);
    EXPECT_LT(fitted.error(), 0.5);
}

} // namespace
