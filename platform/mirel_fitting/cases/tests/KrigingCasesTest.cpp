#include <mirel_fitting/cases/KrigingCases.h>

#include "KrigingTestSupport.h"
#include "RecordedWork.h"

#include <gtest/gtest.h>

namespace {

KrigingCases casesOf(Columns columns)
{
    const std::size_t rows = columns.front().size();
    return KrigingCases(pointersTo(columns), rows);
}

} // namespace

TEST(KrigingCases, ScalesInputsThatVaryToTheirRange)
{
    const KrigingCases cases = casesOf({{-10.0, 10.0, 0.0}});

    EXPECT_EQ(cases.coordinates(), (std::vector<double>{0.0, 0.5, 1.0}));
    EXPECT_EQ(cases.minimum(), std::vector<double>{-10.0});
    EXPECT_EQ(cases.range(), std::vector<double>{20.0});

    const KrigingCases constant = casesOf({{1.0, 2.0}, {5.0, 5.0}, {4.0, 3.0}});

    EXPECT_EQ(constant.inputCount(), 3u);
    EXPECT_EQ(constant.activeInputs(), (std::vector<std::size_t>{0, 2}));
    EXPECT_EQ(constant.coordinates(), (std::vector<double>{0.0, 1.0, 1.0, 0.0}));

    const KrigingCases three = casesOf({{1.0, 3.0, 2.0}, {5.0, 5.0, 5.0}, {4.0, 3.0, 8.0}});

    EXPECT_EQ(three.inputsAt({2, 0}), (Columns{{3.0, 1.0}, {0.0, 0.0}, {3.0, 4.0}}));
}

TEST(KrigingCases, RefusesAnInputWhoseRangeIsNoNumber)
{
    try {
        casesOf({{1.0, 2.0}, {-1.5e308, 1.5e308}});
        FAIL();
    } catch (const SurrogateModelInterface::Error& error) {
        EXPECT_STREQ(error.what(),
                     "The values of the input V2 lie too far apart: their range is no number.");
    }
}

TEST(KrigingCases, GathersRowsWithTheSameInputs)
{
    const KrigingCases cases = casesOf({{2.0, 1.0, 2.0, 2.0}, {0.0, 0.0, 0.0, 9.0}});

    EXPECT_EQ(cases.rowCount(), 4u);
    ASSERT_EQ(cases.pointCount(), 3u);
    EXPECT_EQ(cases.rowsAt(0), (std::vector<std::size_t>{1}));
    EXPECT_EQ(cases.rowsAt(1), (std::vector<std::size_t>{0, 2}));
    EXPECT_EQ(cases.rowsAt(2), (std::vector<std::size_t>{3}));

    EXPECT_EQ(casesOf({{0.0, -0.0, 1.0}}).pointCount(), 2u);

    std::vector<double*> none;

    const KrigingCases withoutInputs(none, 3);

    EXPECT_EQ(withoutInputs.pointCount(), 1u);
    EXPECT_EQ(withoutInputs.rowsAt(0), (std::vector<std::size_t>{0, 1, 2}));
}

TEST(KrigingCases, DoesNotDependOnTheOrderOfTheRows)
{
    const KrigingCases cases = casesOf({{3.0, 1.0, 2.0}, {0.1, 0.2, 0.3}});
    const KrigingCases others = casesOf({{1.0, 2.0, 3.0}, {0.2, 0.3, 0.1}});

    EXPECT_EQ(cases.coordinates(), others.coordinates());
}

TEST(KrigingCases, RefusesARangeBeforeAnythingIsSorted)
{
    Columns columns = {{-1.5e308, 1.5e308}};

    EXPECT_THROW(KrigingCases::requireRanges(pointersTo(columns), 2),
                 SurrogateModelInterface::Error);
    EXPECT_NO_THROW(KrigingCases::requireRanges(pointersTo(columns), 1));
}

TEST(KrigingCases, ReportsWhileItSortsAndScales)
{
    constexpr std::size_t rows = 100000;
    Columns columns = {UniformNumbers(1).next(rows), UniformNumbers(2).next(rows)};
    const RecordedWork recorded;

    const KrigingCases cases(pointersTo(columns), rows);

    EXPECT_EQ(cases.pointCount(), rows);
    // Before and after sorting, two inputs to scale.
    EXPECT_EQ(recorded.reports(), 4);
}
