#include <mirel_datapipeline/isInvalidValue.h>

#include <vtkDoubleArray.h>
#include <vtkNew.h>
#include <vtkStringArray.h>

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <string>

namespace {

struct Cell
{
    std::string description;
    vtkVariant value;
};

Cell number(const std::string& description, double value)
{
    return {description, vtkVariant(value)};
}

Cell text(const std::string& description, const std::string& value)
{
    return {description, vtkVariant(value)};
}

} // namespace

TEST(isInvalidValue, IsFalseForWhatIsAFiniteNumberToEveryReader)
{
    const Cell cells[] = {number("Number", 1.5),
                          number("Zero", 0.0),
                          number("NegativeZero", -0.0),
                          number("Largest", std::numeric_limits<double>::max()),
                          number("Smallest", std::numeric_limits<double>::denorm_min()),
                          {"Integer", vtkVariant(-3)},
                          {"Float", vtkVariant(2.5f)},
                          {"UnsignedLong", vtkVariant(7ul)},
                          text("IntegerText", "12"),
                          text("DecimalText", "-1.5"),
                          text("ExponentText", "1e5"),
                          text("TextWithBlanksAround", " 7 ")};
    for (const auto& [description, value] : cells) {
        SCOPED_TRACE(description);
        EXPECT_FALSE(isInvalidValue(value));
        bool isNumber = false;
        EXPECT_TRUE(std::isfinite(value.ToDouble(&isNumber)));
        EXPECT_TRUE(isNumber);
    }
}

TEST(isInvalidValue, IsTrueForAllOthers)
{
    const Cell cells[] = {{"InvalidVariant", vtkVariant()},
                          number("NotANumber", std::numeric_limits<double>::quiet_NaN()),
                          number("Infinity", std::numeric_limits<double>::infinity()),
                          number("NegativeInfinity", -std::numeric_limits<double>::infinity()),
                          {"FloatNotANumber", vtkVariant(std::numeric_limits<float>::quiet_NaN())},
                          text("EmptyText", ""),
                          text("BlankText", "   "),
                          text("TabText", "\t"),
                          text("Word", "abc"),
                          text("NumberWithUnit", "12 mm"),
                          text("NumberWithLetter", "12abc"),
                          text("TwoNumbers", "1 2"),
                          text("DecimalComma", "1,5"),
                          text("NotANumberText", "nan"),
                          text("InfinityText", "inf"),
                          text("OverflowingText", "1e999")};
    for (const auto& [description, value] : cells) {
        EXPECT_TRUE(isInvalidValue(value)) << description;
    }
}

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
