#include <session/diagnosis/ColumnFindings.h>

#include "SampleCases.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {
std::vector<double> with(std::vector<double> values, std::size_t row, double value)
{
    values[row] = value;
    return values;
}

/** From 0.01 to 100, evenly in the logarithm. */
std::vector<double> decades(std::size_t count)
{
    std::vector<double> values;
    for (const double share : spread(count)) {
        values.push_back(std::pow(10.0, 4.0 * share - 2.0));
    }
    return values;
}

std::vector<double> twoGroups(std::size_t count)
{
    std::vector<double> values = spread(count);
    for (double& value : values) {
        value = value < 0.5 ? value : value + 2.0;
    }
    return values;
}
} // namespace

TEST(ColumnFindings, AConstantInputIsIgnoredAndAConstantOutputSevere)
{
    EXPECT_EQ(
        textsOf(ColumnFindings::constants(casesOf({{"Mass", {3, 3, 3}}, {"a", {1, 2, 3}}}))),
        (Texts{"constantInput: Mass is the same in every case: the model learns nothing about "
               "it and ignores it; leave it out of the inputs."}));
    EXPECT_EQ(textsOf(ColumnFindings::constants(casesOf({{"a", {3, 3}}, {"b", {1, 1}}}))),
              (Texts{"constantInput: a and b are the same in every case: the model learns nothing "
                     "about them and ignores them; leave them out of the inputs."}));

    const Finding finding =
        onlyOf(ColumnFindings::constants(casesOf({{"a", {1, 2, 3}}}, {{"y", {4, 4, 4}}})));
    EXPECT_EQ(finding.severity, Finding::Severe);
    EXPECT_EQ(finding.columns, std::vector<std::string>{"y"});
    EXPECT_EQ(finding.text, "y is the same in every case: there is nothing to model; check the "
                            "column or choose another output.");
}

TEST(ColumnFindings, AnInputThatVariesInOneCaseIsNearlyConstant)
{
    EXPECT_EQ(
        textsOf(ColumnFindings::constants(
            casesOf({{"a", with(std::vector<double>(10, 5.0), 6, 7.0)}}))),
        (Texts{"nearlyConstantInput: a is 5 in every case but case 7: its effect rests on that "
               "case alone; vary it in more cases or leave it out of the inputs."}));
    EXPECT_EQ(ColumnFindings::constants(casesOf({{"a", {5, 5, 5, 5, 7, 7, 5, 5, 5, 5}}})).size(),
              0u);
    EXPECT_EQ(ColumnFindings::constants(casesOf({{"a", {5, 5, 7}}})).size(), 0u)
        << "of three cases nothing is known";
}

TEST(ColumnFindings, AVariationOfAMillionthMayBeRounding)
{
    std::vector<double> values = spread(10);
    for (double& value : values) {
        value = 1000.0 + 1e-4 * value;
    }
    const Finding finding = onlyOf(ColumnFindings::constants(casesOf({{"a", values}})));
    EXPECT_EQ(finding.text.substr(0, 51), "a varies by less than a millionth of its size: it m");
}

TEST(ColumnFindings, ACaseFarFromAllOthersIsNamed)
{
    std::vector<double> stress = spread(20);
    for (double& value : stress) {
        value = 6.5 + 2.0 * value;
    }
    stress[16] = 80.4;
    const Finding finding =
        onlyOf(ColumnFindings::farCases(casesOf({{"a", otherSpread(20)}}, {{"Stress", stress}})));
    EXPECT_EQ(finding.kind, "farCase");
    EXPECT_EQ(finding.severity, Finding::Severe);
    EXPECT_EQ(finding.text,
              "Case 17 has Stress = 80.4, all others lie between 6.569 and 8.389: the model bends "
              "towards it; check the cell, or exclude the case.");
}

TEST(ColumnFindings, AFarInputDecidesItsEffectAlone)
{
    EXPECT_EQ(textsOf(ColumnFindings::farCases(casesOf({{"a", with(spread(20), 2, -9.0)}}))).size(),
              1u);
    EXPECT_NE(
        textsOf(ColumnFindings::farCases(casesOf({{"a", with(spread(20), 2, 30.0)}})))[0].find(
            "that case alone decides the effect of a"),
        std::string::npos);
}

TEST(ColumnFindings, AFarInputOfLessWeightIsNoSevereFinding)
{
    std::vector<double> jumps;
    for (const double value : spread(20)) {
        jumps.push_back(value - 0.5);
    }
    const Finding finding =
        onlyOf(ColumnFindings::farCases(casesOf({{"Jumps", with(jumps, 13, 2.5)}})));
    EXPECT_EQ(finding.severity, Finding::Warning);
    EXPECT_NE(finding.text.find(
                  "the effect of Jumps rests on that case more than on others; check the cell"),
              std::string::npos)
        << finding.text;
}

TEST(ColumnFindings, NumbersThatMarkMissingCellsAreNamed)
{
    const std::vector<double> coded = with(with(spread(20), 3, -999.0), 8, -999.0);

    EXPECT_EQ(textsOf(ColumnFindings::farCases(casesOf({{"a", spread(20)}}, {{"y", coded}}))),
              (Texts{"missingCode: Cases 4 and 9 have y = -999, all others lie between 0.03444 and "
                     "0.9443: the model takes it for a measurement; if it marks a missing value, "
                     "read it as one."}));
}

TEST(ColumnFindings, AFarNumberThatAloneRepeatsMayMarkMissingCells)
{
    for (const double mark : {1e30, -999.25, 0.0}) {
        std::vector<double> output = spread(20);
        for (double& value : output) {
            value += 1.0;
        }
        for (const std::size_t row : {3, 8, 15}) {
            output[row] = mark;
        }
        const auto findings =
            ColumnFindings::farCases(casesOf({{"a", spread(20)}}, {{"y", output}}));
        ASSERT_EQ(findings.size(), 1u) << mark;
        EXPECT_EQ(findings[0].kind, "missingCode") << mark;
        if (mark == -999.25) {
            EXPECT_NE(findings[0].text.find("y = -999.25, "), std::string::npos);
        }
    }
}

TEST(ColumnFindings, AValueThatAloneRepeatsMayBeALimit)
{
    std::vector<double> limited = spread(20);
    for (double& value : limited) {
        value = std::min(value, 0.8);
    }
    EXPECT_EQ(
        textsOf(ColumnFindings::farCases(casesOf({{"a", spread(20)}}, {{"y", limited}}))),
        (Texts{"repeatedOutput: y is 0.8 in 3 of 20 cases with different inputs, and hardly "
               "another value repeats: it may be a limit of the measurement, a stuck sensor or a "
               "default, but the model takes it for measured values; check cases 3, 8 and 16, or "
               "exclude them."}));

    const std::vector<double> repeats(20, 1.0);
    EXPECT_EQ(ColumnFindings::farCases(casesOf({{"a", repeats}}, {{"y", limited}})).size(), 0u);
    std::vector<double> rounded = spread(20);
    for (double& value : rounded) {
        value = std::round(10.0 * value);
    }
    EXPECT_EQ(ColumnFindings::farCases(casesOf({{"a", spread(20)}}, {{"y", rounded}})).size(), 0u);
}

TEST(ColumnFindings, ValuesOverDecadesAreNoFarCases)
{
    EXPECT_EQ(ColumnFindings::farCases(casesOf({{"a", decades(20)}})).size(), 0u);
    EXPECT_EQ(
        ColumnFindings::farCases(casesOf({{"a", {1, 10, 100, 1000, 1, 10, 100, 1000}}})).size(),
        0u);
    EXPECT_EQ(ColumnFindings::farCases(casesOf({{"a", {-1, 0, 1, -1, 0, 1, -1, 0, 1, 3}}})).size(),
              0u)
        << "an axial point";
}

TEST(ColumnFindings, SingleFarCasesSuggestNoLogarithm)
{
    std::vector<double> values;
    for (int i = 1; i <= 30; ++i) {
        values.push_back(0.03 * i);
    }
    values.push_back(100.0);

    const DiagnosedCases cases = casesOf({{"a", values}}, {{"y", values}});

    EXPECT_EQ(ColumnFindings::farCases(cases).size(), 2u);
    EXPECT_EQ(ColumnFindings::decades(cases).size(), 0u);
}

TEST(ColumnFindings, DecadesSuggestALogarithmUnlessOutputsAreTransformed)
{
    const auto findings =
        ColumnFindings::decades(casesOf({{"Rate", decades(20)}}, {{"y", decades(20)}}));

    ASSERT_EQ(findings.size(), 2u);
    EXPECT_EQ(findings[0].kind, "inputOverDecades");
    EXPECT_NE(findings[0].text.find("put its logarithm into the file"), std::string::npos);
    EXPECT_EQ(findings[1].kind, "skewedOutput");
    EXPECT_NE(findings[1].text.find("try a model of the logarithm."), std::string::npos);

    DiagnosedCases cases = casesOf({{"a", spread(20)}}, {{"y", decades(20)}});
    cases.transformsOutputs = true;

    EXPECT_EQ(ColumnFindings::decades(cases).size(), 0u);

    std::vector<double> small = spread(20);
    small[4] = 1e-5; // a large factor, and yet most cases are even
    EXPECT_EQ(ColumnFindings::decades(casesOf({{"a", small}}, {{"y", spread(20)}})).size(), 0u);
}

TEST(ColumnFindings, AGapBetweenTwoGroupsIsNamed)
{
    EXPECT_EQ(textsOf(ColumnFindings::gaps(casesOf({{"a", twoGroups(40)}}))),
              (Texts{"gap: No case has a between 0.4853 and 2.507, 68 % of its range: predictions "
                     "there rest on the model's form alone; add cases there or do not predict "
                     "there."}));
}

TEST(ColumnFindings, LevelsAndEvenColumnsHaveNoGap)
{
    std::vector<double> levels;
    for (int row = 0; row < 27; ++row) {
        levels.push_back(row % 3);
    }
    EXPECT_EQ(ColumnFindings::gaps(casesOf({{"a", levels}})).size(), 0u);
    EXPECT_EQ(ColumnFindings::gaps(casesOf({{"a", spread(30)}})).size(), 0u);
}

TEST(ColumnFindings, TwoValuesShowNoCurvature)
{
    DiagnosedCases cases = casesOf({{"a", {0, 1, 0, 1, 0, 1, 0, 1}}, {"b", spread(8)}});

    EXPECT_EQ(
        textsOf(ColumnFindings::fewValues(cases)),
        (Texts{"fewValuesInput: a takes two values only: what lies between them is a straight "
               "line at best, and squares of it are left out; measure a third value where "
               "curvature matters."}));
    cases.responseSurface.terms = PolynomialTerms::Interactions;
    EXPECT_EQ(ColumnFindings::fewValues(cases).size(), 0u) << "which have no squares";
}

TEST(ColumnFindings, AnOutputOfFewValuesIsRoughlyPredicted)
{
    const Finding finding = onlyOf(ColumnFindings::fewValues(
        casesOf({{"a", spread(10)}}, {{"y", {0, 1, 0, 1, 1, 1, 0, 0, 1, 0}}})));
    EXPECT_EQ(finding.kind, "fewValuesOutput");
    EXPECT_EQ(finding.text.substr(0, 25), "y takes two values only: ");
    EXPECT_EQ(ColumnFindings::fewValues(
                  casesOf({{"a", spread(10)}}, {{"y", {1, 2, 3, 4, 1, 2, 3, 4, 1, 2}}}))
                  .size(),
              0u)
        << "too few cases to say so";
}
