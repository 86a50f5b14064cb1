#include "ResponseSurfaceTestSupport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

using namespace fittingtest;

TEST(ResponseSurfaceUncertainty, GivesTheStandardErrorOfTheMean)
{
    // Deviation sqrt(10 / 4), n = 5.
    const Model model = fit(Cases{{}, {{1, 2, 3, 4, 5}}});

    EXPECT_NEAR(standardError(model, {}, FittedModel::ErrorKind::Mean), std::sqrt(0.5), 1e-15);
    EXPECT_NEAR(standardError(model, {}, FittedModel::ErrorKind::Observation), std::sqrt(2.5 + 0.5),
                1e-15);
}

TEST(ResponseSurfaceUncertainty, GivesTheIntervalsOfR)
{
    const Model model = fit(vapourDeposition());
    std::vector<Column> points = {{30, 100}, {5, 1}};

    const PredictionIntervals found = model.predictionIntervals(pointersTo(points), 0, 0.95, 2);

    expectFigure(found.lower[0], 4.56157254346861, "lower inside");
    expectFigure(found.upper[0], 8.79102351364129, "upper inside");
    expectFigure(found.lower[1], -5.67775230381846, "lower outside");
    expectFigure(found.upper[1], 6.37766390539257, "upper outside");
    // qt(0.975, 5)
    EXPECT_NEAR(model.intervalQuantile(0, 0.95), 2.570581835636314, 1e-13);
    EXPECT_NEAR(model.confidenceQuantile(0, 0.95), 2.570581835636314, 1e-13);
    expectFigure(standardError(model, {{30}, {5}}, FittedModel::ErrorKind::Mean), 0.387107042865106,
                 "standard error inside");
    expectFigure(standardError(model, {{100}, {1}}, FittedModel::ErrorKind::Mean),
                 2.229695439941187, "standard error outside");
}

TEST(ResponseSurfaceUncertainty, CalibratesIntervalsButNotConfidenceLimitsFromFortyCasesOn)
{
    // Every twentieth case is an outlier: the others scatter less than a normal distribution with
    // the same deviation would.
    Cases cases = twoInputs(200, 0.01);
    for (std::size_t row = 0; row < 200; row += 20) {
        cases.outputs[0][row] += row % 40 == 0 ? 5.0 : -5.0;
    }
    const Model model = fit(cases);

    // qt(0.75, 194) and qt(0.975, 194)
    EXPECT_NEAR(model.confidenceQuantile(0, 0.5), 0.675756474554, 1e-10);
    EXPECT_NEAR(model.confidenceQuantile(0, 0.95), 1.97226753258, 1e-10);
    EXPECT_LT(model.intervalQuantile(0, 0.5), 0.5);
    EXPECT_GT(model.intervalQuantile(0, 0.99), 3.0);
    EXPECT_EQ(model.calibrationReport(0).basis, CalibrationReport::Basis::LeaveOneOut);
    EXPECT_EQ(model.calibrationReport(0).cases, 200u);
}

TEST(ResponseSurfaceUncertainty, LeavesRepeatedCentreRunsOutOneByOne)
{
    // A central composite design: without all centre runs, the others hardly separate the squares.
    Cases cases{{{}, {}, {}}, {{}}};
    Random random(8);
    const double axis = 1.68;
    std::vector<Column> points(6, Column(3, 0.0));
    for (int k = 0; k < 14; ++k) {
        Column point(3, 0.0);
        for (int input = 0; input < 3 && k < 8; ++input) {
            point[input] = (k >> input) % 2 == 0 ? -1.0 : 1.0;
        }
        if (k >= 8) {
            point[(k - 8) / 2] = k % 2 == 0 ? -axis : axis;
        }
        points.push_back(point);
    }
    for (const Column& point : points) {
        double output = 80.0 + 0.8 * random.normal();
        for (int input = 0; input < 3; ++input) {
            cases.inputs[input].push_back(point[input]);
            output += 3.0 * point[input] - 2.0 * point[input] * point[input];
        }
        cases.outputs[0].push_back(output);
    }
    const Model model = fit(cases);

    const CalibrationReport report = model.calibrationReport(0);

    double held = 0.0;
    for (const LeaveOneOutPrediction& one : model.leaveOneOutPredictions(0)) {
        const double reach = model.confidenceQuantile(0, 0.95) * one.standardError;
        held += std::fabs(one.output - one.predicted) <= reach ? 0.05 : 0.0;
    }
    EXPECT_EQ(report.cases, 20u);
    EXPECT_NEAR(report.coverage[2].share, held, 1e-12);
    EXPECT_GE(report.coverage[2].share, 0.9);
}

TEST(ResponseSurfaceUncertainty, IsByStudentsTWhereFewPointsHaveManyReplicates)
{
    // Of the outputs between eight points, their replicates say nothing.
    Cases cases{{{}}, {{}}};
    for (int row = 0; row < 80; ++row) {
        const double x = std::exp2(row % 8);
        cases.inputs[0].push_back(x);
        cases.outputs[0].push_back(std::sqrt(x) + 0.01 * (row % 7));
    }
    const Model model = fit(cases);

    EXPECT_EQ(model.calibrationReport(0).basis, CalibrationReport::Basis::Distribution);
    EXPECT_EQ(model.intervalQuantile(0, 0.95), model.confidenceQuantile(0, 0.95));
}

TEST(ResponseSurfaceUncertainty, RefusesALevelThatIsNoProbability)
{
    EXPECT_EQ(errorOf([] { fit(twoInputs(40, 1.0)).responseSurfaceStatistics(0, notANumber); }),
              "The level of an interval has to lie between 0 and 1, not at nan.");
}
