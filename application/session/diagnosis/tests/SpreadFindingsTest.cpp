#include <session/diagnosis/SpreadFindings.h>

#include "SampleCases.h"

#include <gtest/gtest.h>

namespace {
/** The upper half of the cases lies further up in both inputs. */
DiagnosedCases groups(std::size_t count, std::size_t inLower, double distance)
{
    std::vector<double> first = spread(count);
    std::vector<double> second = otherSpread(count);
    for (std::size_t row = inLower; row < count; ++row) {
        first[row] += distance;
        second[row] += distance;
    }
    return casesOf({{"a", first}, {"b", second}});
}
} // namespace

TEST(SpreadFindings, TwoGroupsOfCasesAreClusters)
{
    EXPECT_EQ(
        textsOf(SpreadFindings::find(groups(60, 25, 4.0))),
        (Texts{"clusters: The cases form two groups, of 25 and 35, that lie apart in a and b: "
               "predictions between them rest on the model's form alone; add cases there or "
               "model each group by itself."}));
}

TEST(SpreadFindings, ASingleCaseFarAwayIsLonely)
{
    const Finding finding = onlyOf(SpreadFindings::find(groups(40, 39, 2.0)));
    EXPECT_EQ(finding.kind, "lonelyCases");
    EXPECT_EQ(finding.text.substr(0, 44), "Case 40 lies far from all others in a and b:");
}

TEST(SpreadFindings, OfASampleOnlySharesAreKnown)
{
    DiagnosedCases sampled = groups(60, 25, 4.0);
    sampled.isSample = true;
    EXPECT_EQ(SpreadFindings::find(sampled).at(0).text.substr(0, 55),
              "The cases form two groups, of about 42 % and 58 %, that");

    sampled = groups(40, 39, 2.0);
    sampled.isSample = true;
    EXPECT_EQ(SpreadFindings::find(sampled).size(), 0u) << "others may lie beside it";
}

TEST(SpreadFindings, EvenlySpreadCasesAndLevelsAreNoClusters)
{
    EXPECT_EQ(SpreadFindings::find(groups(60, 60, 0.0)).size(), 0u);

    DiagnosedCases cases = groups(60, 60, 0.0);
    DiagnosedCases::Column kind = {"kind", {}};
    for (std::size_t row = 0; row < 60; ++row) {
        kind.values.push_back(row % 2 == 0 ? 0.0 : 100.0);
    }
    cases.inputs.push_back(kind);

    EXPECT_EQ(SpreadFindings::find(cases).size(), 0u);
}
