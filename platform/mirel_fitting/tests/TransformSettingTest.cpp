#include <mirel_fitting/TransformSetting.h>

#include <gtest/gtest.h>

TEST(TransformSetting, IsChosenForKrigingWhereTheUserLeavesItOpen)
{
    using Setting = TransformSetting;
    EXPECT_EQ(transformFor(Setting::Usual, true), Setting::Automatic);
    EXPECT_EQ(transformFor(Setting::Usual, false), Setting::None);
    EXPECT_EQ(transformFor(Setting::BoxCox, true), Setting::Automatic);
    EXPECT_EQ(transformFor(Setting::BoxCox, false), Setting::BoxCox);
    EXPECT_EQ(transformFor(Setting::Logarithm, true), Setting::Logarithm);
}

TEST(TransformSetting, HasTheWordsOfUsers)
{
    EXPECT_STREQ(transformWord(TransformSetting::Usual), "usual");
    EXPECT_STREQ(transformWord(TransformSetting::Automatic), "auto");
    EXPECT_STREQ(transformWord(TransformSetting::None), "none");
    EXPECT_STREQ(transformWord(TransformSetting::SquareRoot), "sqrt");
    EXPECT_STREQ(transformWord(TransformSetting::Logarithm), "log");
}
