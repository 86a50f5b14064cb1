#include <session/cases/CaseRoles.h>

#include "MessageOf.h"

#include <session/text/SessionErrors.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {
using Positions = std::vector<std::size_t>;

CaseTable tableOf(const std::vector<std::string>& numericNames)
{
    CaseTable table;
    table.path = "cases.csv";
    for (const std::string& name : numericNames) {
        table.columns.emplace_back();
        table.columns.back().name = name;
    }
    return table;
}

CaseTable withText()
{
    CaseTable table = tableOf({"a", "site", "b", "c"});
    table.columns[1].isNumeric = false;
    table.columns[1].withoutNumber.spellings = {"north"};
    table.columns[1].withoutNumber.firstLine = 2;
    return table;
}

std::string refusalOf(const std::vector<std::string>& inputs,
                      const std::vector<std::string>& outputs)
{
    return messageOf<UsageError>([&] { chooseCaseRoles(withText(), inputs, outputs); });
}
} // namespace

TEST(CaseRoles, KeepTheOrderInWhichTheyAreNamed)
{
    const CaseRoles roles = chooseCaseRoles(withText(), {"c", "a"}, {"b"});

    EXPECT_EQ(roles.inputs, (Positions{3, 0}));
    EXPECT_EQ(roles.outputs, (Positions{2}));

    const CaseRoles listed = chooseCaseRoles(tableOf({"p", "q", "p,q", "r"}), {"p,q"}, {"r,q"});

    EXPECT_EQ(listed.inputs, (Positions{2}));
    EXPECT_EQ(listed.outputs, (Positions{3, 1}));
}

TEST(CaseRoles, WithoutInputsEveryNumericColumnThatIsNoOutputIsOne)
{
    const CaseRoles roles = chooseCaseRoles(withText(), {}, {"b"});

    EXPECT_EQ(roles.inputs, (Positions{0, 3}));

    const CaseRoles none = chooseCaseRoles(withText(), {}, {});

    EXPECT_TRUE(none.outputs.empty());
    EXPECT_EQ(none.inputs, (Positions{0, 2, 3}));
}

TEST(CaseRoles, RefusesTextColumnsTwoRolesAndUnknownNames)
{
    EXPECT_EQ(refusalOf({"site"}, {"b"}),
              "\"site\" cannot be an input, it is a text column: line 2 of cases.csv holds "
              "\"north\".");
    EXPECT_EQ(refusalOf({}, {"site"}),
              "\"site\" cannot be an output, it is a text column: line 2 of cases.csv holds "
              "\"north\".");
    EXPECT_EQ(refusalOf({"a", "b"}, {"b"}), "\"b\" cannot be both output and input.");
    EXPECT_EQ(refusalOf({"a,a"}, {"b"}), "\"a\" is named twice as input.");
    EXPECT_EQ(refusalOf({"sit"}, {"b"}),
              "There is no variable \"sit\"; the nearest name is \"site\". The variables are: "
              "\"a\", \"site\", \"b\", \"c\".");
}

TEST(CaseRoles, ThoseThatArePresentStayWhereNoNameIsGiven)
{
    const CaseTable table = tableOf({"a", "b", "c", "d"});
    const CaseRoles present = {{2, 0}, {1}};

    const CaseRoles otherOutput = chooseCaseRoles(table, {}, {"c"}, present);
    EXPECT_EQ(otherOutput.inputs, (Positions{0}));
    EXPECT_EQ(otherOutput.outputs, (Positions{2}));

    const CaseRoles otherInputs = chooseCaseRoles(table, {"d", "b"}, {}, present);
    EXPECT_EQ(otherInputs.inputs, (Positions{3, 1}));
    EXPECT_TRUE(otherInputs.outputs.empty());
}
