#include <mirel_fitting/kriging/fit/UncorrelatedKriging.h>

#include "KrigingFitTestSupport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>
#include <vector>

namespace {

struct Problem
{
    Problem(Columns points, std::vector<double> values, int order)
        : inputs(std::move(points)), output(std::move(values)), options(withTrend(order))
    {}

    Columns inputs;
    std::vector<double> output;
    KrigingFitOptions options;
    KrigingCases cases{pointersTo(inputs), output.size()};
    KrigingFitInput input{cases, output, options, OutputScale::of(output)};
};

/** 3 + 2 V1 - V2, and what is added to the output of the first case. */
struct Plane : Problem
{
    explicit Plane(double added = 0.0) : Problem(latinHypercube(12, 2, 5), values(added), 1) {}

    static std::vector<double> values(double added)
    {
        const Columns points = latinHypercube(12, 2, 5);
        std::vector<double> result;
        for (std::size_t i = 0; i < 12; ++i) {
            result.push_back(3.0 + 2.0 * points[0][i] - points[1][i]);
        }
        result[0] += added;
        return result;
    }

    std::vector<std::string> warnings;
    DistinctCases distinct{input, warnings};
    std::shared_ptr<KrigingData> data = std::make_shared<KrigingData>(distinct.data());
    std::shared_ptr<const KrigingTrend> trend = input.addTrend(*data);
};

} // namespace

TEST(UncorrelatedKriging, PredictsTheMeanWhereNoInputVaries)
{
    const Problem problem({{2.0, 2.0, 2.0}}, {1.0, 2.0, 6.0}, 0);

    const KrigingFit fit = UncorrelatedKriging::ofMean(problem.input);

    EXPECT_DOUBLE_EQ(valueAt(fit, {2.0}), 3.0);
    EXPECT_DOUBLE_EQ(fit.metrics.rmse, std::sqrt(14.0 / 3.0));
    EXPECT_DOUBLE_EQ(fit.metrics.press, 14.0 * 1.5 * 1.5); // leverages 1 / 3
    EXPECT_EQ(fit.metrics.r2, 0.0);
    EXPECT_EQ(fit.metrics.terms, 1u);
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

    EXPECT_NEAR(valueAt(fit, {0.25, 0.75}), 3.0 + 0.5 - 0.75, 1e-12);
    EXPECT_EQ(fit.metrics.terms, 3u);
    EXPECT_TRUE(warns(fit, "The trend passes through all cases: there is nothing left to "
                           "correlate."));
}
