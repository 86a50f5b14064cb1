#include <surrogatemodel/ColumnMemory.h>

#include <vtkDoubleArray.h>
#include <vtkNew.h>
#include <vtkSmartPointer.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <optional>

namespace {

const vtkIdType manyRows = 200000;
const std::size_t manyBytes = manyRows * sizeof(double);

vtkSmartPointer<vtkDoubleArray> columnIn(ColumnMemory& memory, vtkIdType rows = manyRows)
{
    auto column = vtkSmartPointer<vtkDoubleArray>::New();
    memory.makeRoom(*column, rows);
    return column;
}

TEST(ColumnMemory, GivesAColumnRoomForItsValues)
{
    ColumnMemory memory;

    const vtkSmartPointer<vtkDoubleArray> column = columnIn(memory);
    std::fill_n(column->GetPointer(0), manyRows, 3.0);

    EXPECT_EQ(column->GetNumberOfTuples(), manyRows);
    EXPECT_EQ(column->GetValue(manyRows - 1), 3.0);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(column->GetPointer(0)) % 64, 0u);
}

TEST(ColumnMemory, LeavesSmallColumnsToThemselves)
{
    ColumnMemory memory;

    EXPECT_EQ(columnIn(memory, 1000)->GetNumberOfTuples(), 0);
    EXPECT_EQ(columnIn(memory, 0)->GetNumberOfTuples(), 0);
    EXPECT_EQ(memory.spareBytes(), 0u);
}

TEST(ColumnMemory, GivesTheMemoryOfAColumnThatHasGoneToTheNextOfItsSize)
{
    ColumnMemory memory;
    const ColumnMemory::Reuse reuse(memory);
    vtkSmartPointer<vtkDoubleArray> first = columnIn(memory);
    const double* const values = first->GetPointer(0);

    first = nullptr;
    EXPECT_EQ(memory.spareBytes(), manyBytes);
    // Takes the place if the system has it back.
    ColumnMemory others;
    const vtkSmartPointer<vtkDoubleArray> decoy = columnIn(others);
    const vtkSmartPointer<vtkDoubleArray> next = columnIn(memory);

    EXPECT_EQ(next->GetPointer(0), values);
    EXPECT_NE(decoy->GetPointer(0), values);
    EXPECT_EQ(memory.spareBytes(), 0u);
}

TEST(ColumnMemory, KeepsNothingThatComesBackWhereItIsNotWanted)
{
    ColumnMemory memory;
    columnIn(memory);
    EXPECT_EQ(memory.spareBytes(), 0u);
    vtkSmartPointer<vtkDoubleArray> later = columnIn(memory);
    {
        const ColumnMemory::Reuse reuse(memory);
        columnIn(memory);
        EXPECT_EQ(memory.spareBytes(), manyBytes);
    }

    later = nullptr;

    EXPECT_EQ(memory.spareBytes(), 0u);
}

TEST(ColumnMemory, ReturnsWhatIsSpareBeforeItTakesMemoryOfAnotherSize)
{
    ColumnMemory memory;
    const ColumnMemory::Reuse reuse(memory);
    columnIn(memory);

    const vtkSmartPointer<vtkDoubleArray> other = columnIn(memory, manyRows + 1);

    EXPECT_EQ(memory.spareBytes(), 0u);
}

TEST(ColumnMemory, KeepsTheValuesOfWhoeverSharesThem)
{
    ColumnMemory memory;
    const ColumnMemory::Reuse reuse(memory);
    vtkSmartPointer<vtkDoubleArray> column = columnIn(memory);
    std::fill_n(column->GetPointer(0), manyRows, 3.0);
    vtkNew<vtkDoubleArray> sharing;
    sharing->ShallowCopy(column);

    column = nullptr;
    std::fill_n(columnIn(memory)->GetPointer(0), manyRows, 4.0);

    EXPECT_EQ(sharing->GetValue(0), 3.0);
    EXPECT_EQ(sharing->GetValue(manyRows - 1), 3.0);
}

TEST(ColumnMemory, FreesWhatIsSpareAtLastAndNothingElse)
{
    ColumnMemory memory;
    std::optional<ColumnMemory::Reuse> reuse(memory);
    const vtkSmartPointer<vtkDoubleArray> kept = columnIn(memory);
    kept->SetValue(7, 3.0);
    columnIn(memory);
    ASSERT_EQ(memory.spareBytes(), manyBytes);

    reuse.reset();

    EXPECT_EQ(memory.spareBytes(), 0u);
    EXPECT_EQ(kept->GetValue(7), 3.0);
}

TEST(ColumnMemory, IsOutlivedByItsColumns)
{
    std::optional<ColumnMemory> memory(std::in_place);
    vtkSmartPointer<vtkDoubleArray> column = columnIn(*memory);
    columnIn(*memory);

    memory.reset();
    column->SetValue(7, 3.0);

    EXPECT_EQ(column->GetValue(7), 3.0);
    column = nullptr; // the leak sanitizer looks for what this frees
}

TEST(ColumnMemory, HasColumnsThatGrowAndShrinkLikeOthers)
{
    ColumnMemory memory;
    const ColumnMemory::Reuse reuse(memory);
    const vtkSmartPointer<vtkDoubleArray> grown = columnIn(memory);
    const vtkSmartPointer<vtkDoubleArray> emptied = columnIn(memory);
    grown->SetValue(7, 3.0);

    grown->InsertNextValue(5.0);
    emptied->Initialize();
    emptied->InsertNextValue(6.0);

    EXPECT_EQ(grown->GetValue(7), 3.0);
    EXPECT_EQ(grown->GetValue(manyRows), 5.0);
    EXPECT_EQ(emptied->GetNumberOfTuples(), 1);
    EXPECT_EQ(memory.spareBytes(), 2 * manyBytes);
}

} // namespace
