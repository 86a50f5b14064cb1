#include <mirel_fitting/kriging/fit/KrigingRefits.h>

#include "KrigingFitTestSupport.h"

#include <gtest/gtest.h>

namespace {

/** A fit with given lengths, and nugget if it is fixed. */
struct Fitted
{
    std::vector<double> refits(std::size_t folds) const
    {
        return KrigingRefits::residuals(input, fit.predictor.model(), folds);
    }

    Columns inputs;
    std::vector<double> output;
    KrigingFitOptions options;
    KrigingCases cases{pointersTo(inputs), output.size()};
    KrigingFitInput input{cases, output, options, OutputScale::of(output)};
    KrigingFit fit = fitKriging(cases, output, options);
};

KrigingFitOptions givenWithTrend(int order, std::vector<double> lengths, double nugget)
{
    KrigingFitOptions options = withTrend(order);
    options.correlationLengths = std::move(lengths);
    options.nugget = nugget;
    options.nuggetMode = KrigingOptions::NuggetMode::Fixed;
    return options;
}

KrigingFitOptions given(std::vector<double> lengths, double nugget)
{
    return givenWithTrend(0, std::move(lengths), nugget);
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
    const KrigingFitOptions options = given({0.3, 0.7}, 0.01);
    const Columns inputs = latinHypercube(12, 2, 5);
    const Fitted fitted{inputs, valuesOf(wave, inputs), options};

    const std::vector<double> found = fitted.refits(12);

    ASSERT_EQ(found.size(), 12u);
    for (std::size_t row = 0; row < 12; ++row) {
        EXPECT_NEAR(found[row], residualWithout(inputs, fitted.output, row, options), 1e-8) << row;
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
    KrigingFitOptions options = given({0.01}, 1e-3);
    options.nuggetMode = KrigingOptions::NuggetMode::Estimated;

    for (const double residual : Fitted{inputs, output, options}.refits(5)) {
        EXPECT_GT(std::fabs(residual), 0.5);
    }
}

TEST(KrigingRefits, HaveNoFiguresWhereTheOtherOutputsAreAllTheSame)
{
    const Columns inputs = latinHypercube(20, 1, 5);
    std::vector<double> output(20, 0.0);
    output[7] = 1.0;

    const std::vector<double> found = Fitted{inputs, output, given({0.3}, 0.01)}.refits(20);

    for (std::size_t row = 0; row < 20; ++row) {
        EXPECT_EQ(std::isnan(found[row]), row == 7) << row;
    }
}

TEST(KrigingRefits, HaveNoFiguresWhereTheOthersAreTooFewForTheTrend)
{
    // Three cases: two have as many terms of a linear trend, and leave no variance.
    const Columns inputs = {{0.0, 0.4, 1.0}};

    for (const double residual :
         Fitted{inputs, {0.0, 1.0, 0.5}, givenWithTrend(1, {0.3}, 0.01)}.refits(3)) {
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

    const std::vector<double> found = Fitted{inputs, output, withTrend(1)}.refits(5);
    const std::vector<double> backwards = Fitted{reversed, reversedOutput, withTrend(1)}.refits(5);

    EXPECT_EQ(found, std::vector<double>(backwards.rbegin(), backwards.rend()));
}
