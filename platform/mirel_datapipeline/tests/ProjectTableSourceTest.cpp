// The table through its pipeline: the library does not export its source.
#include "PipelineTest.h"

#include <mirel_datapipeline/SharedColumnArray.h>
#include <mirel_datapipeline/isInvalidValue.h>

#include <vtkAbstractArray.h>
#include <vtkDoubleArray.h>
#include <vtkStringArray.h>
#include <vtkUnsignedLongArray.h>

#include <cmath>
#include <typeinfo>

namespace {

using Names = std::vector<std::string>;
using Ids = std::vector<unsigned long>;
using ProjectTableSourceTest = PipelineTest;

} // namespace

TEST_F(ProjectTableSourceTest, DeliversRecordIdsThenOneColumnPerVariableInProjectOrder)
{
    EXPECT_EQ(columnNames(), (Names{"Record", "x", "t"}));
    project->moveVariable(t, 0);
    EXPECT_EQ(columnNames(), (Names{"Record", "t", "x"}));
}

TEST_F(ProjectTableSourceTest, DeliversOneRowPerRecord)
{
    EXPECT_EQ(ids(), (Ids{1, 2, 3}));
    project->removeRecord(project->record(2));
    project->addRecord();
    EXPECT_EQ(ids(), (Ids{1, 3, 4}));
}

TEST_F(ProjectTableSourceTest, DeliversExcludedRecordsToo)
{
    project->setIncluded(project->record(2), false);
    EXPECT_EQ(ids(), (Ids{1, 2, 3}));
}

TEST_F(ProjectTableSourceTest, DeliversTheCells)
{
    EXPECT_EQ(numberAt(0, "x"), 1.0);
    EXPECT_EQ(numberAt(2, "x"), 3.0);
    EXPECT_EQ(table()->GetValueByName(2, "t").ToString(), "c");
}

TEST_F(ProjectTableSourceTest, DeliversMissingCellsAsNanAndEmptyText)
{
    EXPECT_TRUE(std::isnan(numberAt(1, "x")));
    EXPECT_TRUE(table()->GetValueByName(1, "t").IsString());
    EXPECT_EQ(table()->GetValueByName(1, "t").ToString(), "");
    EXPECT_TRUE(isInvalidValue(table()->GetValueByName(1, "x")));
    EXPECT_TRUE(isInvalidValue(table()->GetValueByName(1, "t")));
}

TEST_F(ProjectTableSourceTest, DeliversNumbersAsDoublesAndTextsAsStrings)
{
    EXPECT_NE(vtkDoubleArray::SafeDownCast(table()->GetColumnByName("x")), nullptr);
    EXPECT_NE(vtkStringArray::SafeDownCast(table()->GetColumnByName("t")), nullptr);
}

TEST_F(ProjectTableSourceTest, DeliversProjectsWithoutRecordsOrVariables)
{
    const auto empty = boost::make_shared<Project>();
    const ProjectDataPipelineManager emptyPipeline(empty);
    emptyPipeline.outputAlgorithm()->Update();
    EXPECT_EQ(emptyPipeline.outputAlgorithm()->GetOutput()->GetNumberOfColumns(), 1);

    empty->addNumericVariable("x", Variable::Independent);
    empty->addTextVariable("t", Variable::Unassigned);
    emptyPipeline.outputAlgorithm()->Update();
    EXPECT_EQ(emptyPipeline.outputAlgorithm()->GetOutput()->GetNumberOfColumns(), 3);
    EXPECT_EQ(emptyPipeline.outputAlgorithm()->GetOutput()->GetNumberOfRows(), 0);
}

TEST_F(ProjectTableSourceTest, LeavesRemovedVariablesOut)
{
    project->removeVariable(x);
    EXPECT_EQ(columnNames(), (Names{"Record", "t"}));
    project->restoreVariable(x, 1);
    EXPECT_EQ(columnNames(), (Names{"Record", "t", "x"}));
}

TEST_F(ProjectTableSourceTest, KeepsTheIdsInColumnZeroWhenAVariableHasTheirName)
{
    project->addNumericVariable("Record", Variable::Independent, {7.0, 8.0, 9.0});
    EXPECT_EQ(columnNames(), (Names{"Record_", "x", "t", "Record"}));
    EXPECT_EQ(ids(), (Ids{1, 2, 3}));
    EXPECT_EQ(numberAt(0, "Record"), 7.0);

    project->addNumericVariable("Record_", Variable::Independent, {4.0, 5.0, 6.0});
    EXPECT_EQ(columnNames(), (Names{"Record__", "x", "t", "Record", "Record_"}));
    EXPECT_EQ(ids(), (Ids{1, 2, 3}));
    EXPECT_EQ(numberAt(0, "Record"), 7.0);
    EXPECT_EQ(numberAt(0, "Record_"), 4.0);
}

// Comparing each name with all names before it would not end within the time limit of the tests.
TEST_F(ProjectTableSourceTest, Delivers200000ColumnsWithoutComparingTheirNames)
{
    {
        const Project::ChangeGroup oneChange(*project);
        for (int i = 0; i < 100000; ++i) {
            project->addNumericVariable("number " + std::to_string(i), Variable::Unassigned);
            project->addTextVariable("text " + std::to_string(i), Variable::Unassigned);
        }
    }
    EXPECT_EQ(table()->GetNumberOfColumns(), 200003);
    EXPECT_EQ(table()->GetColumnByName("text 99999"), table()->GetColumn(200002));
}

TEST_F(ProjectTableSourceTest, NamesColumnsByteForByte)
{
    project->renameVariable(x, "Stra\xC3\x9F"
                               "e < \"x\"\n");
    EXPECT_EQ(columnNames()[1], "Stra\xC3\x9F"
                                "e < \"x\"\n");
}

TEST_F(ProjectTableSourceTest, BuildsTheTableOnlyWhenItIsUpdatedAfterAChange)
{
    vtkAbstractArray* const built = table()->GetColumnByName("x");
    EXPECT_EQ(table()->GetColumnByName("x"), built) << "nothing had changed";
    project->setValue(project->record(1), x, 5.0);
    vtkTable* const stale = pipeline->outputAlgorithm()->GetOutput();
    EXPECT_EQ(stale->GetColumnByName("x"), built) << "nobody had asked for an update";
    EXPECT_NE(table()->GetColumnByName("x"), built);
}

TEST_F(ProjectTableSourceTest, SharesTheColumnsOfNumbersWithTheProject)
{
    auto* const column = vtkDoubleArray::SafeDownCast(table()->GetColumnByName("x"));
    EXPECT_EQ(column->GetPointer(0), project->numericValues(x).data());
}

TEST_F(ProjectTableSourceTest, DeliversArraysWithTheirValuesInMemory)
{
    // Readers that access the memory directly recognise these types.
    const vtkAbstractArray& ids = *table()->GetColumn(0);
    const vtkAbstractArray& numbers = *table()->GetColumnByName("x");
    EXPECT_TRUE(typeid(ids) == typeid(SharedColumnArray<vtkUnsignedLongArray>));
    EXPECT_TRUE(typeid(numbers) == typeid(SharedColumnArray<vtkDoubleArray>));
}

TEST_F(ProjectTableSourceTest, DoesNotChangePublishedColumns)
{
    const vtkSmartPointer<vtkAbstractArray> ids = table()->GetColumn(0);
    const vtkSmartPointer<vtkAbstractArray> numbers = table()->GetColumnByName("x");
    const vtkSmartPointer<vtkAbstractArray> texts = table()->GetColumnByName("t");

    project->setValue(project->record(1), x, 5.0);
    project->setValue(project->record(1), t, "z");
    project->renameVariable(x, "x2");
    project->renameVariable(t, "t2");
    project->removeRecord(project->record(3));
    table();

    EXPECT_EQ(ids->GetNumberOfTuples(), 3);
    EXPECT_EQ(numbers->GetNumberOfTuples(), 3);
    EXPECT_EQ(numbers->GetVariantValue(0).ToDouble(), 1.0);
    EXPECT_STREQ(numbers->GetName(), "x");
    EXPECT_EQ(texts->GetNumberOfTuples(), 3);
    EXPECT_EQ(texts->GetVariantValue(0).ToString(), "a");
    EXPECT_STREQ(texts->GetName(), "t");
    EXPECT_EQ(numberAt(0, "x2"), 5.0);
    EXPECT_EQ(table()->GetValueByName(0, "t2").ToString(), "z");
}

TEST_F(ProjectTableSourceTest, CopiesTextsOnlyWhenTheyHaveChanged)
{
    const auto texts = [this](const char* name) {
        return vtkStringArray::SafeDownCast(table()->GetColumnByName(name))->GetPointer(0);
    };
    const vtkSmartPointer<vtkAbstractArray> published = table()->GetColumnByName("t");
    const vtkStdString* const first = texts("t");
    project->setValue(project->record(1), x, 5.0);
    EXPECT_EQ(texts("t"), first);
    project->renameVariable(t, "t2");
    EXPECT_EQ(texts("t2"), first);
    project->setValue(project->record(1), t, "z");
    EXPECT_NE(texts("t2"), first);
}

TEST_F(ProjectTableSourceTest, LeavesPublishedColumnsUnmodified)
{
    for (const char* const name : {"x", "t"}) {
        const vtkSmartPointer<vtkAbstractArray> column = table()->GetColumnByName(name);
        const vtkMTimeType time = column->GetMTime();
        project->addRecord();
        project->setIncluded(project->record(2), false);
        project->setValue(project->record(1), x, project->numericValues(x)[0] + 1.0);
        table();
        EXPECT_EQ(column->GetMTime(), time) << name;
    }
}
