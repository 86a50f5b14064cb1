#include <mirel_fitting/TransformSetting.h>

#include <gtest/gtest.h>

TEST(TransformSetting, HasTheWordsOfUsers)
{
    EXPECT_STREQ(transformWord(TransformSetting::Usual), "usual");
    EXPECT_STREQ(transformWord(TransformSetting::Automatic), "auto");
    EXPECT_STREQ(transformWord(TransformSetting::None), "none");
    EXPECT_STREQ(transformWord(TransformSetting::SquareRoot), "sqrt");
    EXPECT_STREQ(transformWord(TransformSetting::Logarithm), "log");
}
