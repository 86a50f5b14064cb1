#include <mirel_fitting/SurrogateResponseSurfaceModel.h>

#include <mirel_fitting/FitProgress.h>
#include <mirel_fitting/ThreadCount.h>

#include "ResponseSurfaceTestSupport.h"

#include <gtest/gtest.h>

using namespace fittingtest;

// What is fitted

TEST(SurrogateResponseSurfaceModel, ReproducesAQuadraticFunction)
{
    const Model model = fit(twoInputs(40, 0.0));
    EXPECT_TRUE(model.surfaceCoefficientInformationAvailable());
    EXPECT_TRUE(model.qualityMetricInformationAvailable());

    const Column values = predict(model, {{0.5, 3.0, 10.0}, {1.0, -0.5, -7.0}});
    EXPECT_NEAR(values[0], surface(0.5, 1.0), 1e-12);
    EXPECT_NEAR(values[1], surface(3.0, -0.5), 1e-12);
    EXPECT_NEAR(values[2], surface(10.0, -7.0), 1e-10);

    const std::vector<CoefficientStatistics> table =
        model.responseSurfaceStatistics(0).coefficients;
    const std::vector<std::pair<std::string, double>> expected = {
        {"1", 3.0}, {"V1", -2.0}, {"V2", 1.0}, {"V1^2", 0.5}, {"V1 V2", -1.0}, {"V2^2", 2.0}};
    ASSERT_EQ(table.size(), expected.size());
    for (std::size_t term = 0; term < table.size(); ++term) {
        EXPECT_EQ(table[term].term, expected[term].first);
        EXPECT_NEAR(table[term].estimate, expected[term].second, 1e-12);
        EXPECT_TRUE(table[term].isKept);
    }
}

TEST(SurrogateResponseSurfaceModel, GoesNoHigherThanTheOrderWanted)
{
    EXPECT_EQ(termsOf(fit(twoInputs(40, 1.0), 1), true),
              (std::vector<std::string>{"1", "V1", "V2"}));
    EXPECT_EQ(termsOf(fit(twoInputs(40, 1.0), 0), true), (std::vector<std::string>{"1"}));
    for (const std::string& warning : fit(twoInputs(40, 1.0), 1).fitWarnings(0)) {
        EXPECT_EQ(warning.find("order"), std::string::npos) << warning;
    }
}

TEST(SurrogateResponseSurfaceModel, RefusesAnotherOrder)
{
    for (const int order : {3, -1}) {
        EXPECT_EQ(errorOf([order] { fit(twoInputs(9, 0.0), order); }),
                  "The highest order of a response surface is 0, 1 or 2, not " +
                      std::to_string(order) + '.');
    }
}

TEST(SurrogateResponseSurfaceModel, FitsEveryOutputByItself)
{
    Cases cases = twoInputs(40, 0.3);
    cases.outputs.push_back(cases.inputs[0]);
    const Model both = fit(cases);
    cases.outputs.pop_back();

    EXPECT_LT(largestDifference(predict(both, cases.inputs, 0), predict(fit(cases), cases.inputs)),
              1e-13);
    EXPECT_LT(largestDifference(predict(both, cases.inputs, 1), cases.inputs[0]), 1e-13);
}

TEST(SurrogateResponseSurfaceModel, TakesCasesInBlocksAndLosesNone)
{
    // One less and one more than a block, several blocks, and a last block of one case.
    for (const std::size_t count : {511u, 512u, 513u, 20481u}) {
        Cases cases = twoInputs(count, 0.0);
        const Model model = fit(cases);
        EXPECT_LT(largestDifference(predict(model, cases.inputs), cases.outputs[0]), 1e-12);

        // The last case alone moves the constant by its share.
        cases.outputs[0].back() += static_cast<double>(count);
        const Model moved = fit(cases, 0);
        EXPECT_NEAR(
            moved.responseSurfaceStatistics(0).coefficients[0].estimate -
                fit(twoInputs(count, 0.0), 0).responseSurfaceStatistics(0).coefficients[0].estimate,
            1.0, 1e-10);
    }
}

TEST(SurrogateResponseSurfaceModel, GivesTheSameBitsForEveryNumberOfThreads)
{
    const Cases cases = twoInputs(100000, 1.0);
    std::vector<std::string> equations;
    std::vector<double> press;
    for (const int threads : {1, 2, 5}) {
        setThreadCount(threads);
        const Model model = fit(cases);
        equations.push_back(model.surfaceCoefficientInformation(0));
        press.push_back(model.fitMetrics(0).press);
    }
    setThreadCount(0);

    EXPECT_EQ(equations, std::vector<std::string>(3, equations[0]));
    EXPECT_EQ(press, std::vector<double>(3, press[0]));
}

TEST(SurrogateResponseSurfaceModel, DoesNotDependOnUnitsAndOriginsOfTheInputs)
{
    // Values that stay exact when they are shifted, so that only the fit can lose digits.
    Cases cases = twoInputs(40, 1.0);
    for (Column& column : cases.inputs) {
        for (double& value : column) {
            value = std::round(value * 1024.0) / 1024.0;
        }
    }
    const Model model = fit(cases);
    const std::pair<double, double> unitsAndShifts[] = {
        {1e-12, 0.0}, {1e-3, 0.0}, {1e12, 0.0}, {-1e6, 0.0}, {1.0, -1e3}, {1.0, 1e6}, {1.0, 1e12}};
    for (const auto& [unit, shift] : unitsAndShifts) {
        Cases other = cases;
        for (std::size_t k = 0; k < cases.count(); ++k) {
            other.inputs[0][k] *= unit;
            other.inputs[1][k] = other.inputs[1][k] / unit + shift;
        }
        const Model found = fit(other);

        EXPECT_TRUE(found.fitWarnings(0).empty()) << unit << ", " << shift;
        EXPECT_LT(largestDifference(predict(found, other.inputs), predict(model, cases.inputs)),
                  1e-11)
            << unit << ", " << shift;
        if (shift == 0.0) {
            EXPECT_NEAR(found.responseSurfaceStatistics(0).coefficients[4].estimate,
                        model.responseSurfaceStatistics(0).coefficients[4].estimate, 1e-11);
        }
    }
}

TEST(SurrogateResponseSurfaceModel, DoesNotDependOnTheUnitOfTheOutput)
{
    const Cases cases = twoInputs(40, 1.0);
    const FitMetrics reference = fit(cases).fitMetrics(0);
    for (const double factor : {1e-12, 1e12, 1e-200, 1e200}) {
        Cases scaled = cases;
        for (double& value : scaled.outputs[0]) {
            value *= factor;
        }
        const FitMetrics metrics = fit(scaled).fitMetrics(0);
        EXPECT_NEAR(metrics.r2, reference.r2, 1e-12);
        EXPECT_NEAR(metrics.predictedR2, reference.predictedR2, 1e-12);
        EXPECT_NEAR(metrics.rmse / factor, reference.rmse, 1e-12);
    }
}

TEST(SurrogateResponseSurfaceModel, ReportsFractionsThatNeverDecrease)
{
    // Inputs that differ by little are too much for normal equations: rotations follow them.
    Cases close = twoInputs(20000, 1.0);
    for (std::size_t row = 0; row < 20000; ++row) {
        close.inputs[1][row] = close.inputs[0][row] + 1e-4 * close.inputs[1][row];
    }
    for (const Cases& cases : {twoInputs(100000, 1.0), close}) {
        std::vector<double> fractions;
        const FitProgress progress([&](double fraction, const std::string&) {
            fractions.push_back(fraction);
            return true;
        });

        fit(cases);

        ASSERT_GE(fractions.size(), 2u);
        EXPECT_TRUE(std::is_sorted(fractions.begin(), fractions.end()));
        EXPECT_GE(fractions.front(), 0.0);
        EXPECT_LE(fractions.back(), 1.0);
    }
}

TEST(SurrogateResponseSurfaceModel, EndsWithAnErrorWhenItIsCancelled)
{
    const FitProgress progress([](double, const std::string&) { return false; });
    EXPECT_EQ(errorOf([] { fit(twoInputs(9, 0.0)); }), "The fit was cancelled.");
}

TEST(SurrogateResponseSurfaceModel, CountsTheTermsThatVaryingInputsHave)
{
    struct
    {
        ResponseSurfaceOptions options;
        std::size_t terms;
        std::size_t withoutTheThird;
    } const rows[] = {
        {{PolynomialTerms::Linear, {}, ""}, 4, 3},
        {{PolynomialTerms::Interactions, {}, ""}, 7, 4},
        {{PolynomialTerms::Quadratic, {}, ""}, 10, 6},
        {{PolynomialTerms::Chosen, {}, "V1 + V2 + V3 + V1:V3 + V2^2"}, 6, 4},
    };
    for (const auto& row : rows) {
        const auto count = [&](const std::vector<bool>& isVarying) {
            return SurrogateResponseSurfaceModel::termCount(row.options, isVarying);
        };
        EXPECT_EQ(count({true, true, true}), row.terms);
        EXPECT_EQ(count({true, true, false}), row.withoutTheThird);
    }
}
