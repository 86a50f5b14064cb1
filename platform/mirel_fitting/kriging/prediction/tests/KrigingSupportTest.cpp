#include <mirel_fitting/kriging/prediction/KrigingSupport.h>

#include "KrigingTestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace {

/** One flag per point, "1" where it is not supported, "-" where it is not judged. */
std::string unsupported(Columns cases, Columns points)
{
    const std::size_t rows = cases.empty() ? 1 : cases.front().size();
    const CaseRanges ranges(pointersTo(cases), rows);
    const KrigingCases kriging(pointersTo(cases), rows);
    std::string text;
    for (const char flag :
         KrigingSupport(kriging, ranges).unsupported(pointersTo(points), points.front().size())) {
        text += flag == 0 ? '0' : flag == 1 ? '1' : '-';
    }
    return text;
}

/** Two inputs over [0, 10], and 2 a + b, rounded. */
Columns relatedInputs(std::size_t count, std::uint64_t seed = 4)
{
    UniformNumbers numbers(seed);
    Columns inputs(3);
    for (std::size_t i = 0; i < count; ++i) {
        const double a = 10.0 * numbers.next();
        const double b = 10.0 * numbers.next();
        inputs[0].push_back(a);
        inputs[1].push_back(b);
        inputs[2].push_back(std::round(2.0 * a + b));
    }
    return inputs;
}

} // namespace

TEST(KrigingSupport, IsMissingOffTheRelationOfTheInputs)
{
    for (const std::size_t cases : {30u, 100u, 1000u}) {
        // On the plane twice, then 10 of 30 above and 8 below it.
        EXPECT_EQ(
            unsupported(relatedInputs(cases),
                        {{5.0, 3.0, 4.0, 6.0}, {5.0, 7.0, 4.0, 6.0}, {15.0, 13.0, 22.0, 10.0}}),
            "0011")
            << cases;
    }
}

TEST(KrigingSupport, IsMissingOffARelationOfFewCases)
{
    constexpr double fifth = 6.0; // of the range of 2 a + b
    UniformNumbers numbers(9);
    Columns on(3);
    Columns off(3);
    for (int i = 0; i < 100; ++i) {
        const double a = 1.5 + 7.0 * numbers.next();
        const double b = 1.5 + 7.0 * numbers.next();
        const double c = 2.0 * a + b;
        for (Columns* points : {&on, &off}) {
            (*points)[0].push_back(a);
            (*points)[1].push_back(b);
        }
        on[2].push_back(std::round(c));
        off[2].push_back(c + (c > 15.0 ? -fifth : fifth));
    }
    for (const std::size_t cases : {12u, 15u, 20u, 30u}) {
        std::ptrdiff_t missingOn = 0;
        std::ptrdiff_t missingOff = 0;
        for (std::uint64_t seed = 1; seed <= 10; ++seed) {
            const std::string onFlags = unsupported(relatedInputs(cases, seed), on);
            const std::string offFlags = unsupported(relatedInputs(cases, seed), off);
            missingOn += std::count(onFlags.begin(), onFlags.end(), '1');
            missingOff += std::count(offFlags.begin(), offFlags.end(), '1');
        }
        EXPECT_LE(missingOn, 80) << cases << ", of 1000";
        EXPECT_GE(missingOff, 980) << cases << ", of 1000";
    }
}

TEST(KrigingSupport, IsJudgedAtSomeOfManyPoints)
{
    constexpr std::size_t count = 40000;
    Columns points = {std::vector<double>(count, 5.0), std::vector<double>(count, 5.0),
                      std::vector<double>(count, 15.0)};
    for (std::size_t i = 0; i < count; i += 4) {
        points[2][i] = 25.0;
    }

    const std::string flags = unsupported(relatedInputs(30), points);

    const auto missing = std::count(flags.begin(), flags.end(), '1');
    EXPECT_EQ(missing + std::count(flags.begin(), flags.end(), '0'), 10000);
    EXPECT_NEAR(static_cast<double>(missing), 2500.0, 150.0);
    for (std::size_t i = 0; i < count; ++i) {
        ASSERT_NE(flags[i], i % 4 == 0 ? '0' : '1') << i;
    }
}

TEST(KrigingSupport, IsMissingInACornerWithoutCases)
{
    Columns inputs(2);
    for (int i = 0; i <= 20; ++i) {
        inputs[0].push_back(i);
        inputs[1].push_back(i + (i % 2 == 0 ? 1.0 : -1.0));
    }

    EXPECT_EQ(unsupported(inputs, {{10.0, 20.0, 0.0}, {10.0, 0.0, 20.0}}), "011");
}

TEST(KrigingSupport, ReachesAllOfADesignThatFillsTheRangesAndALittleBeyond)
{
    UniformNumbers numbers(8);
    const Columns inputs = {numbers.next(80), numbers.next(80)};

    EXPECT_EQ(unsupported(inputs, {{0.5, 0.3, 0.7, 0.15}, {0.5, 0.7, 0.8, 0.4}}), "0000");

    const Columns corners = {{0.0, 1.0, 0.0, 1.0, 0.5}, {0.0, 0.0, 1.0, 1.0, 0.5}};

    // Whether a point lies outside the range of an input is another question.
    EXPECT_EQ(unsupported(corners, {{1.01, 3.0}, {1.01, -3.0}}), "00");
}

TEST(KrigingSupport, ReachesNearlyToTheCornersOfFewCasesThatFillTheRanges)
{
    std::ptrdiff_t missing = 0;
    for (std::uint64_t seed = 1; seed <= 10; ++seed) {
        const std::string flags = unsupported(
            latinHypercube(15, 3, seed),
            {{0.15, 0.85, 0.15, 0.85}, {0.15, 0.85, 0.85, 0.15}, {0.15, 0.85, 0.15, 0.85}});
        missing += std::count(flags.begin(), flags.end(), '1');
    }
    EXPECT_LE(missing, 4) << "of 40";
}

TEST(KrigingSupport, IsNotJudgedWithoutOtherCasesOrFinitePoints)
{
    EXPECT_EQ(unsupported({{2.0}}, {{7.0}}), "0");
    EXPECT_EQ(unsupported({{2.0, 2.0}}, {{7.0}}), "0");
    EXPECT_EQ(unsupported(relatedInputs(30), {{std::nan("")}, {5.0}, {15.0}}), "0");
}
