#include <session/text/SettingHint.h>

#include <gtest/gtest.h>

TEST(SettingHint, NamesTheOptionsOfAProgramThatHasThem)
{
    EXPECT_EQ(settingHint(Setting::SkippedLines, "7"), "");

    setSettingOptions({{Setting::SkippedLines, "--skip"}});
    EXPECT_EQ(settingHint(Setting::SkippedLines), " (--skip)");
    EXPECT_EQ(settingHint(Setting::SkippedLines, "7"), " (--skip 7)");
    EXPECT_EQ(settingHint(Setting::Inputs), "");

    setSettingOptions({});
}
