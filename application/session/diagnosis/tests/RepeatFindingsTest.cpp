#include <session/diagnosis/RepeatFindings.h>

#include "SampleCases.h"

#include <gtest/gtest.h>

namespace {
/** Ten cases that differ, and then repeats of the first. */
DiagnosedCases casesWithRepeats(const std::vector<double>& outputs)
{
    std::vector<double> inputs = spread(10);
    std::vector<double> values = otherSpread(10);
    for (const double output : outputs) {
        inputs.push_back(inputs.front());
        values.push_back(output);
    }
    return casesOf({{"a", inputs}}, {{"y", values}});
}
const double firstOutput = otherSpread(1).front();
} // namespace

TEST(RepeatFindings, ExactCopiesAreNamed)
{
    EXPECT_EQ(
        textsOf(RepeatFindings::repeats(casesWithRepeats({firstOutput}))),
        (Texts{"exactCopies: 1 case is an exact copy of another (cases 1 and 11): counted "
               "again they make errors look smaller than they are, and the lack of fit is not "
               "available: the repeats are exact copies; exclude them unless each was "
               "measured."}));
}

TEST(RepeatFindings, RepeatsThatDifferALittleAreGood)
{
    EXPECT_EQ(
        RepeatFindings::repeats(casesWithRepeats({firstOutput + 0.011, firstOutput - 0.02})).size(),
        0u);
}

TEST(RepeatFindings, CasesOfDifferentBlocksAreNoRepeats)
{
    DiagnosedCases cases = casesWithRepeats({firstOutput + 0.55});
    EXPECT_EQ(RepeatFindings::repeats(cases).size(), 1u);

    cases.blocks.assign(cases.count(), 0.0);
    cases.blocks.back() = 1.0;
    EXPECT_EQ(RepeatFindings::repeats(cases).size(), 0u);
}

TEST(RepeatFindings, EqualOutputsOfFewValuesAreNoCopies)
{
    EXPECT_EQ(RepeatFindings::repeats(casesOf({{"a", {1, 1, 2, 2, 3, 3, 4, 4, 5, 5, 6, 6}}},
                                              {{"y", {0, 1, 0, 0, 0, 0, 1, 1, 1, 0, 1, 1}}}))
                  .size(),
              1u)
        << "unexplained, but not copied";
}

TEST(RepeatFindings, RepeatsFarApartConflict)
{
    const Finding finding = onlyOf(RepeatFindings::repeats(casesWithRepeats({firstOutput + 0.55})));
    EXPECT_EQ(finding.kind, "conflictingRepeats");
    EXPECT_EQ(
        finding.text,
        "Cases 1 and 11 have the same inputs and yet y = 0.4142 and 0.9642, 62 % of its range "
        "apart: no model can pass near both; check both cases, and exclude a wrong one.");
}

TEST(RepeatFindings, RepeatsThatVaryAsMuchAsAllLackAnInput)
{
    const Finding finding = onlyOf(RepeatFindings::repeats(
        casesOf({{"a", {1, 1, 1, 1, 2, 2, 2, 2}}}, {{"y", {1, 5, 9, 3, 2, 8, 4, 7}}})));
    EXPECT_EQ(finding.kind, "unexplainedOutput");
    EXPECT_NE(finding.text.find("no model of these inputs can explain more than 2 % of its "
                                "variance; check these cases, or look for the input that is "
                                "missing."),
              std::string::npos)
        << finding.text;
}

TEST(RepeatFindings, WhatRepeatsLeaveToExplainIsAShareOfAllCases)
{
    // The pure error is 24 of a total of 112.8, although repeats vary nearly as much as all cases.
    std::vector<double> inputs = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 4, 5, 6};
    std::vector<double> outputs = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 8, 9, 10};

    const Finding finding =
        onlyOf(RepeatFindings::repeats(casesOf({{"a", inputs}}, {{"y", outputs}})));
    EXPECT_EQ(finding.kind, "unexplainedOutput");
    EXPECT_NE(finding.text.find("more than 79 % of its variance"), std::string::npos)
        << finding.text;
}

TEST(RepeatFindings, OneCopyAmongManyCasesIsANote)
{
    std::vector<double> inputs = spread(39);
    std::vector<double> outputs = otherSpread(39);
    inputs.push_back(inputs[3]);
    outputs.push_back(outputs[3]);

    const Finding finding =
        onlyOf(RepeatFindings::repeats(casesOf({{"a", inputs}}, {{"y", outputs}})));
    EXPECT_EQ(finding.kind, "exactCopies");
    EXPECT_EQ(finding.severity, Finding::Note);
    EXPECT_EQ(RepeatFindings::repeats(casesWithRepeats({firstOutput}))[0].severity,
              Finding::Warning);
}

TEST(RepeatFindings, WithoutRepeatsThereIsNothingToSay)
{
    EXPECT_EQ(RepeatFindings::repeats(casesWithRepeats({})).size(), 0u);
}

TEST(RepeatFindings, CasesThatNearlyRepeatOthersAreNamed)
{
    std::vector<double> first = spread(12);
    std::vector<double> second = otherSpread(12);
    first.push_back(first[4] + 0.0004);
    second.push_back(second[4] - 0.0003);

    EXPECT_EQ(textsOf(RepeatFindings::nearCopies(casesOf({{"a", first}, {"b", second}}))),
              (Texts{"nearCopies: Cases 5 and 13 differ by less than a thousandth of the range in "
                     "every input: the model takes what their outputs differ by for noise; give "
                     "repeats the same inputs if they are meant to be the same."}));
}

TEST(RepeatFindings, ExactRepeatsAndDenseCasesAreNoNearCopies)
{
    std::vector<double> first = spread(12);
    std::vector<double> second = otherSpread(12);
    first.push_back(first[4]);
    second.push_back(second[4]);
    EXPECT_EQ(RepeatFindings::nearCopies(casesOf({{"a", first}, {"b", second}})).size(), 0u);
    EXPECT_EQ(RepeatFindings::nearCopies(casesOf({{"a", spread(2000)}})).size(), 0u);
}

TEST(RepeatFindings, InputsThatDifferByRoundingAreRepeats)
{
    DiagnosedCases cases = casesWithRepeats({firstOutput + 0.55});
    cases.inputs[0].values.back() *= 1.0 + 1e-15;

    EXPECT_EQ(RepeatFindings::repeats(cases).size(), 1u);
}
