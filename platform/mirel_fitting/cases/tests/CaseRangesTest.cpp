#include <mirel_fitting/cases/CaseRanges.h>

#include "KrigingTestSupport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

const double notANumber = std::numeric_limits<double>::quiet_NaN();
const double infinity = std::numeric_limits<double>::infinity();

/** V1 from 10 to 14, V2 from -1 to 1, V3 always 0.3. */
CaseRanges ranges()
{
    Columns columns = {{10.0, 14.0, 12.0}, {1.0, 0.0, -1.0}, {0.3, 0.3, 0.3}};
    return {pointersTo(columns), 3};
}

std::vector<double> distances(Columns points)
{
    return ranges().distances(pointersTo(points), points[0].size());
}

std::string warning(Columns points)
{
    return ranges().extrapolation(pointersTo(points), points[0].size()).text();
}

} // namespace

TEST(CaseRanges, MeasuresTheFarthestInputInItsRange)
{
    EXPECT_EQ(distances({{11.0, 10.0, 14.0}, {0.5, -1.0, 1.0}, {0.3, 0.3, 0.3}}),
              (std::vector<double>{0.0, 0.0, 0.0}));

    EXPECT_EQ(distances({{15.0, 8.0, 15.0}, {0.0, 2.0, -4.0}, {0.3, 0.3, 0.3}}),
              (std::vector<double>{0.25, 0.5, 1.5}));

    const double computed = 0.1 + 0.2; // 0.3 in the last digit but one
    ASSERT_NE(computed, 0.3);

    EXPECT_EQ(distances({{11.0, 11.0}, {0.0, 0.0}, {0.31, computed}}),
              (std::vector<double>{infinity, 0.0}));

    const std::vector<double> found =
        distances({{notANumber, 11.0, infinity}, {9.0, -infinity, 0.0}, {0.3, 0.3, 7.0}});

    for (const double distance : found) {
        EXPECT_TRUE(std::isnan(distance));
    }
}

TEST(CaseRanges, WarnsOfTheFarthestInputBeyondAHundredthOfItsRange)
{
    EXPECT_EQ(warning({{11.0, notANumber}, {0.0, 0.0}, {0.3, 0.3}}), "");

    EXPECT_EQ(warning({{15.0, 11.0, 11.0}, {0.0, 2.0, 0.0}, {0.3, 0.3, 0.3}}),
              "2 of 3 points lie outside the cases (rows 1 and 2): V2 is up to 0.5 of its range "
              "beyond them. Do "
              "not rely on predictions there.");
    EXPECT_EQ(warning({{15.0}, {0.0}, {0.3}}),
              "1 of 1 point lies outside the cases: V1 is up to 0.25 of its range beyond them. Do "
              "not rely on predictions there.");

    EXPECT_EQ(
        warning({{15.0, 11.0}, {0.0, 0.0}, {0.4, 0.3}}),
        "1 of 2 points lies outside the cases (row 1): V3 has another value there than in all "
        "cases. Do not rely on predictions there.");

    EXPECT_EQ(warning({{14.04}, {-1.02}, {0.3}}), "");
    EXPECT_NE(warning({{14.05}, {-1.02}, {0.3}}), "");

    const std::vector<double> beyond(12, 15.0);
    const std::vector<double> zeros(12, 0.0);
    const std::vector<double> constant(12, 0.3);

    EXPECT_EQ(
        warning({beyond, zeros, constant}),
        "12 of 12 points lie outside the cases (rows 1, 2, 3, 4, 5, 6, 7, 8, 9, 10 and 2 "
        "more): V1 is up to 0.25 of its range beyond them. Do not rely on predictions there.");
}

TEST(CaseRanges, WarnsOfCombinationsThatNoCaseSupports)
{
    Columns points = {{11.0, 15.0, 12.0, 13.0}, {0.0, 0.0, 0.0, 0.0}, {0.3, 0.3, 0.3, 0.3}};

    EXPECT_EQ(
        ranges().extrapolation(pointersTo(points), 4, InputNames(), {1, 1, 0, 1}).text(),
        "3 of 4 points lie outside the cases (rows 1, 2 and 4): V1 is up to 0.25 of its range "
        "beyond them; at 2 of them each input is in its range, but the cases do not "
        "support this combination of values. Do not rely on predictions there.");
    EXPECT_EQ(
        ranges().extrapolation(pointersTo(points), 1, InputNames(), {1}).text(),
        "1 of 1 point lies outside the cases: each input is in its range, but the cases do not "
        "support this combination of values. Do not rely on predictions there.");
}

TEST(CaseRanges, FlagPointsBeyondARangeBesideThoseWithoutSupport)
{
    Columns points = {{11.0, 15.0, 14.01, 13.0}, {0.0, 0.0, 0.0, 0.0}, {0.3, 0.3, 0.3, 0.3}};

    EXPECT_EQ(ranges().outside(pointersTo(points), 4, {1, 0, 0, 0}),
              (std::vector<char>{1, 1, 0, 0}));
}

TEST(CaseRanges, WarnOfAShareWhereSomePointsAreJudgedForAll)
{
    constexpr char notJudged = CaseRanges::notJudged;
    Columns inside = {{11.0, 13.0, 12.0, 13.0, 12.0, 11.0, 12.0, 11.0},
                      std::vector<double>(8, 0.0),
                      std::vector<double>(8, 0.3)};
    Columns oneBeyond = inside;
    oneBeyond[0][4] = 15.0;
    const auto warningOf = [](Columns& points, const std::vector<char>& flags) {
        return ranges().extrapolation(pointersTo(points), 8, InputNames(), flags).text();
    };
    const std::vector<char> flags = {0, notJudged, 1, notJudged, notJudged, 0, notJudged, 0};

    EXPECT_EQ(warningOf(inside, flags),
              "About 25 % of 8 points lie outside the cases (such as row 3): each input is in its "
              "range, but the cases do not support this combination of values. Do not rely on "
              "predictions there.");
    EXPECT_EQ(
        warningOf(oneBeyond, flags),
        "About 38 % of 8 points lie outside the cases (such as rows 3 and 5): V1 is up to "
        "0.25 of its range beyond them; at about 67 % of them each input is in its range, but "
        "the cases do not support this combination of values. Do not rely on predictions there.");
    EXPECT_EQ(warningOf(oneBeyond, {0, notJudged, 0, 0, notJudged, 0, 0, 0}),
              "1 of 8 points lies outside the cases (row 5): V1 is up to 0.25 of its range beyond "
              "them. Do not rely on predictions there.");
}

TEST(CaseRanges, ClampToTheEndsOfARange)
{
    const double values[] = {9.0, 12.0, 20.0, notANumber};
    double clamped[4];

    ranges().clamp(0, values, 4, clamped);

    EXPECT_EQ(clamped[0], 10.0);
    EXPECT_EQ(clamped[1], 12.0);
    EXPECT_EQ(clamped[2], 14.0);
    EXPECT_TRUE(std::isnan(clamped[3]));
}

TEST(CaseRanges, WarnsOfValuesWrittenWithSixDigitsOnlyWhereTheyLoseTheRange)
{
    Columns columns = {{0.015602722810412861, 0.9793}, {1.0 / 3.0, 1.0 / 3.0}};
    const CaseRanges ranges(pointersTo(columns), 2);
    Columns points = {{0.0156027}, {0.333333}};

    EXPECT_GT(ranges.distances(pointersTo(points), 1)[0], 0.0) << "the numbers are as they are";
    EXPECT_EQ(ranges.extrapolation(pointersTo(points), 1).text(), "");

    Columns far = {{1000001.0, 1000002.0}, {1.0 / 3.0, 1.0 / 3.0}};
    const CaseRanges farRanges(pointersTo(far), 2);
    Columns rounded = {{1e6}, {1.0 / 3.0}};
    Columns another = {{1000001.0}, {0.33333}};

    EXPECT_EQ(farRanges.extrapolation(pointersTo(rounded), 1).text(),
              "1 of 1 point lies outside the cases: V1 is up to 1 of its range beyond them. Do not "
              "rely on predictions there.");
    EXPECT_EQ(farRanges.extrapolation(pointersTo(another), 1).text(),
              "1 of 1 point lies outside the cases: V2 has another value there than in all cases. "
              "Do not rely on predictions there.");
}

TEST(CaseRanges, OfNoInputsHaveNoOutside)
{
    const CaseRanges none({}, 3);

    EXPECT_EQ(none.distances({}, 1), std::vector<double>{0.0});
    EXPECT_EQ(none.extrapolation({}, 1).text(), "");
}
