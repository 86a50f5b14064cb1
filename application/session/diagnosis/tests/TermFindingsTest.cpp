#include <session/diagnosis/TermFindings.h>

#include "SampleCases.h"

#include <gtest/gtest.h>

namespace {
using Numbers = std::vector<double>;

const Numbers factorialA = {-1, 1, -1, 1, -1, 1, -1, 1};
const Numbers factorialB = {-1, -1, 1, 1, -1, -1, 1, 1};
const Numbers factorialC = {-1, -1, -1, -1, 1, 1, 1, 1};

Numbers joined(Numbers values, const Numbers& more)
{
    values.insert(values.end(), more.begin(), more.end());
    return values;
}
} // namespace

TEST(TermFindings, OneFactorAtATimeLeavesNoInteractions)
{
    const DiagnosedCases cases = casesOf({{"A", {0, -2, -1, 1, 2, 0, 0, 0, 0, 0, 0, 0, 0}},
                                          {"B", {0, 0, 0, 0, 0, -2, -1, 1, 2, 0, 0, 0, 0}},
                                          {"C", {0, 0, 0, 0, 0, 0, 0, 0, 0, -2, -1, 1, 2}}});

    EXPECT_EQ(
        textsOf(TermFindings::find(cases)),
        (Texts{"inestimableTerms: A * B, A * C and B * C cannot be estimated from these cases: the "
               "model leaves them out; add cases where A, B and C vary together."}));
    EXPECT_EQ(TermFindings::rank(cases), 7u);
}

TEST(TermFindings, ABaseAwayFromTheMiddleOfTheRangesMakesNoDifference)
{
    const DiagnosedCases cases =
        casesOf({{"A", {10, 11, 12, 14, 10, 10, 10}}, {"B", {300, 300, 300, 300, 310, 330, 320}}});

    EXPECT_EQ(
        textsOf(TermFindings::find(cases)),
        (Texts{"inestimableTerms: A * B cannot be estimated from these cases: the model leaves "
               "it out; add cases where A and B vary together."}));
}

TEST(TermFindings, CentrePointsAloneDoNotSeparateSquares)
{
    const Numbers centre = {0, 0, 0, 0};
    const DiagnosedCases cases = casesOf({{"A", joined(factorialA, centre)},
                                          {"B", joined(factorialB, centre)},
                                          {"C", joined(factorialC, centre)}});

    EXPECT_EQ(textsOf(TermFindings::find(cases)),
              (Texts{"inestimableTerms: B^2 and C^2 cannot be told apart from A^2 by these cases: "
                     "the model leaves them out, and A^2 takes their effects; add cases where only "
                     "one of A, B and C differs from the middle of its range."}));
    EXPECT_EQ(TermFindings::rank(cases), 8u);
}

TEST(TermFindings, AFractionMakesAliases)
{
    Numbers product = factorialA;
    for (std::size_t row = 0; row < product.size(); ++row) {
        product[row] *= factorialB[row];
    }
    DiagnosedCases cases =
        casesOf({{"A", factorialA}, {"B", factorialB}, {"C", factorialC}, {"D", product}});
    cases.responseSurface = {PolynomialTerms::Chosen, {}, "V1 + V2 + V3 + V4 + V1:V2 + V1:V3"};

    EXPECT_EQ(
        textsOf(TermFindings::find(cases)),
        (Texts{"inestimableTerms: A * B cannot be told apart from D by these cases: the model "
               "leaves it out, and D takes its effect; add cases with other combinations of "
               "A, B and D."}));
}

TEST(TermFindings, SquaresOfTwoValuesAreNotNamedHere)
{
    DiagnosedCases cases = casesOf({{"A", joined(factorialA, factorialA)},
                                    {"B", joined(factorialB, factorialB)},
                                    {"C", joined(factorialC, factorialC)}});

    EXPECT_EQ(TermFindings::find(cases).size(), 0u);
    EXPECT_EQ(TermFindings::rank(cases), 7u);
}

TEST(TermFindings, ATermThatTheFitKeepsIsNotNamed)
{
    // C is A * B but for a difference of 2e-9: the fit still separates them.
    const Numbers a = spread(20);
    const Numbers b = otherSpread(20);
    Numbers c;
    for (std::size_t row = 0; row < a.size(); ++row) {
        c.push_back(a[row] * b[row] + (row % 3 == 0 ? 2e-9 : 0.0));
    }

    EXPECT_EQ(TermFindings::find(casesOf({{"A", a}, {"B", b}, {"C", c}})).size(), 0u);
}

TEST(TermFindings, SpreadCasesDetermineAllTerms)
{
    DiagnosedCases cases = casesOf({{"A", spread(12)}, {"B", otherSpread(12)}});

    EXPECT_EQ(TermFindings::find(cases).size(), 0u);
    EXPECT_EQ(TermFindings::rank(cases), 6u);
    cases.isKriging = true;
    EXPECT_FALSE(TermFindings::rank(cases));
}
