#include <mirel_datapipeline/ProjectDataPipelineManager.h>

#include <mirel_datamanagement/Project.h>
#include <mirel_datamanagement/ProjectError.h>
#include <mirel_datapipeline/SharedColumnArray.h>
#include <mirel_datapipeline/isInvalidValue.h>

#include <boost/smart_ptr/make_shared.hpp>
#include <boost/smart_ptr/weak_ptr.hpp>
#include <vtkAbstractArray.h>
#include <vtkDoubleArray.h>
#include <vtkStringArray.h>
#include <vtkTable.h>
#include <vtkTableAlgorithm.h>
#include <vtkUnsignedLongArray.h>
#include <vtkVariant.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <string>
#include <typeinfo>
#include <utility>
#include <vector>

namespace {

using Names = std::vector<std::string>;
using Ids = std::vector<unsigned long>;

constexpr double missing = std::numeric_limits<double>::quiet_NaN();

/** A number and a text variable over three records, and the pipeline over them. */
struct ProjectDataPipelineManagerTest : testing::Test
{
    boost::shared_ptr<Project> project = boost::make_shared<Project>();
    VarPtr x = project->addNumericVariable("x", Variable::Independent, {1.0, missing, 3.0});
    VarPtr t = project->addTextVariable("t", Variable::Unassigned, {"a", "", "c"});
    std::unique_ptr<ProjectDataPipelineManager> pipeline =
        std::make_unique<ProjectDataPipelineManager>(project);

    int changes = 0;
    boost::signals2::scoped_connection counting =
        pipeline->connectSignalChanged([this] { ++changes; });

    vtkTable* table() const
    {
        pipeline->outputAlgorithm()->Update();
        return pipeline->outputAlgorithm()->GetOutput();
    }

    Names columnNames() const
    {
        vtkTable* const cases = table();
        Names names;
        names.reserve(static_cast<std::size_t>(cases->GetNumberOfColumns()));
        for (vtkIdType column = 0; column < cases->GetNumberOfColumns(); ++column) {
            names.emplace_back(cases->GetColumnName(column));
        }
        return names;
    }

    Ids ids() const
    {
        vtkTable* const cases = table();
        Ids found;
        found.reserve(static_cast<std::size_t>(cases->GetNumberOfRows()));
        for (vtkIdType row = 0; row < cases->GetNumberOfRows(); ++row) {
            found.push_back(cases->GetValue(row, 0).ToUnsignedLong());
        }
        return found;
    }

    double numberAt(vtkIdType row, const char* name) const
    {
        return table()->GetValueByName(row, name).ToDouble();
    }
};

} // namespace

TEST_F(ProjectDataPipelineManagerTest, DeliversRecordIdsThenOneColumnPerVariableInProjectOrder)
{
    EXPECT_EQ(columnNames(), (Names{"Record", "x", "t"}));
    project->moveVariable(t, 0);
    EXPECT_EQ(columnNames(), (Names{"Record", "t", "x"}));
}

TEST_F(ProjectDataPipelineManagerTest, DeliversOneRowPerRecord)
{
    EXPECT_EQ(ids(), (Ids{1, 2, 3}));
    project->removeRecord(project->record(2));
    project->addRecord();
    EXPECT_EQ(ids(), (Ids{1, 3, 4}));
}

TEST_F(ProjectDataPipelineManagerTest, DeliversExcludedRecordsToo)
{
    project->setIncluded(project->record(2), false);
    EXPECT_EQ(ids(), (Ids{1, 2, 3}));
}

TEST_F(ProjectDataPipelineManagerTest, DeliversTheCells)
{
    EXPECT_EQ(numberAt(0, "x"), 1.0);
    EXPECT_EQ(numberAt(2, "x"), 3.0);
    EXPECT_EQ(table()->GetValueByName(2, "t").ToString(), "c");
}

TEST_F(ProjectDataPipelineManagerTest, DeliversMissingCellsAsNanAndEmptyText)
{
    EXPECT_TRUE(std::isnan(numberAt(1, "x")));
    EXPECT_TRUE(table()->GetValueByName(1, "t").IsString());
    EXPECT_EQ(table()->GetValueByName(1, "t").ToString(), "");
    EXPECT_TRUE(isInvalidValue(table()->GetValueByName(1, "x")));
    EXPECT_TRUE(isInvalidValue(table()->GetValueByName(1, "t")));
}

TEST_F(ProjectDataPipelineManagerTest, DeliversNumbersAsDoublesAndTextsAsStrings)
{
    EXPECT_NE(vtkDoubleArray::SafeDownCast(table()->GetColumnByName("x")), nullptr);
    EXPECT_NE(vtkStringArray::SafeDownCast(table()->GetColumnByName("t")), nullptr);
}

TEST_F(ProjectDataPipelineManagerTest, DeliversProjectsWithoutRecordsOrVariables)
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

TEST_F(ProjectDataPipelineManagerTest, LeavesRemovedVariablesOut)
{
    project->removeVariable(x);
    EXPECT_EQ(columnNames(), (Names{"Record", "t"}));
    project->restoreVariable(x, 1);
    EXPECT_EQ(columnNames(), (Names{"Record", "t", "x"}));
}

TEST_F(ProjectDataPipelineManagerTest, KeepsTheIdsInColumnZeroWhenAVariableHasTheirName)
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

TEST_F(ProjectDataPipelineManagerTest, NamesColumnsByteForByte)
{
    project->renameVariable(x, "Stra\xC3\x9F"
                               "e < \"x\"\n");
    EXPECT_EQ(columnNames()[1], "Stra\xC3\x9F"
                                "e < \"x\"\n");
}

TEST_F(ProjectDataPipelineManagerTest, AnnouncesEachChangeOfTheProjectOnce)
{
    project->setValue(project->record(1), x, 5.0);
    EXPECT_EQ(changes, 1);
    project->removeVariable(x);
    EXPECT_EQ(changes, 2);
}

TEST_F(ProjectDataPipelineManagerTest, AnnouncesAGroupOfChangesOnce)
{
    {
        Project::ChangeGroup group(*project);
        project->addRecord();
        project->setValue(project->record(1), x, 5.0);
    }
    EXPECT_EQ(changes, 1);
}

TEST_F(ProjectDataPipelineManagerTest, AnnouncesNothingWhenNothingChanges)
{
    project->setNature(x, Variable::Independent);
    EXPECT_EQ(changes, 0);
}

TEST_F(ProjectDataPipelineManagerTest, AnnouncesNothingWhileItIsUpdated)
{
    table();
    project->addRecord();
    changes = 0;
    table();
    EXPECT_EQ(changes, 0);
}

TEST_F(ProjectDataPipelineManagerTest, IsModifiedBeforeItAnnounces)
{
    const vtkMTimeType before = pipeline->outputAlgorithm()->GetMTime();
    vtkMTimeType seen = 0;
    double value = 0.0;
    pipeline->connectSignalChanged([&] {
        seen = pipeline->outputAlgorithm()->GetMTime();
        value = numberAt(0, "x");
    });
    project->setValue(project->record(1), x, 5.0);
    EXPECT_GT(seen, before);
    EXPECT_EQ(value, 5.0);
}

TEST_F(ProjectDataPipelineManagerTest, BuildsTheTableOnlyWhenItIsUpdatedAfterAChange)
{
    vtkAbstractArray* const built = table()->GetColumnByName("x");
    EXPECT_EQ(table()->GetColumnByName("x"), built) << "nothing had changed";
    project->setValue(project->record(1), x, 5.0);
    vtkTable* const stale = pipeline->outputAlgorithm()->GetOutput();
    EXPECT_EQ(stale->GetColumnByName("x"), built) << "nobody had asked for an update";
    EXPECT_NE(table()->GetColumnByName("x"), built);
}

TEST_F(ProjectDataPipelineManagerTest, ReturnsTheSameAlgorithmEveryTime)
{
    EXPECT_EQ(pipeline->outputAlgorithm(), pipeline->outputAlgorithm());
}

TEST_F(ProjectDataPipelineManagerTest, SharesTheColumnsOfNumbersWithTheProject)
{
    auto* const column = vtkDoubleArray::SafeDownCast(table()->GetColumnByName("x"));
    EXPECT_EQ(column->GetPointer(0), project->numericValues(x).data());
}

TEST_F(ProjectDataPipelineManagerTest, DeliversArraysWithTheirValuesInMemory)
{
    // Readers that access the memory directly recognise these types.
    const vtkAbstractArray& ids = *table()->GetColumn(0);
    const vtkAbstractArray& numbers = *table()->GetColumnByName("x");
    EXPECT_TRUE(typeid(ids) == typeid(SharedColumnArray<vtkUnsignedLongArray>));
    EXPECT_TRUE(typeid(numbers) == typeid(SharedColumnArray<vtkDoubleArray>));
}

TEST_F(ProjectDataPipelineManagerTest, DoesNotChangePublishedColumns)
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

TEST_F(ProjectDataPipelineManagerTest, DoesNotChangePublishedColumnsAfterTheProjectIsDestroyed)
{
    const vtkSmartPointer<vtkAbstractArray> numbers = table()->GetColumnByName("x");
    pipeline.reset();
    project.reset();
    EXPECT_EQ(numbers->GetVariantValue(0).ToDouble(), 1.0);
}

TEST_F(ProjectDataPipelineManagerTest, CopiesTextsOnlyWhenTheyHaveChanged)
{
    const vtkSmartPointer<vtkAbstractArray> texts = table()->GetColumnByName("t");
    project->setValue(project->record(1), x, 5.0);
    EXPECT_EQ(table()->GetColumnByName("t"), texts.Get());
    project->setValue(project->record(1), t, "z");
    EXPECT_NE(table()->GetColumnByName("t"), texts.Get());
}

TEST_F(ProjectDataPipelineManagerTest, NeedsAProject)
{
    EXPECT_THROW(ProjectDataPipelineManager{nullptr}, ProjectError);
}

TEST_F(ProjectDataPipelineManagerTest, SharesTheProjectUntilItIsDestroyed)
{
    const boost::weak_ptr<Project> observed = project;
    project.reset();
    EXPECT_FALSE(observed.expired());
    EXPECT_EQ(ids(), (Ids{1, 2, 3}));
    pipeline.reset();
    EXPECT_TRUE(observed.expired());
}

TEST_F(ProjectDataPipelineManagerTest, IgnoresTheProjectOnceDestroyed)
{
    pipeline.reset();
    project->addRecord();
    EXPECT_EQ(changes, 0);
}

TEST_F(ProjectDataPipelineManagerTest, LeavesItsAlgorithmUsableWhenDestroyed)
{
    const vtkSmartPointer<vtkTableAlgorithm> algorithm = pipeline->outputAlgorithm();
    pipeline.reset();
    algorithm->Update();
    EXPECT_EQ(algorithm->GetOutput()->GetNumberOfRows(), 3);
}

TEST_F(ProjectDataPipelineManagerTest, MayBeDestroyedByItsListener)
{
    pipeline->connectSignalChanged([this] { pipeline.reset(); });
    project->addRecord();
    EXPECT_EQ(pipeline, nullptr);
    project->addRecord();
    EXPECT_EQ(changes, 1);
}

TEST_F(ProjectDataPipelineManagerTest, MayBeDestroyedByAListenerOfTheProject)
{
    const auto other = boost::make_shared<Project>();
    std::unique_ptr<ProjectDataPipelineManager> shortLived;
    int calls = 0;
    other->connectSignalChanged([&shortLived] { shortLived.reset(); });
    shortLived = std::make_unique<ProjectDataPipelineManager>(other);
    shortLived->connectSignalChanged([&calls] { ++calls; });
    other->addRecord();
    EXPECT_EQ(calls, 0) << "destroyed before its own turn";
}

TEST_F(ProjectDataPipelineManagerTest, ServesSeveralPipelinesOverOneProject)
{
    const ProjectDataPipelineManager second(project);
    int secondChanges = 0;
    second.connectSignalChanged([&secondChanges] { ++secondChanges; });
    project->addRecord();
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(secondChanges, 1);
}
