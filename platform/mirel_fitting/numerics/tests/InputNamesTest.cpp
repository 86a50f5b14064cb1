#include <mirel_fitting/numerics/InputNames.h>

#include <gtest/gtest.h>

TEST(InputNames, AreSymbolsWithoutNames)
{
    const InputNames symbols;

    EXPECT_EQ(symbols.input(1), "V2");
    EXPECT_EQ(symbols.product(0, 1), "V1 V2");
    EXPECT_EQ(symbols.product(2, 2), "V3^2");
}

TEST(InputNames, AreInQuotes)
{
    const InputNames names({"Pressure", "H2/WF6"});

    EXPECT_EQ(names.input(1), "\"H2/WF6\"");
    EXPECT_EQ(names.product(0, 1), "\"Pressure\" * \"H2/WF6\"");
    EXPECT_EQ(names.product(0, 0), "\"Pressure\"^2");
}

TEST(InputNames, AreListed)
{
    EXPECT_EQ(InputNames().list({0, 2}), "V1 and V3");
}
