#include <mirel_fitting/SurrogateResponseSurfaceModel.h>

#include "EquationEvaluator.h"
#include "FittingTestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <regex>

using namespace fittingtest;

namespace {

using Model = SurrogateResponseSurfaceModel;

Model fit(Cases cases, int highestOrder = 2)
{
    return {cases.inputPointers(), cases.outputPointers(), cases.count(), highestOrder};
}

/** A 3 x 3 grid with one case twice: small enough to write its figures down. */
Cases grid()
{
    return {{{-1, 0, 1, -1, 0, 1, -1, 0, 1, 0}, {-1, -1, -1, 0, 0, 0, 1, 1, 1, 0}},
            {{3, 1, 4, 1, 5, 9, 2, 6, 5, 3}}};
}

std::vector<std::string> termsOf(const Model& model, bool kept)
{
    std::vector<std::string> terms;
    for (const PolynomialCoefficient& coefficient : model.coefficientTable(0)) {
        if (coefficient.isKept == kept) {
            terms.push_back(coefficient.term);
        }
    }
    return terms;
}

Column pointOf(const std::vector<Column>& columns, std::size_t row)
{
    Column point;
    for (const Column& column : columns) {
        point.push_back(column[row]);
    }
    return point;
}

/** The equation's values at the cases. */
Column valuesOfText(const Model& model, const std::vector<Column>& points)
{
    Column values;
    for (std::size_t row = 0; row < points[0].size(); ++row) {
        values.push_back(
            EquationEvaluator(model.surfaceCoefficientInformation(0), pointOf(points, row))
                .value());
    }
    return values;
}

Cases withoutCase(Cases cases, std::size_t row)
{
    for (std::vector<Column>* columns : {&cases.inputs, &cases.outputs}) {
        for (Column& column : *columns) {
            column.erase(column.begin() + static_cast<long>(row));
        }
    }
    return cases;
}

} // namespace

// What is fitted

TEST(ResponseSurface, ReproducesAQuadraticFunction)
{
    const Cases cases = twoInputs(40, 0.0);
    const Model model = fit(cases);

    const Column values = predict(model, {{0.5, 3.0, 10.0}, {1.0, -0.5, -7.0}});

    EXPECT_NEAR(values[0], surface(0.5, 1.0), 1e-12);
    EXPECT_NEAR(values[1], surface(3.0, -0.5), 1e-12);
    EXPECT_NEAR(values[2], surface(10.0, -7.0), 1e-10);
}

TEST(ResponseSurface, ListsTheCoefficientsInTheOrderOfTheTerms)
{
    const std::vector<PolynomialCoefficient> table = fit(twoInputs(40, 0.0)).coefficientTable(0);

    const std::vector<std::pair<std::string, double>> expected = {
        {"1", 3.0}, {"V1", -2.0}, {"V2", 1.0}, {"V1^2", 0.5}, {"V1 V2", -1.0}, {"V2^2", 2.0}};
    ASSERT_EQ(table.size(), expected.size());
    for (std::size_t term = 0; term < table.size(); ++term) {
        EXPECT_EQ(table[term].term, expected[term].first);
        EXPECT_NEAR(table[term].estimate, expected[term].second, 1e-12);
        EXPECT_TRUE(table[term].isKept);
    }
}

TEST(ResponseSurface, GoesNoHigherThanTheOrderWanted)
{
    EXPECT_EQ(termsOf(fit(twoInputs(40, 1.0), 1), true),
              (std::vector<std::string>{"1", "V1", "V2"}));
    EXPECT_EQ(termsOf(fit(twoInputs(40, 1.0), 0), true), (std::vector<std::string>{"1"}));
    EXPECT_TRUE(fit(twoInputs(40, 1.0), 1).fitWarnings(0).empty());
}

TEST(ResponseSurface, RefusesAnotherOrder)
{
    EXPECT_EQ(errorOf([] { fit(twoInputs(9, 0.0), 3); }),
              "The highest order of a response surface is 0, 1 or 2, not 3.");
    EXPECT_EQ(errorOf([] { fit(twoInputs(9, 0.0), -1); }),
              "The highest order of a response surface is 0, 1 or 2, not -1.");
}

TEST(ResponseSurface, FitsEveryOutputByItself)
{
    Cases cases = twoInputs(40, 0.3);
    cases.outputs.push_back(cases.inputs[0]);
    const Model both = fit(cases);
    cases.outputs.pop_back();

    EXPECT_LT(largestDifference(predict(both, cases.inputs, 0), predict(fit(cases), cases.inputs)),
              1e-13);
    EXPECT_LT(largestDifference(predict(both, cases.inputs, 1), cases.inputs[0]), 1e-13);
}

TEST(ResponseSurface, TakesCasesInBlocksAndLosesNone)
{
    // One less and one more than a block, several blocks, and a last block of one case.
    for (const std::size_t count : {511u, 512u, 513u, 20481u}) {
        Cases cases = twoInputs(count, 0.0);
        const Model model = fit(cases);
        EXPECT_LT(largestDifference(predict(model, cases.inputs), cases.outputs[0]), 1e-12);

        // The last case alone moves the constant by its share.
        cases.outputs[0].back() += static_cast<double>(count);
        const Model moved = fit(cases, 0);
        EXPECT_NEAR(moved.coefficientTable(0)[0].estimate -
                        fit(twoInputs(count, 0.0), 0).coefficientTable(0)[0].estimate,
                    1.0, 1e-10);
    }
}

TEST(ResponseSurface, GivesTheSameBitsRunAfterRun)
{
    const Cases cases = twoInputs(3000, 1.0);
    const Model first = fit(cases);
    const Model second = fit(cases);

    EXPECT_EQ(predict(first, cases.inputs), predict(second, cases.inputs));
    EXPECT_EQ(first.surfaceCoefficientInformation(0), second.surfaceCoefficientInformation(0));
    EXPECT_EQ(first.fitMetrics(0).press, second.fitMetrics(0).press);
}

TEST(ResponseSurface, GivesTheSameBitsForEveryNumberOfThreads)
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

TEST(ResponseSurface, DoesNotDependOnTheUnitsOfTheInputs)
{
    const Cases cases = twoInputs(40, 1.0);
    const Column reference = predict(fit(cases), cases.inputs);
    for (const double factor : {1e-12, 1e-3, 1e12, -1e6}) {
        Cases scaled = cases;
        for (double& value : scaled.inputs[0]) {
            value *= factor;
        }
        for (double& value : scaled.inputs[1]) {
            value /= factor;
        }
        const Model model = fit(scaled);
        EXPECT_LT(largestDifference(predict(model, scaled.inputs), reference), 1e-11) << factor;
        EXPECT_NEAR(model.coefficientTable(0)[4].estimate,
                    fit(cases).coefficientTable(0)[4].estimate, 1e-11);
    }
}

TEST(ResponseSurface, DoesNotDependOnTheOriginsOfTheInputs)
{
    // Values that stay exact when they are shifted, so that only the fit can lose digits.
    Cases cases = twoInputs(40, 1.0);
    for (Column& column : cases.inputs) {
        for (double& value : column) {
            value = std::round(value * 1024.0) / 1024.0;
        }
    }
    const Column reference = predict(fit(cases), cases.inputs);
    for (const double shift : {-1e3, 1e6, 1e12}) {
        Cases shifted = cases;
        for (double& value : shifted.inputs[1]) {
            value += shift;
        }
        const Model model = fit(shifted);
        EXPECT_TRUE(model.fitWarnings(0).empty()) << shift;
        EXPECT_LT(largestDifference(predict(model, shifted.inputs), reference), 1e-11) << shift;
    }
}

TEST(ResponseSurface, DoesNotDependOnTheUnitOfTheOutput)
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

// Fewer cases than terms

TEST(ResponseSurface, PassesThroughAsManyCasesAsItHasTerms)
{
    const Cases cases = twoInputs(6, 1.0);
    const Model model = fit(cases);

    EXPECT_EQ(termsOf(model, true).size(), 6u);
    EXPECT_LT(largestDifference(predict(model, cases.inputs), cases.outputs[0]), 1e-10);
    EXPECT_TRUE(model.fitWarnings(0).empty());
    EXPECT_TRUE(std::isnan(model.coefficientTable(0)[1].standardError));
}

TEST(ResponseSurface, LeavesFiguresOutThatNeedMoreCasesThanTerms)
{
    const Model model = fit(twoInputs(6, 1.0));
    const FitMetrics metrics = model.fitMetrics(0);

    EXPECT_NEAR(metrics.r2, 1.0, 1e-12);
    EXPECT_TRUE(std::isnan(metrics.adjustedR2));
    EXPECT_TRUE(std::isnan(metrics.rmse));
    EXPECT_TRUE(std::isnan(metrics.press));
    EXPECT_TRUE(std::isnan(metrics.predictedR2));
    EXPECT_EQ(model.qualityMetricInformation(0),
              "Cases: 6\nTerms: 6\nOrder: full quadratic\nR2: 1\n"
              "Adjusted R2: not available (there are as many terms as cases)\n"
              "RMSE: not available (there are as many terms as cases)\n"
              "PRESS: not available (there are as many terms as cases)\n"
              "Predicted R2: not available (there are as many terms as cases)\n"
              "Model: sum of squares 37.338947 on 5 degrees of freedom\n"
              "Linear: sum of squares 29.457613 on 2 degrees of freedom\n"
              "Interaction: sum of squares 0.65662544 on 1 degree of freedom\n"
              "Square: sum of squares 7.2247087 on 2 degrees of freedom\n"
              "Total: sum of squares 37.338947 on 5 degrees of freedom\n"
              "Leverage: mean 1, largest 1 of case 1, 1 of case 2, 1 of case 3, 1 of case 4, 1 of "
              "case 5\n"
              "Stationary point: minimum of 0.54939224 at V1 = 2.1520425, V2 = 0.26748548, inside "
              "the ranges of the cases\n");
}

TEST(ResponseSurface, LowersTheOrderToLinearAndSaysSo)
{
    for (const std::size_t count : {5u, 4u, 3u}) {
        const Model model = fit(twoInputs(count, 1.0));
        EXPECT_EQ(termsOf(model, true), (std::vector<std::string>{"1", "V1", "V2"}));
        EXPECT_EQ(model.fitWarnings(0),
                  (std::vector<std::string>{"The order was lowered from full quadratic to linear: "
                                            "6 terms need at least as many cases."}));
        EXPECT_NE(model.qualityMetricInformation(0).find("\nThe order was lowered"),
                  std::string::npos);
    }
}

TEST(ResponseSurface, LowersTheOrderToConstantAndSaysSo)
{
    Cases cases = twoInputs(2, 1.0);
    const Model model = fit(cases);

    EXPECT_NEAR(predict(model, {{100.0}, {-100.0}})[0],
                (cases.outputs[0][0] + cases.outputs[0][1]) / 2.0, 1e-14);
    EXPECT_EQ(model.fitWarnings(0),
              (std::vector<std::string>{"The order was lowered from full quadratic to constant: "
                                        "6 terms need at least as many cases."}));
}

TEST(ResponseSurface, IsTheValueOfASingleCase)
{
    const Model model = fit({{{2.0}, {3.0}}, {{7.5}}});

    EXPECT_EQ(predict(model, {{0.0, 1e6}, {3.0, -4.0}}), (Column{7.5, 7.5}));
    EXPECT_EQ(model.surfaceCoefficientInformation(0), "7.5\n");
    EXPECT_TRUE(std::isnan(model.fitMetrics(0).rmse));
    EXPECT_TRUE(std::isnan(model.fitMetrics(0).r2));
}

TEST(ResponseSurface, IsTheMeanWithoutInputs)
{
    const Model model = fit({{}, {{1.0, 2.0, 6.0}}});

    EXPECT_NEAR(predict(model, {})[0], 3.0, 1e-15);
    EXPECT_NEAR(model.fitMetrics(0).rmse, std::sqrt(7.0), 1e-14);
    EXPECT_NEAR(model.fitMetrics(0).r2, 0.0, 1e-15);
    EXPECT_TRUE(model.fitWarnings(0).empty());
}

TEST(ResponseSurface, ExplainsNothingOfTheSpreadByAMean)
{
    for (std::size_t count = 2; count < 12; ++count) {
        Cases cases = twoInputs(count, 1.0);
        cases.inputs.clear();

        EXPECT_EQ(fit(cases).fitMetrics(0).r2, 0.0) << count;
    }
}

TEST(ResponseSurface, RefusesAPolynomialOfTooManyTerms)
{
    Column column(11476, 0.0);
    const std::vector<double*> inputs(150, column.data());
    EXPECT_EQ(errorOf([&] { Model(inputs, {column.data()}, column.size()); }),
              "The full quadratic polynomial of 150 inputs has 11476 terms; at most 10000 can be "
              "fitted.");
}

// Terms that the cases cannot separate

TEST(ResponseSurface, DropsAConstantInputAndItsProducts)
{
    Cases cases = twoInputs(40, 0.0);
    const Column reference = predict(fit({{cases.inputs[1]}, cases.outputs}), {{0.25}});
    std::fill(cases.inputs[0].begin(), cases.inputs[0].end(), 1e6 / 3.0);
    const Model model = fit(cases);

    EXPECT_EQ(termsOf(model, true), (std::vector<std::string>{"1", "V2", "V2^2"}));
    EXPECT_EQ(
        model.fitWarnings(0),
        (std::vector<std::string>{"V1 is the same in every case and was left out, and with it "
                                  "V1^2 and V1 V2."}));
    EXPECT_NEAR(predict(model, {{-5.0}, {0.25}})[0], reference[0], 1e-12);
    EXPECT_EQ(model.coefficientTable(0)[1].estimate, 0.0);
    EXPECT_EQ(model.surfaceCoefficientInformation(0).find("V1"), std::string::npos);
    EXPECT_NE(model.qualityMetricInformation(0).find("Terms: 3 of 6\n"), std::string::npos);
}

TEST(ResponseSurface, DropsAnInputThatVariesByRoundingOnly)
{
    Cases cases = twoInputs(12, 1.0);
    cases.inputs[1].assign(12, 0.3);
    const Column without = predict(fit(cases), {{2.5}, {0.3}});
    cases.inputs[1][3] = 0.1 + 0.2;
    cases.inputs[1][8] = 0.1 + 0.2;
    const Model model = fit(cases);

    EXPECT_LT(largestDifference(predict(model, {{2.5}, {0.4}}), without), 1e-12);
    EXPECT_EQ(
        model.fitWarnings(0),
        (std::vector<std::string>{"V2 is the same in every case and was left out, and with it "
                                  "V1 V2 and V2^2."}));
}

TEST(ResponseSurface, IsTheMeanWhenEveryInputIsConstant)
{
    const Model model = fit({{{5, 5, 5}, {6, 6, 6}}, {{1, 2, 6}}});

    EXPECT_NEAR(predict(model, {{1.0}, {2.0}})[0], 3.0, 1e-15);
    EXPECT_EQ(model.fitMetrics(0).terms, 1u);
}

TEST(ResponseSurface, DropsTheSquareOfAnInputOfTwoLevels)
{
    Cases cases = twoInputs(40, 0.0);
    for (double& value : cases.inputs[0]) {
        value = value > 2.0 ? 3.7 : 1.1;
    }
    const Model model = fit(cases);

    EXPECT_EQ(termsOf(model, false), (std::vector<std::string>{"V1^2"}));
    EXPECT_EQ(model.fitWarnings(0),
              (std::vector<std::string>{
                  "V1^2 cannot be separated from V1 by these cases and was left out."}));
}

TEST(ResponseSurface, SaysFromWhichTermsASquareCannotBeSeparated)
{
    // On a circle about (3, -1) the squares add up to a constant and linear terms.
    Cases cases{{{}, {}}, {{}}};
    for (int k = 0; k < 24; ++k) {
        cases.inputs[0].push_back(3.0 + std::cos(0.25 * k));
        cases.inputs[1].push_back(-1.0 + std::sin(0.25 * k));
        cases.outputs[0].push_back(k % 5);
    }

    EXPECT_EQ(fit(cases).fitWarnings(0),
              (std::vector<std::string>{"V2^2 cannot be separated from V1, V2 and V1^2 by these "
                                        "cases and was left out."}));
}

TEST(ResponseSurface, NamesNoLinearTermsThatCancel)
{
    // V3 is the product of the two other inputs as they are, far from the origin.
    Cases cases = twoInputs(60, 1.0);
    cases.inputs.emplace_back();
    for (std::size_t k = 0; k < 60; ++k) {
        cases.inputs[0][k] += 50.0;
        cases.inputs[1][k] -= 70.0;
        cases.inputs[2].push_back(cases.inputs[0][k] * cases.inputs[1][k]);
    }

    const std::vector<std::string> warnings = fit(cases).fitWarnings(0);

    ASSERT_FALSE(warnings.empty());
    EXPECT_EQ(warnings[0], "V1 V2 cannot be separated from V3 by these cases and was left out.");
}

TEST(ResponseSurface, KeepsSquaresRatherThanProducts)
{
    // On the diagonals of a square V1^2 and V2^2 are the same, and V1 V2 is that up to the sign.
    const Model model =
        fit({{{-2, -1, 0, 1, 2, 3, -3}, {-2, -1, 0, 1, 2, 3, -3}}, {{1, 2, 3, 4, 5, 6, 8}}});

    EXPECT_EQ(termsOf(model, true), (std::vector<std::string>{"1", "V1", "V1^2"}));
    const Model cross = fit(
        {{{-2, -1, 0, 1, 2, -2, 2, 1}, {2, 1, 0, -1, -2, -2, 2, 1}}, {{1, 2, 3, 4, 5, 6, 8, 9}}});
    EXPECT_EQ(termsOf(cross, false), (std::vector<std::string>{"V2^2"}));
}

TEST(ResponseSurface, DropsTheLastOfInputsThatAddUp)
{
    // Parts of a mixture, in percent.
    Random random(5);
    Cases cases{{random.column(60, 5.0, 45.0), random.column(60, 5.0, 45.0), {}}, {{}}};
    for (std::size_t k = 0; k < 60; ++k) {
        const double v1 = cases.inputs[0][k];
        const double v2 = cases.inputs[1][k];
        cases.inputs[2].push_back(100.0 - v1 - v2);
        cases.outputs[0].push_back(1.0 + v1 * v2 - v2);
    }
    const Model model = fit(cases);

    EXPECT_EQ(termsOf(model, false), (std::vector<std::string>{"V3", "V1 V3", "V2 V3", "V3^2"}));
    EXPECT_EQ(model.fitWarnings(0),
              (std::vector<std::string>{"V3 cannot be separated from V1 and V2 by these cases and "
                                        "was left out, and with it V1 V3, V2 V3 and V3^2."}));
    EXPECT_LT(largestDifference(predict(model, cases.inputs), cases.outputs[0]), 1e-9);
}

TEST(ResponseSurface, SeesDependenceThroughTheRoundingOfLargeNumbers)
{
    // Seconds since 1970: the end is start and duration up to 1.2e-7 s, a relative error of the
    // duration that is far above rounding.
    Random random(6);
    Cases cases{{random.column(60, 1.7e9, 1.71e9), random.column(60, 1.0, 1000.0), {}}, {{}}};
    for (std::size_t k = 0; k < 60; ++k) {
        cases.inputs[2].push_back(cases.inputs[0][k] + cases.inputs[1][k]);
        cases.outputs[0].push_back(std::sqrt(cases.inputs[1][k]));
    }
    EXPECT_EQ(termsOf(fit(cases, 1), false), (std::vector<std::string>{"V3"}));
}

TEST(ResponseSurface, KeepsInputsThatAreAlmostDependent)
{
    Cases cases = twoInputs(60, 0.0);
    for (std::size_t k = 0; k < 60; ++k) {
        cases.inputs[1][k] = cases.inputs[0][k] + 1e-6 * cases.inputs[1][k];
        cases.outputs[0][k] = cases.inputs[0][k] - 2.0 * cases.inputs[1][k];
    }
    const Model model = fit(cases, 1);

    EXPECT_TRUE(model.fitWarnings(0).empty());
    EXPECT_NEAR(model.coefficientTable(0)[2].estimate, -2.0, 1e-8);
}

TEST(ResponseSurface, TakesDuplicateCasesForReplicates)
{
    const Model model = fit({{{0, 0, 1, 1, 2, 2}}, {{1, 3, 5, 5, 9, 7}}});

    // Three places, three terms: the curve passes through the means.
    EXPECT_LT(largestDifference(predict(model, {{0, 1, 2}}), {2, 5, 8}), 1e-14);
    EXPECT_NEAR(model.fitMetrics(0).rmse, std::sqrt(4.0 / 3.0), 1e-14);
    EXPECT_TRUE(model.fitWarnings(0).empty());
}

// Metrics

TEST(ResponseSurface, WritesItsQualityLineByLine)
{
    EXPECT_EQ(
        fit(grid()).qualityMetricInformation(0),
        "Cases: 10\n"
        "Terms: 6\n"
        "Order: full quadratic\n"
        "R2: 0.58279122\n"
        "Adjusted R2: 0.06128025\n"
        "RMSE: 2.392946\n"
        "PRESS: 233.92862\n"
        "Predicted R2: -3.2609948\n"
        "AICc: 106.66637\n"
        "Model: sum of squares 31.995238 on 5 degrees of freedom, F 1.118, p 0.47\n"
        "Linear: sum of squares 28.166667 on 2 degrees of freedom, F 2.459, p 0.201\n"
        "Interaction: sum of squares 1 on 1 degree of freedom, F 0.1746, p 0.697\n"
        "Square: sum of squares 2.8285714 on 2 degrees of freedom, F 0.247, p 0.792\n"
        "Residual: sum of squares 22.904762 on 4 degrees of freedom\n"
        "Lack of fit: sum of squares 20.904762 on 3 degrees of freedom, F 3.484, p 0.371\n"
        "Pure error: sum of squares 2 on 1 degree of freedom\n"
        "Total: sum of squares 54.9 on 9 degrees of freedom\n"
        "Intercept: 4.2857143, standard error 1.4300587, t 2.997, p 0.0401, 95 % limits "
        "0.31523467 and 8.2561939\n"
        "Coefficient of V1: 2, standard error 0.97691611, t 2.047, p 0.11, 95 % limits "
        "-0.71235394 and 4.7123539\n"
        "Coefficient of V2: 0.83333333, standard error 0.97691611, t 0.853, p 0.442, 95 % limits "
        "-1.8790206 and 3.5456873\n"
        "Coefficient of V1^2: 0.42857143, standard error 1.5665509, t 0.2736, p 0.798, 95 % limits "
        "-3.9208711 and 4.7780139\n"
        "Coefficient of V1 V2: 0.5, standard error 1.196473, t 0.4179, p 0.697, 95 % limits "
        "-2.8219416 and 3.8219416\n"
        "Coefficient of V2^2: -1.0714286, standard error 1.5665509, t -0.6839, p 0.532, 95 % "
        "limits -5.4208711 and 3.2780139\n"
        "Intercept, inputs coded: 4.2857143, standard error 1.4300587, t 2.997, p 0.0401, 95 % "
        "limits 0.31523467 and 8.2561939\n"
        "Coefficient of V1, inputs coded: 2, standard error 0.97691611, t 2.047, p 0.11, 95 % "
        "limits -0.71235394 and 4.7123539, variance inflation 1\n"
        "Coefficient of V2, inputs coded: 0.83333333, standard error 0.97691611, t 0.853, p 0.442, "
        "95 % limits -1.8790206 and 3.5456873, variance inflation 1\n"
        "Coefficient of V1^2, inputs coded: 0.42857143, standard error 1.5665509, t 0.2736, p "
        "0.798, 95 % limits -3.9208711 and 4.7780139, variance inflation 1.029\n"
        "Coefficient of V1 V2, inputs coded: 0.5, standard error 1.196473, t 0.4179, p 0.697, 95 % "
        "limits -2.8219416 and 3.8219416, variance inflation 1\n"
        "Coefficient of V2^2, inputs coded: -1.0714286, standard error 1.5665509, t -0.6839, p "
        "0.532, 95 % limits -5.4208711 and 3.2780139, variance inflation 1.029\n"
        "Leverage: mean 0.6, largest 0.7976 of case 1, 0.7976 of case 3, 0.7976 of case 7, 0.7976 "
        "of case 9, 0.5238 of case 2\n"
        "Stationary point: saddle of 1.9752008 at V1 = -2.2534637, V2 = -0.13691932, outside the "
        "ranges of the cases\n");
}

TEST(ResponseSurface, PressIsTheSumOverRefitsWithoutEachCase)
{
    const Cases cases = twoInputs(25, 1.5);
    double press = 0.0;
    for (std::size_t row = 0; row < cases.count(); ++row) {
        const Model refit = fit(withoutCase(cases, row));
        const double residual = cases.outputs[0][row] -
                                predict(refit, {{cases.inputs[0][row]}, {cases.inputs[1][row]}})[0];
        press += residual * residual;
    }
    const FitMetrics metrics = fit(cases).fitMetrics(0);

    EXPECT_NEAR(metrics.press, press, 1e-10 * press);
    EXPECT_NEAR(metrics.looRmse, std::sqrt(press / 25.0), 1e-10);
}

TEST(ResponseSurface, FiguresFollowFromResidualsAndSpread)
{
    const Cases cases = twoInputs(25, 1.5);
    const Model model = fit(cases);
    const Column fitted = predict(model, cases.inputs);
    double mean = 0.0;
    for (const double value : cases.outputs[0]) {
        mean += value / 25.0;
    }
    double residual = 0.0;
    double total = 0.0;
    for (std::size_t k = 0; k < 25; ++k) {
        residual += std::pow(cases.outputs[0][k] - fitted[k], 2);
        total += std::pow(cases.outputs[0][k] - mean, 2);
    }
    const FitMetrics metrics = model.fitMetrics(0);

    EXPECT_EQ(metrics.cases, 25u);
    EXPECT_EQ(metrics.terms, 6u);
    EXPECT_NEAR(metrics.r2, 1.0 - residual / total, 1e-13);
    EXPECT_NEAR(metrics.adjustedR2, 1.0 - residual / 19.0 / (total / 24.0), 1e-13);
    EXPECT_NEAR(metrics.rmse, std::sqrt(residual / 19.0), 1e-13);
    EXPECT_NEAR(metrics.predictedR2, 1.0 - metrics.press / total, 1e-12);
    EXPECT_TRUE(std::isnan(metrics.q2));
}

TEST(ResponseSurface, HasNoPressWhenACaseAloneDeterminesATerm)
{
    // Without the last case V2 is constant.
    const Model model = fit({{{1, 2, 3, 4, 5}, {0, 0, 0, 0, 1}}, {{1, 3, 2, 5, 4}}}, 1);
    const FitMetrics metrics = model.fitMetrics(0);

    EXPECT_TRUE(std::isnan(metrics.press));
    EXPECT_TRUE(std::isnan(metrics.predictedR2));
    EXPECT_TRUE(std::isnan(metrics.looRmse));
    EXPECT_GT(metrics.rmse, 0.0);
    EXPECT_NE(model.qualityMetricInformation(0).find(
                  "PRESS: not available (a case alone determines a term, and leaving it out "
                  "leaves no such fit)\n"),
              std::string::npos);
}

TEST(ResponseSurface, PredictsAConstantOutputWithoutR2)
{
    Cases cases = twoInputs(30, 0.0);
    std::fill(cases.outputs[0].begin(), cases.outputs[0].end(), 0.1);
    const Model model = fit(cases);
    const FitMetrics metrics = model.fitMetrics(0);

    EXPECT_EQ(predict(model, {{1.0, 9.0}, {-3.0, 4.0}}), (Column{0.1, 0.1}));
    EXPECT_TRUE(std::isnan(metrics.r2));
    EXPECT_TRUE(std::isnan(metrics.adjustedR2));
    EXPECT_TRUE(std::isnan(metrics.predictedR2));
    EXPECT_EQ(metrics.rmse, 0.0);
    EXPECT_EQ(metrics.press, 0.0);
    EXPECT_NE(model.qualityMetricInformation(0).find(
                  "R2: not available (the output is the same in every case)\n"),
              std::string::npos);
}

// The equation

TEST(ResponseSurface, WritesTheTermsOfTheEquationInTheirOrder)
{
    const std::string text = fit(twoInputs(40, 1.0)).surfaceCoefficientInformation(0);
    const std::string number = "[0-9]+[.][0-9]+";

    EXPECT_TRUE(
        std::regex_match(text, std::regex(number + " - " + number + " [*] V1 [+] " + number +
                                          " [*] V2 [+] " + number + " [*] V1\\^2 - " + number +
                                          " [*] V1 [*] V2 [+] " + number + " [*] V2\\^2\n")))
        << text;
}

TEST(ResponseSurface, EquationGivesTheValuesOfTheModel)
{
    const Cases cases = twoInputs(40, 1.0);
    const Model model = fit(cases);

    // 1e-9 of the output's spread, which is about 15; the text reads back exactly, so that only
    // the order of the operations differs.
    EXPECT_LT(largestDifference(valuesOfText(model, cases.inputs), predict(model, cases.inputs)),
              1e-12);
    EXPECT_EQ(model.surfaceCoefficientInformation(0).find('('), std::string::npos);
}

TEST(ResponseSurface, EquationStaysInCentredInputsWhereMultiplyingOutLosesDigits)
{
    Cases cases = twoInputs(40, 1.0);
    for (double& value : cases.inputs[0]) {
        value += 1e9;
    }
    for (double& value : cases.inputs[1]) {
        value -= 1e6;
    }
    const Model model = fit(cases);
    const std::string text = model.surfaceCoefficientInformation(0);

    EXPECT_NE(text.find(" * (V1 - 10000000"), std::string::npos) << text;
    EXPECT_NE(text.find(" * (V2 + 9999"), std::string::npos) << text;
    EXPECT_LT(largestDifference(valuesOfText(model, cases.inputs), predict(model, cases.inputs)),
              1e-12);
}

TEST(ResponseSurface, EquationKeepsItsPromiseForEveryShift)
{
    for (double shift = 1.0; shift < 1e13; shift *= 10.0) {
        Cases cases = twoInputs(40, 1.0);
        for (Column& column : cases.inputs) {
            for (double& value : column) {
                value += shift;
            }
        }
        const Model model = fit(cases);
        EXPECT_LT(
            largestDifference(valuesOfText(model, cases.inputs), predict(model, cases.inputs)),
            1e-9 * 15.0)
            << shift;
    }
}

TEST(ResponseSurface, HasEquationAndQuality)
{
    const Model model = fit(twoInputs(9, 0.0));
    EXPECT_TRUE(model.surfaceCoefficientInformationAvailable());
    EXPECT_TRUE(model.qualityMetricInformationAvailable());
}

TEST(ResponseSurface, TellsWhichPointsLieOutsideTheCases)
{
    const Model model = fit(grid());
    Column first = {0.0, 2.0};
    Column second = {1.0, 0.0};
    const std::vector<double*> points = {first.data(), second.data()};
    Column distances(2);

    model.extrapolations(points, distances.data(), 2);

    EXPECT_EQ(distances, (Column{0.0, 0.5}));
    EXPECT_EQ(model.extrapolationWarning(points, 1), "");
    EXPECT_NE(model.extrapolationWarning(points, 2).find("V1 is up to 0.5"), std::string::npos);
    EXPECT_THROW(model.extrapolations({first.data()}, distances.data(), 1), Model::Error);
}
