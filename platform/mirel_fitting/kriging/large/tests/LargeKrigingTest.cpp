#include <mirel_fitting/kriging/large/LargeKriging.h>

#include "LargeKrigingTestSupport.h"

#include <mirel_fitting/FitProgress.h>
#include <mirel_fitting/kriging/grid/KrigingGrid.h>

#include <gtest/gtest.h>

#include <limits>

namespace {

/** Many waves. */
double ripples(const std::vector<double>& x)
{
    return std::sin(20.0 * x[0] + 4.0 * x[1]) + std::cos(15.0 * x[1]) * x[0];
}

/** How many predictions miss the hill by less than two standard errors. */
int countWithin(const KrigingFit& fit, Columns points)
{
    const std::vector<double> values = predicted(fit, points);
    const std::vector<double> expected = valuesOf(hill, points);
    std::vector<double> errors(values.size());
    fit.predictor.standardErrors(pointersTo(points), errors.size(), false, errors.data());
    int within = 0;
    for (std::size_t i = 0; i < values.size(); ++i) {
        within += std::fabs(values[i] - expected[i]) < 2.0 * errors[i] ? 1 : 0;
    }
    return within;
}

/** A fit that several tests look at, made once. */
const KrigingFit& fitOfHill()
{
    static const Columns inputs = latinHypercube(1200, 3, 3);
    static const KrigingFit fit = fitOf(inputs, valuesOf(hill, inputs), manyAreMoreThan(300));
    return fit;
}

} // namespace

TEST(LargeKriging, PredictsBetterThanTheSubsetAlone)
{
    const Columns inputs = latinHypercube(1200, 4, 3);
    const Columns points = latinHypercube(500, 4, 4);
    const std::vector<double> expected = valuesOf(bowl, points);
    const KrigingFitOptions options = manyAreMoreThan(300);
    KrigingFitOptions alone = options;
    alone.sizes.neighbours = 0;

    const KrigingFit fit = fitOf(inputs, valuesOf(bowl, inputs), options);
    const KrigingFit ofSubset = fitOf(inputs, valuesOf(bowl, inputs), alone);

    EXPECT_LT(relativeError(predicted(fit, points), expected),
              0.8 * relativeError(predicted(ofSubset, points), expected));
    EXPECT_TRUE(mentions(fit,
                         "the model is that of 150 cases spread over all of them, corrected by "
                         "Kriging from the 30 nearest cases of each point"));
    EXPECT_TRUE(mentions(ofSubset, "the model is that of 150 cases spread over all of them, which "
                                   "the nearest cases of each point could not improve."));
}

TEST(LargeKriging, ComesCloseToTheExactModelOfAllCases)
{
    const Columns inputs = latinHypercube(800, 2, 3);
    const Columns points = latinHypercube(500, 2, 4);
    const std::vector<double> output = valuesOf(ripples, inputs);
    const KrigingFit exact = fitOf(inputs, output, manyAreMoreThan(800));

    const KrigingFit large = fitOf(inputs, output, manyAreMoreThan(300));

    const std::vector<double> expected = valuesOf(ripples, points);
    EXPECT_LT(relativeError(predicted(large, points), predicted(exact, points)), 0.02);
    EXPECT_LT(relativeError(predicted(large, points), expected),
              3.0 * relativeError(predicted(exact, points), expected));
    EXPECT_FALSE(mentions(exact, "distinct cases"));
}

TEST(LargeKriging, MeasuresItsErrorAndThatOfEachPointByCasesLeftOut)
{
    const Columns points = latinHypercube(1000, 3, 4);
    const std::vector<double> expected = valuesOf(hill, points);

    const KrigingFit& fit = fitOfHill();

    const double deviation = fit.metrics.looRmse / std::sqrt(1.0 - fit.metrics.q2);
    const double error = relativeError(predicted(fit, points), expected) * deviation;
    EXPECT_GT(fit.metrics.looRmse, 0.5 * error);
    EXPECT_LT(fit.metrics.looRmse, 2.0 * error);
    EXPECT_LE(fit.metrics.rmse, fit.metrics.looRmse);
    EXPECT_EQ(fit.metrics.cases, 1200u);
    EXPECT_TRUE(mentions(fit, "The figures of errors are those of a random sample of 200 distinct "
                              "cases."));
    EXPECT_GT(countWithin(fit, points), 850);
}

TEST(LargeKriging, KeepsTheCasesThatItMeasuresByWithTheirStandardErrors)
{
    Columns inputs = latinHypercube(1200, 3, 3);
    const std::vector<double> output = noisy(valuesOf(hill, inputs), 0.3, 11);
    const KrigingCases cases(pointersTo(inputs), output.size());
    for (const std::size_t neighbours : {std::size_t{30}, std::size_t{0}}) {
        KrigingFitOptions options = manyAreMoreThan(300);
        options.sizes.neighbours = neighbours;
        const KrigingFit fit = fitKriging(cases, output, options);

        const std::vector<LeaveOneOutPrediction> left =
            fit.leftOut.predictions(cases, fit.predictor);

        ASSERT_EQ(left.size(), 200u);
        double squares = 0.0;
        std::size_t covered = 0;
        for (std::size_t k = 0; k < left.size(); ++k) {
            const double error = left[k].output - left[k].predicted;
            EXPECT_TRUE(k == 0 || left[k - 1].row < left[k].row);
            EXPECT_EQ(left[k].output, output[left[k].row]);
            squares += error * error;
            covered += std::fabs(error) <= 2.0 * left[k].standardError ? 1 : 0;
        }
        EXPECT_NEAR(std::sqrt(squares / 200.0), fit.metrics.looRmse, 1e-9 * fit.metrics.looRmse);
        // 95 % are expected.
        EXPECT_GT(covered, 178u);
    }
}

TEST(LargeKriging, SmoothsNoise)
{
    const Columns inputs = latinHypercube(1500, 2, 3);
    const Columns points = latinHypercube(500, 2, 4);
    const auto slope = [](const std::vector<double>& x) { return std::sin(4.0 * x[0]) + x[1]; };

    const KrigingFit fit =
        fitOf(inputs, noisy(valuesOf(slope, inputs), 0.2, 11), manyAreMoreThan(300));

    // The noise is 0.3 of the deviation of the function.
    EXPECT_LT(relativeError(predicted(fit, points), valuesOf(slope, points)), 0.15);
}

TEST(LargeKriging, DoesNotDependOnTheOrderOfTheCasesOrTheNumberOfThreads)
{
    const Columns inputs = latinHypercube(700, 3, 3);
    Columns reversed = inputs;
    for (std::vector<double>& column : reversed) {
        std::reverse(column.begin(), column.end());
    }
    const Columns points = latinHypercube(300, 3, 4);

    setThreadCount(1);
    const KrigingFit one = fitOf(inputs, valuesOf(hill, inputs), manyAreMoreThan(300));
    const std::vector<double> values = predicted(one, points);
    setThreadCount(2);
    const KrigingFit two = fitOf(inputs, valuesOf(hill, inputs), manyAreMoreThan(300));
    const std::vector<double> again = predicted(two, points);
    const KrigingFit third = fitOf(reversed, valuesOf(hill, reversed), manyAreMoreThan(300));
    setThreadCount(0);

    EXPECT_EQ(values, again);
    EXPECT_EQ(one.metrics.looRmse, two.metrics.looRmse);
    // The mean that the outputs are centred by is summed in another order.
    EXPECT_LT(relativeError(predicted(third, points), values), 1e-6);
}

TEST(LargeKriging, DoesNotDependOnUnits)
{
    const Columns inputs = latinHypercube(700, 3, 3);
    const Columns points = latinHypercube(300, 3, 4);
    const auto inUnit = [](double unit, std::vector<double> values) {
        for (double& value : values) {
            value *= unit;
        }
        return values;
    };
    const auto inUnits = [&](const Columns& columns) -> Columns {
        return {inUnit(1e-12, columns[0]), inUnit(1e12, columns[1]), columns[2]};
    };
    const std::vector<double> output = valuesOf(hill, inputs);

    const KrigingFit fit = fitOf(inputs, output, manyAreMoreThan(300));
    const KrigingFit scaled = fitOf(inUnits(inputs), inUnit(1e12, output), manyAreMoreThan(300));

    EXPECT_LT(
        relativeError(predicted(scaled, inUnits(points)), inUnit(1e12, predicted(fit, points))),
        1e-4);
}

TEST(LargeKriging, PredictsGridsAndGradientsAndGivesNaNWhereNotFinite)
{
    const Columns inputs = latinHypercube(700, 3, 3);
    const KrigingFit fit = fitOf(inputs, valuesOf(hill, inputs), manyAreMoreThan(300));
    const double infinity = std::numeric_limits<double>::infinity();

    const std::vector<double> values =
        predicted(fit, {{0.5, infinity, 0.5}, {0.5, 0.5, std::nan("")}, {0.5, 0.5, 0.5}});

    EXPECT_TRUE(std::isfinite(values[0]));
    EXPECT_TRUE(std::isnan(values[1]));
    EXPECT_TRUE(std::isnan(values[2]));

    const double step = 1e-6;
    Columns point = {{0.4}, {0.6}, {0.3}};
    Columns slopes(3, std::vector<double>(1));

    fit.predictor.differentiate(pointersTo(point), 1, pointersTo(slopes));

    const std::vector<double> around =
        predicted(fit, {{0.4 + step, 0.4 - step}, {0.6, 0.6}, {0.3, 0.3}});
    EXPECT_NEAR(slopes[0][0], (around[0] - around[1]) / (2.0 * step),
                1e-4 * std::fabs(slopes[0][0]));

    Columns grid(3);
    for (int i = 0; i < 1000; ++i) {
        grid[0].push_back(0.1 * (i / 100));
        grid[1].push_back(0.1 * (i / 10 % 10));
        grid[2].push_back(0.1 * (i % 10));
    }
    const std::vector<double*> columns = pointersTo(grid);
    std::vector<double> onGrid(1000);
    predictGrids(fit.predictor, columns, ProductGrid::split(columns, 1000), onGrid.data());

    EXPECT_LT(relativeError(onGrid, predicted(fit, grid)), 1e-9);
}

TEST(LargeKriging, AcceptsReplicatesNearDuplicatesAndConstantInputs)
{
    Columns inputs = latinHypercube(500, 3, 3);
    const std::size_t given = inputs[0].size();
    for (std::size_t i = 0; i < given; ++i) {
        for (std::vector<double>& column : inputs) {
            column.push_back(column[i]);
        }
        inputs[0].back() *= i % 2 == 0 ? 1.0 : 1.0 + 1e-13;
    }
    inputs.emplace_back(2 * given, 7.0);
    std::vector<double> output = valuesOf(hill, inputs);
    output[given] += 1e-3; // contradicts case 0
    Columns points = latinHypercube(300, 3, 4);
    const std::vector<double> expected = valuesOf(hill, points);
    points.emplace_back(300, 7.0);

    const KrigingFit fit = fitOf(inputs, output, manyAreMoreThan(300));

    const Columns distinct = latinHypercube(500, 3, 3);
    const KrigingFit plain = fitOf(distinct, valuesOf(hill, distinct), manyAreMoreThan(300));
    points.pop_back();
    const double error = relativeError(predicted(plain, points), expected);
    points.emplace_back(300, 7.0);
    EXPECT_LT(relativeError(predicted(fit, points), expected), 1.5 * error);
    EXPECT_TRUE(mentions(fit, "V4 is constant over the cases and was ignored."));
    EXPECT_TRUE(mentions(fit, "repeat another case exactly"));
    EXPECT_EQ(fit.report.correlationLengths[3], std::numeric_limits<double>::infinity());
}

TEST(LargeKriging, IsNotMisledByRepeatedCasesThatDifferByNextToNothing)
{
    Columns inputs = latinHypercube(500, 2, 3);
    std::vector<double> output = valuesOf(ripples, inputs);
    const KrigingFit plain = fitOf(inputs, output, manyAreMoreThan(300));
    for (std::size_t i = 0; i < 500; ++i) {
        for (std::vector<double>& column : inputs) {
            column.push_back(column[i]);
        }
        output.push_back(output[i] * (1.0 + 1e-14));
    }

    const KrigingFit fit = fitOf(inputs, output, manyAreMoreThan(300));

    for (std::size_t k = 0; k < 2; ++k) {
        EXPECT_NEAR(fit.report.correlationLengths[k], plain.report.correlationLengths[k],
                    0.05 * plain.report.correlationLengths[k]);
    }
    EXPECT_NEAR(fit.metrics.looRmse, plain.metrics.looRmse, 0.05 * plain.metrics.looRmse);
}

TEST(LargeKriging, ReportsEachFewCasesThatItMeasuresBy)
{
    const Columns inputs = latinHypercube(1200, 3, 3);
    KrigingFitOptions options = manyAreMoreThan(300);
    options.sizes.measured = 640;
    std::size_t reports = 0;
    FitProgress progress([&](double, const std::string& message) {
        reports += message == "Leaving out cases" ? 1 : 0;
        return true;
    });

    setThreadCount(1);
    fitOf(inputs, valuesOf(hill, inputs), options);
    setThreadCount(0);

    // For 64 cases at a time, of two candidates: their nearest cases and what these predict.
    EXPECT_GE(reports, 4u * 10u);
}

TEST(LargeKriging, HasLargerStandardErrorsWhereNoCaseIsNear)
{
    const KrigingFit& fit = fitOfHill();
    for (const double beyond : {0.05, 0.1, 0.3}) {
        Columns points = latinHypercube(200, 3, 4);
        for (double& x : points[0]) {
            x = 1.0 + beyond * (0.5 + 0.5 * x);
        }

        EXPECT_GT(countWithin(fit, points), 150) << beyond;
    }
}

TEST(LargeKriging, HasTheStandardErrorsOfTheSubsetFarOutside)
{
    const Columns inputs = latinHypercube(1200, 3, 3);
    const std::vector<double> output = valuesOf(hill, inputs);
    KrigingFitOptions alone = manyAreMoreThan(300);
    alone.sizes.neighbours = 0;
    const KrigingFit& fit = fitOfHill();
    const KrigingFit ofSubset = fitOf(inputs, output, alone);
    // Every other point lies between the cases; the others 2, 20 and 200 ranges beyond them.
    const double nan = std::numeric_limits<double>::quiet_NaN();
    Columns points = {{0.5, 3.0, 0.4, -20.0, 0.3, 0.5, 200.0, nan},
                      {0.5, 0.5, 0.6, 0.5, 0.2, 0.5, 0.5, 0.5},
                      {0.5, 0.5, 0.5, 0.5, 0.7, 0.5, 0.5, 5.0}};
    std::vector<double> errors(8);
    std::vector<double> errorsOfSubset(8);

    fit.predictor.standardErrors(pointersTo(points), 8, false, errors.data());
    ofSubset.predictor.standardErrors(pointersTo(points), 8, false, errorsOfSubset.data());

    ASSERT_TRUE(mentions(fit, "corrected by"));
    for (const std::size_t outside : {1u, 3u, 6u}) {
        EXPECT_GE(errors[outside], errorsOfSubset[outside]) << outside;
    }
    for (const std::size_t inside : {0u, 2u, 4u, 5u}) {
        EXPECT_LT(errors[inside], 0.01 * errors[1]) << inside;
    }
    // What the slopes of the trend may be wrong by grows with the distance, without bounds.
    EXPECT_EQ(errors[6], errorsOfSubset[6]);
    EXPECT_GT(errors[6], 5.0 * errors[3]);
    EXPECT_TRUE(std::isnan(errors[7]));
}
