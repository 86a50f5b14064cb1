#include "KrigingWaveTestSupport.h"

#include <gtest/gtest.h>

using namespace wavetest;

namespace {

using Kind = FittedModel::ErrorKind;

std::vector<double> standardErrors(const KrigingSurrogateModel& model, Columns points,
                                   Kind kind = Kind::Mean)
{
    return model.standardErrors(pointersTo(points), 0, kind, points.empty() ? 1 : points[0].size());
}

/** The squared standard error over the process variance. */
double relativeVariance(const Given& given, int trendOrder, double nugget,
                        const std::vector<double>& point)
{
    using Real = DirectKriging::Real;
    const auto terms = [&](Real x, Real y) {
        std::vector<Real> values = {1.0L, x, y, x * x, x * y, y * y};
        values.resize(std::vector<std::size_t>{1, 3, 6}[static_cast<std::size_t>(trendOrder)]);
        return values;
    };
    DirectKriging::Matrix points;
    DirectKriging::Matrix trend;
    for (std::size_t i = 0; i < given.inputs[0].size(); ++i) {
        points.push_back({given.inputs[0][i], given.inputs[1][i]});
        trend.push_back(terms(points[i][0], points[i][1]));
    }
    const std::vector<Real> output(points.size(), 0.0L);
    return static_cast<double>(
        DirectKriging(points, trend, output, given.lengths, nugget)
            .relativeVariance({point[0], point[1]}, terms(point[0], point[1])));
}

} // namespace

TEST(KrigingUncertainty, IsTheUniversalKrigingVarianceInExtendedPrecision)
{
    const Given given;
    for (const int order : {0, 1, 2}) {
        const double nugget = 0.01;
        const KrigingSurrogateModel model = given.model(order, nugget);
        ASSERT_EQ(model.krigingReport(0).trendOrder, order);
        const double variance = model.krigingReport(0).processVariance;

        const std::vector<double> ofMean = standardErrors(model, somePoints);
        const std::vector<double> ofCase = standardErrors(model, somePoints, Kind::Observation);

        for (std::size_t i = 0; i < ofMean.size(); ++i) {
            const double expected =
                relativeVariance(given, order, nugget, {somePoints[0][i], somePoints[1][i]});
            EXPECT_NEAR(ofMean[i] * ofMean[i] / variance, expected, 1e-11 * (1.0 + expected));
            EXPECT_NEAR(ofCase[i] * ofCase[i] / variance, expected + nugget,
                        1e-11 * (1.0 + expected));
        }
    }
}

TEST(KrigingUncertainty, IsZeroAtInterpolatedCasesPositiveBetweenAndLargerOutside)
{
    const Columns inputs = latinHypercube(60, 2, 5);
    const KrigingSurrogateModel model = KrigingArguments().model(inputs, {valuesOf(wave, inputs)});
    const double deviation = std::sqrt(model.krigingReport(0).processVariance);

    for (const Kind kind : {Kind::Mean, Kind::Observation}) {
        EXPECT_EQ(standardErrors(model, inputs, kind), std::vector<double>(60, 0.0));
    }
    const std::vector<double> errors =
        standardErrors(model, {{0.5, 1.5, 100.0}, {0.5, 0.5, 100.0}});
    EXPECT_GT(errors[0], 1e-6 * deviation);
    EXPECT_GT(errors[1], 10.0 * errors[0]);
    EXPECT_GT(errors[2], deviation) << "the trend is uncertain too";
}

TEST(KrigingUncertainty, CoversTheErrorsOfPredictions)
{
    const Columns inputs = latinHypercube(40, 2, 7);
    const KrigingSurrogateModel model = KrigingArguments().model(inputs, {valuesOf(wave, inputs)});
    const Columns points = latinHypercube(500, 2, 8);
    const std::vector<double> found = predictions(model, points);
    const std::vector<double> expected = valuesOf(wave, points);
    const std::vector<double> errors = standardErrors(model, points);

    std::size_t within = 0;
    for (std::size_t i = 0; i < 500; ++i) {
        within += std::fabs(found[i] - expected[i]) <= 3.0 * errors[i] ? 1 : 0;
    }

    // All but a few would be for a normal distribution; this surface is smoother than the model.
    EXPECT_GE(within, 480u);
}

TEST(KrigingUncertainty, IsInTheUnitOfTheOutput)
{
    const Given given;
    const KrigingArguments arguments{
        {1e-4, given.lengths, 1, 0.5, 0.01, KrigingOptions::NuggetMode::Fixed}};
    const std::vector<double> expected = standardErrors(given.model(1, 0.01), somePoints);
    for (const double unit : {1e-12, 1e12}) {
        std::vector<double> output = valuesOf(wave, given.inputs);
        for (double& value : output) {
            value *= unit;
        }

        const std::vector<double> errors =
            standardErrors(arguments.model(given.inputs, {output}), somePoints);

        for (std::size_t i = 0; i < expected.size(); ++i) {
            EXPECT_NEAR(errors[i], unit * expected[i], 1e-12 * unit * expected[i]);
        }
    }
}

TEST(KrigingUncertainty, OfAMeanIsTheStandardErrorOfTheMean)
{
    Columns points = {{3.0, 4.0}};
    const KrigingSurrogateModel model =
        KrigingArguments().model({{2.0, 2.0, 2.0, 2.0}}, {{1.0, 3.0, 1.0, 3.0}});

    // The variance of the four, with three degrees of freedom, is 4 / 3.
    EXPECT_DOUBLE_EQ(standardErrors(model, points)[0], std::sqrt(1.0 / 3.0));
    EXPECT_DOUBLE_EQ(standardErrors(model, points, Kind::Observation)[1], std::sqrt(5.0 / 3.0));
}

TEST(KrigingUncertainty, IsZeroForOneCaseAndForAConstant)
{
    const KrigingSurrogateModel one = KrigingArguments().model({{2.0}, {3.0}}, {{5.0}});
    const KrigingSurrogateModel constant =
        KrigingArguments().model({{2.0, 3.0, 4.0}}, {{5.0, 5.0, 5.0}});
    const KrigingSurrogateModel noInputs = KrigingArguments().model({}, {{5.0}});

    EXPECT_EQ(standardErrors(one, {{7.0}, {8.0}})[0], 0.0);
    EXPECT_EQ(standardErrors(constant, {{7.0}})[0], 0.0);
    EXPECT_EQ(standardErrors(noInputs, {})[0], 0.0);
    EXPECT_EQ(gradients(one, {{7.0}, {8.0}}), (Columns{{0.0}, {0.0}}));
    EXPECT_EQ(gradients(constant, {{7.0}}), (Columns{{0.0}}));
}

TEST(KrigingUncertainty, IsRoundingWhereTheTrendExplainsEverything)
{
    const Columns inputs = latinHypercube(20, 2, 5);
    const auto plane = [](const std::vector<double>& x) { return 3.0 * x[0] - 2.0 * x[1]; };
    const KrigingSurrogateModel model = KrigingArguments().model(inputs, {valuesOf(plane, inputs)});

    for (const double error : standardErrors(model, somePoints)) {
        EXPECT_LT(error, 1e-13);
    }
    const Columns slopes = gradients(model, somePoints);
    EXPECT_NEAR(slopes[0][2], 3.0, 1e-12);
    EXPECT_NEAR(slopes[1][2], -2.0, 1e-12);
}

TEST(KrigingUncertainty, GivesNaNGradientsAtPointsThatAreNotFiniteOnly)
{
    const Columns slopes =
        gradients(Given().model(1, 0.01), {{0.5, notANumber, 0.5}, {0.5, 0.5, HUGE_VAL}});

    for (const std::vector<double>& slope : slopes) {
        EXPECT_TRUE(std::isfinite(slope[0]));
        EXPECT_TRUE(std::isnan(slope[1]) && std::isnan(slope[2]));
    }
}

TEST(KrigingUncertainty, HasTheSameBitsForAnyNumberOfThreads)
{
    const KrigingSurrogateModel model = Given().model(1, 0.01);
    const Columns points = latinHypercube(3000, 2, 9);
    setThreadCount(1);
    const std::vector<double> one = standardErrors(model, points);
    setThreadCount(3);
    const std::vector<double> three = standardErrors(model, points);
    setThreadCount(0);

    EXPECT_EQ(one, three);
}

TEST(KrigingUncertainty, GivesIntervalsOfStudentsTForFewCases)
{
    const KrigingSurrogateModel model = Given().model(1, 0.01);
    Columns points = somePoints;

    const PredictionIntervals found = model.predictionIntervals(pointersTo(points), 0, 0.95, 5);

    const std::vector<double> middle = predictions(model, points);
    const std::vector<double> errors = standardErrors(model, points, Kind::Observation);
    for (std::size_t i = 0; i < middle.size(); ++i) {
        // qt(0.975, 9), for 12 cases and 3 terms of the trend.
        EXPECT_NEAR(found.lower[i], middle[i] - 2.2621571627982 * errors[i], 1e-12);
        EXPECT_NEAR(found.upper[i], middle[i] + 2.2621571627982 * errors[i], 1e-12);
    }
    EXPECT_NEAR(model.intervalQuantile(0, 0.95), 2.2621571627982, 1e-12);
    EXPECT_EQ(model.calibrationReport(0).basis, CalibrationReport::Basis::Distribution);
}

TEST(KrigingUncertainty, CalibratesIntervalsByLeftOutCasesFromFortyOn)
{
    KrigingArguments arguments;
    arguments.correlationLengths = {0.3, 0.3};
    arguments.nuggetMode = KrigingOptions::NuggetMode::Fixed;
    arguments.nugget = 1.0; // far more than these smooth cases have
    const Columns inputs = latinHypercube(60, 2, 3);
    const KrigingSurrogateModel model = arguments.model(inputs, {valuesOf(wave, inputs)});

    const CalibrationReport report = model.calibrationReport(0);

    EXPECT_EQ(report.basis, CalibrationReport::Basis::LeaveOneOut);
    EXPECT_LT(report.factor, 0.9);
    EXPECT_EQ(model.confidenceQuantile(0, 0.95), model.intervalQuantile(0, 0.95));
    std::size_t held = 0;
    for (const LeaveOneOutPrediction& one : model.leaveOneOutPredictions(0)) {
        const double reach = model.intervalQuantile(0, 0.8) * one.standardError;
        held += std::fabs(one.output - one.predicted) <= reach ? 1 : 0;
    }
    EXPECT_NEAR(static_cast<double>(held) / 60.0, 0.8, 0.02);
    EXPECT_GT(report.coverage[1].share, 0.95) << "by Student's t";
}

TEST(KrigingUncertainty, RefusesGradientsOfWhatDoesNotFitTheModel)
{
    const KrigingSurrogateModel model = Given().model(1, 0.01);
    double value = 0.0;

    EXPECT_THROW(model.gradients({&value}, 0, 1), SurrogateModelInterface::Error);
    EXPECT_THROW(model.gradients({&value, &value}, 1, 1), SurrogateModelInterface::Error);
    EXPECT_NO_THROW(model.gradients({nullptr, nullptr}, 0, 0));
}
