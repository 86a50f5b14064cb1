#include <mirel_fitting/KrigingSurrogateModel.h>

#include <mirel_fitting/FitProgress.h>

#include "EquationEvaluator.h"
#include "KrigingTestSupport.h"

#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>

namespace {

using Error = SurrogateModelInterface::Error;

const double notANumber = std::numeric_limits<double>::quiet_NaN();

double wave(const std::vector<double>& x)
{
    return std::sin(6.0 * x[0]) + (x.size() > 1 ? x[1] * x[1] : 0.0);
}

Columns someInputs(std::size_t cases = 30)
{
    return latinHypercube(cases, 2, 21);
}

Columns someOutputs(std::size_t cases = 30)
{
    return {valuesOf(wave, someInputs(cases))};
}

/** What a fit is refused with; empty if it is not refused. */
template <class Action>
std::string refusal(const Action& action)
{
    try {
        action();
    } catch (const Error& error) {
        return error.what();
    }
    return {};
}

} // namespace

TEST(KrigingSurrogateModel, InterpolatesSmoothData)
{
    const KrigingSurrogateModel model = KrigingArguments().model(someInputs(), someOutputs());

    const std::vector<double> values = predictions(model, someInputs());

    for (std::size_t i = 0; i < values.size(); ++i) {
        // The nugget of 1e-12 times the weights, which are some ten thousand times the outputs.
        EXPECT_NEAR(values[i], someOutputs()[0][i], 1e-7);
    }
}

TEST(KrigingSurrogateModel, InterpolatesFewCasesOfACurve)
{
    const std::pair<const char*, double (*)(double)> curves[] = {
        {"square", [](double x) { return 3.0 * x - x * x; }},
        {"cube", [](double x) { return x * x * x; }},
        {"decay", [](double x) { return std::exp(-x); }},
        {"pole", [](double x) { return 1.0 / (x + 1.0); }},
        {"root", [](double x) { return std::sqrt(x); }},
    };
    for (const auto& [name, curve] : curves) {
        for (std::size_t cases = 3; cases <= 9; ++cases) {
            SCOPED_TRACE(std::string(name) + " of " + std::to_string(cases) + " cases");
            Columns inputs(1);
            Columns outputs(1);
            for (std::size_t i = 0; i < cases; ++i) {
                inputs[0].push_back(static_cast<double>(i));
                outputs[0].push_back(curve(inputs[0].back()));
            }

            const KrigingSurrogateModel model = KrigingArguments().model(inputs, outputs);

            const std::vector<double> values = predictions(model, inputs);
            for (std::size_t i = 0; i < cases; ++i) {
                // The nugget of 1e-12 times weights of some ten thousand ranges of the output.
                EXPECT_NEAR(values[i], outputs[0][i], 1e-6);
            }
        }
    }
}

TEST(KrigingSurrogateModel, EqualsADirectComputationWithItsParameters)
{
    Columns inputs = someInputs();
    for (double& x : inputs[0]) {
        x = 100.0 + 50.0 * x;
    }
    const std::vector<double> output = someOutputs()[0];
    KrigingArguments arguments;
    arguments.correlationLengths = {40.0, 2.0};
    arguments.nugget = 1e-4;
    arguments.nuggetMode = KrigingOptions::NuggetMode::Fixed;
    const KrigingSurrogateModel model = arguments.model(inputs, {output});
    DirectKriging::Matrix points;
    DirectKriging::Matrix trend;
    for (std::size_t i = 0; i < 30; ++i) {
        points.push_back({inputs[0][i], inputs[1][i]});
        trend.push_back({1.0L, inputs[0][i], inputs[1][i]});
    }
    const DirectKriging direct(points, trend, {output.begin(), output.end()},
                               arguments.correlationLengths, arguments.nugget);

    const std::vector<double> found = predictions(model, {{101.0, 133.0}, {0.9, 0.2}});

    EXPECT_NEAR(found[0], direct.predict({101.0L, 0.9L}, {1.0L, 101.0L, 0.9L}), 1e-10);
    EXPECT_NEAR(found[1], direct.predict({133.0L, 0.2L}, {1.0L, 133.0L, 0.2L}), 1e-10);
    const KrigingReport report = model.krigingReport(0);
    EXPECT_NEAR(report.logLikelihood, direct.logLikelihood, 1e-9);
    EXPECT_NEAR(report.processVariance, direct.variance, 1e-10);
    EXPECT_EQ(report.nugget, 1e-4);
    EXPECT_NEAR(report.correlationLengths[0], 40.0, 1e-12);
    EXPECT_NEAR(report.correlationLengths[1], 2.0, 1e-14);
    ASSERT_EQ(report.trendTerms, (std::vector<std::string>{"1", "V1", "V2"}));
    for (std::size_t t = 0; t < 3; ++t) {
        EXPECT_NEAR(report.trendCoefficients[t], direct.coefficients[t], 1e-9);
    }
}

TEST(KrigingSurrogateModel, TakesItsOptionsByNameOrOneByOne)
{
    Columns inputs = someInputs();
    Columns outputs = someOutputs();
    KrigingOptions options;
    options.tolerance = 1e-3;
    options.correlationLengths = {0.7, 0.4};
    options.trendOrder = 2;
    options.initialCorrelationLength = 0.3;
    options.nugget = 1e-5;
    options.nuggetMode = KrigingOptions::NuggetMode::Fixed;

    const KrigingSurrogateModel byName(pointersTo(inputs), pointersTo(outputs), 30, options);
    const KrigingSurrogateModel oneByOne(pointersTo(inputs), pointersTo(outputs), 30, 1e-3,
                                         {0.7, 0.4}, 2, 0.3, 1e-5, 1);

    EXPECT_EQ(byName.qualityMetricInformation(0), oneByOne.qualityMetricInformation(0));
    EXPECT_EQ(byName.krigingReport(0).nugget, 1e-5);
    const KrigingSurrogateModel byDefault(pointersTo(inputs), pointersTo(outputs), 30,
                                          KrigingOptions());
    const KrigingSurrogateModel estimated(pointersTo(inputs), pointersTo(outputs), 30, 1e-4, {}, 1,
                                          0.5, 0.0, 0);
    EXPECT_EQ(byDefault.qualityMetricInformation(0), estimated.qualityMetricInformation(0));
}

TEST(KrigingSurrogateModel, RefusesArgumentsOutOfTheirRange)
{
    struct
    {
        void (*change)(KrigingArguments& arguments);
        const char* message;
    } const rows[] = {
        {[](KrigingArguments& arguments) { arguments.tolerance = 0.0; },
         "The tolerance has to be a positive number, not 0."},
        {[](KrigingArguments& arguments) {
             arguments.correlationLengths = {1.0, 2.0, 3.0};
         },
         "There have to be as many correlation lengths as inputs, 2, or none, not 3."},
        {[](KrigingArguments& arguments) {
             arguments.correlationLengths = {1.0, -2.0};
         },
         "The correlation length of V2 has to be positive, not -2."},
        {[](KrigingArguments& arguments) { arguments.trendOrder = 3; },
         "The order of the trend has to be 0, 1 or 2, not 3."},
        {[](KrigingArguments& arguments) { arguments.initialCorrelationLength = notANumber; },
         "The initial correlation length has to be a positive number, not nan."},
        {[](KrigingArguments& arguments) { arguments.nugget = -1e-3; },
         "The nugget has to be a number that is not negative, not -0.001."},
        {[](KrigingArguments& arguments) {
             arguments.nuggetMode = static_cast<KrigingOptions::NuggetMode>(2);
         },
         "The nugget mode has to be 0 (estimated) or 1 (fixed), not 2."},
    };
    for (const auto& row : rows) {
        KrigingArguments arguments;
        row.change(arguments);
        EXPECT_EQ(refusal([&] { arguments.model(someInputs(), someOutputs()); }), row.message);
    }
    Columns outputs = someOutputs();
    EXPECT_EQ(
        refusal([&] { KrigingSurrogateModel({}, pointersTo(outputs), -3, KrigingOptions()); }),
        "A model cannot be fitted to -3 cases.");
    std::vector<double> varying = {0.0, 1.0};
    std::vector<double> constant(2);
    std::vector<double*> manyInputs(2001, varying.data());
    EXPECT_EQ(refusal([&] { KrigingSurrogateModel(manyInputs, {}, 2, KrigingOptions()); }),
              "A Kriging model takes at most 2000 inputs that vary, not 2001, unless their "
              "correlation lengths are given.");
    manyInputs[5] = constant.data();
    EXPECT_NO_THROW(KrigingSurrogateModel(manyInputs, {}, 2, KrigingOptions()));
}

TEST(KrigingSurrogateModel, CountsDistinctCasesOnly)
{
    Columns inputs(1);
    Columns outputs(1);
    for (int i = 0; i < 12000; ++i) {
        inputs[0].push_back(i % 10);
        outputs[0].push_back(std::sin(i % 10));
    }

    const KrigingSurrogateModel model = KrigingArguments().model(inputs, outputs);

    EXPECT_EQ(model.fitMetrics(0).cases, 10u);
}

TEST(KrigingSurrogateModel, FitsEachOutputOnceAndOnlyWhenItIsWanted)
{
    int fits = 0;
    FitProgress progress([&](double fraction, const std::string&) {
        fits += fraction == 1.0 ? 1 : 0;
        return true;
    });
    Columns outputs = someOutputs();
    outputs.push_back(someInputs()[0]);
    KrigingSurrogateModel model = KrigingArguments().model(someInputs(), outputs);
    EXPECT_EQ(fits, 0);

    model.activateDependentVariables({0});
    EXPECT_EQ(fits, 1);

    model.activateDependentVariables({0});
    predictions(model, {{0.5}, {0.5}});
    model.qualityMetricInformation(0);
    EXPECT_EQ(fits, 1);

    model.krigingReport(1);
    EXPECT_EQ(fits, 2);
}

TEST(KrigingSurrogateModel, FitsACancelledOutputWhenItIsWantedAgain)
{
    Columns outputs = someOutputs();
    outputs.push_back(outputs[0]);
    KrigingSurrogateModel model = KrigingArguments().model(someInputs(), outputs);
    model.activateDependentVariables({0});
    const std::vector<double> before = predictions(model, {{0.3}, {0.4}}, 0);
    {
        FitProgress progress([](double fraction, const std::string&) { return fraction < 0.3; });
        EXPECT_EQ(refusal([&] { model.activateDependentVariables({1}); }),
                  "The fit was cancelled.");
        EXPECT_EQ(predictions(model, {{0.3}, {0.4}}, 0), before) << "the fitted one answers";
    }

    EXPECT_EQ(predictions(model, {{0.3}, {0.4}}, 1), before);
}

TEST(KrigingSurrogateModel, PreparesItsCasesInTheFirstFitWhichCanBeCancelledThere)
{
    std::vector<std::string> messages;
    {
        FitProgress progress([&](double, const std::string& message) {
            messages.push_back(message);
            return false;
        });
        KrigingSurrogateModel model = KrigingArguments().model(someInputs(), someOutputs());
        EXPECT_TRUE(messages.empty());

        EXPECT_EQ(refusal([&] { model.activateDependentVariables({0}); }),
                  "The fit was cancelled.");
        EXPECT_EQ(refusal([&] { model.activateDependentVariables({0}); }),
                  "The fit was cancelled.");
    }
    EXPECT_EQ(messages, std::vector<std::string>(2, "Preparing the cases"));
}

TEST(KrigingSurrogateModel, FitsAnOutputWhoseReportThrewWhenItIsWantedAgain)
{
    KrigingSurrogateModel model = KrigingArguments().model(someInputs(), someOutputs());
    {
        FitProgress progress([](double, const std::string&) -> bool {
            throw std::runtime_error("the window is gone");
        });
        EXPECT_THROW(model.activateDependentVariables({0}), std::runtime_error);
    }

    EXPECT_NO_THROW(model.activateDependentVariables({0}));
}

TEST(KrigingSurrogateModel, GivesTheSameBitsWithAnotherNumberOfThreads)
{
    const Columns points = latinHypercube(50, 2, 99);
    setThreadCount(1);
    const std::vector<double> withOne =
        predictions(KrigingArguments().model(someInputs(520), someOutputs(520)), points);
    setThreadCount(2);
    const std::vector<double> withTwo =
        predictions(KrigingArguments().model(someInputs(520), someOutputs(520)), points);
    setThreadCount(0);

    EXPECT_EQ(withOne, withTwo);
}

TEST(KrigingSurrogateModel, NeverEstimatesANuggetBelowItsBound)
{
    KrigingArguments arguments;
    arguments.nugget = 1e-5;

    EXPECT_EQ(arguments.model(someInputs(), someOutputs()).krigingReport(0).nugget, 1e-5);
}

TEST(KrigingSurrogateModel, HasQualityTextsButNoEquation)
{
    KrigingArguments arguments;
    arguments.correlationLengths = {0.5, 1.0}; // with these the trend is as asked for
    const KrigingSurrogateModel model = arguments.model(someInputs(), someOutputs());

    EXPECT_FALSE(model.surfaceCoefficientInformationAvailable());
    EXPECT_TRUE(model.qualityMetricInformationAvailable());
    const std::string text = model.surfaceCoefficientInformation(0);
    EXPECT_NE(text.find(" * V2 + the correlated part of a Kriging model, which has no equation\n"),
              std::string::npos);
    EXPECT_EQ(text.back(), '\n');
}

TEST(KrigingSurrogateModel, WritesAnEquationWhereNothingIsCorrelated)
{
    const KrigingSurrogateModel model = KrigingArguments().model({{7.0, 7.0}}, {{-3.0, -6.0}});

    EXPECT_EQ(model.surfaceCoefficientInformation(0), "-4.5\n");
}

TEST(KrigingSurrogateModel, EquationStaysInCentredInputsWhereMultiplyingOutLosesDigits)
{
    Columns inputs(2);
    std::vector<double> output;
    for (int i = 0; i < 12; ++i) {
        inputs[0].push_back(1e9 + 1e-3 * i);
        inputs[1].push_back(i % 4);
        output.push_back(1.0 + 3.0 * (inputs[0].back() - 1e9) - 0.01 * inputs[1].back());
    }
    const KrigingSurrogateModel model = KrigingArguments().model(inputs, {output});
    const std::string text = model.surfaceCoefficientInformation(0);

    EXPECT_NE(text.find(" * (V1 - 1000000000.0"), std::string::npos) << text;
    for (std::size_t i = 0; i < output.size(); ++i) {
        fittingtest::EquationEvaluator equation(text, {inputs[0][i], inputs[1][i]});
        EXPECT_NEAR(equation.value(), output[i], 1e-9 * 0.06);
    }
    EXPECT_NE(model.qualityMetricInformation(0).find("Trend: linear, " + text), std::string::npos);
}

TEST(KrigingSurrogateModel, WritesItsQualityLineByLine)
{
    // Exact figures: no input varies, so that the model is the mean 4.
    const std::string text =
        KrigingArguments().model({{7.0, 7.0}}, {{3.0, 5.0}}).qualityMetricInformation(0);

    EXPECT_EQ(text,
              "Cases: 2\n"
              "RMSE: 1\n"
              "Leave-one-out RMSE: 2\n"
              "Q2: -3\n"
              "Criterion: none\n"
              "Log-likelihood: -1.7655121\n" // -(2 ln(2 pi) + 2) / 2
              "Process variance: 2\n"
              "Nugget (relative to the process variance): 0\n"
              "Trend: constant, 4\n"
              "Correlation length of V1: inf\n"
              "Warning: V1 is constant over the cases and was ignored.\n"
              "Warning: No input varies over the cases: the prediction is the mean output.\n");
}

TEST(KrigingSurrogateModel, PredictsGridsLikeTheirPointsOneByOne)
{
    const Columns inputs = latinHypercube(40, 2, 3);
    const auto sine = [](const std::vector<double>& x) { return std::sin(5.0 * x[0]) + x[1]; };
    const auto product = [](const std::vector<double>& x) { return 3.0 + x[0] * x[1] * x[1]; };
    const KrigingSurrogateModel model =
        KrigingArguments().model(inputs, {valuesOf(sine, inputs), valuesOf(product, inputs)});
    Columns grid(2);
    for (std::size_t i = 0; i < 30 * 20 + 7; ++i) { // the last value of the first input lacks rows
        grid[0].push_back(0.03 * static_cast<double>(i / 20));
        grid[1].push_back(0.05 * static_cast<double>(i % 20));
    }
    for (const bool isDamaged : {false, true}) {
        if (isDamaged) {
            grid[1][123] = std::numeric_limits<double>::quiet_NaN();
        }
        Columns values(2, std::vector<double>(grid[0].size()));
        std::vector<double*> outputs = pointersTo(values);

        model.interpolateDependentValues(pointersTo(grid), {0, 1}, outputs, grid[0].size());

        for (std::size_t i = 0; i < grid[0].size(); ++i) {
            for (const int offset : {0, 1}) {
                const double alone = predictions(model, {{grid[0][i]}, {grid[1][i]}}, offset)[0];
                const double found = values[static_cast<std::size_t>(offset)][i];
                if (isDamaged && i == 123) {
                    EXPECT_TRUE(std::isnan(found));
                } else {
                    ASSERT_NEAR(found, alone, 1e-8) << i;
                }
            }
        }
    }
}
