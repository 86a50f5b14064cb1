#include <session/model/InputSymbols.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {
const std::vector<std::string> names = {"Pressure", "H2/WF6"};
} // namespace

TEST(InputSymbols, SentencesGetTheNamesOfTheInputs)
{
    EXPECT_EQ(withInputNames("The term V1 V2 is dropped, V1^2 too.", names),
              "The term \"Pressure\" * \"H2/WF6\" is dropped, \"Pressure\"^2 too.");
}

TEST(InputSymbols, WordsThatAreNoSymbolsStay)
{
    EXPECT_EQ(withInputNames("V3, V0, V, V12x and AV1 are none.", names),
              "V3, V0, V, V12x and AV1 are none.");
}

TEST(InputSymbols, TermsGetTheNamesOfTheInputs)
{
    EXPECT_EQ(termWithInputNames("1", names), "intercept");
    EXPECT_EQ(termWithInputNames("V2", names), "H2/WF6");
    EXPECT_EQ(termWithInputNames("V1^2", names), "Pressure^2");
    EXPECT_EQ(termWithInputNames("V1 V2", names), "Pressure * H2/WF6");
}

TEST(InputSymbols, ATermOfAnotherInputStays)
{
    EXPECT_EQ(termWithInputNames("V3", names), "V3");
    EXPECT_EQ(termWithInputNames("V", names), "V");
    EXPECT_EQ(termWithInputNames("", names), "");
}
