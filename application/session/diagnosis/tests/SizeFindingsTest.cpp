#include <session/diagnosis/SizeFindings.h>

#include "SampleCases.h"

#include <gtest/gtest.h>

namespace {
DiagnosedCases casesOfTwoInputs(std::size_t count)
{
    return casesOf({{"a", spread(count)}, {"b", otherSpread(count)}}, {{"y", spread(count)}});
}
} // namespace

TEST(SizeFindings, FewerCasesThanTermsAreTooFewAndAsManyLeaveNoError)
{
    EXPECT_EQ(textsOf(SizeFindings::find(casesOfTwoInputs(5))),
              (Texts{"tooFewCases: 5 different cases do not determine the 6 terms of a quadratic "
                     "response surface of 2 inputs: terms are left out; 6 cases would do and 10 "
                     "would leave some for the error; add them or choose fewer terms."}));

    EXPECT_EQ(textsOf(SizeFindings::find(casesOfTwoInputs(2))),
              (Texts{"tooFewCases: 2 different cases do not even determine the linear terms of 2 "
                     "inputs, which take 3: the model is the mean of the cases; name the inputs "
                     "that matter, or try Kriging."}));

    EXPECT_EQ(textsOf(SizeFindings::find(casesOfTwoInputs(6))),
              (Texts{"saturatedFit: A quadratic response surface of 2 inputs has as many terms as "
                     "there are cases, 6: it passes through all of them, and no case is left to "
                     "estimate its error from; add cases, or choose fewer terms."}));

    const Finding finding = onlyOf(SizeFindings::find(casesOfTwoInputs(8)));
    EXPECT_EQ(finding.kind, "fewDegreesOfFreedom");
    EXPECT_EQ(finding.severity, Finding::Note);
}

TEST(SizeFindings, MoreCasesOnTwoLevelsDoNotDetermineSquares)
{
    const std::vector<double> a = {-1, 1, -1, 1, -1, 1, -1, 1};
    const std::vector<double> b = {-1, -1, 1, 1, -1, -1, 1, 1};
    const std::vector<double> c = {-1, -1, -1, -1, 1, 1, 1, 1};
    DiagnosedCases cases = casesOf({{"a", a}, {"b", b}, {"c", c}});
    EXPECT_EQ(SizeFindings::find(cases).size(), 0u) << "fitted with interactions";

    for (DiagnosedCases::Column& input : cases.inputs) {
        const std::vector<double> once = input.values;
        input.values.insert(input.values.end(), once.begin(), once.end());
    }
    for (std::size_t row = 8; row < 16; ++row) {
        cases.positions.push_back(row);
    }
    EXPECT_EQ(SizeFindings::find(cases).size(), 0u);
}

TEST(SizeFindings, TwoValuesWantAThirdBesideMoreCases)
{
    const Finding finding =
        onlyOf(SizeFindings::find(casesOf({{"a", {0, 1, 0, 1}}, {"b", {1, 2, 3, 5}}})));
    EXPECT_NE(finding.text.find("; 6 cases would do, with a third value of a for its square, "
                                "and 10 would leave some for the error;"),
              std::string::npos)
        << finding.text;
}

TEST(SizeFindings, EnoughCasesNeedNoSentence)
{
    EXPECT_EQ(SizeFindings::find(casesOfTwoInputs(9)).size(), 0u);
    DiagnosedCases linear = casesOfTwoInputs(6);
    linear.responseSurface.terms = PolynomialTerms::Linear;
    EXPECT_EQ(SizeFindings::find(linear).size(), 0u);
}

TEST(SizeFindings, ChosenTermsAreCounted)
{
    DiagnosedCases cases = casesOfTwoInputs(6);
    cases.responseSurface = {PolynomialTerms::Chosen, {}, "V1 + V2"};
    EXPECT_EQ(SizeFindings::find(cases).size(), 0u);

    cases = casesOfTwoInputs(4);
    cases.responseSurface = {PolynomialTerms::Chosen, {}, "V1 + V2 + V1:V2"};
    EXPECT_EQ(
        textsOf(SizeFindings::find(cases)),
        (Texts{"saturatedFit: A response surface of the chosen terms and 2 inputs has as "
               "many terms as there are cases, 4: it passes through all of them, and no "
               "case is left to estimate its error from; add cases, or choose fewer terms."}));
}

TEST(SizeFindings, BlocksTakeATermFewerThanThereAre)
{
    const auto findings = [](std::size_t count, bool isKriging = false) {
        DiagnosedCases cases = casesOfTwoInputs(count);
        cases.isKriging = isKriging;
        for (std::size_t row = 0; row < count; ++row) {
            cases.blocks.push_back(static_cast<double>(row % 3));
        }
        return textsOf(SizeFindings::find(cases));
    };
    EXPECT_EQ(findings(7),
              (Texts{"tooFewCases: 7 different cases do not determine the 8 terms (2 of the "
                     "blocks) of a quadratic response surface of 2 inputs: terms are left out; 8 "
                     "cases would do and 12 would leave some for the error; add them or choose "
                     "fewer terms."}));
    EXPECT_EQ(
        findings(8),
        (Texts{"saturatedFit: A quadratic response surface of 2 inputs has as many terms as "
               "there are cases, 8 (2 of the blocks): it passes through all of them, and no "
               "case is left to estimate its error from; add cases, or choose fewer terms."}));
    EXPECT_EQ(findings(9),
              (Texts{"fewDegreesOfFreedom: A quadratic response surface of 2 inputs has 8 terms "
                     "(2 of the blocks), and there is 1 case more: its errors and p-values rest "
                     "on that one; add cases, or choose fewer terms."}));
    EXPECT_EQ(findings(11), Texts());
    EXPECT_EQ(findings(4, true), Texts()) << "Kriging has no blocks";
}

TEST(SizeFindings, ThePointsOfABlockAreOtherCasesInAnother)
{
    // Four points in each of two blocks: 3 terms and one of the blocks.
    DiagnosedCases cases =
        casesOf({{"a", {0, 1, 0, 1, 0, 1, 0, 1}}, {"b", {0, 0, 1, 1, 0, 0, 1, 1}}});
    cases.responseSurface.terms = PolynomialTerms::Linear;
    cases.blocks = {0, 0, 0, 0, 1, 1, 1, 1};
    EXPECT_EQ(textsOf(SizeFindings::find(cases)), Texts());

    cases.responseSurface.terms = PolynomialTerms::Interactions;
    EXPECT_EQ(textsOf(SizeFindings::find(cases)), Texts());
}

TEST(SizeFindings, ChosenTermsOfAConstantInputAreNone)
{
    DiagnosedCases cases = casesOfTwoInputs(6);
    cases.inputs.push_back({"c", std::vector<double>(6, 1.0)});
    cases.responseSurface = {PolynomialTerms::Chosen, {}, "V1 + V2 + V3 + V1:V3 + V3^2"};

    EXPECT_EQ(SizeFindings::find(cases).size(), 0u);

    DiagnosedCases quadratic = casesOfTwoInputs(9);
    quadratic.inputs.push_back({"c", std::vector<double>(9, 1.0)});

    EXPECT_EQ(SizeFindings::find(quadratic).size(), 0u);
}

TEST(SizeFindings, KrigingWantsTwiceAsManyCasesAsInputs)
{
    DiagnosedCases cases = casesOfTwoInputs(3);
    cases.isKriging = true;
    EXPECT_EQ(
        textsOf(SizeFindings::find(cases)),
        (Texts{"tooFewCases: 3 different cases are few for Kriging of 2 inputs: it cannot find "
               "out which inputs matter; it takes 4 at least and 20 to be good, or fewer "
               "inputs."}));
    cases = casesOfTwoInputs(4);
    cases.isKriging = true;
    EXPECT_EQ(SizeFindings::find(cases).size(), 0u);
}
