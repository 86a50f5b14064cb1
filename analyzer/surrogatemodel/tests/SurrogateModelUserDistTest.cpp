#include <surrogatemodel/SurrogateModelUserDist.h>

#include <mirel_property/tests/VirtualSlot.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <clocale>
#include <cmath>
#include <limits>
#include <locale>
#include <type_traits>

namespace {

using Dist = SurrogateModelUserDist;
using Values = std::vector<double>;

Values valuesOf(const std::string& text)
{
    Values values;
    Dist(text).get(values);
    return values;
}

/** A row of a table of texts; the name says what is special about the text. */
struct TextAndCode
{
    const char* name;
    std::string text;
    Dist::ParseErrorCode code;
};

struct TextAndValues
{
    const char* name;
    std::string text;
    Values values;
};

// Written as bytes, so that the source shows which of the look-alikes is meant.
const std::string noBreakSpace = "\xc2\xa0";
const std::string emSpace = "\xe2\x80\x83";
const std::string arabicThree = "\xd9\xa3";
const std::string minusSign = "\xe2\x88\x92";

const TextAndCode faults[] = {
    // An empty item
    {"EmptyText", "", Dist::NoValueRange},
    {"BlankText", "   ", Dist::NoValueRange},
    {"TabAndNewline", "\t\n", Dist::NoValueRange},
    {"CommaAlone", ",", Dist::NoValueRange},
    {"CommaAtTheEnd", "1, 2,", Dist::NoValueRange},
    {"CommaAtTheStart", ",1", Dist::NoValueRange},
    {"TwoCommas", "1,,2", Dist::NoValueRange},
    {"BlankBetweenCommas", "1, ,2", Dist::NoValueRange},
    // Neither number nor range
    {"Letters", "abc", Dist::InvalidFloatingPointNumber},
    {"BlankAfterTheSign", "- 5", Dist::InvalidFloatingPointNumber},
    {"PointAtTheEnd", "5.", Dist::InvalidFloatingPointNumber},
    {"PointAlone", ".", Dist::InvalidFloatingPointNumber},
    {"TwoSigns", "+-5", Dist::InvalidFloatingPointNumber},
    {"Hexadecimal", "0x10", Dist::InvalidFloatingPointNumber},
    {"Infinity", "inf", Dist::InvalidFloatingPointNumber},
    {"NotANumber", "nan", Dist::InvalidFloatingPointNumber},
    {"ExponentWithoutDigits", "1e", Dist::InvalidFloatingPointNumber},
    {"ExponentWithFraction", "1e1.5", Dist::InvalidFloatingPointNumber},
    {"TwoNumbers", "1 2", Dist::InvalidFloatingPointNumber},
    {"TwoLines", "5\n6", Dist::InvalidFloatingPointNumber},
    {"TwoDots", "0..10", Dist::InvalidFloatingPointNumber},
    {"WordBetweenBounds", "0 to 10", Dist::InvalidFloatingPointNumber},
    {"ColonBetweenBounds", "0:10", Dist::InvalidFloatingPointNumber},
    {"RangeWithoutCount", "0 - 1", Dist::InvalidFloatingPointNumber},
    {"RangeWithColonButNoCount", "0 - 1 :", Dist::InvalidFloatingPointNumber},
    {"NegativeCount", "0 - 1 : -3", Dist::InvalidFloatingPointNumber},
    {"CountWithFraction", "0 - 1 : 3.0", Dist::InvalidFloatingPointNumber},
    {"BlankAfterTheSignOfTheCount", "0 - 1 : + 3", Dist::InvalidFloatingPointNumber},
    {"LettersAfterTheRange", "0 - 1 : 3 x", Dist::InvalidFloatingPointNumber},
    {"LettersBeforeTheRange", "x 0 - 1 : 3", Dist::InvalidFloatingPointNumber},
    {"ThreeBounds", "0 - 1 - 2 : 3", Dist::InvalidFloatingPointNumber},
    {"BlankBetweenThousands", "1 000", Dist::InvalidFloatingPointNumber},
    {"Semicolon", "5;6", Dist::InvalidFloatingPointNumber},
    {"MinusSignOfTypography", minusSign + "5", Dist::InvalidFloatingPointNumber},
    {"DigitOfAnotherScript", arabicThree, Dist::InvalidFloatingPointNumber},
    {"ByteZero", std::string("5\0", 2), Dist::InvalidFloatingPointNumber},
    {"BytesThatAreNoText", "\xff\xfe", Dist::InvalidFloatingPointNumber},
    // A number that does not convert
    {"TwoPointsBeforeDigits", "..5", Dist::ValueOutOfRange},
    {"TwoPoints", ".1.2", Dist::ValueOutOfRange},
    {"Overflow", "1e999", Dist::ValueOutOfRange},
    {"NegativeOverflow", "-1e999", Dist::ValueOutOfRange},
    {"MinimumWithTwoPoints", "..5 - 1 : 2", Dist::MinimumOutOfBounds},
    {"MinimumOverflows", "1e999 - 2 : 3", Dist::MinimumOutOfBounds},
    {"MinimumIsLookedAtFirst", "1e999 - 1e999 : 0", Dist::MinimumOutOfBounds},
    {"MaximumWithTwoPoints", "0 - .1.2 : 2", Dist::MaximumOutOfBounds},
    {"MaximumOverflows", "0 - 1e999 : 3", Dist::MaximumOutOfBounds},
    {"MaximumIsLookedAtBeforeTheCount", "0 - 1e999 : 0", Dist::MaximumOutOfBounds},
    // Count and bounds
    {"OneAboveAMillion", "0 - 1 : 1000001", Dist::TooManyValues},
    {"LargestCountOf32Bits", "0 - 1 : 2147483647", Dist::TooManyValues},
    {"CountBeyond32Bits", "0 - 1 : 2147483648", Dist::TooManyValues},
    {"CountBeyond64Bits", "0 - 1 : 99999999999999999999", Dist::TooManyValues},
    {"CountIsLookedAtBeforeTheOrder", "1 - 0 : 9999999", Dist::TooManyValues},
    // A digit of another script is a digit to the pattern, but no number converts from it.
    {"CountInAnotherScript", "0 - 1 : " + arabicThree, Dist::TooManyValues},
    {"NoValues", "0 - 1 : 0", Dist::NoValues},
    {"ZeroIsLookedAtBeforeTheOrder", "1 - 0 : 0", Dist::NoValues},
    {"ZeroIsLookedAtBeforeEqualBounds", "2 - 2 : 0", Dist::NoValues},
    {"ReversedBounds", "1 - 0 : 3", Dist::MinimumLargerThanMaximum},
    {"ReversedBoundsOneValue", "1 - 0 : 1", Dist::MinimumLargerThanMaximum},
    {"EqualBounds", "2 - 2 : 3", Dist::EqualBoundsNeedOnePoint},
    {"ZerosOfBothSigns", "0 - -0 : 2", Dist::EqualBoundsNeedOnePoint},
    {"OneValueForTwoBounds", "0 - 1 : 1", Dist::TooFewValues},
};

const TextAndValues texts[] = {
    // A single value
    {"Plain", "5", {5}},
    {"BetweenBlanks", " 5 ", {5}},
    {"BetweenTabAndNewline", "\t5\n", {5}},
    {"BetweenUnicodeSpaces", noBreakSpace + "5" + emSpace, {5}},
    {"Negative", "-5", {-5}},
    {"PointAtTheStart", ".5", {0.5}},
    {"SignAndPointAtTheStart", "+.5", {0.5}},
    {"Exponent", "1e3", {1000}},
    {"CapitalExponentWithSign", "1E+3", {1000}},
    {"LeadingZeros", "007", {7}},
    {"FractionAndNegativeExponent", "1.5e-1", {0.15}},
    {"LargestNumber", "1.7976931348623157e308", {std::numeric_limits<double>::max()}},
    // A range
    {"IncludesBothEnds", "0 - 1 : 3", {0, 0.5, 1}},
    {"NegativeBounds", "-5 - -1 : 2", {-5, -1}},
    {"NegativeBoundsWithoutBlanks", "-5--1:2", {-5, -1}},
    {"CountWithSign", "0-1:+3", {0, 0.5, 1}},
    {"CountWithLeadingZeros", "0-1:003", {0, 0.5, 1}},
    {"TabsAndNewlines", "0 \t-\n 1   :\t3", {0, 0.5, 1}},
    {"UnicodeSpaces", "0" + noBreakSpace + "-" + emSpace + "1:3", {0, 0.5, 1}},
    {"MinusInTheExponent", "1e-5-2:2", {1e-5, 2}},
    {"Exponents", "1e3-1e4:4", {1000, 4000, 7000, 10000}},
    {"EqualBoundsOneValue", "2 - 2 : 1", {2}},
    {"StepThatOverflows",
     "-1e308 - 1e308 : 3",
     {-1e308, 1e308, std::numeric_limits<double>::infinity()}},
    // Neighbours at 1e16 are 2 apart: the step 0.5 never moves the sum off the minimum.
    {"StepsTooSmallForTheNumbers", "1e16 - 10000000000000002 : 5", {1e16, 10000000000000002.0}},
    // A list
    {"SortedWithoutDuplicates", "3, 1, 2, 1", {1, 2, 3}},
    {"ValueInsideARange", "0 - 10 : 11, 5", {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10}},
    {"RangesInDescendingOrder", "20 - 30 : 3, 0 - 10 : 2", {0, 10, 20, 25, 30}},
    {"CommaIsNoDecimalPoint", "1,5", {1, 5}},
    {"ZerosOfBothSigns", "0, -0", {0}},
};

TEST(SurrogateModelUserDist, ReportsFaultsByTheirCodeAndLeavesTheVectorAlone)
{
    for (const auto& [name, text, code] : faults) {
        SCOPED_TRACE(name);
        Dist distribution(text);
        Values values = {7.0, 7.0};

        distribution.get(values);

        EXPECT_EQ(distribution.validate(), code);
        EXPECT_FALSE(distribution.isValid());
        EXPECT_FALSE(distribution.errorString().empty());
        EXPECT_EQ(values, (Values{7.0, 7.0}));
    }
}

TEST(SurrogateModelUserDist, ExpandsTextsToTheirValues)
{
    for (const auto& [name, text, expected] : texts) {
        SCOPED_TRACE(name);
        Dist distribution(text);
        Values values;

        distribution.get(values);

        EXPECT_EQ(values, expected);
        EXPECT_EQ(distribution.validate(), Dist::NoError);
        EXPECT_TRUE(distribution.isValid());
        EXPECT_EQ(distribution.errorString(), "");
    }
}

TEST(SurrogateModelUserDist, NumbersItsFaultsFromZeroToTenAndTwelveIn32Bits)
{
    EXPECT_TRUE((std::is_same<std::underlying_type_t<Dist::ParseErrorCode>, std::int32_t>::value));
    const int codes[] = {Dist::NoError,
                         Dist::InvalidFloatingPointNumber,
                         Dist::MinimumOutOfBounds,
                         Dist::MaximumOutOfBounds,
                         Dist::ValueOutOfRange,
                         Dist::TooManyValues,
                         Dist::NoValues,
                         Dist::MinimumLargerThanMaximum,
                         Dist::EqualBoundsNeedOnePoint,
                         Dist::TooFewValues,
                         Dist::NoValueRange};
    for (int code = 0; code <= 10; ++code) {
        EXPECT_EQ(codes[code], code);
    }
    EXPECT_EQ(static_cast<int>(Dist::NotYetParsed), 12);
}

TEST(SurrogateModelUserDist, HasOneMessagePerFault)
{
    const std::pair<std::string, std::string> messages[] = {
        {"abc", "Invalid floating point number"},
        {"1e999 - 1 : 2", "Minimum range is too large or too small"},
        {"1 - 1e999 : 2", "Maximum range is too large or too small"},
        {"1e999", "Value is out of range"},
        {"0 - 1 : 1000001", "Number of values too large"},
        {"0 - 1 : 0", "You must specify at least one value"},
        {"1 - 0 : 2", "Range minimum is larger than range maximum"},
        {"1 - 1 : 2", "If minimum value range equals maximum value range, "
                      "number of points must be 1"},
        {"0 - 1 : 1", "The number of values must be greater than 1"},
        {"", "No value range specified"},
    };

    for (const auto& [text, message] : messages) {
        Dist distribution(text);
        distribution.validate();
        EXPECT_EQ(distribution.errorString(), "Expression: " + text + "\n" + message);
    }
}

TEST(SurrogateModelUserDist, ReportsTheFirstFaultyItemOnlyTrimmedAndAsItIs)
{
    const std::pair<const char*, const char*> rows[] = {
        {"1,  abc\t, 0 - 1 : 0", "Expression: abc\nInvalid floating point number"},
        {"   ", "Expression: \nNo value range specified"},
        {"%2% %1% 100%", "Expression: %2% %1% 100%\nInvalid floating point number"},
    };
    EXPECT_EQ(
        Dist(rows[0].first).refusal(),
        "Expression: abc: Invalid floating point number. Write numbers and ranges like 4 - 80 "
        ": 20, 42.");
    EXPECT_EQ(Dist(rows[1].first).refusal(),
              "No value range specified. Write numbers and ranges like 4 - 80 : 20, 42.");
    EXPECT_EQ(Dist("1, 2").refusal(), "");
    for (const auto& [text, message] : rows) {
        const Dist distribution(text);
        EXPECT_EQ(distribution.errorString(), "") << "not parsed yet";
        EXPECT_FALSE(distribution.isValid());
        EXPECT_EQ(distribution.errorString(), message);
    }
}

TEST(SurrogateModelUserDist, CountsTheValuesOfAllItemsWithoutExpandingThem)
{
    EXPECT_EQ(Dist("0 - 10 : 11, 5").valueCount(), 12u);
    EXPECT_EQ(Dist("0 - 10 : 11, abc").valueCount(), 0u);
}

TEST(SurrogateModelUserDist, KeepsItsErrorCodeAndTextWhicheverParsesFirst)
{
    const std::string message = "Expression: abc\nInvalid floating point number";
    Dist validated("abc");
    Dist got("abc");
    Dist valid("1, 2");
    Values values;

    for (int time = 0; time < 2; ++time) {
        EXPECT_EQ(validated.validate(), Dist::InvalidFloatingPointNumber);
    }
    for (Dist* const one : {&validated, &got, &valid}) {
        one->get(values);
    }

    EXPECT_EQ(values, (Values{1, 2}));
    EXPECT_EQ(valid.validate(), Dist::NoError);
    EXPECT_EQ(got.validate(), Dist::InvalidFloatingPointNumber);
    EXPECT_EQ(got.errorString(), message);
    EXPECT_FALSE(validated.isValid());
    EXPECT_EQ(validated.errorString(), message);
}

TEST(SurrogateModelUserDist, GetGivesTheSameValuesEachTimeAndReplacesWhatTheVectorHeld)
{
    const Dist distribution("0 - 1 : 3, 7");
    Values values = {9.0, 9.0, 9.0, 9.0, 9.0};
    for (int time = 0; time < 2; ++time) {
        distribution.get(values);
        EXPECT_EQ(values, (Values{0, 0.5, 1, 7}));
    }
}

TEST(SurrogateModelUserDist, AddsTheStepUpAndEndsOnTheMaximumItself)
{
    const Values values = valuesOf("0 - 1 : 11");

    ASSERT_EQ(values.size(), 11u);
    double sum = 0.0;
    for (std::size_t i = 0; i < 10; ++i) {
        EXPECT_EQ(values[i], sum) << i;
        sum += 0.1;
    }
    EXPECT_EQ(values[3], 0.30000000000000004);
    EXPECT_EQ(values[10], 1.0);
    EXPECT_NE(values[10], sum) << "the sum itself misses the maximum";
}

TEST(SurrogateModelUserDist, MergesOverlappingRangesAndSingleValues)
{
    Values expected;
    std::string text = "5.25";
    for (int start = 0; start < 40; ++start) {
        text += ", " + std::to_string(start) + " - " + std::to_string(start + 10) + " : 41";
    }
    for (int i = 0; i <= 4 * 49; ++i) {
        expected.push_back(i / 4.0);
    }

    EXPECT_EQ(valuesOf(text), expected);
}

TEST(SurrogateModelUserDist, SortsARangeWhoseSumOvershootsItsMaximumAndKeepsTheFirstZero)
{
    // Neighbours are 2 apart here: a step of 1.5 counts as 2, and the sum ends beyond the maximum.
    const Values values = valuesOf("9007199254740992 - 9007199254741004 : 9");

    EXPECT_TRUE(std::is_sorted(values.begin(), values.end()));
    EXPECT_EQ(values.back(), 9007199254741006.0);
    EXPECT_EQ(values.size(), 8u) << "the maximum is one of the values before";

    EXPECT_FALSE(std::signbit(valuesOf("0, -0").front()));
    EXPECT_TRUE(std::signbit(valuesOf("-0, 0").front()));
    EXPECT_TRUE(std::signbit(valuesOf("-0 - 100 : 200, 0 - 100 : 300").front()));
}

TEST(SurrogateModelUserDist, AcceptsAMillionValuesPerRangeAndAnyNumberOfRanges)
{
    const Values values = valuesOf("0 - 999999 : 1000000, 1000000 - 1999999 : 1000000, 5 - 6 : 2");

    ASSERT_EQ(values.size(), 2000000u);
    EXPECT_EQ(values.front(), 0.0);
    EXPECT_EQ(values[123456], 123456.0);
    EXPECT_EQ(values.back(), 1999999.0);
}

TEST(SurrogateModelUserDist, AcceptsTheSmallestNumbersAndVeryLongOnes)
{
    // What the toolkit's conversion does with exponents below the range of double.
    EXPECT_EQ(valuesOf("4e-324"), (Values{std::numeric_limits<double>::denorm_min()}));
    EXPECT_EQ(Dist("1e-400").validate(), Dist::ValueOutOfRange);

    const std::string digits(1000000, '1');

    EXPECT_EQ(Dist(digits).validate(), Dist::ValueOutOfRange);
    EXPECT_EQ(valuesOf("0." + digits).size(), 1u);
    EXPECT_EQ(Dist(digits + "x").validate(), Dist::InvalidFloatingPointNumber);
}

TEST(SurrogateModelUserDist, ReadsVeryLongTexts)
{
    std::string text = "0";
    for (int i = 1; i < 100000; ++i) {
        text += ", " + std::to_string(i);
    }

    const Values values = valuesOf(text);

    ASSERT_EQ(values.size(), 100000u);
    EXPECT_EQ(values[99999], 99999.0);
}

class CommaAsDecimalPoint : public std::numpunct<char>
{
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

TEST(SurrogateModelUserDist, ReadsNumbersAlikeInEveryLocale)
{
    const std::locale before =
        std::locale::global(std::locale(std::locale(), new CommaAsDecimalPoint));
    const std::string numericBefore = std::setlocale(LC_NUMERIC, nullptr);
    // Where it is installed; the C++ locale above is there everywhere.
    std::setlocale(LC_NUMERIC, "de_DE.UTF-8");

    const Values values = valuesOf("1.5,2500");
    Dist faulty("12345 - 0 : 3");
    faulty.validate();

    std::setlocale(LC_NUMERIC, numericBefore.c_str());
    std::locale::global(before);
    EXPECT_EQ(values, (Values{1.5, 2500}));
    EXPECT_EQ(faulty.errorString(),
              "Expression: 12345 - 0 : 3\nRange minimum is larger than range maximum");
}

TEST(SurrogateModelUserDist, ListsGetBeforeTheDestructor)
{
    EXPECT_TRUE(isVirtualSlot(&Dist::get, 0));
}

class SubclassAlongTwoPaths : public Dist, public virtual InterpolationPointsInterface
{
public:
    SubclassAlongTwoPaths() : Dist("3") {}
};

TEST(SurrogateModelUserDist, InheritsTheInterfaceVirtually)
{
    const SubclassAlongTwoPaths distribution;
    const InterpolationPointsInterface& points = distribution;

    Values values;
    points.get(values);

    EXPECT_EQ(values, (Values{3}));
}

} // namespace
