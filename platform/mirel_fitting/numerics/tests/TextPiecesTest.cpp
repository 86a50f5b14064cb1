#include <mirel_fitting/numerics/TextPieces.h>

#include <gtest/gtest.h>

TEST(TextPieces, OnlyOneIsSingular)
{
    EXPECT_EQ(countedText(0, "case"), "0 cases");
    EXPECT_EQ(countedText(1, "case"), "1 case");
    EXPECT_EQ(countedText(2, "case"), "2 cases");
}

TEST(TextPieces, ListsEndWithTheirNumberWhereTheyAreLong)
{
    EXPECT_EQ(listedText({}), "");
    EXPECT_EQ(listedText({"a"}), "a");
    EXPECT_EQ(listedText({"a", "b"}), "a and b");
    EXPECT_EQ(listedText({"a", "b", "c", "d", "e"}), "a, b, c, d and e");
    EXPECT_EQ(listedText({"a", "b", "c", "d", "e", "f"}), "a, b, c and 3 more");
    EXPECT_EQ(shortList({"a", "b", "c", "d", "e", "f"}), "a, b, c, d, e and f");
    EXPECT_EQ(shortList({"a", "b", "c", "d", "e", "f", "g"}), "a, b, c, d, e and 2 more");
}
