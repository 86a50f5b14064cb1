#include <session/cases/VariableNames.h>

#include "MessageOf.h"

#include <session/text/SessionErrors.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {
using Positions = std::vector<std::size_t>;
} // namespace

TEST(VariableNames, ThousandsCanBeListed)
{
    std::vector<std::string> many;
    std::string list;
    for (int i = 0; i < 5000; ++i) {
        many.push_back('a' + std::to_string(i));
        list += (i == 0 ? "" : ",") + many.back();
    }

    EXPECT_EQ(VariableNames(many).listed(list).size(), 5000U);
}

TEST(VariableNames, ATabAtTheBeginningOfANameIsNotTyped)
{
    const VariableNames names({"a", "\t=1+1"});

    EXPECT_EQ(names.position("=1+1"), 1u);
    EXPECT_EQ(names.listed("=1+1,a"), (std::vector<std::size_t>{1, 0}));
    EXPECT_EQ(names.assignment("=1+1=5").first, 1u);
}

TEST(VariableNames, AListNamesVariablesInItsOrder)
{
    const VariableNames names({"a", "b", "c"});

    EXPECT_EQ(names.listed("c"), (Positions{2}));
    EXPECT_EQ(names.listed("c,a"), (Positions{2, 0}));
    EXPECT_EQ(names.listed(" b , c "), (Positions{1, 2}));
}

TEST(VariableNames, ANameThatHoldsACommaIsMatchedWholeFirst)
{
    const VariableNames names({"x", "y", "x,y", "T, inner"});

    EXPECT_EQ(names.listed("x,y"), (Positions{2}));
    EXPECT_EQ(names.listed("T, inner"), (Positions{3}));
    EXPECT_EQ(names.listed("T, inner,x"), (Positions{3, 0}));
    EXPECT_EQ(names.listed("y,T, inner"), (Positions{1, 3}));
    EXPECT_EQ(names.listed("y,x"), (Positions{1, 0}));

    const VariableNames overlapping({"a", "a,b", "b,c"});

    EXPECT_EQ(overlapping.listed("a,b,c"), (Positions{0, 2}));
}

TEST(VariableNames, AnUnknownNameGetsTheNamesAndTheNearestOne)
{
    const VariableNames names({"Pressure", "H2/WF6", "Stress"});

    EXPECT_EQ(messageOf<UsageError>([&] { names.listed("Stress,Presure"); }),
              "There is no variable \"Presure\"; the nearest name is \"Pressure\". The variables "
              "are: \"Pressure\", \"H2/WF6\", \"Stress\".");
    EXPECT_EQ(messageOf<UsageError>([&] { names.position("stress"); }),
              "There is no variable \"stress\"; the nearest name is \"Stress\". The variables are: "
              "\"Pressure\", \"H2/WF6\", \"Stress\".");
    EXPECT_EQ(messageOf<UsageError>([&] { names.listed("Stress,"); }).substr(0, 25),
              "There is no variable \"\". ");
    EXPECT_EQ(VariableNames({"Speed [rpm]", "Temp (K)"}).unknownMessage("Tmp"),
              "There is no variable \"Tmp\"; the nearest name is \"Temp (K)\". The variables are: "
              "\"Speed [rpm]\", \"Temp (K)\".");
}

TEST(VariableNames, ALongListOfNamesIsCutShort)
{
    std::vector<std::string> many(45);
    for (std::size_t i = 0; i < many.size(); ++i) {
        many[i] = 'v' + std::to_string(i);
    }

    const std::string message = VariableNames(many).unknownMessage("w44");

    EXPECT_NE(message.find("the nearest name is \"v44\""), std::string::npos);
    EXPECT_NE(message.find("\"v39\" and 5 more."), std::string::npos);
}

TEST(VariableNames, AnAssignmentHasANameAndAValue)
{
    const VariableNames names({"a", "a=b", "c"});

    EXPECT_EQ(names.assignment("c=5"), std::make_pair(std::size_t(2), std::string("5")));
    EXPECT_EQ(names.assignment("a=5"), std::make_pair(std::size_t(0), std::string("5")));
    EXPECT_EQ(names.assignment("a=b=5"), std::make_pair(std::size_t(1), std::string("5")));
    EXPECT_EQ(names.assignment("c=a=b"), std::make_pair(std::size_t(2), std::string("a=b")));
    EXPECT_EQ(names.assignment("c="), std::make_pair(std::size_t(2), std::string()));
}

TEST(VariableNames, AnAssignmentWithoutAKnownNameIsRefused)
{
    const VariableNames names({"a"});

    EXPECT_EQ(messageOf<UsageError>([&] { names.assignment("a5"); }),
              "A value needs the name before it: NAME=VALUE, not \"a5\".");
    EXPECT_EQ(messageOf<UsageError>([&] { names.assignment("b=5"); }),
              "There is no variable \"b\". The variables are: \"a\".");
    EXPECT_EQ(messageOf<UsageError>([&] { names.assignment("=5"); }).substr(0, 24),
              "There is no variable \"\".");
}
