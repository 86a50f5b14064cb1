#include "FittingTestSupport.h"

#include <mirel_fitting/DescribedSurrogateModel.h>
#include <mirel_fitting/FitProgress.h>
#include <mirel_fitting/KrigingSurrogateModel.h>
#include <mirel_fitting/SurrogateResponseSurfaceModel.h>
#include <mirel_fitting/TransformedOutput.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <numeric>
#include <utility>

using namespace fittingtest;

namespace {

using Kind = FittedModel::ErrorKind;

std::unique_ptr<FittedModel> kriging(const std::vector<double*>& inputs,
                                     const std::vector<double*>& outputs, std::size_t rows,
                                     const CaseDesign& = {})
{
    return std::make_unique<KrigingSurrogateModel>(inputs, outputs, static_cast<int>(rows),
                                                   KrigingOptions());
}

std::unique_ptr<FittedModel> responseSurface(const std::vector<double*>& inputs,
                                             const std::vector<double*>& outputs, std::size_t rows,
                                             const CaseDesign& design)
{
    return std::make_unique<SurrogateResponseSurfaceModel>(inputs, outputs, rows,
                                                           ResponseSurfaceOptions(), design);
}

TransformedOutput modelOf(Cases cases, TransformSetting setting = TransformSetting::Automatic,
                          const TransformedOutput::Maker& maker = kriging)
{
    return {cases.inputPointers(), cases.outputPointers(), cases.count(), maker, setting};
}

/** Over three decades, with errors in proportion to it. */
double overDecades(double v1, double v2)
{
    return std::exp(3.0 * v1 + std::sin(4.0 * v2));
}

/** With values above 4, which neither root nor logarithm makes simpler. */
double wave(double v1, double v2)
{
    return 10.0 + 3.0 * std::sin(5.0 * v1) + 3.0 * v2;
}

Cases casesOf(const std::function<double(double, double)>& function, double relativeNoise = 0.0)
{
    Random random(3);
    Cases cases{{random.column(40, 0.0, 1.0), random.column(40, 0.0, 1.0)}, {{}}};
    for (std::size_t k = 0; k < 40; ++k) {
        cases.outputs[0].push_back(function(cases.inputs[0][k], cases.inputs[1][k]) *
                                   (1.0 + relativeNoise * (random.next() - 0.5)));
    }
    return cases;
}

std::vector<Column> somePoints()
{
    Random random(8);
    return {random.column(200, 0.0, 1.0), random.column(200, 0.0, 1.0)};
}

double rootMeanSquareError(const SurrogateModelInterface& model,
                           const std::function<double(double, double)>& function)
{
    const std::vector<Column> points = somePoints();
    const Column values = predict(model, points);
    double squares = 0.0;
    for (std::size_t i = 0; i < values.size(); ++i) {
        squares += std::pow(values[i] - function(points[0][i], points[1][i]), 2);
    }
    return std::sqrt(squares / static_cast<double>(values.size()));
}

std::unique_ptr<FittedModel> plain(Cases cases)
{
    return kriging(cases.inputPointers(), cases.outputPointers(), cases.count());
}

} // namespace

TEST(TransformedOutput, ModelsTheLogarithmOrTheRootWhereThatIsSimpler)
{
    const Cases cases = casesOf(overDecades, 0.05);
    const TransformedOutput model = modelOf(cases);

    EXPECT_EQ(model.transform(0), OutputTransform::Logarithm);
    EXPECT_GT(model.gain(0), 5.0);
    EXPECT_LT(rootMeanSquareError(model, overDecades),
              0.7 * rootMeanSquareError(*plain(cases), overDecades));

    const auto square = [](double v1, double v2) {
        return std::pow(2.5 + std::sin(4.0 * v1) + v2, 2);
    };

    EXPECT_EQ(modelOf(casesOf(square)).transform(0), OutputTransform::SquareRoot);

    const auto product = [](double v1, double v2) { return (1.0 + v1) * std::exp(4.0 * v2); };

    const TransformedOutput surface =
        modelOf(casesOf(product, 0.05), TransformSetting::Automatic, responseSurface);

    EXPECT_EQ(surface.transform(0), OutputTransform::Logarithm);
    EXPECT_EQ(surface.surfaceCoefficientInformation(0).substr(0, 4), "exp(");
}

TEST(TransformedOutput, LeavesAnOutputThatNeedsNoTransformAsItIs)
{
    const Cases cases = casesOf(wave);
    const TransformedOutput model = modelOf(cases);

    EXPECT_EQ(model.transform(0), OutputTransform::None);
    EXPECT_EQ(predict(model, somePoints()), predict(*plain(cases), somePoints()));
    EXPECT_EQ(model.fitMetrics(0).q2, plain(cases)->fitMetrics(0).q2);

    const TransformedOutput flat =
        modelOf(casesOf([](double v1, double v2) { return 1000.0 + overDecades(v1, v2); }));

    EXPECT_EQ(flat.transform(0), OutputTransform::None);
    EXPECT_TRUE(std::isnan(flat.gain(0)));
}

TEST(TransformedOutput, TransformsOnlyWhatIsPositiveInAllCases)
{
    Cases cases = casesOf(overDecades);
    cases.outputs[0][7] = 0.0;
    cases.outputs.push_back(casesOf(overDecades).outputs[0]);

    const TransformedOutput model = modelOf(cases, TransformSetting::Logarithm);

    EXPECT_EQ(model.transform(0), OutputTransform::None);
    EXPECT_EQ(model.transform(1), OutputTransform::Logarithm);
    EXPECT_EQ(model.fitWarnings(0).at(0),
              "The output is not positive in all cases: it was modelled itself, not its logarithm "
              "or square root.");
}

TEST(TransformedOutput, WarnsOfTheVarianceOfWhatWasModelled)
{
    // The logarithm alternates from case to case, so that all of it is noise.
    Cases cases = casesOf(overDecades);
    for (std::size_t i = 0; i < cases.count(); ++i) {
        cases.outputs[0][i] = i % 2 == 0 ? 1.0 : 100.0;
    }

    const TransformedOutput model = modelOf(cases, TransformSetting::Logarithm);

    const std::vector<std::string> warnings = model.fitWarnings(0);
    EXPECT_TRUE(std::any_of(warnings.begin(), warnings.end(), [](const std::string& text) {
        return text.find("% of the variance is taken for noise") != std::string::npos;
    }));
}

TEST(TransformedOutput, HasTheNotesOfTheModelInside)
{
    Cases cases = casesOf(overDecades, 0.1);
    cases.inputs[0][1] = cases.inputs[0][0];
    cases.inputs[1][1] = cases.inputs[1][0];

    const TransformedOutput model = modelOf(cases, TransformSetting::Logarithm);

    EXPECT_EQ(model.fitNotes(0), model.inner().fitNotes(model.innerOffset(0)));
    EXPECT_EQ(model.fitNotes(0).size(), 1u);
}

TEST(TransformedOutput, IsTheOneThatIsChosenOrThatOfTheCasesThatTheOthersPredict)
{
    const std::pair<TransformSetting, OutputTransform> settings[] = {
        {TransformSetting::None, OutputTransform::None},
        {TransformSetting::SquareRoot, OutputTransform::SquareRoot},
        {TransformSetting::Logarithm, OutputTransform::Logarithm}};
    for (const auto& [setting, transform] : settings) {
        EXPECT_EQ(modelOf(casesOf(wave), setting).transform(0), transform);
        EXPECT_EQ(modelOf(casesOf(overDecades), setting).transform(0), transform);
    }

    // One case at a place of its own, which no linear trend of the others reaches.
    Cases cases = casesOf(overDecades);
    cases.inputs.push_back(Column(40, 0.0));
    cases.inputs.back()[5] = 1.0;

    EXPECT_EQ(modelOf(cases).transform(0), OutputTransform::Logarithm);
}

TEST(TransformedOutput, PredictsOutputsOfDifferentTransformsTogether)
{
    Cases cases = casesOf(overDecades);
    cases.outputs.push_back(casesOf(wave).outputs[0]);
    cases.outputs.push_back(cases.outputs[0]);
    const TransformedOutput model = modelOf(cases);
    std::vector<Column> points = somePoints();
    Column first(200), second(200), third(200);
    std::vector<double*> outputs = {first.data(), second.data(), third.data()};

    model.interpolateDependentValues(pointersTo(points), {0, 1, 2}, outputs, 200);

    EXPECT_EQ(first, predict(modelOf(casesOf(overDecades)), points));
    EXPECT_EQ(second, predict(*plain(casesOf(wave)), points));
    EXPECT_EQ(third, first);
}

TEST(TransformedOutput, TransformsTheEndsOfIntervalsBack)
{
    const TransformedOutput model = modelOf(casesOf(overDecades, 0.1));
    std::vector<Column> points = somePoints();
    const std::vector<double*> inputs = pointersTo(points);

    const PredictionIntervals intervals = model.predictionIntervals(inputs, 0, 0.95, 200);

    const PredictionIntervals ofLogarithm =
        model.inner().predictionIntervals(inputs, model.innerOffset(0), 0.95, 200);
    const Column median = predict(model, points);
    for (std::size_t i = 0; i < 200; ++i) {
        EXPECT_EQ(intervals.lower[i], std::exp(ofLogarithm.lower[i]));
        EXPECT_EQ(intervals.upper[i], std::exp(ofLogarithm.upper[i]));
        EXPECT_LT(intervals.lower[i], median[i]);
        EXPECT_LT(median[i], intervals.upper[i]);
    }
}

TEST(TransformedOutput, HasTheQuantilesAndTheCalibrationOfTheTransform)
{
    const TransformedOutput model =
        modelOf(casesOf(overDecades, 0.1), TransformSetting::Automatic, responseSurface);
    const int inside = model.innerOffset(0);

    EXPECT_EQ(model.intervalQuantile(0, 0.8), model.inner().intervalQuantile(inside, 0.8));
    EXPECT_EQ(model.confidenceQuantile(0, 0.8), model.inner().confidenceQuantile(inside, 0.8));
    EXPECT_NE(model.confidenceQuantile(0, 0.8), model.intervalQuantile(0, 0.8));
    EXPECT_EQ(model.calibrationReport(0).basis, CalibrationReport::Basis::LeaveOneOut);
    EXPECT_EQ(model.calibrationReport(0).coverage[1].share,
              model.inner().calibrationReport(inside).coverage[1].share);
}

TEST(TransformedOutput, HasStandardErrorsInTheOutputsUnit)
{
    const TransformedOutput model = modelOf(casesOf(overDecades, 0.1));
    std::vector<Column> points = somePoints();
    const std::vector<double*> inputs = pointersTo(points);

    const Column errors = model.standardErrors(inputs, 0, Kind::Observation, 200);

    const Column ofLogarithm =
        model.inner().standardErrors(inputs, model.innerOffset(0), Kind::Observation, 200);
    const Column median = predict(model, points);
    for (std::size_t i = 0; i < 200; ++i) {
        EXPECT_NEAR(errors[i] / (median[i] * std::sinh(ofLogarithm[i])), 1.0, 1e-9);
    }
}

TEST(TransformedOutput, MeasuresItselfInTheOutputsUnits)
{
    Cases cases = casesOf(overDecades, 0.1);
    const Column& output = cases.outputs[0];
    const TransformedOutput model = modelOf(cases);

    const std::vector<LeaveOneOutPrediction> leftOut = model.leaveOneOutPredictions(0);
    const Column atCases = predict(model, cases.inputs);
    const double mean = std::accumulate(output.begin(), output.end(), 0.0) / 40.0;
    double squares = 0.0, press = 0.0, total = 0.0;
    ASSERT_EQ(leftOut.size(), 40u);
    for (std::size_t k = 0; k < 40; ++k) {
        EXPECT_EQ(leftOut[k].output, output[k]);
        EXPECT_GT(leftOut[k].standardError, 0.0);
        squares += std::pow(output[k] - atCases[k], 2);
        press += std::pow(output[k] - leftOut[k].predicted, 2);
        total += std::pow(output[k] - mean, 2);
    }
    const FitMetrics metrics = model.fitMetrics(0);
    EXPECT_EQ(metrics.cases, 40u);
    EXPECT_NEAR(metrics.rmse, std::sqrt(squares / 40.0), 1e-9 * metrics.rmse);
    EXPECT_NEAR(metrics.r2, 1.0 - squares / total, 1e-9);
    EXPECT_NEAR(metrics.q2, 1.0 - press / total, 1e-9);
    EXPECT_NEAR(metrics.looRmse, std::sqrt(press / 40.0), 1e-9 * metrics.looRmse);
    EXPECT_NEAR(metrics.press, press, 1e-9 * press);
}

TEST(TransformedOutput, MeasuresAResponseSurfaceWithItsDegreesOfFreedom)
{
    Cases cases = casesOf(overDecades, 0.1);
    const Column& output = cases.outputs[0];
    const TransformedOutput model = modelOf(cases, TransformSetting::Logarithm, responseSurface);

    const Column atCases = predict(model, cases.inputs);
    double squares = 0.0;
    for (std::size_t k = 0; k < 40; ++k) {
        squares += std::pow(output[k] - atCases[k], 2);
    }
    const FitMetrics metrics = model.fitMetrics(0);
    EXPECT_EQ(metrics.terms, 6u);
    EXPECT_NEAR(metrics.rmse, std::sqrt(squares / 34.0), 1e-9 * metrics.rmse);
    EXPECT_NEAR(1.0 - metrics.adjustedR2, (1.0 - metrics.r2) * 39.0 / 34.0, 1e-12);
    EXPECT_TRUE(std::isnan(metrics.q2));
}

TEST(TransformedOutput, ChoosesNoTransformForMoreThanFiveThousandCases)
{
    Random random(3);
    Cases cases{{random.column(5001, 0.0, 1.0)}, {{}}};
    for (const double x : cases.inputs[0]) {
        cases.outputs[0].push_back(std::exp(4.0 * x + 0.1 * random.next()));
    }

    EXPECT_EQ(modelOf(cases, TransformSetting::Automatic, responseSurface).transform(0),
              OutputTransform::None);
    cases.inputs[0].pop_back();
    cases.outputs[0].pop_back();
    EXPECT_EQ(modelOf(cases, TransformSetting::Automatic, responseSurface).transform(0),
              OutputTransform::Logarithm);
}

TEST(TransformedOutput, WritesTheEquationOfTheOutput)
{
    Cases cases{{{0.0, 1.0, 2.0, 3.0}}, {{1.0, 4.0, 9.0, 16.0}}};

    const TransformedOutput model = modelOf(
        cases, TransformSetting::SquareRoot,
        [](const auto& inputs, const auto& outputs, std::size_t rows, const CaseDesign&) {
            return std::make_unique<SurrogateResponseSurfaceModel>(inputs, outputs, rows, 1);
        });

    EXPECT_EQ(model.surfaceCoefficientInformation(0), "max(0, 1 + 1 * V1)^2\n");
}

TEST(TransformedOutput, DescribesAModelThatPredictsTheSameBits)
{
    const TransformedOutput model = modelOf(casesOf(overDecades));
    DescribedSurrogateModel::Output output;
    output.predictor = model.predictorDescription(0);

    EXPECT_EQ(output.predictor.transform, OutputTransform::Logarithm);
    EXPECT_EQ(predict(DescribedSurrogateModel({output}), somePoints()),
              predict(model, somePoints()));
}

TEST(TransformedOutput, DoesNotDependOnTheOrderOfTheCases)
{
    Cases cases = casesOf(overDecades, 0.05);
    const Column before = predict(modelOf(cases), somePoints());

    for (Column* const column : {&cases.inputs[0], &cases.inputs[1], &cases.outputs[0]}) {
        std::reverse(column->begin(), column->end());
    }

    EXPECT_EQ(predict(modelOf(cases), somePoints()), before);
}

TEST(TransformedOutput, IsNotHarmedByColumnsThatNobodyAskedForAndRefusesThoseOfTheModelInside)
{
    Cases cases = casesOf(overDecades);
    cases.outputs.push_back(Column(40, notANumber));
    const TransformedOutput model = modelOf(cases);

    EXPECT_EQ(model.transform(0), OutputTransform::Logarithm);
    EXPECT_NE(errorOf([&] { model.fitMetrics(1); }), "");

    const TransformedOutput ofOne = modelOf(casesOf(overDecades));

    EXPECT_NE(errorOf([&] { predict(ofOne, somePoints(), 1); }), "");
    EXPECT_NE(errorOf([&] { ofOne.fitMetrics(1); }), "");
}

TEST(TransformedOutput, ReportsProgressThatNeverDecreasesAndCanBeCancelled)
{
    TransformedOutput model = modelOf(casesOf(overDecades, 0.05));
    double last = 0.0;
    bool goesOn = false;
    const FitProgress progress([&](double fraction, const std::string&) {
        EXPECT_GE(fraction, last);
        last = fraction;
        return goesOn;
    });

    EXPECT_NE(errorOf([&] { model.activateDependentVariables({0}); }), "");
    goesOn = true;
    last = 0.0;
    model.activateDependentVariables({0});

    EXPECT_EQ(last, 1.0);
    EXPECT_EQ(model.transform(0), OutputTransform::Logarithm);
}
