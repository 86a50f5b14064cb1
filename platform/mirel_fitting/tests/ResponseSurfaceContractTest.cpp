#include <mirel_fitting/SurrogateResponseSurfaceModel.h>

#include <mirel_fitting/FitProgress.h>
#include <mirel_fitting/ThreadCount.h>

#include "ResponseSurfaceTestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

using namespace fittingtest;

// What a response surface promises as a model: ownership, arguments, evaluation, progress.

TEST(ResponseSurfaceContract, OwnsWhatItNeeds)
{
    auto cases = std::make_unique<Cases>(twoInputs(40, 1.0));
    const std::vector<Column> points = cases->inputs;
    const Model reference = fit(*cases);
    Model model(cases->inputPointers(), cases->outputPointers(), cases->count());
    for (std::vector<Column>* columns : {&cases->inputs, &cases->outputs}) {
        for (Column& column : *columns) {
            std::fill(column.begin(), column.end(), notANumber);
        }
    }
    cases.reset();

    model.activateDependentVariables({0});
    EXPECT_EQ(predict(model, points), predict(reference, points));
    EXPECT_EQ(model.surfaceCoefficientInformation(0), reference.surfaceCoefficientInformation(0));
    EXPECT_EQ(model.qualityMetricInformation(0), reference.qualityMetricInformation(0));
    EXPECT_EQ(model.responseSurfaceStatistics(0).coefficients[3].standardError,
              reference.responseSurfaceStatistics(0).coefficients[3].standardError);
}

TEST(ResponseSurfaceContract, IgnoresOutputsThatAreNotFiniteUntilTheyAreWanted)
{
    Cases cases = twoInputs(40, 1.0);
    const Column expected = predict(fit(cases), cases.inputs);
    const Column good = cases.outputs[0];
    cases.outputs = {good, good, good};
    cases.outputs[1][7] = infinity;
    cases.outputs[1][9] = notANumber;
    cases.outputs[0].assign(good.size(), notANumber);
    Model model = fit(cases);

    EXPECT_NO_THROW(model.activateDependentVariables({2}));
    EXPECT_LT(largestDifference(predict(model, cases.inputs, 2), expected), 1e-13);
}

TEST(ResponseSurfaceContract, NamesAnOutputThatIsNotFiniteWheneverItIsWanted)
{
    Cases cases = twoInputs(40, 1.0);
    cases.outputs.push_back(cases.outputs[0]);
    cases.outputs[1][7] = notANumber;
    Model model = fit(cases);
    const std::string message =
        "The output at offset 1 holds a value that is not finite in case 8.";

    EXPECT_EQ(errorOf([&] { model.activateDependentVariables({0, 1}); }), message);
    EXPECT_EQ(errorOf([&] { predict(model, cases.inputs, 1); }), message);
    EXPECT_EQ(errorOf([&] { model.surfaceCoefficientInformation(1); }), message);
    EXPECT_EQ(errorOf([&] { model.qualityMetricInformation(1); }), message);
    EXPECT_EQ(errorOf([&] { model.fitMetrics(1); }), message);
    EXPECT_EQ(errorOf([&] { model.fitWarnings(1); }), message);
    EXPECT_EQ(errorOf([&] { model.responseSurfaceStatistics(1); }), message);
}

TEST(ResponseSurfaceContract, ChecksTheColumnsOfAFit)
{
    Cases cases = twoInputs(9, 0.0);
    EXPECT_EQ(errorOf([&] { Model(cases.inputPointers(), {nullptr}, 9); }),
              "The output at offset 0 has no column of values.");
    // Without an output, too.
    EXPECT_EQ(errorOf([&] { Model({nullptr}, {}, 9); }), "The input V1 has no column of values.");
}

TEST(ResponseSurfaceContract, ChecksTheArraysOfAnEvaluation)
{
    const Model model = fit(twoInputs(9, 0.0));
    EXPECT_EQ(errorOf([&] { predict(model, {{1.0}}); }),
              "The model has 2 inputs, but values are given for 1.");
    EXPECT_EQ(errorOf([&] { model.surfaceCoefficientInformation(-1); }),
              "There is no output at offset -1: the model has 1 output, counted from 0.");
}

TEST(ResponseSurfaceContract, DoesNothingForNoOutputs)
{
    Cases cases = twoInputs(9, 0.0);
    Model model = fit(cases);
    std::vector<double*> none;

    EXPECT_NO_THROW(model.activateDependentVariables({}));
    EXPECT_NO_THROW(model.interpolateDependentValues(cases.inputPointers(), {}, none, 9));
    EXPECT_NO_THROW(Model(cases.inputPointers(), {}, 9).activateDependentVariables({}));
}

TEST(ResponseSurfaceContract, AcceptsNullArraysForNoPoints)
{
    const Model model = fit(twoInputs(9, 0.0));
    std::vector<double*> outputs{nullptr};
    EXPECT_NO_THROW(model.interpolateDependentValues({nullptr, nullptr}, {0}, outputs, 0));
}

TEST(ResponseSurfaceContract, WritesOutputsInAscendingOrderOfTheirOffsets)
{
    Cases cases = twoInputs(40, 0.0);
    cases.outputs = {cases.inputs[0], cases.inputs[1], cases.inputs[0]};
    const Model model = fit(cases);
    Column first(40, notANumber);
    Column second(40, notANumber);
    std::vector<double*> outputs{first.data(), second.data()};

    model.interpolateDependentValues(cases.inputPointers(), {2, 1}, outputs, 40);

    EXPECT_LT(largestDifference(first, cases.inputs[1]), 1e-13);
    EXPECT_LT(largestDifference(second, cases.inputs[0]), 1e-13);
}

TEST(ResponseSurfaceContract, GivesNanAtPointsThatAreNotFiniteOnly)
{
    Cases cases = twoInputs(40, 1.0);
    std::fill(cases.inputs[1].begin(), cases.inputs[1].end(), 2.0);
    const Model model = fit(cases);
    // More points than are evaluated together. V2 has no influence, and yet its NaN counts.
    std::vector<Column> points{Column(600, 1.5), Column(600, 2.0)};
    const double usual = predict(model, points)[0];
    points[0][3] = notANumber;
    points[1][300] = infinity;
    points[0][599] = -infinity;

    const Column values = predict(model, points);

    for (std::size_t k = 0; k < values.size(); ++k) {
        if (k == 3 || k == 300 || k == 599) {
            EXPECT_TRUE(std::isnan(values[k])) << k;
        } else {
            EXPECT_EQ(values[k], usual) << k;
        }
    }
}

TEST(ResponseSurfaceContract, EvaluatesAPointTheSameAloneAndAmongOthers)
{
    const Cases cases = twoInputs(700, 1.0);
    const Model model = fit(cases);
    const Column together = predict(model, cases.inputs);
    for (std::size_t row = 0; row < 700; row += 37) {
        EXPECT_EQ(predict(model, {{cases.inputs[0][row]}, {cases.inputs[1][row]}})[0],
                  together[row]);
    }
}

TEST(ResponseSurfaceContract, ReportsHowFarTheFitIs)
{
    std::vector<double> fractions;
    const FitProgress progress([&](double fraction, const std::string&) {
        fractions.push_back(fraction);
        return true;
    });

    fit(twoInputs(100000, 1.0));

    ASSERT_GE(fractions.size(), 2u);
    EXPECT_TRUE(std::is_sorted(fractions.begin(), fractions.end()));
    EXPECT_GE(fractions.front(), 0.0);
    EXPECT_LE(fractions.back(), 1.0);
}

TEST(ResponseSurfaceContract, ReportsNoSmallerFractionWhenRotationsFollowNormalEquations)
{
    // Inputs that differ by little are too much for normal equations.
    Cases cases = twoInputs(20000, 1.0);
    for (std::size_t row = 0; row < 20000; ++row) {
        cases.inputs[1][row] = cases.inputs[0][row] + 1e-4 * cases.inputs[1][row];
    }
    std::vector<double> fractions;
    const FitProgress progress([&](double fraction, const std::string&) {
        fractions.push_back(fraction);
        return true;
    });

    fit(cases);

    EXPECT_TRUE(std::is_sorted(fractions.begin(), fractions.end()));
}

TEST(ResponseSurfaceContract, EndsWithAnErrorWhenItIsCancelled)
{
    const FitProgress progress([](double, const std::string&) { return false; });
    EXPECT_EQ(errorOf([] { fit(twoInputs(9, 0.0)); }), "The fit was cancelled.");
}
