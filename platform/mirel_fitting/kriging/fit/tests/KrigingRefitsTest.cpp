#include <mirel_fitting/kriging/fit/KrigingRefits.h>

#include "KrigingFitTestSupport.h"

#include <gtest/gtest.h>

namespace {

std::vector<double> refits(const Columns& inputs, const std::vector<double>& output,
                           const KrigingFitOptions& options, std::size_t folds)
{
    const FitProblem problem(inputs, output, options);
    const KrigingFit fit = fitKriging(problem.cases, output, options);
    return KrigingRefits::residuals(problem.input, fit.predictor.model(), folds);
}

/** Residual over standard error of the row by a model of all others. */
double residualWithout(Columns inputs, std::vector<double> output, std::size_t row,
                       const KrigingFitOptions& options)
{
    const double left = output[row];
    Columns point;
    output.erase(output.begin() + static_cast<std::ptrdiff_t>(row));
    for (std::vector<double>& column : inputs) {
        point.push_back({column[row]});
        column.erase(column.begin() + static_cast<std::ptrdiff_t>(row));
    }
    const KrigingFit fit = fitOf(inputs, output, options);
    double prediction = 0.0;
    double error = 0.0;
    fit.predictor.predict(pointersTo(point), 0, 1, &prediction);
    fit.predictor.standardErrors(pointersTo(point), 1, true, &error);
    return (left - prediction) / error;
}

} // namespace

TEST(KrigingRefits, PredictEachFoldByAModelOfTheOthers)
{
    const KrigingFitOptions options = withFixedNugget(0.01, withTrend(0, {0.3, 0.7}));
    const Columns inputs = latinHypercube(12, 2, 5);
    const std::vector<double> output = valuesOf(wave, inputs);

    const std::vector<double> found = refits(inputs, output, options, 12);

    ASSERT_EQ(found.size(), 12u);
    for (std::size_t row = 0; row < 12; ++row) {
        EXPECT_NEAR(found[row], residualWithout(inputs, output, row, options), 1e-8) << row;
    }
}

TEST(KrigingRefits, LeaveReplicatesOutTogether)
{
    // Neighbours know nothing of each other, and the outputs at a point are nearly the same.
    Columns inputs(1);
    std::vector<double> output;
    for (int i = 0; i < 40; ++i) {
        inputs[0].push_back(i / 2);
        output.push_back((i / 2 % 2 == 0 ? 1.0 : -1.0) + 1e-3 * (i % 2));
    }
    KrigingFitOptions options = withTrend(0, {0.01});
    options.nugget = 1e-3;

    for (const double residual : refits(inputs, output, options, 5)) {
        EXPECT_GT(std::fabs(residual), 0.5);
    }
}

TEST(KrigingRefits, HaveNoFiguresWhereTheOtherOutputsAreAllTheSame)
{
    const Columns inputs = latinHypercube(20, 1, 5);
    std::vector<double> output(20, 0.0);
    output[7] = 1.0;

    const std::vector<double> found =
        refits(inputs, output, withFixedNugget(0.01, withTrend(0, {0.3})), 20);

    for (std::size_t row = 0; row < 20; ++row) {
        EXPECT_EQ(std::isnan(found[row]), row == 7) << row;
    }
}

TEST(KrigingRefits, HaveNoFiguresWhereTheOthersAreTooFewForTheTrend)
{
    // Three cases: two have as many terms of a linear trend, and leave no variance.
    const KrigingFitOptions options = withFixedNugget(0.01, withTrend(1, {0.3}));

    for (const double residual : refits({{0.0, 0.4, 1.0}}, {0.0, 1.0, 0.5}, options, 3)) {
        EXPECT_TRUE(std::isnan(residual));
    }
}

TEST(KrigingRefits, DoNotDependOnTheOrderOfTheRows)
{
    const Columns inputs = latinHypercube(30, 2, 5);
    const std::vector<double> output = valuesOf(wave, inputs);
    Columns reversed = inputs;
    std::vector<double> reversedOutput(output.rbegin(), output.rend());
    for (std::vector<double>& column : reversed) {
        std::reverse(column.begin(), column.end());
    }

    const std::vector<double> found = refits(inputs, output, withTrend(1), 5);
    const std::vector<double> backwards = refits(reversed, reversedOutput, withTrend(1), 5);

    EXPECT_EQ(found, std::vector<double>(backwards.rbegin(), backwards.rend()));
}
