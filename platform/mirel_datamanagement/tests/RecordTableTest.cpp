#include <mirel_datamanagement/Project.h>

#include <mirel_datamanagement/ProjectError.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <set>
#include <string>
#include <vector>

namespace {

std::vector<unsigned long> idsOf(const std::vector<RecordPtr>& records)
{
    std::vector<unsigned long> ids;
    ids.reserve(records.size());
    for (const RecordPtr& handle : records) {
        ids.push_back(handle.lock()->id());
    }
    return ids;
}

using Ids = std::vector<unsigned long>;
using Rows = std::vector<std::size_t>;

struct RecordTableTest : testing::Test
{
    Project project;

    /** More than fit into one of the blocks that records are made in. */
    static constexpr unsigned long many = 1000;

    void addMany()
    {
        project.addNumericVariable("many", Variable::Dependent, std::vector<double>(many, 1.0));
    }
};

} // namespace

TEST_F(RecordTableTest, NumbersRecordsFromOne)
{
    project.addRecord();
    project.addRecord();
    EXPECT_EQ(idsOf(project.records()), (Ids{1, 2}));
    EXPECT_EQ(*project.sharedRecordIds(), (Ids{1, 2}));
}

TEST_F(RecordTableTest, NumbersTheRecordsThatALongColumnAdds)
{
    project.addNumericVariable("x", Variable::Dependent, {1.0, 2.0, 3.0});
    EXPECT_EQ(idsOf(project.records()), (Ids{1, 2, 3}));
}

TEST_F(RecordTableTest, FindsRecordsById)
{
    const RecordPtr added = project.addRecord();
    EXPECT_EQ(project.record(1), added);
    EXPECT_EQ(project.record(1).lock(), added.lock());
}

TEST_F(RecordTableTest, AnswersNullHandlesForIdsWithoutARecord)
{
    project.addRecord();
    EXPECT_TRUE(project.record(0).isNull());
    EXPECT_TRUE(project.record(2).isNull());
    EXPECT_TRUE(project.record(std::numeric_limits<unsigned long>::max()).isNull());
}

TEST_F(RecordTableTest, AddsRecordsWithMissingCells)
{
    const VarPtr x = project.addNumericVariable("x", Variable::Dependent);
    const VarPtr t = project.addTextVariable("t", Variable::Unassigned);
    project.addRecord();
    ASSERT_EQ(project.numericValues(x).size(), 1u);
    EXPECT_TRUE(std::isnan(project.numericValues(x)[0]));
    EXPECT_EQ(project.textValues(t), (std::vector<std::string>{""}));
}

TEST_F(RecordTableTest, RemovesTheCellsOfARecordWithIt)
{
    const VarPtr x = project.addNumericVariable("x", Variable::Dependent, {1.0, 2.0, 3.0});
    const VarPtr t = project.addTextVariable("t", Variable::Unassigned, {"a", "b", "c"});
    project.removeRecord(project.record(2));
    EXPECT_EQ(idsOf(project.records()), (Ids{1, 3}));
    EXPECT_EQ(project.numericValues(x), (std::vector<double>{1.0, 3.0}));
    EXPECT_EQ(project.textValues(t), (std::vector<std::string>{"a", "c"}));
}

TEST_F(RecordTableTest, KeepsRemovedRecords)
{
    const RecordPtr record = project.addRecord();
    project.removeRecord(record);
    EXPECT_TRUE(project.record(1).isNull());
    EXPECT_FALSE(record.valid());
    EXPECT_EQ(record.lock()->id(), 1u);
}

TEST_F(RecordTableTest, NeverUsesAnIdAgain)
{
    project.addRecord();
    project.removeRecord(project.addRecord());
    EXPECT_EQ(project.addRecord().lock()->id(), 3u);
    EXPECT_TRUE(project.record(2).isNull());
}

TEST_F(RecordTableTest, FindsTheRowOfARecordAfterARemoval)
{
    const VarPtr x = project.addNumericVariable("x", Variable::Dependent, {1.0, 2.0, 3.0});
    project.removeRecord(project.record(1));
    project.setValue(project.record(3), x, 30.0);
    EXPECT_EQ(project.numericValues(x), (std::vector<double>{2.0, 30.0}));
}

TEST_F(RecordTableTest, ExcludesAndIncludesOneRecord)
{
    const RecordPtr first = project.addRecord();
    const RecordPtr second = project.addRecord();
    project.setIncluded(first, false);
    EXPECT_FALSE(first.lock()->isIncluded());
    EXPECT_TRUE(second.lock()->isIncluded());
    project.setIncluded(first, true);
    EXPECT_TRUE(first.lock()->isIncluded());
}

TEST_F(RecordTableTest, KeepsRecordsExcludedWhenOthersComeAndGo)
{
    addMany();
    project.setIncluded(project.record(300), false);
    project.removeRecord(project.record(299));
    project.addRecord();
    EXPECT_FALSE(project.record(300).lock()->isIncluded());
    EXPECT_TRUE(project.record(301).lock()->isIncluded());
}

TEST_F(RecordTableTest, ExcludesAndIncludesManyRecordsAtOnce)
{
    addMany();
    project.record(3);
    int changes = 0;
    project.connectSignalChanged([&changes] { ++changes; });

    project.setRowsIncluded({999, 2, 2, 500}, false);
    EXPECT_EQ(project.excludedRows(), (Rows{2, 500, 999}));
    EXPECT_FALSE(project.record(3).lock()->isIncluded());
    EXPECT_FALSE(project.record(1000).lock()->isIncluded());
    EXPECT_TRUE(project.record(4).lock()->isIncluded());
    EXPECT_EQ(changes, 1);

    project.setRowsIncluded({2, 500, 7}, true);
    EXPECT_EQ(project.excludedRows(), (Rows{999}));
    EXPECT_EQ(changes, 2);
}

TEST_F(RecordTableTest, ChangesNothingForRecordsThatAreExcludedAlready)
{
    addMany();
    project.setRowsIncluded({5}, false);
    int changes = 0;
    project.connectSignalChanged([&changes] { ++changes; });

    project.setRowsIncluded({5}, false);
    project.setRowsIncluded({}, true);
    project.setRowsIncluded({6}, true);

    EXPECT_EQ(changes, 0);
}

TEST_F(RecordTableTest, ExcludesRecordsByTheirPositionsAfterARemoval)
{
    addMany();
    for (const unsigned long id : {1UL, 2UL, 300UL, 999UL}) {
        project.removeRecord(project.record(id));
    }
    // Excluded before it was removed: it is in no position now.
    project.setIncluded(project.record(700), false);
    project.removeRecord(project.record(700));

    project.setRowsIncluded({0, 297, 995 - 1}, false);

    EXPECT_EQ(project.excludedRows(), (Rows{0, 297, 994}));
    EXPECT_FALSE(project.record(3).lock()->isIncluded());
    EXPECT_FALSE(project.record(301).lock()->isIncluded());
    EXPECT_FALSE(project.record(1000).lock()->isIncluded());
    EXPECT_EQ(project.recordCount(), 995u);
}

TEST_F(RecordTableTest, ExcludesNoRecordIfOneOfThemDoesNotExist)
{
    project.addNumericVariable("x", Variable::Dependent, {1.0, 2.0});
    try {
        project.setRowsIncluded({0, 2}, false);
        FAIL();
    } catch (const ProjectError& error) {
        EXPECT_STREQ(error.what(), "There is no record at position 2; the project has 2 records, "
                                   "counted from 0.");
    }
    EXPECT_TRUE(project.excludedRows().empty());
}

TEST_F(RecordTableTest, AnswersTheSameObjectsEveryTime)
{
    addMany();
    for (const unsigned long id : {1ul, 256ul, 257ul, many}) {
        EXPECT_EQ(project.record(id).lock(), project.record(id).lock());
        EXPECT_EQ(project.record(id).lock()->id(), id);
        EXPECT_TRUE(project.record(id).valid());
    }
    EXPECT_TRUE(project.record(many + 1).isNull());
}

TEST_F(RecordTableTest, FindsRecordsThatWereAddedAfterTheirNeighboursWereUsed)
{
    const RecordPtr first = project.addRecord();
    EXPECT_TRUE(project.record(2).isNull());
    const RecordPtr second = project.addRecord();
    EXPECT_EQ(project.record(2), second);
    EXPECT_TRUE(second.valid());
    EXPECT_TRUE(first.valid());
}

TEST_F(RecordTableTest, GivesIdentitiesInCreationOrderAcrossProjects)
{
    Project other;
    const RecordPtr first = project.addRecord();
    const RecordPtr second = other.addRecord();
    const RecordPtr third = project.addRecord();
    addMany();
    const RecordPtr fourth = other.addRecord();
    EXPECT_LT(first, second);
    EXPECT_LT(second, third);
    EXPECT_LT(third, project.record(3));
    EXPECT_LT(project.record(3), project.record(many));
    EXPECT_LT(project.record(many), fourth);
}

TEST_F(RecordTableTest, GivesRecordsOfSeveralProjectsTheSameIdsButDifferentIdentities)
{
    Project other;
    project.addRecord();
    other.addRecord();
    project.addRecord();
    const std::set<RecordPtr> all = {project.record(1), project.record(2), other.record(1)};
    EXPECT_EQ(all.size(), 3u);
    EXPECT_EQ(all.count(other.record(1)), 1u);
}

TEST_F(RecordTableTest, RefusesRecordsOfAnotherProject)
{
    Project other;
    const RecordPtr foreign = other.addRecord();
    project.addRecord();
    const VarPtr x = project.addNumericVariable("x", Variable::Dependent);
    try {
        project.removeRecord(foreign);
        FAIL() << "not refused";
    } catch (const ProjectError& error) {
        EXPECT_STREQ(error.what(), "The record 1 belongs to another project.");
    }
    EXPECT_THROW(project.setIncluded(foreign, false), ProjectError);
    EXPECT_THROW(project.setValue(foreign, x, 1.0), ProjectError);
    EXPECT_TRUE(foreign.valid());
    EXPECT_EQ(project.recordCount(), 1u);
}

TEST_F(RecordTableTest, RefusesToChangeRemovedRecords)
{
    const VarPtr x = project.addNumericVariable("x", Variable::Dependent);
    const RecordPtr record = project.addRecord();
    project.removeRecord(record);
    try {
        project.setValue(record, x, 1.0);
        FAIL() << "not refused";
    } catch (const ProjectError& error) {
        EXPECT_STREQ(error.what(),
                     "The record 1 has been removed from the project; it cannot be changed.");
    }
    EXPECT_THROW(project.setIncluded(record, false), ProjectError);
}

TEST_F(RecordTableTest, ThrowsForNullHandles)
{
    EXPECT_THROW(project.removeRecord(RecordPtr()), HandleError);
    EXPECT_THROW(project.setIncluded(RecordPtr(), false), HandleError);
}

TEST_F(RecordTableTest, DestroysItsRecordsWithTheProject)
{
    RecordPtr handle;
    {
        Project shortLived;
        handle = shortLived.addRecord();
    }
    EXPECT_FALSE(handle.valid());
    EXPECT_THROW(handle.lock(), HandleError);
}

TEST_F(RecordTableTest, DoesNotChangePublishedIds)
{
    project.addRecord();
    project.addRecord();
    const auto ids = project.sharedRecordIds();
    project.removeRecord(project.record(1));
    project.addRecord();
    EXPECT_EQ(*ids, (Ids{1, 2}));
    EXPECT_EQ(*project.sharedRecordIds(), (Ids{2, 3}));
}
