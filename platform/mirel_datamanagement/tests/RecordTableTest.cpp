#include <mirel_datamanagement/Project.h>

#include <mirel_datamanagement/ProjectError.h>

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
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

std::string refusal(const std::function<void()>& change)
{
    try {
        change();
    } catch (const ProjectError& error) {
        return error.what();
    }
    return "not refused";
}

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

TEST_F(RecordTableTest, NumbersRecordsFromOneAndFindsThemById)
{
    const RecordPtr added = project.addRecord();
    EXPECT_TRUE(project.record(2).isNull());
    project.addNumericVariable("x", Variable::Dependent, {1.0, 2.0, 3.0});
    EXPECT_EQ(idsOf(project.records()), (Ids{1, 2, 3}));
    EXPECT_EQ(*project.sharedRecordIds(), (Ids{1, 2, 3}));
    EXPECT_EQ(project.record(1), added);
    EXPECT_EQ(project.record(1).lock(), added.lock());
    EXPECT_TRUE(project.record(2).valid()) << "added after its neighbour was used";
    for (const unsigned long id : {0UL, 4UL, std::numeric_limits<unsigned long>::max()}) {
        EXPECT_TRUE(project.record(id).isNull());
    }
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

TEST_F(RecordTableTest, RemovesTheCellsOfARecordWithItButKeepsTheRecord)
{
    const VarPtr x = project.addNumericVariable("x", Variable::Dependent, {1.0, 2.0, 3.0});
    const VarPtr t = project.addTextVariable("t", Variable::Unassigned, {"a", "b", "c"});
    const RecordPtr record = project.record(2);
    project.removeRecord(record);
    EXPECT_TRUE(project.record(2).isNull());
    EXPECT_FALSE(record.valid());
    EXPECT_EQ(record.lock()->id(), 2u);
    EXPECT_EQ(idsOf(project.records()), (Ids{1, 3}));
    project.setValue(project.record(3), x, 30.0);
    EXPECT_EQ(project.numericValues(x), (std::vector<double>{1.0, 30.0}));
    EXPECT_EQ(project.textValues(t), (std::vector<std::string>{"a", "c"}));
    project.removeRecord(project.record(3));
    EXPECT_EQ(project.addRecord().lock()->id(), 4u) << "no id is used again";
    EXPECT_TRUE(project.record(3).isNull());
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
    EXPECT_EQ(refusal([&] {
                  project.setRowsIncluded({0, 2}, false);
              }),
              "There is no record at position 2; the project has 2 records, counted from 0.");
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

TEST_F(RecordTableTest, GivesIdentitiesInCreationOrderAcrossProjectsWhoseIdsAreTheSame)
{
    Project other;
    const RecordPtr first = project.addRecord();
    const RecordPtr second = other.addRecord();
    const RecordPtr third = project.addRecord();
    addMany();
    const RecordPtr fourth = other.addRecord();
    EXPECT_EQ(first.lock()->id(), second.lock()->id());
    EXPECT_LT(first, second);
    EXPECT_LT(second, third);
    EXPECT_LT(third, project.record(3));
    EXPECT_LT(project.record(3), project.record(many));
    EXPECT_LT(project.record(many), fourth);
}

TEST_F(RecordTableTest, RefusesRecordsOfAnotherProjectAndToChangeRemovedOnes)
{
    Project other;
    const RecordPtr foreign = other.addRecord();
    const RecordPtr removed = project.addRecord();
    project.addRecord();
    const VarPtr x = project.addNumericVariable("x", Variable::Dependent);
    project.removeRecord(removed);
    const std::string isForeign = "The record 1 belongs to another project.";
    const std::string isRemoved =
        "The record 1 has been removed from the project; it cannot be changed.";

    EXPECT_EQ(refusal([&] { project.removeRecord(foreign); }), isForeign);
    EXPECT_EQ(refusal([&] { project.setIncluded(foreign, false); }), isForeign);
    EXPECT_EQ(refusal([&] { project.setValue(foreign, x, 1.0); }), isForeign);
    EXPECT_EQ(refusal([&] { project.setIncluded(removed, false); }), isRemoved);
    EXPECT_EQ(refusal([&] { project.setValue(removed, x, 1.0); }), isRemoved);
    EXPECT_TRUE(foreign.valid());
    EXPECT_EQ(project.recordCount(), 1u);
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
