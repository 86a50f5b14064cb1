#include <session/diagnosis/DependenceFindings.h>

#include "SampleCases.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {
constexpr std::size_t count = 20;

std::vector<double> combined(double ofFirst, double ofSecond, double constant, double step = 0.0)
{
    const std::vector<double> first = spread(count);
    const std::vector<double> second = otherSpread(count);
    std::vector<double> values;
    for (std::size_t row = 0; row < count; ++row) {
        const double value = ofFirst * first[row] + ofSecond * second[row] + constant;
        values.push_back(step > 0.0 ? step * std::round(value / step) : value);
    }
    return values;
}

DiagnosedCases casesWith(const std::vector<double>& third)
{
    return casesOf({{"A", spread(count)}, {"B", otherSpread(count)}, {"C", third}});
}

std::string textOf(const DiagnosedCases& cases)
{
    const std::vector<std::string> texts = textsOf(DependenceFindings::find(cases));
    return texts.empty() ? "" : texts.front();
}
} // namespace

TEST(DependenceFindings, AnInputThatOthersDetermineHasItsFormula)
{
    EXPECT_EQ(textOf(casesWith(combined(2, 1, 0))),
              "dependentInput: C = 2 A + B in every case: their effects cannot be told apart, and "
              "predictions off this plane are extrapolation; leave C out of the inputs or vary it "
              "independently.");
    EXPECT_EQ(textOf(casesWith(combined(-0.5, 0, 3))).substr(0, 55),
              "dependentInput: C = -0.5 A + 3 in every case: their eff");
    EXPECT_NE(textOf(casesWith(combined(-1, -1, 1))).find("C = -A - B + 1 in every case"),
              std::string::npos)
        << "a mixture";
}

TEST(DependenceFindings, AnOutputThatInputsDetermineHasItsFormula)
{
    DiagnosedCases cases = casesWith(spread(count, 0.7320508075688772));
    cases.outputs = casesOf({{"y", combined(2, 1, 3)}}).inputs;
    EXPECT_EQ(
        textOf(cases),
        "determinedOutput: y = 2 A + B + 3 in every case: the model only repeats this "
        "formula; if the output was computed from these inputs, leave them out of the inputs.");

    cases.outputs[0].values = combined(-0.5, 0, 0, 0.001);
    EXPECT_EQ(
        textOf(cases),
        "determinedOutput: y = -0.5 A in every case, up to rounding: the model only repeats "
        "this formula; if the input was computed from the output, leave it out of the inputs.");
}

TEST(DependenceFindings, RoundingDoesNotHideTheFormula)
{
    EXPECT_EQ(
        textOf(casesWith(combined(2, 1, 0, 0.01))),
        "dependentInput: C = 2 A + B in every case, up to rounding: their coefficients cannot "
        "be interpreted one by one, and predictions off this plane are extrapolation; leave "
        "C out of the inputs or vary it independently.");

    DiagnosedCases cases = casesWith(combined(2, 1, 0, 0.01));
    cases.isKriging = true;

    EXPECT_NE(textOf(cases).find("up to rounding: their effects cannot be told apart"),
              std::string::npos);
}

TEST(DependenceFindings, RoundingGivesNoTermsOfTheFormula)
{
    std::vector<double> besideB = otherSpread(count);
    const std::vector<double> noise = spread(count, 0.7320508075688772);
    for (std::size_t row = 0; row < count; ++row) {
        besideB[row] += 0.02 * noise[row];
    }
    const DiagnosedCases cases = casesOf({{"A", spread(count)},
                                          {"B", otherSpread(count)},
                                          {"D", besideB},
                                          {"C", combined(-0.5, 0, 1, 0.01)}});

    EXPECT_EQ(textOf(cases).substr(0, 63),
              "dependentInput: C = -0.5 A + 1 in every case, up to rounding: t");
}

TEST(DependenceFindings, InputsThatVaryTogetherAreCollinear)
{
    std::vector<double> together = spread(count);
    const std::vector<double> noise = spread(count, 0.7320508075688772);
    for (std::size_t row = 0; row < count; ++row) {
        together[row] += 0.3 * noise[row];
    }
    const std::string text = textOf(casesWith(together));

    EXPECT_EQ(text.find("collinearInputs: A and C vary together (variance inflation "), 0u);
    EXPECT_NE(text.find("coefficients of A and C cannot be interpreted one by one, and predictions "
                        "off their common line are extrapolation; vary them independently or leave "
                        "one out of the inputs."),
              std::string::npos)
        << text;
}

TEST(DependenceFindings, IndependentConstantOrFewInputsAreNoCombination)
{
    EXPECT_EQ(textOf(casesWith(spread(count, 0.7320508075688772))), "");
    EXPECT_EQ(textOf(casesOf({{"A", {1, 2, 4}}, {"B", {2, 1, 3}}, {"C", {5, 5, 11}}})), "");
    EXPECT_EQ(textOf(casesWith(std::vector<double>(count, 2.0))), "");
}
