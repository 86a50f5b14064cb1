#include <session/cases/ColumnFigures.h>

#include "CaseTables.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

TEST(ColumnFigures, CountCellsAndValues)
{
    const ColumnFigures figures = ColumnFigures::of(std::vector<double>{3, missing, 1, 2, 2, 7});

    EXPECT_EQ(figures.count, 5u);
    EXPECT_EQ(figures.missing, 1u);
    EXPECT_EQ(figures.minimum, 1.0);
    EXPECT_EQ(figures.median, 2.0);
    EXPECT_EQ(figures.maximum, 7.0);
    EXPECT_EQ(figures.distinct, 4u);
    EXPECT_FALSE(figures.hasMoreDistinct);
}

TEST(ColumnFigures, TheMedianOfAnEvenNumberIsTheMeanOfTheMiddleTwo)
{
    EXPECT_EQ(ColumnFigures::of(std::vector<double>{4, 1, 9, 2}).median, 3.0);
    EXPECT_EQ(medianOf({5, 1, 2}), 2.0);
    const double largest = std::numeric_limits<double>::max();
    EXPECT_EQ(ColumnFigures::of(std::vector<double>{largest, largest}).median, largest);
}

TEST(ColumnFigures, TheMedianOfDecimalFractionsHasNoRoundingError)
{
    EXPECT_EQ(medianOf({271.5, 272.1}), 271.8);
    EXPECT_EQ(medianOf({-0.1, -0.2}), -0.15);
    EXPECT_EQ(medianOf({1e-300, 2e-300}), 1.5e-300);
    const double third = 1.0 / 3.0;
    EXPECT_EQ(medianOf({third, third}), third);
}

TEST(ColumnFigures, InfiniteNumbersAreNeitherCountedNorMissing)
{
    const ColumnFigures figures =
        ColumnFigures::of(std::vector<double>{1, std::numeric_limits<double>::infinity()});

    EXPECT_EQ(figures.count, 1u);
    EXPECT_EQ(figures.missing, 0u);
    EXPECT_EQ(figures.maximum, 1.0);
}

TEST(ColumnFigures, WithoutANumberThereAreNone)
{
    const ColumnFigures figures = ColumnFigures::of(std::vector<double>{missing, missing});

    EXPECT_EQ(figures.count, 0u);
    EXPECT_TRUE(std::isnan(figures.minimum));
    EXPECT_TRUE(std::isnan(figures.median));
    EXPECT_EQ(figures.distinct, 0u);
}

TEST(ColumnFigures, ManyDistinctValuesAreNotCounted)
{
    std::vector<double> numbers(ColumnFigures::maxDistinct + 1);
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        numbers[i] = static_cast<double>(i);
    }

    const ColumnFigures figures = ColumnFigures::of(numbers);

    EXPECT_EQ(figures.distinct, ColumnFigures::maxDistinct);
    EXPECT_TRUE(figures.hasMoreDistinct);
}

TEST(ColumnFigures, TextsAreCountedToo)
{
    const ColumnFigures figures = ColumnFigures::of(std::vector<std::string>{"n", "", "s", "n"});

    EXPECT_EQ(figures.count, 3u);
    EXPECT_EQ(figures.missing, 1u);
    EXPECT_EQ(figures.distinct, 2u);
    EXPECT_TRUE(std::isnan(figures.median));
}
