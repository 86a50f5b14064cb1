#include <session/cases/CaseNumbers.h>

#include "MessageOf.h"

#include <session/text/SessionErrors.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {
std::string refusalOf(const std::string& text, std::size_t cases = 10)
{
    return messageOf<UsageError>([&] { readCaseNumbers(text, cases); });
}
} // namespace

TEST(CaseNumbers, AreNumbersFromOneAndRangesWithBothEnds)
{
    EXPECT_EQ(readCaseNumbers("3,7-9", 10), (std::vector<std::size_t>{2, 6, 7, 8}));
    EXPECT_EQ(readCaseNumbers(" 10 , 1 - 1", 10), (std::vector<std::size_t>{0, 9}));
    EXPECT_EQ(readCaseNumbers("2,1-3,2", 3), (std::vector<std::size_t>{0, 1, 2}));
}

TEST(CaseNumbers, RefusesWhatIsNoNumberOrRange)
{
    for (const char* text : {"", "a", "3,", "3;4", "9-7", "1-2-3", "1.5", "-3", "3-"}) {
        EXPECT_NE(refusalOf(text).find("is no case number or range of them"), std::string::npos)
            << '"' << text << '"';
    }
    EXPECT_EQ(refusalOf("9-7"),
              "\"9-7\" is no case number or range of them; write them like 3,7-9.");
}

TEST(CaseNumbers, RefusesCasesThatDoNotExist)
{
    EXPECT_EQ(refusalOf("11"), "There is no case 11 to exclude: the cases are 1 to 10.");
    EXPECT_EQ(refusalOf("0"), "There is no case 0 to exclude: the cases are 1 to 10.");
    EXPECT_EQ(refusalOf("5-99999999999999999999"),
              "There is no case 99999999999999999999 to exclude: the cases are 1 to 10.");
    EXPECT_EQ(refusalOf("1", 0), "There is no case 1 to exclude: the cases are none.");
}

TEST(CaseNumbers, AreWrittenAsTheyAreRead)
{
    const std::vector<std::size_t> positions = {0, 1, 3, 4, 5, 6, 8};

    EXPECT_EQ(caseNumbersText(positions), "1,2,4-7,9");
    EXPECT_EQ(readCaseNumbers(caseNumbersText(positions), 9), positions);
    EXPECT_EQ(caseNumbersText({}), "");
}
