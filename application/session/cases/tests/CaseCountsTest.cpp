#include <session/cases/CaseCounts.h>

#include "CaseTables.h"

#include <mirel_datamanagement/Project.h>

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace {
constexpr double infinite = std::numeric_limits<double>::infinity();
using Numbers = std::vector<std::size_t>;

class CaseCountsTest : public ::testing::Test
{
protected:
    Project project;
    VarPtr x1 = project.addNumericVariable("x1", Variable::Independent, {1, missing, 3, 4, 5, 6});
    VarPtr x2 =
        project.addNumericVariable("x2", Variable::Independent, {1, missing, 3, infinite, 5, 6});
    VarPtr y1 = project.addNumericVariable("y1", Variable::Dependent, {1, 2, missing, 4, 5, 6});
    VarPtr y2 = project.addNumericVariable("y2", Variable::Dependent, {1, 2, 3, 4, 5, missing});
};
} // namespace

TEST_F(CaseCountsTest, AnyMissingOrInfiniteValueMakesACaseInvalid)
{
    const CaseCounts counts = countCases(project, {x1, x2}, {y1, y2}, {});

    EXPECT_EQ(counts.read, 6u);
    EXPECT_EQ(counts.valid, 2u);
    EXPECT_EQ(counts.excluded, 0u);
    EXPECT_EQ(counts.invalid, 4u);
    EXPECT_EQ(counts.invalidByInput, (Numbers{1, 2}));
    EXPECT_EQ(counts.invalidByOutput, (Numbers{1, 1}));
    EXPECT_EQ(counts.validAlone, (Numbers{3, 3}));
}

TEST_F(CaseCountsTest, AnExcludedCaseIsNotInvalidToo)
{
    const CaseCounts counts = countCases(project, {x1, x2}, {y1, y2}, {0, 1});

    EXPECT_EQ(counts.valid, 1u);
    EXPECT_EQ(counts.excluded, 2u);
    EXPECT_EQ(counts.invalid, 3u);
    EXPECT_EQ(counts.invalidByInput, (Numbers{0, 1}));
    EXPECT_EQ(counts.validAlone, (Numbers{2, 2}));
}

TEST_F(CaseCountsTest, WithoutVariablesEveryCaseIsValid)
{
    EXPECT_EQ(countCases(project, {}, {}, {}).valid, 6u);
}

TEST_F(CaseCountsTest, InputsAreSweptOverTheirRangeInTheValidCases)
{
    using Range = std::pair<double, double>;

    EXPECT_EQ(sweepRange(project, x1, {2, 3}), Range(3.0, 4.0));
    EXPECT_EQ(sweepRange(project, x1, {}), Range(1.0, 6.0));
    project.setRange(x1, {-1.0, 10.0});
    EXPECT_EQ(sweepRange(project, x1, {2, 3}), Range(-1.0, 10.0)) << "as the user chose";
}

TEST_F(CaseCountsTest, ValidCasesAreThoseWithoutAnyLack)
{
    EXPECT_EQ(validCases(project, {x1, x2}, {y1, y2}, {}), (Numbers{0, 4}));
    EXPECT_EQ(validCases(project, {x1}, {y1}, {0}), (Numbers{3, 4, 5}));
}
