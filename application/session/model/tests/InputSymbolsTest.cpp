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
