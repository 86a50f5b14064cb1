// Distribution texts against their definition: the grammar's regular expressions, and sorting.
#include <surrogatemodel/SurrogateModelUserDist.h>

#include <gtest/gtest.h>

#include <QRegExp>
#include <QString>
#include <QStringList>

#include <algorithm>
#include <cmath>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace {

using Dist = SurrogateModelUserDist;
using Values = std::vector<double>;

Values valuesOf(const std::string& text)
{
    Values values;
    Dist(text).get(values);
    return values;
}

/** The grammar as its regular expressions say it; they take a hundred times as long. */
Dist::ParseErrorCode verdictOfPatterns(const QString& item)
{
    const QString number = "[-+]?[\\.]?[0-9]*\\.?[0-9]+(?:[eE][-+]?[0-9]+)?";
    static const QRegExp single("^(" + number + ")$");
    static const QRegExp range("^(" + number + ")\\s*-\\s*(" + number + ")\\s*\\:\\s*([+]?\\d+)$");
    bool isNumber = false;
    if (item.isEmpty()) {
        return Dist::NoValueRange;
    }
    if (single.exactMatch(item)) {
        single.cap(1).toDouble(&isNumber);
        return isNumber ? Dist::NoError : Dist::ValueOutOfRange;
    }
    if (!range.exactMatch(item)) {
        return Dist::InvalidFloatingPointNumber;
    }
    const double minimum = range.cap(1).toDouble(&isNumber);
    if (!isNumber) {
        return Dist::MinimumOutOfBounds;
    }
    const double maximum = range.cap(2).toDouble(&isNumber);
    if (!isNumber) {
        return Dist::MaximumOutOfBounds;
    }
    const int count = range.cap(3).toInt(&isNumber, 10);
    if (!isNumber || count > 1000000) {
        return Dist::TooManyValues;
    }
    if (count == 0) {
        return Dist::NoValues;
    }
    if (minimum > maximum) {
        return Dist::MinimumLargerThanMaximum;
    }
    if (minimum == maximum) {
        return count == 1 ? Dist::NoError : Dist::EqualBoundsNeedOnePoint;
    }
    return count < 2 ? Dist::TooFewValues : Dist::NoError;
}

/** Puts the pieces of a range in order, leaves some out and puts others in. */
QString almostAnItem(std::mt19937_64& random)
{
    const QStringList between = {"-", " - ", " -", "-\t", ":",  " : ",
                                 "",  " ",   "..", "e",   "E-", "x"};
    const QStringList numbers = {"0",      "1",      ".5",    "-2.5",    "+7",   "1e3",
                                 "1E-5",   "..5",    ".1.2",  "5.",      "1e",   "-0",
                                 "1e999",  "1e-400", "00",    "2.0",     "3e+2", "9e-1",
                                 "000.10", "12",     "-1e-9", "1e00005", "+.5",  "-.5e1"};
    const QStringList counts = {"3",
                                "+3",
                                "0",
                                "1",
                                "2",
                                "003",
                                "1000000",
                                "1000001",
                                "4294967297",
                                "-3",
                                "3.0",
                                "99999999999",
                                QString(QChar(0x663)),
                                "+",
                                "2 "};
    const auto oneOf = [&random](const QStringList& list) {
        return list[static_cast<int>(random() % static_cast<std::uint64_t>(list.size()))];
    };
    const bool isTidy = random() % 2 == 0;
    QString item = oneOf(numbers);
    if (random() % 4 != 0) {
        item += (isTidy ? QString("-") : oneOf(between)) + oneOf(numbers) +
                (isTidy ? QString(":") : oneOf(between)) + oneOf(counts);
    }
    const QString blanks = QString(" \t\n") + QChar(0xa0) + QChar(0x2003) + QChar(0x85);
    for (std::uint64_t i = random() % 3; i > 0; --i) {
        const auto place = static_cast<int>(random() % static_cast<std::uint64_t>(item.size() + 1));
        item.insert(place, blanks[static_cast<int>(random() % 6)]);
    }
    return item.trimmed();
}

TEST(SurrogateModelUserDistDefinition, JudgesItemsAsItsRegularExpressionsDo)
{
    std::mt19937_64 random(20261121);
    std::map<int, int> seen;
    for (int i = 0; i < 20000; ++i) {
        const QString item = almostAnItem(random);
        Dist distribution(item.toStdString());

        const Dist::ParseErrorCode expected = verdictOfPatterns(item);

        ASSERT_EQ(distribution.validate(), expected) << item.toStdString();
        ++seen[expected];
    }
    EXPECT_EQ(seen.size(), 10u) << "all verdicts but that on an empty item";
}

TEST(SurrogateModelUserDistDefinition, ReadsTheSameDoublesAsTheToolkit)
{
    std::mt19937_64 random(7);
    for (int i = 0; i < 20000; ++i) {
        // Few digits and many, near both ends of the range of double and in between.
        QString number = QString::number(random() >> random() % 64);
        number.insert(static_cast<int>(random() % static_cast<std::uint64_t>(number.size())), '.');
        number += "e" + QString::number(static_cast<int>(random() % 680) - 340);
        bool isNumber = false;
        const double expected = number.toDouble(&isNumber);

        const Values values = valuesOf(number.toStdString());

        ASSERT_EQ(values, isNumber ? Values{expected} : Values{}) << number.toStdString();
    }
}

/** The values of all items, one after the other, then sorted. */
Values sortedValues(const std::vector<std::string>& items)
{
    Values all;
    for (const std::string& item : items) {
        const Values values = valuesOf(item);
        all.insert(all.end(), values.begin(), values.end());
    }
    std::stable_sort(all.begin(), all.end());
    all.erase(std::unique(all.begin(), all.end()), all.end());
    return all;
}

std::string joined(const std::vector<std::string>& items)
{
    std::string text;
    for (const std::string& item : items) {
        text += (text.empty() ? "" : ",") + item;
    }
    return text;
}

TEST(SurrogateModelUserDistDefinition, MergesOverlappingRangesToTheValuesThatSortingGives)
{
    std::mt19937_64 random(11);
    for (int i = 0; i < 200; ++i) {
        std::vector<std::string> items;
        for (std::uint64_t count = 1 + random() % 12; count > 0; --count) {
            const std::uint64_t start = random() % 50;
            items.push_back(std::to_string(start) + " - " +
                            std::to_string(start + 1 + random() % 9) + " : " +
                            std::to_string(2 + random() % 400));
        }

        ASSERT_EQ(valuesOf(joined(items)), sortedValues(items)) << joined(items);
    }
}

TEST(SurrogateModelUserDistDefinition, SortsSingleValuesAmongRanges)
{
    std::mt19937_64 random(12);
    std::vector<std::string> items = {"0 - 1000 : 5000", "10 - 20 : 11"};
    for (int i = 0; i < 3000; ++i) {
        items.push_back(std::to_string(random() % 2000) + ".25");
    }
    items.push_back("0 - 3000 : 4001");

    EXPECT_EQ(valuesOf(joined(items)), sortedValues(items));
}

TEST(SurrogateModelUserDistDefinition, SortsARangeWhoseSumOvershootsItsMaximum)
{
    // Neighbours are 2 apart here: a step of 1.5 counts as 2, and the sum ends beyond the maximum.
    const Values values = valuesOf("9007199254740992 - 9007199254741004 : 9");

    EXPECT_TRUE(std::is_sorted(values.begin(), values.end()));
    EXPECT_EQ(values.back(), 9007199254741006.0);
    EXPECT_EQ(values.size(), 8u) << "the maximum is one of the values before";
}

TEST(SurrogateModelUserDistDefinition, KeepsTheZeroThatTheTextNamesFirst)
{
    EXPECT_FALSE(std::signbit(valuesOf("0, -0").front()));
    EXPECT_TRUE(std::signbit(valuesOf("-0, 0").front()));
    EXPECT_TRUE(std::signbit(valuesOf("-0 - 100 : 200, 0 - 100 : 300").front()));
}

TEST(SurrogateModelUserDistDefinition, KeepsTheZeroThatALongListNamesFirst)
{
    // Every value is a run of its own: so many are sorted otherwise than a few.
    std::string before;
    std::string after;
    for (int value = 40; value > 0; --value) {
        before += std::to_string(value) + ", ";
        after += ", " + std::to_string(-value);
    }
    const auto zeroOf = [&](const std::string& zeros) {
        const std::vector<double> values = valuesOf(before + zeros + after);
        EXPECT_EQ(values.size(), 81u);
        return values[40];
    };

    EXPECT_FALSE(std::signbit(zeroOf("0, -0")));
    EXPECT_TRUE(std::signbit(zeroOf("-0, 0")));
    EXPECT_FALSE(std::signbit(zeroOf("0, 40, -40, 40, -40, -0")));
    EXPECT_TRUE(std::signbit(zeroOf("-0, 40, -40, 40, -40, 0")));
}

} // namespace
