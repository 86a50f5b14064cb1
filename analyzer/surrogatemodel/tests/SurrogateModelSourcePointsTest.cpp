#include <surrogatemodel/SurrogateModelSourcePoints.h>

#include "CaseTable.h"
#include "ProjectTest.h"

#include <vtkDataSetAttributes.h>
#include <vtkFloatArray.h>
#include <vtkIntArray.h>
#include <vtkObjectFactory.h>
#include <vtkUnsignedLongArray.h>

#include <cmath>
#include <functional>
#include <utility>

namespace {

using Values = std::vector<double>;

/** Three records, the inputs x1 and x2, the outputs y1 and y2; tables are the tests' own. */
class SurrogateModelSourcePointsTest : public ProjectTest
{
protected:
    SurrogateModelSourcePointsTest()
        : x1(addInput("x1")), x2(addInput("x2")), y1(addOutput("y1")), y2(addOutput("y2"))
    {
        addRecords(3);
    }

    static CaseTable threeCases()
    {
        CaseTable cases(3);
        cases.addNumbers("x1", {1, 2, 3}).addNumbers("x2", {4, 5, 6});
        cases.addNumbers("y1", {10, 20, 30}).addNumbers("y2", {40, 50, 60});
        return cases;
    }

    void rebuildFully(const CaseTable& cases, const std::set<VarPtr>& dependents)
    {
        points.rebuild({x1, x2}, dependents, cases.get(), true);
    }

    void rebuildPartially(const CaseTable& cases, const std::set<VarPtr>& dependents)
    {
        points.rebuild({x1, x2}, dependents, cases.get(), false);
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

    VarPtr x1;
    VarPtr x2;
    VarPtr y1;
    VarPtr y2;
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

TEST_F(SurrogateModelSourcePointsTest, LeaveOutCasesWhoseRecordIsExcluded)
{
    project->setIncluded(project->record(2), false);

    rebuildFully(threeCases(), {y1});

    EXPECT_EQ(column("x1"), (Values{1, 3}));
}

TEST_F(SurrogateModelSourcePointsTest, AskForTheStateOfTheRecordsOnEveryRebuild)
{
    const CaseTable cases = threeCases();
    rebuildFully(cases, {y1});
    EXPECT_EQ(rowCount(), 3);

    project->setIncluded(project->record(1), false);
    rebuildPartially(cases, {y1});
    EXPECT_EQ(column("x1"), (Values{2, 3}));

    project->setIncluded(project->record(1), true);
    rebuildPartially(cases, {y1});
    EXPECT_EQ(column("x1"), (Values{1, 2, 3}));
}

TEST_F(SurrogateModelSourcePointsTest, LeaveOutCasesWithAnInvalidIndependentValue)
{
    CaseTable cases = threeCases();
    cases.set(1, "x2", vtkVariant(missing));

    rebuildFully(cases, {y1});

    EXPECT_EQ(column("x1"), (Values{1, 3}));
}

TEST_F(SurrogateModelSourcePointsTest, JudgeTheListedVariablesWhateverTheirNature)
{
    const VarPtr other = project->addNumericVariable("other", Variable::Unassigned);
    CaseTable cases = threeCases();
    cases.addNumbers("other", {7, missing, 9});

    points.rebuild({x1, other}, {y1}, cases.get(), true);

    EXPECT_EQ(column("x1"), (Values{1, 3}));
}

TEST_F(SurrogateModelSourcePointsTest, RememberBadIndependentRowsForPartialRebuilds)
{
    CaseTable cases = threeCases();
    cases.set(1, "x1", vtkVariant(missing));
    rebuildFully(cases, {y1});

    cases.set(1, "x1", vtkVariant(2.0));
    rebuildPartially(cases, {y2});

    EXPECT_EQ(column("y2"), (Values{40, 60}));
}

TEST_F(SurrogateModelSourcePointsTest, DoNotReadIndependentValuesAgainInPartialRebuilds)
{
    CaseTable cases = threeCases();
    rebuildFully(cases, {y1});

    cases.set(1, "x1", vtkVariant(missing));
    rebuildPartially(cases, {y2});

    EXPECT_EQ(column("y2"), (Values{40, 50, 60}));
}

TEST_F(SurrogateModelSourcePointsTest, ForgetBadIndependentRowsInAFullRebuild)
{
    CaseTable cases = threeCases();
    cases.set(1, "x1", vtkVariant(missing));
    rebuildFully(cases, {y1});

    cases.set(1, "x1", vtkVariant(2.0));
    rebuildFully(cases, {y1});
    EXPECT_EQ(rowCount(), 3);

    rebuildPartially(cases, {y1});
    EXPECT_EQ(rowCount(), 3);
}

// The values of an excluded record are not judged, so its row is no bad row: included later, it is
// taken until the next full rebuild.
TEST_F(SurrogateModelSourcePointsTest, DoNotRememberRowsOfExcludedRecordsAsBad)
{
    CaseTable cases = threeCases();
    cases.set(1, "x1", vtkVariant(missing));
    project->setIncluded(project->record(2), false);
    rebuildFully(cases, {y1});

    project->setIncluded(project->record(2), true);
    rebuildPartially(cases, {y1});

    EXPECT_EQ(column("y1"), (Values{10, 20, 30}));
}

TEST_F(SurrogateModelSourcePointsTest, ExamineTheRequestedDependentsOnEveryRebuild)
{
    CaseTable cases = threeCases();
    rebuildFully(cases, {y1});

    cases.set(0, "y1", vtkVariant(missing));
    rebuildPartially(cases, {y1});

    EXPECT_EQ(column("y1"), (Values{20, 30}));
}

TEST_F(SurrogateModelSourcePointsTest, AcceptInvalidValuesOfDependentsThatAreNotRequested)
{
    CaseTable cases = threeCases();
    cases.set(1, "y2", vtkVariant(missing));

    rebuildFully(cases, {y1});

    EXPECT_EQ(rowCount(), 3);
    EXPECT_TRUE(std::isnan(column("y2")[1]));
}

TEST_F(SurrogateModelSourcePointsTest, DropTheCasesThatAreBadForAnyOfTheRequestedDependents)
{
    CaseTable cases = threeCases();
    cases.set(0, "y1", vtkVariant(missing));
    cases.set(2, "y2", vtkVariant(missing));

    rebuildFully(cases, {y1, y2});

    EXPECT_EQ(column("x1"), (Values{2}));
}

TEST_F(SurrogateModelSourcePointsTest, ListChosenVariablesFirstThenTheProjectsDependents)
{
    project->moveVariable(y2, 0);

    points.rebuild({x2, x1}, {y1}, threeCases().get(), true);

    EXPECT_EQ(columnNames(), (std::vector<std::string>{"x2", "x1", "y2", "y1"}));
}

TEST_F(SurrogateModelSourcePointsTest, GiveTheColumnsInListOrderAndInProjectOrder)
{
    project->moveVariable(y2, 0);

    points.rebuild({x2, x1}, {y1}, threeCases().get(), true);

    const std::vector<double*> inputs = points.independentColumns();
    const std::vector<double*> outputs = points.dependentColumns();
    ASSERT_EQ(inputs.size(), 2U);
    ASSERT_EQ(outputs.size(), 2U);
    EXPECT_EQ(shown(inputs[0], points.sourceTable()), (Values{4, 5, 6}));
    EXPECT_EQ(shown(inputs[1], points.sourceTable()), (Values{1, 2, 3}));
    EXPECT_EQ(shown(outputs[0], points.sourceTable()), (Values{40, 50, 60}));
    EXPECT_EQ(shown(outputs[1], points.sourceTable()), (Values{10, 20, 30}));
}

TEST_F(SurrogateModelSourcePointsTest, HoldDoubleColumns)
{
    rebuildFully(threeCases(), {y1});

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
    CaseTable cases = threeCases();
    cases.addNumbers("other", {7, 8, 9}).addTexts("label", {"1", "2", "3"});

    points.rebuild({other, x1, label}, {y1}, cases.get(), true);

    EXPECT_EQ(columnNames(), (std::vector<std::string>{"other", "x1", "label", "y1", "y2"}));
    ASSERT_EQ(points.independentColumns().size(), 1U);
    EXPECT_EQ(shown(points.independentColumns()[0], points.sourceTable()), (Values{1, 2, 3}));
    EXPECT_EQ(column("label"), (Values{1, 2, 3}));
}

TEST_F(SurrogateModelSourcePointsTest, HandOutCopiesOfTheColumnLists)
{
    rebuildFully(threeCases(), {y1});

    points.independentColumns().clear();
    points.dependentColumns().clear();

    EXPECT_EQ(points.independentColumns().size(), 2U);
    EXPECT_EQ(points.dependentColumns().size(), 2U);
}

TEST_F(SurrogateModelSourcePointsTest, HaveAllColumnsAlsoWithoutAnyCase)
{
    for (const RecordPtr& record : project->records()) {
        project->setIncluded(record, false);
    }

    rebuildFully(threeCases(), {y1});

    EXPECT_EQ(rowCount(), 0);
    EXPECT_EQ(columnNames(), (std::vector<std::string>{"x1", "x2", "y1", "y2"}));
    EXPECT_EQ(points.independentColumns().size(), 2U);
    EXPECT_EQ(points.dependentColumns().size(), 2U);
}

TEST_F(SurrogateModelSourcePointsTest, AreEmptyForATableWithoutRowsOrColumns)
{
    points.rebuild({x1, x2}, {y1}, vtkNew<vtkTable>(), true);

    EXPECT_EQ(rowCount(), 0);
    EXPECT_EQ(points.sourceTable()->GetNumberOfColumns(), 4);
}

TEST_F(SurrogateModelSourcePointsTest, ConvertWhateverHoldsANumber)
{
    vtkNew<vtkIntArray> integers;
    vtkNew<vtkFloatArray> floats;
    for (int row = 0; row < 3; ++row) {
        integers->InsertNextValue(row + 7);
        floats->InsertNextValue(0.5F * static_cast<float>(row));
    }
    CaseTable cases(3);
    cases.add("x1", integers).add("x2", floats);
    cases.addTexts("y1", {"1.5", "-2e3", "7"});
    cases.addVariants("y2", {vtkVariant(1), vtkVariant(2.5), vtkVariant("3")});

    rebuildFully(cases, {y1, y2});

    EXPECT_EQ(column("x1"), (Values{7, 8, 9}));
    EXPECT_EQ(column("x2"), (Values{0, 0.5, 1}));
    EXPECT_EQ(column("y1"), (Values{1.5, -2000, 7}));
    EXPECT_EQ(column("y2"), (Values{1, 2.5, 3}));
}

TEST_F(SurrogateModelSourcePointsTest, HoldNaNForCellsThatAreNoNumber)
{
    CaseTable cases(3);
    cases.addNumbers("x1", {1, 2, 3}).addNumbers("x2", {4, 5, 6}).addNumbers("y1", {7, 8, 9});
    cases.addVariants("y2", {vtkVariant("abc"), vtkVariant(""), vtkVariant()});

    rebuildFully(cases, {y1});

    for (const double value : column("y2")) {
        EXPECT_TRUE(std::isnan(value));
    }
}

TEST_F(SurrogateModelSourcePointsTest, ShareOneColumnBetweenVariablesOfOneName)
{
    const CaseTable cases = threeCases();

    points.rebuild({y2, x1, x1}, {y1}, cases.get(), true);

    EXPECT_EQ(points.sourceTable()->GetNumberOfColumns(), 3);
    EXPECT_EQ(points.independentColumns().size(), 2U);
    ASSERT_EQ(points.dependentColumns().size(), 2U);
    EXPECT_EQ(shown(points.dependentColumns()[0], points.sourceTable()), (Values{10, 20, 30}));
    EXPECT_EQ(shown(points.dependentColumns()[1], points.sourceTable()), (Values{40, 50, 60}));
}

TEST_F(SurrogateModelSourcePointsTest, TakeAVariableWithoutColumnForInvalidEverywhere)
{
    CaseTable cases(3);
    cases.addNumbers("x1", {1, 2, 3}).addNumbers("y1", {10, 20, 30});

    rebuildFully(cases, {y1});
    EXPECT_EQ(rowCount(), 0);

    points.rebuild({x1}, {y2}, cases.get(), true);
    EXPECT_EQ(rowCount(), 0);

    points.rebuild({x1}, {y1}, cases.get(), true);
    EXPECT_EQ(rowCount(), 3);
    EXPECT_TRUE(std::isnan(column("y2")[0]));
}

TEST_F(SurrogateModelSourcePointsTest, TakeNullAndDestroyedHandlesForVariablesWithoutColumn)
{
    VarPtr destroyed;
    {
        Project other;
        destroyed = other.addNumericVariable("x1", Variable::Independent);
    }
    const CaseTable cases = threeCases();

    points.rebuild({x1}, {VarPtr()}, cases.get(), true);
    EXPECT_EQ(rowCount(), 0);
    points.rebuild({x1, VarPtr()}, {y1}, cases.get(), true);
    EXPECT_EQ(rowCount(), 0);
    points.rebuild({x1, destroyed}, {y1}, cases.get(), true);
    EXPECT_EQ(rowCount(), 0);
}

TEST_F(SurrogateModelSourcePointsTest, TakeCellsBeyondTheEndOfAShortColumnForInvalid)
{
    CaseTable cases(3);
    cases.addNumbers("x1", {1, 2, 3}).addNumbers("x2", {4, 5, 6}).addNumbers("y1", {7, 8, 9});
    vtkNew<vtkDoubleArray> shortColumn;
    shortColumn->InsertNextValue(10);
    shortColumn->SetName("y2");
    cases.get()->GetRowData()->AddArray(shortColumn);

    rebuildFully(cases, {y1});
    EXPECT_EQ(column("y2")[0], 10);
    EXPECT_TRUE(std::isnan(column("y2")[1]));
    EXPECT_TRUE(std::isnan(column("y2")[2]));

    rebuildFully(cases, {y2});
    EXPECT_EQ(column("y2"), (Values{10}));
}

TEST_F(SurrogateModelSourcePointsTest, TakeAColumnOfVectorsForInvalid)
{
    vtkNew<vtkDoubleArray> vectors;
    vectors->SetNumberOfComponents(2);
    vectors->SetNumberOfTuples(3);
    vectors->FillValue(1.0);
    CaseTable cases(3);
    cases.addNumbers("x1", {1, 2, 3}).addNumbers("x2", {4, 5, 6}).add("y1", vectors);

    rebuildFully(cases, {y1});

    EXPECT_EQ(rowCount(), 0);
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

namespace {

/** Runs `onRead` when row 1 has been read. */
class WatchedColumn : public vtkDoubleArray
{
public:
    static WatchedColumn* New();
    vtkTypeMacro(WatchedColumn, vtkDoubleArray)

    vtkVariant GetVariantValue(vtkIdType row) override
    {
        ++reads;
        const vtkVariant value = vtkDoubleArray::GetVariantValue(row);
        if (row == 1 && onRead) {
            std::exchange(onRead, {})();
        }
        return value;
    }

    int reads = 0;
    std::function<void()> onRead;

protected:
    WatchedColumn() = default;
};

vtkStandardNewMacro(WatchedColumn);

} // namespace

TEST_F(SurrogateModelSourcePointsTest, FollowATableThatShrinksWhileItIsWalked)
{
    CaseTable cases = threeCases();
    vtkNew<WatchedColumn> watched;
    watched->SetNumberOfValues(3);
    watched->FillValue(1.0);
    cases.add("x2", watched);
    watched->onRead = [&cases] {
        cases.get()->RemoveRow(2);
        cases.get()->RemoveRow(1);
    };

    rebuildFully(cases, {y1});

    EXPECT_EQ(column("x1"), (Values{1}));
}

TEST_F(SurrogateModelSourcePointsTest, FollowATableThatGrowsWhileItIsWalked)
{
    addRecords(1);
    CaseTable cases = threeCases();
    vtkNew<WatchedColumn> watched;
    watched->SetNumberOfValues(3);
    watched->FillValue(1.0);
    cases.add("x2", watched);
    watched->onRead = [&cases] {
        vtkNew<vtkVariantArray> row;
        for (vtkIdType column = 0; column < cases.get()->GetNumberOfColumns(); ++column) {
            row->InsertNextValue(vtkVariant(4));
        }
        cases.get()->InsertNextRow(row);
    };

    rebuildFully(cases, {y1});

    EXPECT_EQ(column("x1"), (Values{1, 2, 3, 4}));
}

TEST_F(SurrogateModelSourcePointsTest, TakeRowsBeyondTheEndOfTheIdentitiesForNoCases)
{
    CaseTable cases = threeCases();
    std::vector<unsigned long> memory = {1, 2, 3, 1}; // the fourth is none of the column's
    vtkNew<vtkUnsignedLongArray> identities;
    identities->SetArray(memory.data(), 3, 1);
    vtkNew<WatchedColumn> watched;
    watched->SetNumberOfValues(3);
    watched->FillValue(1.0);
    cases.add("Record", identities).add("x2", watched);
    watched->onRead = [&cases] {
        cases.get()->RemoveColumnByName("Record");
        cases.get()->InsertNextBlankRow(1.0);
    };

    rebuildFully(cases, {y1});

    EXPECT_EQ(cases.get()->GetNumberOfRows(), 4);
    EXPECT_EQ(rowCount(), 3);
}

TEST_F(SurrogateModelSourcePointsTest, TakeVectorsOfIdentitiesForNoCases)
{
    CaseTable cases = threeCases();
    vtkNew<vtkUnsignedLongArray> vectors;
    vectors->SetNumberOfComponents(2);
    vectors->SetNumberOfTuples(3);
    vectors->FillValue(1);
    cases.add("Record", vectors);

    rebuildFully(cases, {y1});

    EXPECT_EQ(rowCount(), 0);
}

TEST_F(SurrogateModelSourcePointsTest, StopReadingARowAtItsFirstInvalidIndependentValue)
{
    CaseTable cases = threeCases();
    cases.set(0, "x1", vtkVariant(missing));
    vtkNew<WatchedColumn> watched;
    watched->SetNumberOfValues(3);
    watched->FillValue(1.0);
    cases.add("x2", watched);

    rebuildFully(cases, {y1});

    const int rowsWhoseFirstValueIsValid = 2;
    EXPECT_EQ(watched->reads, rowsWhoseFirstValueIsValid);
}

namespace {

/** Numbers in memory, and the same cells as whatever a test wants them to be. */
class AnsweringColumn : public vtkDoubleArray
{
public:
    static AnsweringColumn* New();
    vtkTypeMacro(AnsweringColumn, vtkDoubleArray)

    vtkVariant GetVariantValue(vtkIdType row) override
    {
        return answers.at(static_cast<std::size_t>(row));
    }

    std::vector<vtkVariant> answers;

protected:
    AnsweringColumn() = default;
};

vtkStandardNewMacro(AnsweringColumn);

} // namespace

TEST_F(SurrogateModelSourcePointsTest, JudgeNumbersInMemoryAsTheirVariantsAreJudged)
{
    const double infinity = std::numeric_limits<double>::infinity();
    const Values values = {0.0,
                           -0.0,
                           1e308,
                           -1e308,
                           std::numeric_limits<double>::denorm_min(),
                           missing,
                           std::copysign(missing, -1.0),
                           infinity,
                           -infinity,
                           42.0};
    addRecords(static_cast<int>(values.size()) - 3);
    vtkNew<AnsweringColumn> boxed;
    for (const double value : values) {
        boxed->InsertNextValue(value);
        boxed->answers.emplace_back(value);
    }
    const auto casesOf = [&](vtkAbstractArray* x1Column) {
        CaseTable cases(static_cast<int>(values.size()));
        cases.add("x1", x1Column);
        for (const char* const name : {"x2", "y1", "y2"}) {
            cases.addNumbers(name, Values(values.size(), 1.0));
        }
        return cases;
    };
    vtkNew<vtkDoubleArray> inMemory;
    for (const double value : values) {
        inMemory->InsertNextValue(value);
    }

    rebuildFully(casesOf(boxed), {y1});
    const Values valid = column("x1");
    rebuildFully(casesOf(inMemory), {y1});

    EXPECT_EQ(valid, (Values{0.0, -0.0, 1e308, -1e308, values[4], 42.0}));
    EXPECT_EQ(column("x1"), valid);
}

TEST_F(SurrogateModelSourcePointsTest, JudgeAColumnByItsAnswersAndNotByItsMemory)
{
    CaseTable cases = threeCases();
    vtkNew<AnsweringColumn> answering;
    for (int row = 0; row < 3; ++row) {
        answering->InsertNextValue(row);
    }
    answering->answers = {vtkVariant(1.0), vtkVariant(missing), vtkVariant("none")};
    cases.add("x2", answering);

    rebuildFully(cases, {y1});

    EXPECT_EQ(column("x1"), (Values{1}));
}

TEST_F(SurrogateModelSourcePointsTest, TakeCasesInRunsAndWithGapsAsTheyAre)
{
    addRecords(2);
    CaseTable cases(5);
    cases.addNumbers("x1", {1, 2, 3, 4, 5}).addNumbers("x2", {missing, 1, 1, 1, missing});
    cases.addNumbers("y1", {1, 1, 1, 1, 1}).addNumbers("y2", {10, 20, 30, 40, 50});

    rebuildFully(cases, {y1});
    EXPECT_EQ(column("x1"), (Values{2, 3, 4}));
    EXPECT_EQ(column("y2"), (Values{20, 30, 40}));

    project->setIncluded(project->record(3), false);
    rebuildFully(cases, {y1});
    EXPECT_EQ(column("x1"), (Values{2, 4}));
    EXPECT_EQ(column("y2"), (Values{20, 40}));
}
