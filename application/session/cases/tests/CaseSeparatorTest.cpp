#include <session/cases/CaseSeparator.h>

#include <gtest/gtest.h>

namespace {
char separatorOf(std::string_view sample)
{
    return recogniseSeparator(sample, true);
}
} // namespace

TEST(CaseSeparator, IsACommaASemicolonOrATab)
{
    EXPECT_EQ(separatorOf("a,b\n1,2\n"), ',');
    EXPECT_EQ(separatorOf("a;b\n1;2\n"), ';');
    EXPECT_EQ(separatorOf("a\tb\n1\t2\n"), '\t');
    EXPECT_EQ(separatorOf("one\n1\n"), ',');
}

TEST(CaseSeparator, IsNotInsideANameOrANumber)
{
    EXPECT_EQ(separatorOf("Temp; inner,Stress\n1,2\n3,4\n"), ',');
    EXPECT_EQ(separatorOf("\"a;b;c\",d\n1,2\n"), ',');
    EXPECT_EQ(separatorOf("p, q\tr\n1\t2\n"), '\t');
    EXPECT_EQ(separatorOf("x;y\n1,5;2,5\n3,5;4\n"), ';');
}

TEST(CaseSeparator, IsThatOfMostRecords)
{
    EXPECT_EQ(separatorOf("a,b,c\n1,2,3\n4,5\n6,7,8\n"), ',');
    EXPECT_EQ(separatorOf("a,b;c\n1;2\n3;4\n"), ';');
}

TEST(CaseSeparator, LeavesOutARecordThatTheSampleCuts)
{
    EXPECT_EQ(recogniseSeparator("a,b;c\n1,2;3\n4,5\n6,", false), ',');
}
