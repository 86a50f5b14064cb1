#include <session/cases/CaseDesignColumns.h>

#include "CaseTables.h"

#include <mirel_datamanagement/Project.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {
class CaseDesignColumnsTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        project.addNumericVariable("w", Variable::Unassigned, {1, 0, missing, 2, 3});
        project.addNumericVariable("negative", Variable::Unassigned, {1, 1, -0.5, 1, 1});
        project.addNumericVariable("number", Variable::Unassigned, {2, 1, 2, 1.5, missing});
        project.addTextVariable("day", Variable::Unassigned, {"mon", "tue", "mon", "", "wed"});
    }

    Project project;
};
} // namespace

TEST_F(CaseDesignColumnsTest, NameCasesWithoutWeightAndWithoutBlock)
{
    const auto left = CaseDesignColumns{"w", "day"}.leftOut(project);

    ASSERT_EQ(left.size(), 2u);
    EXPECT_EQ(left[0].first, "w");
    EXPECT_EQ(left[0].second, (std::vector<std::size_t>{1, 2}));
    EXPECT_EQ(left[1].first, "day");
    EXPECT_EQ(left[1].second, (std::vector<std::size_t>{3}));
}

TEST_F(CaseDesignColumnsTest, GiveWeightsAndNumberBlocksByTheirFirstRecords)
{
    const CaseDesign ofTexts = CaseDesignColumns{"w", "day"}.design(project, {0, 4});
    const CaseDesign ofNumbers = CaseDesignColumns{"", "number"}.design(project, {0, 1, 2, 3});

    EXPECT_EQ(ofTexts.weights, (std::vector<double>{1, 3}));
    EXPECT_EQ(ofTexts.blocks, (std::vector<std::size_t>{0, 2}));
    EXPECT_EQ((CaseDesignColumns{"", "day"}.blockNames(project)),
              (std::vector<std::string>{"mon", "tue", "wed"}));
    EXPECT_TRUE(ofNumbers.weights.empty());
    EXPECT_EQ(ofNumbers.blocks, (std::vector<std::size_t>{0, 1, 0, 2}));
    EXPECT_EQ((CaseDesignColumns{"", "number"}.blockNames(project)),
              (std::vector<std::string>{"2", "1", "1.5"}));
}

TEST_F(CaseDesignColumnsTest, AreRefusedWithASentence)
{
    EXPECT_EQ((CaseDesignColumns{"w", "day"}.fault(project)), "");
    EXPECT_EQ((CaseDesignColumns{"negative", ""}.fault(project)),
              "The weights \"negative\" must not be negative: that of case 3 is -0.5.");
    EXPECT_EQ((CaseDesignColumns{"day", ""}.fault(project)),
              "\"day\" cannot weigh the cases, it is a column of texts.");
    EXPECT_EQ((CaseDesignColumns{"", "dag"}.fault(project)).substr(0, 32),
              "There is no variable \"dag\"; the ");
}
