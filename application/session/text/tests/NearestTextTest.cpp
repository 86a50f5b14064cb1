#include <session/text/NearestText.h>

#include <gtest/gtest.h>

TEST(NearestText, CountsInsertionsDeletionsAndReplacements)
{
    EXPECT_EQ(editDistance("", ""), 0u);
    EXPECT_EQ(editDistance("", "abc"), 3u);
    EXPECT_EQ(editDistance("kitten", "sitting"), 3u);
    EXPECT_EQ(editDistance("Stres", "Stress"), 1u);
}

TEST(NearestText, TakesTheFirstOfEquallyNearTexts)
{
    EXPECT_EQ(nearestText("w", {"x", "z", "y"}), 0u);
    EXPECT_EQ(nearestText("evalute", {"export", "evaluate", "equations"}), 1u);
}
