#include <session/text/DecimalText.h>

#include <gtest/gtest.h>

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>

TEST(DecimalText, IsTheShortestThatReadsBackAsTheSameDouble)
{
    EXPECT_EQ(numberText(0.1), "0.1");
    EXPECT_EQ(numberText(0.1 + 0.2), "0.30000000000000004");
    EXPECT_EQ(numberText(1.0 / 3.0), "0.3333333333333333");
    EXPECT_EQ(numberText(-2.5e-8), "-2.5e-08");
    EXPECT_EQ(numberText(1000000.0), "1000000");
    EXPECT_EQ(numberText(-100000.0), "-100000");
    EXPECT_EQ(numberText(999999999999999.0), "999999999999999");
    EXPECT_EQ(numberText(1e15), "1e+15");
    EXPECT_EQ(numberText(0.0), "0");
    EXPECT_EQ(numberText(-0.0), "-0");
    EXPECT_EQ(numberText(std::numeric_limits<double>::infinity()), "inf");
    EXPECT_EQ(numberText(std::nan("")), "nan");
}

TEST(DecimalText, RandomBitPatternsReadBackTheSame)
{
    std::mt19937_64 random(7);
    for (int i = 0; i < 20000; ++i) {
        const std::uint64_t bits = random();
        double number = 0.0;
        std::memcpy(&number, &bits, sizeof number);
        if (!std::isfinite(number)) {
            continue;
        }
        const std::string text = numberText(number);
        double back = 0.0;
        std::from_chars(text.data(), text.data() + text.size(), back);
        std::uint64_t backBits = 0;
        std::memcpy(&backBits, &back, sizeof back);
        ASSERT_EQ(backBits, bits) << text;
    }
}

TEST(DecimalText, AFigureInASentenceHasFourDigits)
{
    EXPECT_EQ(shownFigure(0.123456), "0.1235");
    EXPECT_EQ(shownFigure(-9999.4), "-9999");
    EXPECT_EQ(shownFigure(123456.7), "123500");
    EXPECT_EQ(shownFigure(99996.0), "100000");
    EXPECT_EQ(shownFigure(1.5e-7), "1.5e-07");
    EXPECT_EQ(shownFigure(-12345678.0), "-1.235e+07");
    EXPECT_EQ(shownFigure(std::nan("")), "-");
    EXPECT_EQ(shownNumber(std::nan("")), "-");
    EXPECT_EQ(shownNumber(HUGE_VAL), "-");
    EXPECT_EQ(shownNumber(-HUGE_VAL), "-");
}

TEST(DecimalText, DecimalsLoseTheErrorsOfArithmeticOnly)
{
    const auto shown = [](double number, double scale) {
        return numberText(nearbyDecimal(number, scale));
    };
    EXPECT_EQ(shown(0.1 + 0.2, 0.3), "0.3");
    EXPECT_EQ(shown(0.1 + 0.2 - 0.3, 0.3), "0");
    EXPECT_EQ(shown(0.49249999999999994, 0.885), "0.4925");
    EXPECT_EQ(shown(1.0 / 3.0, 1.0 / 3.0), "0.3333333333333333");
    EXPECT_EQ(shown(-1e300 / 3.0, 1e300), "-3.3333333333333335e+299");
    EXPECT_EQ(shown(3e-320, 3e-320), "3e-320");
    EXPECT_EQ(shown(0.0, 0.0), "0");
    EXPECT_EQ(shown(std::nan(""), 1.0), "nan");
}

TEST(DecimalText, ASmallProbabilityIsBelowABound)
{
    EXPECT_EQ(shownProbability(0.012345), "0.01235");
    EXPECT_EQ(shownProbability(0.0001), "0.0001");
    EXPECT_EQ(shownProbability(0.00009), "< 0.0001");
    EXPECT_EQ(shownProbability(0.0), "< 0.0001");
    EXPECT_EQ(probabilityText(0.5), "p = 0.5");
    EXPECT_EQ(probabilityText(1e-9), "p < 0.0001");
}
