#include <session/diagnosis/FindingWords.h>

#include <gtest/gtest.h>

TEST(FindingWords, ListNamesCasesAndShares)
{
    EXPECT_EQ(FindingWords::names({"A"}), "A");
    EXPECT_EQ(FindingWords::names({"A", "B"}), "A and B");
    EXPECT_EQ(FindingWords::names({"A", "B", "C", "D", "E", "F"}), "A, B, C, D, E and F");
    EXPECT_EQ(FindingWords::names({"A", "B", "C", "D", "E", "F", "G"}), "A, B, C, D, E and 2 more");
    EXPECT_EQ(FindingWords::names({"a\nb"}), "a\\x0Ab");
    EXPECT_EQ(FindingWords::cases({6}), "case 7");
    EXPECT_EQ(FindingWords::cases({0, 3}), "cases 1 and 4");
    EXPECT_EQ(FindingWords::casesFirst({0, 3}), "Cases 1 and 4");
    EXPECT_EQ(FindingWords::percent(0.624), "62 %");
    EXPECT_EQ(FindingWords::percent(0.00128), "0.13 %");
    EXPECT_EQ(FindingWords::percent(0.0), "0 %");
}
