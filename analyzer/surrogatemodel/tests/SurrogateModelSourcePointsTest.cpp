#include <surrogatemodel/SurrogateModelSourcePoints.h>

#include "ThreeCasesTest.h"

#include <vtkDataSetAttributes.h>
#include <vtkFloatArray.h>
#include <vtkIntArray.h>
#include <vtkObjectFactory.h>
#include <vtkUnsignedLongArray.h>

#include <cmath>
#include <functional>
#include <map>
#include <utility>

namespace {

/** Counts what is read, answers what a test puts in and runs `onRead` once row 1 has been read. */
class WatchedColumn : public vtkDoubleArray
{
public:
    static WatchedColumn* New();
    vtkTypeMacro(WatchedColumn, vtkDoubleArray)

    vtkVariant GetVariantValue(vtkIdType row) override
    {
        ++reads;
        const auto answer = answers.find(row);
        const vtkVariant value =
            answer != answers.end() ? answer->second : vtkDoubleArray::GetVariantValue(row);
        if (row == 1 && onRead) {
            std::exchange(onRead, {})();
        }
        return value;
    }

    int reads = 0;
    std::map<vtkIdType, vtkVariant> answers;
    std::function<void()> onRead;

protected:
    WatchedColumn() = default;
};

vtkStandardNewMacro(WatchedColumn);

/** The training data out of three cases; tests change the table or bring their own. */
class SurrogateModelSourcePointsTest : public ThreeCasesTest
{
protected:
    void rebuildFully(const std::set<VarPtr>& dependents) { rebuildFully(cases, dependents); }

    void rebuildFully(const CaseTable& table, const std::set<VarPtr>& dependents)
    {
        points.rebuild({x1, x2}, dependents, table.get(), true);
    }

    void rebuildPartially(const std::set<VarPtr>& dependents)
    {
        points.rebuild({x1, x2}, dependents, cases.get(), false);
    }

    /** Gives a variable a watched column of ones. */
    WatchedColumn* watch(const std::string& name)
    {
        vtkNew<WatchedColumn> watched;
        watched->SetNumberOfValues(3);
        watched->FillValue(1.0);
        cases.add(name, watched);
        return watched;
    }

    std::vector<std::string> columnNames() const
    {
        std::vector<std::string> names;
        for (vtkIdType column = 0; column < points.sourceTable()->GetNumberOfColumns(); ++column) {
            names.emplace_back(points.sourceTable()->GetColumnName(column));
        }
        return names;
    }

    vtkIdType rowCount() const { return points.sourceTable()->GetNumberOfRows(); }

    Values column(const std::string& name) const
    {
        auto* const array =
            vtkArrayDownCast<vtkDoubleArray>(points.sourceTable()->GetColumnByName(name.c_str()));
        return shown(array->GetPointer(0), points.sourceTable());
    }

    SurrogateModelSourcePoints points;
};

} // namespace

TEST_F(SurrogateModelSourcePointsTest, StartWithoutCasesAndColumns)
{
    EXPECT_EQ(rowCount(), 0);
    EXPECT_EQ(points.sourceTable()->GetNumberOfColumns(), 0);
    EXPECT_TRUE(points.independentColumns().empty());
    EXPECT_TRUE(points.dependentColumns().empty());
}

TEST_F(SurrogateModelSourcePointsTest, LeaveOutCasesThatAreExcludedOrInvalidForWhatIsAskedFor)
{
    const VarPtr other = project->addNumericVariable("other", Variable::Unassigned);
    cases.addNumbers("other", {7, missing, 9});
    points.rebuild({x1, other}, {y1}, cases.get(), true);
    EXPECT_EQ(column("x1"), (Values{1, 3})) << "listed variables, whatever their nature";

    cases.set(0, "y1", vtkVariant(missing));
    cases.set(2, "y2", vtkVariant(missing));
    rebuildFully({y1});
    EXPECT_EQ(column("x1"), (Values{2, 3})) << "y2 is not requested";
    EXPECT_TRUE(std::isnan(column("y2")[1]));
    rebuildFully({y1, y2});
    EXPECT_EQ(column("x1"), (Values{2})) << "any of the requested dependents";

    project->setIncluded(project->record(2), false);
    rebuildFully({y1});
    EXPECT_EQ(column("x1"), (Values{3}));
    cases.set(2, "x2", vtkVariant(missing));
    rebuildFully({y1});
    EXPECT_EQ(rowCount(), 0);
}

TEST_F(SurrogateModelSourcePointsTest, CheckTheStateOfTheRecordsOnEveryRebuild)
{
    rebuildFully({y1});
    EXPECT_EQ(rowCount(), 3);

    project->setIncluded(project->record(1), false);
    rebuildPartially({y1});
    EXPECT_EQ(column("x1"), (Values{2, 3}));

    project->setIncluded(project->record(1), true);
    rebuildPartially({y1});
    EXPECT_EQ(column("x1"), (Values{1, 2, 3}));
}

TEST_F(SurrogateModelSourcePointsTest, ReadIndependentValuesInFullRebuildsOnly)
{
    rebuildFully({y1});
    cases.set(1, "x1", vtkVariant(missing));
    rebuildPartially({y2});
    EXPECT_EQ(column("y2"), (Values{40, 50, 60}));

    rebuildFully({y1});
    cases.set(1, "x1", vtkVariant(2.0));
    rebuildPartially({y2});
    EXPECT_EQ(column("y2"), (Values{40, 60})) << "the invalid row is remembered";

    rebuildFully({y1});
    EXPECT_EQ(rowCount(), 3);
    rebuildPartially({y1});
    EXPECT_EQ(rowCount(), 3) << "and forgotten";
}

// The values of an excluded record are not checked, so that its row is not listed as invalid:
// included later, it is a valid case until the next full rebuild.
TEST_F(SurrogateModelSourcePointsTest, DoNotRememberRowsOfExcludedRecordsAsInvalid)
{
    cases.set(1, "x1", vtkVariant(missing));
    project->setIncluded(project->record(2), false);
    rebuildFully({y1});

    project->setIncluded(project->record(2), true);
    rebuildPartially({y1});

    EXPECT_EQ(column("y1"), (Values{10, 20, 30}));
}

TEST_F(SurrogateModelSourcePointsTest, CheckTheRequestedDependentsOnEveryRebuild)
{
    rebuildFully({y1});

    cases.set(0, "y1", vtkVariant(missing));
    rebuildPartially({y1});

    EXPECT_EQ(column("y1"), (Values{20, 30}));
}

TEST_F(SurrogateModelSourcePointsTest, GiveTheColumnsInListOrderThenTheDependentsInProjectOrder)
{
    project->moveVariable(y2, 0);

    points.rebuild({x2, x1}, {y1}, cases.get(), true);

    EXPECT_EQ(columnNames(), (std::vector<std::string>{"x2", "x1", "y2", "y1"}));
    const auto values = [this](const std::vector<double*>& columns) {
        std::vector<Values> all;
        for (const double* one : columns) {
            all.push_back(shown(one, points.sourceTable()));
        }
        return all;
    };
    EXPECT_EQ(values(points.independentColumns()), (std::vector<Values>{{4, 5, 6}, {1, 2, 3}}));
    EXPECT_EQ(values(points.dependentColumns()), (std::vector<Values>{{40, 50, 60}, {10, 20, 30}}));
    points.independentColumns().clear();
    EXPECT_EQ(points.independentColumns().size(), 2U) << "a copy was cleared";
    for (vtkIdType column = 0; column < 4; ++column) {
        EXPECT_STREQ(points.sourceTable()->GetColumn(column)->GetClassName(), "vtkDoubleArray");
    }
}

TEST_F(SurrogateModelSourcePointsTest, KeepTheOrderOfTheCases)
{
    addRecords(2);
    CaseTable cases(5);
    cases.addNumbers("x1", {5, missing, 3, 2, 1}).addNumbers("x2", {1, 1, 1, 1, 1});
    cases.addNumbers("y1", {50, 40, 30, missing, 10}).addNumbers("y2", {0, 0, 0, 0, 0});

    rebuildFully(cases, {y1});

    EXPECT_EQ(column("x1"), (Values{5, 3, 1}));
    EXPECT_EQ(column("y1"), (Values{50, 30, 10}));
}

TEST_F(SurrogateModelSourcePointsTest, GiveVariablesThatAreNoInputsAColumnButNoPointer)
{
    const VarPtr other = project->addNumericVariable("other", Variable::Unassigned);
    const VarPtr label = project->addTextVariable("label", Variable::Independent);
    cases.addNumbers("other", {7, 8, 9}).addTexts("label", {"1", "2", "3"});

    points.rebuild({other, x1, label}, {y1}, cases.get(), true);

    EXPECT_EQ(columnNames(), (std::vector<std::string>{"other", "x1", "label", "y1", "y2"}));
    ASSERT_EQ(points.independentColumns().size(), 1U);
    EXPECT_EQ(shown(points.independentColumns()[0], points.sourceTable()), (Values{1, 2, 3}));
    EXPECT_EQ(column("label"), (Values{1, 2, 3}));
}

TEST_F(SurrogateModelSourcePointsTest, HaveAllColumnsAlsoWithoutAnyCase)
{
    includeAll(false);
    const vtkNew<vtkTable> withoutRows;
    for (vtkTable* const table : {cases.get(), withoutRows.GetPointer()}) {
        points.rebuild({x1, x2}, {y1}, table, true);

        EXPECT_EQ(rowCount(), 0);
        EXPECT_EQ(columnNames(), (std::vector<std::string>{"x1", "x2", "y1", "y2"}));
        EXPECT_EQ(points.independentColumns().size(), 2U);
        EXPECT_EQ(points.dependentColumns().size(), 2U);
    }
}

TEST_F(SurrogateModelSourcePointsTest, ConvertWhateverHoldsANumber)
{
    vtkNew<vtkIntArray> integers;
    vtkNew<vtkFloatArray> floats;
    for (int row = 0; row < 3; ++row) {
        integers->InsertNextValue(row + 7);
        floats->InsertNextValue(0.5F * static_cast<float>(row));
    }
    cases.add("x1", integers).add("x2", floats).addTexts("y1", {"1.5", "-2e3", "7"});
    cases.addVariants("y2", {vtkVariant(1), vtkVariant(2.5), vtkVariant("3")});

    rebuildFully({y1, y2});

    EXPECT_EQ(column("x1"), (Values{7, 8, 9}));
    EXPECT_EQ(column("x2"), (Values{0, 0.5, 1}));
    EXPECT_EQ(column("y1"), (Values{1.5, -2000, 7}));
    EXPECT_EQ(column("y2"), (Values{1, 2.5, 3}));
}

TEST_F(SurrogateModelSourcePointsTest, HoldNaNForCellsThatAreNoNumber)
{
    cases.addVariants("y2", {vtkVariant("abc"), vtkVariant(""), vtkVariant()});

    rebuildFully({y1});

    for (const double value : column("y2")) {
        EXPECT_TRUE(std::isnan(value));
    }
}

TEST_F(SurrogateModelSourcePointsTest, ShareOneColumnBetweenVariablesOfOneName)
{
    points.rebuild({y2, x1, x1}, {y1}, cases.get(), true);

    EXPECT_EQ(points.sourceTable()->GetNumberOfColumns(), 3);
    EXPECT_EQ(points.independentColumns().size(), 2U);
    ASSERT_EQ(points.dependentColumns().size(), 2U);
    EXPECT_EQ(shown(points.dependentColumns()[0], points.sourceTable()), (Values{10, 20, 30}));
    EXPECT_EQ(shown(points.dependentColumns()[1], points.sourceTable()), (Values{40, 50, 60}));
}

TEST_F(SurrogateModelSourcePointsTest, TreatAVariableWithoutColumnAsInvalidEverywhere)
{
    cases.get()->RemoveColumnByName("x2");
    cases.get()->RemoveColumnByName("y2");

    rebuildFully({y1});
    EXPECT_EQ(rowCount(), 0);

    points.rebuild({x1}, {y2}, cases.get(), true);
    EXPECT_EQ(rowCount(), 0);

    points.rebuild({x1}, {y1}, cases.get(), true);
    EXPECT_EQ(rowCount(), 3);
    EXPECT_TRUE(std::isnan(column("y2")[0]));
}

TEST_F(SurrogateModelSourcePointsTest, TreatNullAndDestroyedHandlesAsVariablesWithoutColumn)
{
    VarPtr destroyed;
    {
        Project other;
        destroyed = other.addNumericVariable("x1", Variable::Independent);
    }
    points.rebuild({x1}, {VarPtr()}, cases.get(), true);
    EXPECT_EQ(rowCount(), 0);
    for (const VarPtr& gone : {VarPtr(), destroyed}) {
        points.rebuild({x1, gone}, {y1}, cases.get(), true);
        EXPECT_EQ(rowCount(), 0);
    }
}

TEST_F(SurrogateModelSourcePointsTest, TreatCellsBeyondTheEndOfAShortColumnAsInvalid)
{
    vtkNew<vtkDoubleArray> shortColumn;
    shortColumn->InsertNextValue(10);
    shortColumn->SetName("y2");
    cases.get()->RemoveColumnByName("y2");
    cases.get()->GetRowData()->AddArray(shortColumn);

    rebuildFully({y1});
    EXPECT_EQ(column("y2")[0], 10);
    EXPECT_TRUE(std::isnan(column("y2")[1]));
    EXPECT_TRUE(std::isnan(column("y2")[2]));

    rebuildFully({y2});
    EXPECT_EQ(column("y2"), (Values{10}));
}

TEST_F(SurrogateModelSourcePointsTest, TreatColumnsOfVectorsAsInvalid)
{
    for (const char* name : {"y1", "Record"}) {
        vtkNew<vtkUnsignedLongArray> vectors;
        vectors->SetNumberOfComponents(2);
        vectors->SetNumberOfTuples(3);
        vectors->FillValue(1);
        CaseTable table(3);
        for (const char* ones : {"x1", "x2", "y1"}) {
            table.addNumbers(ones, {1, 1, 1});
        }
        rebuildFully(table, {y1});
        EXPECT_EQ(rowCount(), 3);
        rebuildFully(table.add(name, vectors), {y1});

        EXPECT_EQ(rowCount(), 0) << name;
    }
}

TEST_F(SurrogateModelSourcePointsTest, LeaveOutRowsWhoseRecordTheProjectDoesNotKnow)
{
    project->removeRecord(project->record(3));
    CaseTable cases({vtkVariant(0), vtkVariant(999), vtkVariant(-1), vtkVariant("abc"),
                     vtkVariant(missing), vtkVariant(3), vtkVariant(2), vtkVariant("1")});
    cases.addNumbers("x1", {1, 2, 3, 4, 5, 6, 7, 8}).addNumbers("x2", Values(8, 0.0));
    cases.addNumbers("y1", Values(8, 0.0)).addNumbers("y2", Values(8, 0.0));

    rebuildFully(cases, {y1});

    EXPECT_EQ(column("x1"), (Values{7, 8}));
}

TEST_F(SurrogateModelSourcePointsTest, FollowATableThatShrinksWhileItIsRead)
{
    watch("y1")->onRead = [this] {
        cases.get()->RemoveRow(2);
        cases.get()->RemoveRow(1);
    };

    rebuildFully({y1});

    EXPECT_EQ(column("x1"), (Values{1}));
}

TEST_F(SurrogateModelSourcePointsTest, FollowATableThatGrowsWhileItIsRead)
{
    addRecords(1);
    watch("x2")->onRead = [this] {
        vtkNew<vtkVariantArray> row;
        for (vtkIdType column = 0; column < cases.get()->GetNumberOfColumns(); ++column) {
            row->InsertNextValue(vtkVariant(4));
        }
        cases.get()->InsertNextRow(row);
    };

    rebuildFully({y1});

    EXPECT_EQ(column("x1"), (Values{1, 2, 3, 4}));
}

TEST_F(SurrogateModelSourcePointsTest, TakeNoCasesFromRowsBeyondTheEndOfTheIdentities)
{
    std::vector<unsigned long> memory = {1, 2, 3, 1}; // the fourth is none of the column's
    vtkNew<vtkUnsignedLongArray> identities;
    identities->SetArray(memory.data(), 3, 1);
    cases.add("Record", identities);
    watch("x2")->onRead = [this] {
        cases.get()->RemoveColumnByName("Record");
        cases.get()->InsertNextBlankRow(1.0);
    };

    rebuildFully({y1});

    EXPECT_EQ(cases.get()->GetNumberOfRows(), 4);
    EXPECT_EQ(rowCount(), 3);
}

TEST_F(SurrogateModelSourcePointsTest, StopReadingARowAtItsFirstInvalidIndependentValue)
{
    cases.set(0, "x1", vtkVariant(missing));
    const WatchedColumn* const second = watch("x2");

    rebuildFully({y1});

    const int rowsWhoseFirstValueIsValid = 2;
    EXPECT_EQ(second->reads, rowsWhoseFirstValueIsValid);
}

TEST_F(SurrogateModelSourcePointsTest, TakeFiniteNumbersOnly)
{
    const double infinity = std::numeric_limits<double>::infinity();
    const double smallest = std::numeric_limits<double>::denorm_min();
    const Values values = {
        0.0,  -0.0,     1e308,    -1e308,   missing, std::copysign(missing, -1.0),
        42.0, smallest, infinity, -infinity};
    addRecords(static_cast<int>(values.size()) - 3);
    CaseTable table(static_cast<int>(values.size()));
    table.addNumbers("x1", values);
    for (const char* const name : {"x2", "y1", "y2"}) {
        table.addNumbers(name, Values(values.size(), 1.0));
    }

    rebuildFully(table, {y1});

    EXPECT_EQ(column("x1"), (Values{0.0, -0.0, 1e308, -1e308, 42.0, smallest}));
}

// A class derived from the usual column may compute its values.
TEST_F(SurrogateModelSourcePointsTest, ReadAColumnOfAnotherClassThroughItsVariants)
{
    watch("x2")->answers = {{1, vtkVariant(missing)}, {2, vtkVariant("none")}};

    rebuildFully({y1});

    EXPECT_EQ(column("x1"), (Values{1}));
}
