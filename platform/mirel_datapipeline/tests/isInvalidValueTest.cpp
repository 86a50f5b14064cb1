#include <mirel_datapipeline/isInvalidValue.h>

#include <vtkDoubleArray.h>
#include <vtkNew.h>
#include <vtkStringArray.h>

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <ostream>
#include <string>

namespace {

struct Cell
{
    std::string description;
    vtkVariant value;
};

void PrintTo(const Cell& cell, std::ostream* output)
{
    *output << cell.description;
}

std::string descriptionOf(const testing::TestParamInfo<Cell>& info)
{
    return info.param.description;
}

Cell number(const std::string& description, double value)
{
    return {description, vtkVariant(value)};
}

Cell text(const std::string& description, const std::string& value)
{
    return {description, vtkVariant(value)};
}

struct isInvalidValueOfNumbers : testing::TestWithParam<Cell>
{};

struct isInvalidValueOfOthers : testing::TestWithParam<Cell>
{};

} // namespace

TEST_P(isInvalidValueOfNumbers, IsAFiniteNumberToEveryReader)
{
    EXPECT_FALSE(isInvalidValue(GetParam().value));
    bool isNumber = false;
    EXPECT_TRUE(std::isfinite(GetParam().value.ToDouble(&isNumber)));
    EXPECT_TRUE(isNumber);
}

INSTANTIATE_TEST_SUITE_P(
    Cells, isInvalidValueOfNumbers,
    testing::Values(number("Number", 1.5), number("Zero", 0.0), number("NegativeZero", -0.0),
                    number("Largest", std::numeric_limits<double>::max()),
                    number("Smallest", std::numeric_limits<double>::denorm_min()),
                    Cell{"Integer", vtkVariant(-3)}, Cell{"Float", vtkVariant(2.5f)},
                    Cell{"UnsignedLong", vtkVariant(7ul)}, text("IntegerText", "12"),
                    text("DecimalText", "-1.5"), text("ExponentText", "1e5"),
                    text("TextWithBlanksAround", " 7 ")),
    descriptionOf);

TEST_P(isInvalidValueOfOthers, IsNone)
{
    EXPECT_TRUE(isInvalidValue(GetParam().value));
}

INSTANTIATE_TEST_SUITE_P(
    Cells, isInvalidValueOfOthers,
    testing::Values(Cell{"InvalidVariant", vtkVariant()},
                    number("NotANumber", std::numeric_limits<double>::quiet_NaN()),
                    number("Infinity", std::numeric_limits<double>::infinity()),
                    number("NegativeInfinity", -std::numeric_limits<double>::infinity()),
                    Cell{"FloatNotANumber", vtkVariant(std::numeric_limits<float>::quiet_NaN())},
                    text("EmptyText", ""), text("BlankText", "   "), text("TabText", "\t"),
                    text("Word", "abc"), text("NumberWithUnit", "12 mm"),
                    text("NumberWithLetter", "12abc"), text("TwoNumbers", "1 2"),
                    text("DecimalComma", "1,5"), text("NotANumberText", "nan"),
                    text("InfinityText", "inf"), text("OverflowingText", "1e999")),
    descriptionOf);

TEST(isInvalidValue, IsOneFunctionThatCanBePassedOn)
{
    const std::function<bool(const vtkVariant&)> predicate = isInvalidValue;

    EXPECT_TRUE(predicate(vtkVariant("abc")));
    EXPECT_FALSE(predicate(1.5));
    EXPECT_TRUE(isInvalidValue({}));
}

TEST(isInvalidValue, HoldsForObjects)
{
    vtkNew<vtkDoubleArray> numbers;
    EXPECT_TRUE(isInvalidValue(vtkVariant(numbers.Get())));
    numbers->InsertNextValue(1.0);
    EXPECT_TRUE(isInvalidValue(vtkVariant(numbers.Get())));
    vtkNew<vtkStringArray> texts;
    texts->InsertNextValue("1");
    EXPECT_TRUE(isInvalidValue(vtkVariant(texts.Get())));
}
