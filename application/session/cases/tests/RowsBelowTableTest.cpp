#include <session/cases/RowsBelowTable.h>

#include <gtest/gtest.h>

#include <string_view>
#include <vector>

namespace {
using Cells = std::vector<std::string_view>;
using FirstColumn = RowsBelowTable::FirstColumn;

class RowsBelowTableTest : public ::testing::Test
{
protected:
    bool isHeldBack(const Cells& cells, FirstColumn firstColumn = FirstColumn::Values)
    {
        return rows().holdBack(cells, 7, 3, firstColumn);
    }

    RowsBelowTable rows() const { return RowsBelowTable(reader, options); }

    ReadingOptions options;
    CellReader reader{options, CaseFileLayout()};
};
} // namespace

TEST_F(RowsBelowTableTest, AreEmptyOnesRemarksAndSums)
{
    const Cells heldBack[] = {
        {"", "", ""}, {"", ""}, {"measured twice"}, {"", "", "checked"}, {"Total:", "3", "4"}};
    for (const Cells& cells : heldBack) {
        EXPECT_TRUE(isHeldBack(cells)) << cells.back();
    }
    const Cells cases[] = {{"1", "2", "3"},
                           {"1", "", ""},
                           {"a", "2", ""},
                           {"late", "late", "failed"},
                           {"a", "", "", "b"}};
    for (const Cells& cells : cases) {
        EXPECT_FALSE(isHeldBack(cells)) << cells.back();
    }
}

TEST_F(RowsBelowTableTest, AreNoRowsWithALabelWhereTheFirstColumnHasLabels)
{
    EXPECT_FALSE(isHeldBack({"s4", "", "failed"}, FirstColumn::Labels));
    EXPECT_FALSE(isHeldBack({"total", "3", "4"}, FirstColumn::Labels));
    EXPECT_TRUE(isHeldBack({"total", "", "see below"}, FirstColumn::Labels));
}

TEST_F(RowsBelowTableTest, AreThoseWithATextWhereTheFirstColumnCounts)
{
    EXPECT_TRUE(isHeldBack({"late", "2", "3"}, FirstColumn::CaseNumbers));
    EXPECT_FALSE(isHeldBack({"late", "2", "3"}));
}

TEST_F(RowsBelowTableTest, AreThoseWithoutALabelWhereEachCaseHasOne)
{
    for (const FirstColumn firstColumn : {FirstColumn::CaseNumbers, FirstColumn::LabelsOfEach}) {
        EXPECT_TRUE(isHeldBack({"", "2", "3"}, firstColumn));
    }
    EXPECT_FALSE(isHeldBack({"", "2", "3"}, FirstColumn::Labels));
    EXPECT_FALSE(isHeldBack({"", "2", "3"}, FirstColumn::Values));
    EXPECT_FALSE(isHeldBack({"s4", "2", "3"}, FirstColumn::LabelsOfEach));
}

TEST_F(RowsBelowTableTest, FiguresHaveTheirNamesInFront)
{
    for (const char* cell : {"Mean", "total:", "Std Dev", "CV%", u8"\u00C9cart-type"}) {
        EXPECT_TRUE(RowsBelowTable::namesFigures(cell)) << cell;
    }
    for (const char* cell : {"", "1", "meander", "s4", "-"}) {
        EXPECT_FALSE(RowsBelowTable::namesFigures(cell)) << cell;
    }
}

TEST_F(RowsBelowTableTest, AreNoneOfPointsOrWhereEveryCellCounts)
{
    options.isStrict = true;
    EXPECT_FALSE(isHeldBack({"measured twice"}));
    options.isStrict = false;
    options.keepCells = true;
    EXPECT_FALSE(isHeldBack({"", "", "checked"}));
    EXPECT_TRUE(isHeldBack({"measured twice"}));
}

TEST_F(RowsBelowTableTest, ComeBackInTheirOrderWhereACaseFollows)
{
    RowsBelowTable below = rows();
    below.holdBack({"", "", ""}, 4, 3, FirstColumn::Values);
    below.holdBack({"pause"}, 5, 3, FirstColumn::Values);
    below.holdBack({"", "", ""}, 6, 3, FirstColumn::Values);

    EXPECT_EQ(below.filledRows(), 1u);
    below.removeEmptyRowsAtEnd();
    const std::vector<RowsBelowTable::Row> released = below.release();

    ASSERT_EQ(released.size(), 2u);
    EXPECT_TRUE(released[0].cells.empty());
    EXPECT_EQ(released[1].cells, (std::vector<std::string>{"pause"}));
    EXPECT_EQ(released[1].line, 5u);
    EXPECT_EQ(below.filledRows(), 0u);
}
