#include <session/text/UnitText.h>

#include <gtest/gtest.h>

TEST(UnitText, UnitsAreRecognised)
{
    for (const char* text : {"MPa", "mm", "%", u8"°C", "1/min", "kg/m^3", "W/(m K)", "m/s2", u8"m²",
                             "[pieces]", "(-)", "rpm", u8"µm", "N*m", "1/K"}) {
        EXPECT_TRUE(isUnitText(text)) << text;
    }
}

TEST(UnitText, OtherTextsAreNone)
{
    for (const char* text : {"", "-", "failed", "1", "12.5", "north", "x1", "n.a.", "no result",
                             "a text that is too long for a unit"}) {
        EXPECT_FALSE(isUnitText(text)) << text;
    }
}

TEST(UnitText, LosesItsBrackets)
{
    EXPECT_EQ(unitWithoutBrackets("[MPa]"), "MPa");
    EXPECT_EQ(unitWithoutBrackets(" (1/min) "), "1/min");
    EXPECT_EQ(unitWithoutBrackets("W/(m K)"), "W/(m K)");
}
