#include <mirel_fitting/responsesurface/CaseSupport.h>

#include "FittingTestSupport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

using namespace fittingtest;

namespace {

using Flags = std::vector<char>;

/** a and b anywhere in [0, 10], c = 2 a + b, exactly or rounded to whole numbers. */
Cases plane(bool isRounded)
{
    Random random(5);
    Cases cases{{random.column(60, 0.0, 10.0), random.column(60, 0.0, 10.0), {}}, {{}}};
    for (std::size_t k = 0; k < 60; ++k) {
        const double c = 2.0 * cases.inputs[0][k] + cases.inputs[1][k];
        cases.inputs[2].push_back(isRounded ? std::round(c) : c);
        cases.outputs[0].push_back(c + random.next());
    }
    return cases;
}

/** 2^3 corners and centre points: the squares of all inputs are equal in all cases. */
Cases cornersAndCentres()
{
    Cases cases{{{}, {}, {}}, {{}}};
    for (int k = 0; k < 12; ++k) {
        for (int input = 0; input < 3; ++input) {
            const double sign = (k >> input) % 2 == 0 ? -1.0 : 1.0;
            cases.inputs[static_cast<std::size_t>(input)].push_back(k < 8 ? sign : 0.0);
        }
        cases.outputs[0].push_back(k);
    }
    return cases;
}

/** Each of three inputs varied alone about 0. */
Cases oneFactorAtATime()
{
    Cases cases{{{}, {}, {}}, {{}}};
    for (int input = 0; input < 3; ++input) {
        for (const double value : {-2.0, -1.0, 0.0, 1.0, 2.0}) {
            for (int other = 0; other < 3; ++other) {
                cases.inputs[static_cast<std::size_t>(other)].push_back(other == input ? value
                                                                                       : 0.0);
            }
            cases.outputs[0].push_back(value * input);
        }
    }
    return cases;
}

/** A central composite design. */
Cases composite()
{
    Cases cases = cornersAndCentres();
    for (std::size_t input = 0; input < 3; ++input) {
        for (const double value : {-1.682, 1.682}) {
            for (std::size_t other = 0; other < 3; ++other) {
                cases.inputs[other].push_back(other == input ? value : 0.0);
            }
            cases.outputs[0].push_back(value);
        }
    }
    return cases;
}

Flags unsupported(Cases cases, std::vector<Column> points, int order = 2)
{
    const PolynomialFit fit(QuadraticBasis(cases.inputs.size(), order), cases.inputPointers(),
                            cases.outputPointers(), cases.count());
    const CaseRanges ranges(cases.inputPointers(), cases.count());
    return CaseSupport(fit, ranges).unsupported(pointersTo(points), points[0].size());
}

} // namespace

TEST(CaseSupport, SupportsEveryCaseAndPointsBesideOne)
{
    const Cases cases = plane(true);

    EXPECT_EQ(unsupported(cases, cases.inputs), Flags(60, 0));
    EXPECT_EQ(
        unsupported(composite(), {{-1.0, 1.0, 1.682}, {-1.0, 1.1, 1.682}, {-1.125, 1.0, 1.682}}),
        (Flags{0, 0, 1}));
}

TEST(CaseSupport, LacksACombinationOffAPlane)
{
    for (const int order : {1, 2}) {
        EXPECT_EQ(
            unsupported(plane(true), {{5.0, 5.0, 5.0}, {5.0, 5.0, 5.0}, {15.0, 20.0, 10.0}}, order),
            (Flags{0, 1, 1}));
    }
    EXPECT_EQ(unsupported(plane(false), {{5.0, 5.0, 5.0}, {5.0, 5.0, 5.0}, {15.0, 15.1, 20.0}}),
              (Flags{0, 0, 1}));
}

TEST(CaseSupport, LacksACornerThatCorrelatedInputsNeverReach)
{
    Random random(7);
    Cases cases{{random.column(40, 0.0, 1.0), {}}, {random.column(40, 0.0, 1.0)}};
    for (const double a : cases.inputs[0]) {
        cases.inputs[1].push_back(a + 0.1 * random.next());
    }

    EXPECT_EQ(unsupported(cases, {{0.5, 0.05, 0.95}, {0.55, 0.95, 0.1}}, 1), (Flags{0, 1, 1}));
}

TEST(CaseSupport, LacksWhatTheCasesDoNotSeparate)
{
    EXPECT_EQ(unsupported(cornersAndCentres(), {{1.0, 0.5, 1.0, 0.0, 0.98},
                                                {1.0, -0.5, 0.0, 0.0, -1.0},
                                                {-1.0, 0.5, 0.0, 1.0, 1.0}}),
              (Flags{0, 0, 1, 1, 0}));
    EXPECT_EQ(unsupported(oneFactorAtATime(),
                          {{1.0, 0.0, 1.5, 2.0}, {1.0, 1.5, 0.1, 2.0}, {1.0, 0.0, 0.0, 0.0}}),
              (Flags{1, 0, 0, 1}));
}

TEST(CaseSupport, TakesInputsOfTwoLevelsForLinearBetweenThem)
{
    const Cases cases{{{-1, 1, -1, 1, -1, 1, -1, 1}, {-1, -1, 1, 1, -1, -1, 1, 1}},
                      {{3, 1, 4, 1, 5, 9, 2, 6}}};

    EXPECT_EQ(unsupported(cases, {{0.0, 0.3, 1.0}, {0.0, 1.0, -0.5}}), (Flags{0, 0, 0}));
}

TEST(CaseSupport, LeavesPointsBeyondARangeToTheRanges)
{
    // A 3 x 3 design: its corners have the largest leverage, beyond them any is larger.
    const Cases cases{{{-1, 0, 1, -1, 0, 1, -1, 0, 1}, {-1, -1, -1, 0, 0, 0, 1, 1, 1}},
                      {{3, 1, 4, 1, 5, 9, 2, 6, 5}}};

    EXPECT_EQ(unsupported(cases, {{1.0, 5.0, -1.02}, {1.0, 5.0, 1.0}}), (Flags{0, 0, 0}));
}

TEST(CaseSupport, GivesEveryPointOfManyItsOwnFlagButNotFiniteOnes)
{
    std::vector<Column> points = {Column(10000, 5.0), Column(10000, 5.0), Column(10000, 15.0)};
    points[2][9999] = 20.0;
    Flags expected(10000, 0);
    expected[9999] = 1;

    EXPECT_EQ(unsupported(plane(true), points), expected);

    EXPECT_EQ(unsupported(plane(true), {{5.0}, {notANumber}, {20.0}}), Flags{0});
}
