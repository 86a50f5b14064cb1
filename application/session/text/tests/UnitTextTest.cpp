#include <session/text/UnitText.h>

#include <gtest/gtest.h>

TEST(UnitText, UnitsAreRecognised)
{
    for (const char* text : {"MPa", "mm", "%", u8"°C", "1/min", "kg/m^3", "W/(m K)", "m/s2", u8"m²",
                             "[pieces]", "(-)", "rpm", u8"µm", "N*m", "1/K"}) {
        EXPECT_TRUE(isUnitText(text)) << text;
    }
    for (const char* text : {"", "-", "failed", "1", "12.5", "north", "x1", "n.a.", "no result",
                             "a text that is too long for a unit"}) {
        EXPECT_FALSE(isUnitText(text)) << text;
    }
}

TEST(UnitText, IsSplitFromANumber)
{
    using Parts = std::pair<std::string, std::string_view>;
    const std::pair<const char*, Parts> examples[] = {{"12 mm", {"12", "mm"}},
                                                      {"5%", {"5", "%"}},
                                                      {"-1.5e-3 kg/m^3", {"-1.5e-3", "kg/m^3"}},
                                                      {"1,5 \u00B0C", {"1,5", "\u00B0C"}},
                                                      {"9.81m/s2", {"9.81", "m/s2"}},
                                                      {"$ 1,200.50", {"1,200.50", "$"}},
                                                      {"3 \u20AC", {"3", "\u20AC"}},
                                                      {"7\u00A0mm", {"7", "mm"}},
                                                      {"12 [N]", {"12", "[N]"}},
                                                      {"-$5", {"-5", "$"}},
                                                      {"($1,200.50)", {"-1,200.50", "$"}},
                                                      {"CHF 3.5", {"3.5", "CHF"}},
                                                      {"1.5 +/- 0.1 mm", {"1.5", plusMinus}},
                                                      {u8"1.5\u00B10.1", {"1.5", plusMinus}}};
    for (const auto& [text, parts] : examples) {
        EXPECT_EQ(numberAndUnit(text), parts) << text;
    }
    for (const char* text : {"", "mm", "3A", "(5)", "-", "3 +/-", u8"\u00B15", "12 runs",
                             "2026-11-03", "north", "1.5", "p12", "12-Jan"}) {
        EXPECT_EQ(numberAndUnit(text), Parts(text, "")) << text;
    }
}

TEST(UnitText, LosesItsBrackets)
{
    EXPECT_EQ(unitWithoutBrackets("[MPa]"), "MPa");
    EXPECT_EQ(unitWithoutBrackets(" (1/min) "), "1/min");
    EXPECT_EQ(unitWithoutBrackets("W/(m K)"), "W/(m K)");
}

TEST(UnitText, StandsBehindTheNameOnce)
{
    EXPECT_EQ(nameWithUnit("Stress", "MPa"), "Stress (MPa)");
    EXPECT_EQ(nameWithUnit("Stress [MPa]", "MPa"), "Stress [MPa]");
    EXPECT_EQ(nameWithUnit("Yield (%)", "%"), "Yield (%)");
    EXPECT_EQ(nameWithUnit("Stress (mean)", "MPa"), "Stress (mean) (MPa)");
    EXPECT_EQ(nameWithUnit("Stress", ""), "Stress");
}
