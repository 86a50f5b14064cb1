#include <session/cases/CaseRoles.h>

#include "CaseTables.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace {
using Numbers = std::vector<double>;
using Positions = std::vector<std::size_t>;

const Numbers spread = {4, 1.5, 9, 2, 7, 3};
const Numbers other = {0.3, 2, 0.1, 5, 1, 4};
const Numbers response = {1, 8, 2, 2.5, 9, 0};

CaseTable tableWith(const std::string& name, const Numbers& numbers)
{
    return tableOf({{name, numbers}, {"a", spread}, {"Mass", response}});
}

/** Why the column is no input; "" if it is one. */
std::string reasonAgainst(const std::string& name, const Numbers& numbers,
                          const std::string& output = "Mass")
{
    const ColumnRole role = chooseCaseRoles(tableWith(name, numbers), {}, {output}).columns.front();
    EXPECT_EQ(role.role == ColumnRole::Input, role.reason.empty());
    return role.reason;
}

std::string reasonOfTexts(const std::vector<std::string>& spellings)
{
    CaseTable table = tableWith("When", spread);
    table.columns[0].isNumeric = false;
    table.columns[0].numbers.clear();
    table.columns[0].withoutNumber.spellings = spellings;
    return chooseCaseRoles(table, {}, {"Mass"}).columns.front().reason;
}

struct Example
{
    std::string name;
    Numbers numbers;
    std::string reason;
};

std::ostream& operator<<(std::ostream& stream, const Example& example)
{
    return stream << example.name;
}

class ColumnRoleOfNumbers : public ::testing::TestWithParam<Example>
{};
} // namespace

TEST_P(ColumnRoleOfNumbers, HasItsReason)
{
    EXPECT_EQ(reasonAgainst(GetParam().name, GetParam().numbers), GetParam().reason);
}

INSTANTIATE_TEST_SUITE_P(
    NoInput, ColumnRoleOfNumbers,
    ::testing::Values(
        Example{"Zaehler", {1, 2, 3, 4, 5, 6}, "counts up by one, from 1 to 6"},
        Example{"b", {0, 1, std::nan(""), 3, 4, 5}, "counts up by one, from 0 to 5"},
        Example{"b", {101, 102, 103, 104, 105, 106}, "counts up by one, from 101 to 106"},
        Example{"Run No.", {4, 2, 6, 1, 3, 5}, "numbers the cases, from 1 to 6"},
        Example{"b", {5, 5, 5, std::nan(""), 5, 5}, "the same in every case, 5"},
        Example{"b", Numbers(6, std::nan("")), "no number in it"},
        Example{"b",
                {19580329, 19580412, 19580229, 19600101, 19580331, 19591231},
                "dates written as numbers, from 19580229 to 19600101"},
        Example{"Time [s]", {0, 0.5, 1, 1.5, 2, 2.5}, "times that only ascend, from 0 to 2.5"},
        Example{
            "PartNo", {4711, 4718, 4720, 4731, 4740, 4799}, "numbers the cases, from 4711 to 4799"},
        Example{"Rep", {1, 2, 3, 1, 2, 3}, "numbers the repeats"},
        Example{"Block", {1, 1, 1, 2, 2, 2}, "blocks by its name, which may have a mean each"},
        Example{"RESI1", spread, "a figure of another fit by its name"},
        Example{"PtType", {1, 1, 0, 0, -1, -1}, "says which kind of point a case is"},
        Example{"b",
                {1, 3, std::nan(""), std::nan(""), std::nan(""), std::nan("")},
                "lacks a number in 4 of 6 cases"},
        Example{"Year",
                {1951, 1952, 1955, 1956, 1960, 1961.5},
                "years that only ascend, from 1951 to 1961.5"}));

INSTANTIATE_TEST_SUITE_P(
    Input, ColumnRoleOfNumbers,
    ::testing::Values(
        Example{"b", {1, 2, 3, 4, 5, 7}, ""}, Example{"b", {0.1, 0.2, 0.3, 0.4, 0.5, 0.6}, ""},
        Example{"b", {2, 4, 6, 8, 10, 12}, ""}, Example{"b", {4, 2, 6, 1, 3, 5}, ""},
        Example{"No", {1, 1, 2, 2, 3, 3}, ""}, Example{"Run", {0.5, 2, 1, 4, 3, 6}, ""},
        Example{"year", {1951, 1951, 1955, 1956, 1960, 1961}, ""},
        Example{"year", {70, 71, 73, 76, 77, 79}, ""},
        Example{"b", {1951, 1952, 1955, 1956, 1960, 1961}, ""},
        Example{"b", {19580329, 19581301, 19580412, 19600101, 19590101, 19610101}, ""},
        Example{"time", {1, 1, 2, 3, 4, 5}, ""},
        Example{"Reynolds No.", {4000, 2000, 6000, 1000, 3000, 5000}, ""},
        Example{"solid", {1000, 2000, 3000, 4100, 5000, 6000}, ""},
        Example{"b", {1, 1, 1, 1, 1, 2}, ""}));

TEST(ColumnRole, YBetweenOtherColumnsIsACoordinate)
{
    const CaseTable table =
        tableOf({{"X", {1, 1, 2, 2, 3, 3}}, {"Y", {1, 2, 1, 2, 1, 2}}, {"T", response}});

    EXPECT_EQ(chooseCaseRoles(table, {}, {}, UnnamedOutputs::Suggested).outputs, (Positions{2}));
}

TEST(ColumnRole, FourNumbersInAscendingOrderAreNoRunNumbers)
{
    const CaseTable table =
        tableOf({{"b", {1, 2, 3, 4}}, {"a", {4, 1, 3, 7}}, {"y", {1, 5, 2, 6}}});

    EXPECT_EQ(chooseCaseRoles(table, {}, {"y"}).inputs, (Positions{0, 1}));
}

TEST(ColumnRole, AColumnNamedLikeTheOutputIsAnotherOutput)
{
    EXPECT_EQ(reasonAgainst("Mass_2", other), "named like the output \"Mass\"");
    EXPECT_EQ(reasonAgainst("Mass flow", other), "");
    CaseTable responses = tableWith("Response 1 Yield %", other);
    responses.columns[2].name = "Response 2 Mass";
    EXPECT_EQ(chooseCaseRoles(responses, {}, {"Response 2 Mass"}).columns.front().reason,
              "named like the output \"Response 2 Mass\"");
    EXPECT_EQ(chooseCaseRoles(responses, {}, {}, UnnamedOutputs::Suggested).outputs,
              (Positions{0, 2}));
}

TEST(ColumnRole, FiguresOfTheOutputAreNoInputs)
{
    EXPECT_EQ(reasonAgainst("Mass_sd", other), "a figure of the output \"Mass\" by its name");
    EXPECT_EQ(reasonAgainst("Error", other), "a figure of another fit by its name");
    const CaseRoles convergence = chooseCaseRoles(
        tableOf({{"h", {1, 2, 1, 2, 1, 2}}, {"step", {1, 1, 2, 2, 3, 3}}, {"error", response}}), {},
        {}, UnnamedOutputs::Suggested);
    EXPECT_EQ(convergence.outputs, Positions{2});
}

TEST(ColumnRole, AFirstColumnOfDifferentWholeNumbersWithoutANameNumbersTheCases)
{
    const Numbers rows = {17, 4, 230, 8, 51, 96};
    CaseTable table = tableWith("C1", rows);
    table.columns[0].isNamed = false;

    EXPECT_EQ(chooseCaseRoles(table, {}, {"Mass"}).columns.front().reason,
              "numbers the cases, from 4 to 230");
    EXPECT_EQ(reasonAgainst("C1", rows), "");
}

TEST(ColumnRole, WhereAllColumnsAreNamedLikeTheOutputTheNameSaysNothing)
{
    const CaseTable table = tableOf({{"C1", spread}, {"C2", other}, {"C3", response}});

    const CaseRoles roles = chooseCaseRoles(table, {}, {"C3"});

    EXPECT_EQ(roles.inputs, (Positions{0, 1}));
    EXPECT_EQ(roles.columns[0].reason, "");
}

TEST(ColumnRole, AMultipleOfTheOutputIsAnotherOutput)
{
    Numbers multiple;
    Numbers line;
    Numbers almost;
    for (const double value : response) {
        multiple.push_back(0.145 * value);
        line.push_back(32 - 1.8 * value);
        almost.push_back(value + (almost.empty() ? 0.001 : 0.0));
    }
    EXPECT_EQ(reasonAgainst("b", multiple), "equals 0.145 times \"Mass\", an output");
    EXPECT_EQ(reasonAgainst("b", line), "equals -1.8 times \"Mass\" + 32, an output");
    EXPECT_EQ(reasonAgainst("b", response), "equals \"Mass\", an output");

    Numbers exponential;
    for (const double value : response) {
        exponential.push_back(std::exp(0.5 * value));
    }
    exponential[3] *= 1.0001; // rounded to four digits
    EXPECT_EQ(reasonAgainst("b", exponential), "follows from \"Mass\", an output, by a logarithm");
    EXPECT_EQ(reasonAgainst("b", almost), "");
}

TEST(ColumnRole, AnOutputOfFewValuesEqualsNothing)
{
    const CaseTable table =
        tableOf({{"b", {0, 1, 0, 1, 0, 1}}, {"a", spread}, {"y", {5, 7, 5, 7, 5, 7}}});

    EXPECT_EQ(chooseCaseRoles(table, {}, {"y"}).inputs, (Positions{0, 1}));
}

TEST(ColumnRole, TextsAreToldFromDatesAndTimes)
{
    EXPECT_EQ(reasonOfTexts({"31.01.2024 12:30", "1.2.2024 08:00"}), "dates or times");
    EXPECT_EQ(reasonOfTexts({"north", "2024-01-31"}), "text, such as \"north\"");
}

TEST(ColumnRole, WhatIsNamedIsAnInputWhateverItHolds)
{
    const CaseRoles roles =
        chooseCaseRoles(tableWith("Run", {1, 2, 3, 4, 5, 6}), {"Run"}, {"Mass"});

    EXPECT_EQ(roles.inputs, (Positions{0}));
    EXPECT_EQ(roles.columns[0].reason, "");
}

TEST(ColumnRole, RunNumbersAreAnInputIfThereIsNoOther)
{
    const CaseTable table = tableOf({{"t", {1, 2, 3, 4, 5, 6}}, {"y", response}});

    const CaseRoles roles = chooseCaseRoles(table, {}, {"y"});

    EXPECT_EQ(roles.inputs, (Positions{0}));
    EXPECT_EQ(roles.columns[0].reason, "counts up by one, from 1 to 6; an input all the same, "
                                       "since no other column can be one");
}

TEST(ColumnRole, RunNumbersWithoutANameAreNeverAnInput)
{
    CaseTable table = tableOf({{"C1", {1, 2, 3, 4, 5, 6}}, {"y", response}});
    table.columns[0].isNamed = false;

    EXPECT_TRUE(chooseCaseRoles(table, {}, {"y"}).inputs.empty());
}

TEST(ColumnRole, WithoutAnOutputTheOnlyCandidateIsOne)
{
    const CaseTable table = tableOf({{"t", {1, 2, 3, 4, 5, 6}}, {"Mass", response}});

    const CaseRoles roles = chooseCaseRoles(table, {}, {}, UnnamedOutputs::Suggested);

    EXPECT_EQ(roles.outputs, (Positions{1}));
    EXPECT_EQ(roles.inputs, chooseCaseRoles(table, {}, {"Mass"}).inputs);
    EXPECT_EQ(roles.columns[1].reason, "suggested: no other column can be one");
}

TEST(ColumnRole, OutputsAreSuggestedOnlyWhereThatIsAskedFor)
{
    const CaseTable table = tableWith("b", other);

    EXPECT_TRUE(chooseCaseRoles(table, {}, {}).outputs.empty());
    EXPECT_EQ(chooseCaseRoles(table, {}, {"a"}, UnnamedOutputs::Suggested).outputs, (Positions{1}));
}

TEST(ColumnRole, OutputsAreSuggestedByName)
{
    const CaseRoles roles =
        chooseCaseRoles(tableOf({{"y1", response}, {"y2", other}, {"a", spread}}), {}, {},
                        UnnamedOutputs::Suggested);

    EXPECT_EQ(roles.outputs, (Positions{0, 1}));
    EXPECT_EQ(roles.inputs, (Positions{2}));
    EXPECT_EQ(roles.columns[0].reason, "suggested by its name");
}

TEST(ColumnRole, OutputsAreSuggestedWhereValuesHardlyRepeat)
{
    const Numbers levels = {1, 2, 1, 2, 1, 2};
    const CaseRoles roles = chooseCaseRoles(
        tableOf({{"a", levels}, {"b", levels}, {"Stress", other}, {"Mass", response}}), {}, {},
        UnnamedOutputs::Suggested);

    EXPECT_EQ(roles.outputs, (Positions{2, 3}));
    EXPECT_EQ(roles.columns[2].reason, "suggested: its values hardly repeat");
}

TEST(ColumnRole, WhetherARunConvergedIsNoOutput)
{
    CaseTable table = tableOf({{"a", {1, 1, 2, 2, 3, 3}}, {"b", response}, {"converged", spread}});
    table.layout.truthValues = {"converged"};

    const CaseRoles roles = chooseCaseRoles(table, {}, {}, UnnamedOutputs::Suggested);

    EXPECT_EQ(roles.outputs, (Positions{1}));
    EXPECT_EQ(roles.columns[2].reason, ColumnRoles::behindOutput);
}

TEST(ColumnRole, ColumnsWhoseValuesHardlyRepeatArePointedOutBesideTheOutput)
{
    const CaseTable table = tableOf({{"a", {1, 1, 2, 2, 3, 3}}, {"b", other}, {"Mass", response}});

    EXPECT_EQ(chooseCaseRoles(table, {}, {"Mass"}).columns[1].reason, ColumnRoles::likeOutput);
    EXPECT_EQ(chooseCaseRoles(table, {"a", "b"}, {"Mass"}).columns[1].reason, "");
    EXPECT_EQ(reasonAgainst("b", other), "") << "where the first column hardly repeats, too";
}

TEST(ColumnRole, OtherwiseTheLastColumnIsSuggested)
{
    const CaseRoles roles =
        chooseCaseRoles(tableWith("b", other), {}, {}, UnnamedOutputs::Suggested);

    EXPECT_EQ(roles.outputs, (Positions{2}));
    EXPECT_EQ(roles.columns[2].reason, "suggested, as the last one");
}
