#include <mirel_fitting/kriging/fit/UncorrelatedKriging.h>

#include "KrigingFitTestSupport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>
#include <vector>

namespace {

/** 3 + 2 V1 - V2, and what is added to the output of the first case. */
struct Plane : FitProblem
{
    explicit Plane(double added = 0.0)
        : FitProblem(latinHypercube(12, 2, 5), values(added), withTrend(1))
    {}

    static std::vector<double> values(double added)
    {
        std::vector<double> result =
            valuesOf([](const std::vector<double>& x) { return 3.0 + 2.0 * x[0] - x[1]; },
                     latinHypercube(12, 2, 5));
        result[0] += added;
        return result;
    }

    std::vector<std::string> warnings;
    DistinctCases distinct{input, warnings};
    std::shared_ptr<KrigingData> data = std::make_shared<KrigingData>(distinct.data());
    std::shared_ptr<const KrigingTrend> trend = input.addTrend(*data);
};

} // namespace

TEST(UncorrelatedKriging, PredictsTheMeanWhereNoInputVariesHoweverLargeItsSquare)
{
    const auto fitIn = [](double unit) {
        const FitProblem problem({{2.0, 2.0, 2.0}}, {1.0 * unit, 2.0 * unit, 6.0 * unit},
                                 withTrend(0));
        return UncorrelatedKriging::ofMean(problem.input);
    };
    const double logLikelihood = fitIn(1.0).report.logLikelihood;
    for (const double unit : {1e-200, 1.0, 1e200}) {
        const KrigingFit fit = fitIn(unit);

        EXPECT_DOUBLE_EQ(valueAt(fit, {2.0}) / unit, 3.0);
        EXPECT_DOUBLE_EQ(fit.metrics.rmse / unit, std::sqrt(14.0 / 3.0));
        // Without itself a case is predicted by the mean of the two others: -3, -1.5 and 4.5 off.
        EXPECT_DOUBLE_EQ(fit.metrics.looRmse / unit, std::sqrt(31.5 / 3.0));
        EXPECT_DOUBLE_EQ(fit.metrics.q2, 1.0 - 31.5 / 14.0);
        EXPECT_EQ(fit.metrics.r2, 0.0);
        EXPECT_EQ(fit.metrics.terms, 1u);
        EXPECT_NEAR(fit.report.logLikelihood, logLikelihood - 2.0 * std::log(unit), 1e-9);
    }
    EXPECT_DOUBLE_EQ(fitIn(1.0).metrics.press, 31.5);
    EXPECT_DOUBLE_EQ(fitIn(1.0).report.processVariance, 14.0 / 2.0);
}

TEST(UncorrelatedKriging, SeesWhetherTheTrendExplainsAllCases)
{
    for (const double off : {0.0, 1e-6}) {
        const Plane plane(off); // one case
        const std::vector<double> coefficients =
            plane.trend->leastSquares(plane.data->output).coefficients;

        EXPECT_EQ(UncorrelatedKriging::isExplained(plane.input, plane.distinct, *plane.trend,
                                                   coefficients),
                  off == 0.0);
    }
}

TEST(UncorrelatedKriging, PredictsByTheTrendAlone)
{
    const Plane plane;

    const KrigingFit fit =
        UncorrelatedKriging::ofTrend(plane.input, plane.distinct, plane.trend, plane.data);

    EXPECT_NEAR(valueAt(fit, {10.0, 20.0}), 3.0, 1e-12);
    ASSERT_EQ(fit.report.trendTerms.size(), 3u);
    EXPECT_NEAR(fit.report.trendCoefficients[0], 3.0, 1e-12);
    EXPECT_NEAR(fit.report.trendCoefficients[1], 2.0, 1e-12);
    EXPECT_NEAR(fit.report.trendCoefficients[2], -1.0, 1e-12);
    EXPECT_EQ(fit.metrics.terms, 3u);
    EXPECT_TRUE(warns(fit, "The trend passes through all cases: there is nothing left to "
                           "correlate."));
}
