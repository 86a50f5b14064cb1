#include <mirel_fitting/KrigingTrendChoice.h>

#include "KrigingTestSupport.h"

#include <gtest/gtest.h>

namespace {

struct Problem
{
    std::shared_ptr<KrigingData> data = std::make_shared<KrigingData>();
    std::shared_ptr<const KrigingTrend> trend;

    Problem(double (*function)(const std::vector<double>&), std::size_t cases, std::size_t inputs,
            int order)
    {
        const Columns columns = latinHypercube(cases, inputs, 5);
        data->cases = cases;
        data->inputs = inputs;
        for (const std::vector<double>& column : columns) {
            data->coordinates.insert(data->coordinates.end(), column.begin(), column.end());
        }
        data->output = valuesOf(function, columns);
        data->rows.assign(cases, 1.0);
        data->scatter.assign(cases, 0.0);
        trend = std::make_shared<KrigingTrend>(cases, inputs, data->coordinates, order, inputs + 1);
        data->terms = trend->size();
        data->trend = trend->matrix();
    }

    KrigingTrendChoice::Result choose() const { return KrigingTrendChoice::run(data, trend, {}); }
};

double waves(const std::vector<double>& x)
{
    return std::sin(5.0 * x[0]) + std::cos(4.0 * x[1]);
}

double slope(const std::vector<double>& x)
{
    return 4.0 * x[0] - 3.0 * x[1] + 0.1 * std::sin(7.0 * x[0] + 9.0 * x[1]);
}

double bowl(const std::vector<double>& x)
{
    return 9.0 * x[0] * x[0] - 7.0 * x[0] * x[1] + 8.0 * x[1] * x[1] +
           0.1 * std::sin(7.0 * x[0] + 9.0 * x[1]);
}

} // namespace

TEST(KrigingTrendChoice, IsNeededForATrendWithFewCasesPerTerm)
{
    const Problem few(waves, 59, 2, 1);
    const Problem enough(waves, 60, 2, 1); // twenty for each of three terms
    const Problem constant(waves, 10, 2, 0);

    EXPECT_TRUE(KrigingTrendChoice::isNeeded(*few.trend, *few.data));
    EXPECT_FALSE(KrigingTrendChoice::isNeeded(*enough.trend, *enough.data));
    EXPECT_FALSE(KrigingTrendChoice::isNeeded(*constant.trend, *constant.data));
}

TEST(KrigingTrendChoice, TakesTheConstantWhereSlopesExplainLittle)
{
    const KrigingTrendChoice::Result result = Problem(waves, 20, 2, 1).choose();

    EXPECT_EQ(result.trend->order(), 0);
    EXPECT_EQ(result.data->terms, 1u);
    EXPECT_LT(result.criterion, result.criterionOfHighest);
}

TEST(KrigingTrendChoice, TakesTheTrendAskedForWhereItExplainsMuch)
{
    const Problem problem(slope, 20, 2, 1);

    const KrigingTrendChoice::Result result = problem.choose();

    EXPECT_EQ(result.trend, problem.trend);
    EXPECT_EQ(result.data, problem.data);
    // What the search from many starts finds, too.
    EXPECT_NEAR(result.found.logLikelihood, KrigingSearch::run(problem.data, {}).logLikelihood,
                0.02);
}

TEST(KrigingTrendChoice, TakesTheOrderBetween)
{
    EXPECT_EQ(Problem(slope, 25, 2, 2).choose().trend->order(), 1);
    EXPECT_EQ(Problem(bowl, 25, 2, 2).choose().trend->order(), 2);
}

TEST(KrigingTrendChoice, ComparesByTheCorrectedAkaikeCriterion)
{
    const KrigingTrendChoice::Result result = Problem(waves, 20, 2, 1).choose();

    // One term, two lengths and the variance: k = 4, n = 20.
    EXPECT_DOUBLE_EQ(result.criterion, -2.0 * result.found.logLikelihood + 8.0 + 40.0 / 15.0);
}
