#include <session/text/CountedText.h>

#include <gtest/gtest.h>

TEST(CountedText, OnlyOneIsSingular)
{
    EXPECT_EQ(countedText(0, "case"), "0 cases");
    EXPECT_EQ(countedText(1, "case"), "1 case");
    EXPECT_EQ(countedText(2, "case"), "2 cases");
}
