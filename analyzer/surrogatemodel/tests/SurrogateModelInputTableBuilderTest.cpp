#include <surrogatemodel/SurrogateModelInputTableBuilder.h>

#include "FakeManager.h"
#include "FixedVariables.h"

#include <mirel_datamanagement/Project.h>
#include <mirel_datamanagement/tests/MemoryGrowth.h>
#include <mirel_property/tests/VirtualSlot.h>

#include <vtkDoubleArray.h>
#include <vtkTable.h>

#include <gtest/gtest.h>

#include <cmath>
#include <memory>

namespace {

using Values = std::vector<double>;

class SurrogateModelInputTableBuilderTest : public testing::Test
{
protected:
    VarPtr independent(const std::string& name, const Values& values)
    {
        const VarPtr variable = project.addNumericVariable(name, Variable::Independent);
        std::vector<VarPtr> list = manager.independents->get();
        list.push_back(variable);
        manager.independents->set(list);
        variables.inputs[variable] = values;
        return variable;
    }

    VarPtr dependent(const std::string& name)
    {
        const VarPtr variable = project.addNumericVariable(name, Variable::Dependent);
        variables.dependents.insert(variable);
        return variable;
    }

    SurrogateModelInputTableBuilder builder() const { return {manager, variables}; }

    static std::vector<std::string> names(vtkTable& table)
    {
        std::vector<std::string> result;
        for (vtkIdType i = 0; i < table.GetNumberOfColumns(); ++i) {
            result.push_back(table.GetColumn(i)->GetName());
        }
        return result;
    }

    /** The values of column `index`, which has to be an array of doubles. */
    static Values column(vtkTable& table, vtkIdType index)
    {
        vtkDoubleArray* array = vtkDoubleArray::SafeDownCast(table.GetColumn(index));
        if (array == nullptr) {
            ADD_FAILURE() << "column " << index << " is no array of doubles";
            return {};
        }
        EXPECT_EQ(array->GetNumberOfComponents(), 1);
        return Values(array->GetPointer(0), array->GetPointer(0) + array->GetNumberOfTuples());
    }

    static void expectNaN(const Values& values)
    {
        for (std::size_t i = 0; i < values.size(); ++i) {
            EXPECT_TRUE(std::isnan(values[i])) << "row " << i << " holds " << values[i];
        }
    }

    Project project;
    FakeManager manager;
    FixedVariables variables;
};

TEST_F(SurrogateModelInputTableBuilderTest, VariesTheLastVariableFastest)
{
    independent("A", {1, 2});
    independent("B", {10, 20});
    independent("C", {5, 6, 7});

    const auto table = builder().suppliedIndependentVarValues();

    EXPECT_EQ(column(*table, 0), (Values{1, 1, 1, 1, 1, 1, 2, 2, 2, 2, 2, 2}));
    EXPECT_EQ(column(*table, 1), (Values{10, 10, 10, 20, 20, 20, 10, 10, 10, 20, 20, 20}));
    EXPECT_EQ(column(*table, 2), (Values{5, 6, 7, 5, 6, 7, 5, 6, 7, 5, 6, 7}));
}

TEST_F(SurrogateModelInputTableBuilderTest, FillsLargeColumnsLikeTheFormulaOfTheGrid)
{
    // Periods below, around and far above what is copied at once.
    const std::size_t counts[] = {7, 3, 1000, 11};
    std::size_t rows = 1;
    for (const std::size_t count : counts) {
        Values values;
        for (std::size_t i = 0; i < count; ++i) {
            values.push_back(static_cast<double>(i));
        }
        independent("V" + std::to_string(count), values);
        rows *= count;
    }

    const auto table = builder().suppliedIndependentVarValues();

    std::size_t repeat = 1;
    for (vtkIdType i = 3; i >= 0; --i) {
        const Values values = column(*table, i);
        ASSERT_EQ(values.size(), rows);
        std::size_t wrong = 0;
        for (std::size_t row = 0; row < rows; ++row) {
            wrong += values[row] != static_cast<double>(row / repeat % counts[i]) ? 1 : 0;
        }
        EXPECT_EQ(wrong, 0u) << "column " << i;
        repeat *= counts[i];
    }
}

TEST_F(SurrogateModelInputTableBuilderTest, NamesColumnsInListOrderAndResultsInTheOrderOfTheHandles)
{
    const VarPtr a = independent("A", {3, 1, 2, 2});
    const VarPtr b = independent("B", {2});
    manager.independents->set({b, a});
    dependent("z");
    const VarPtr y = dependent("y");
    project.moveVariable(y, 0);

    const SurrogateModelInputTableBuilder tables(manager, variables);

    EXPECT_EQ(names(*tables.suppliedIndependentVarValues()), (std::vector<std::string>{"B", "A"}));
    EXPECT_EQ(column(*tables.suppliedIndependentVarValues(), 1), (Values{3, 1, 2, 2}));
    EXPECT_EQ(names(*tables.resultDependentVarValues()), (std::vector<std::string>{"z", "y"}));
}

TEST_F(SurrogateModelInputTableBuilderTest, GivesResultsAsManyRowsAllNaN)
{
    independent("A", {1, 2});
    independent("B", {1, 2, 3});
    dependent("y");
    dependent("z");

    const auto table = builder().resultDependentVarValues();

    EXPECT_EQ(table->GetNumberOfRows(), 6);
    for (vtkIdType i = 0; i < 2; ++i) {
        const Values values = column(*table, i);
        EXPECT_EQ(values.size(), 6u);
        expectNaN(values);
    }
}

TEST_F(SurrogateModelInputTableBuilderTest, AnEmptyListEmptiesBothTablesButKeepsTheirColumns)
{
    independent("A", {1, 2});
    independent("B", {});
    dependent("y");

    const auto tables = std::make_unique<SurrogateModelInputTableBuilder>(manager, variables);

    EXPECT_EQ(names(*tables->suppliedIndependentVarValues()), (std::vector<std::string>{"A", "B"}));
    EXPECT_EQ(names(*tables->resultDependentVarValues()), (std::vector<std::string>{"y"}));
    EXPECT_EQ(tables->suppliedIndependentVarValues()->GetNumberOfRows(), 0);
    EXPECT_EQ(tables->resultDependentVarValues()->GetNumberOfRows(), 0);
}

TEST_F(SurrogateModelInputTableBuilderTest, WithoutIndependentsThereIsOneResultAndNothingSupplied)
{
    dependent("y");
    const SurrogateModelInputTableBuilder tables(manager, variables);
    EXPECT_EQ(tables.suppliedIndependentVarValues()->GetNumberOfColumns(), 0);
    EXPECT_EQ(tables.suppliedIndependentVarValues()->GetNumberOfRows(), 0);
    const Values results = column(*tables.resultDependentVarValues(), 0);
    EXPECT_EQ(results.size(), 1u);
    expectNaN(results);

    variables.dependents.clear();
    independent("A", {1, 2});
    const SurrogateModelInputTableBuilder withoutDependents(manager, variables);
    EXPECT_EQ(withoutDependents.resultDependentVarValues()->GetNumberOfColumns(), 0);
    EXPECT_EQ(withoutDependents.suppliedIndependentVarValues()->GetNumberOfRows(), 2);
}

TEST_F(SurrogateModelInputTableBuilderTest, AnswersTheSameTablesEachTimeAndSharesNoneWithOthers)
{
    independent("A", {1});
    const SurrogateModelInputTableBuilder first(manager, variables);
    const SurrogateModelInputTableBuilder second(manager, variables);

    EXPECT_EQ(first.suppliedIndependentVarValues(), first.suppliedIndependentVarValues());
    EXPECT_EQ(first.resultDependentVarValues(), first.resultDependentVarValues());
    EXPECT_NE(first.suppliedIndependentVarValues(), second.suppliedIndependentVarValues());
    EXPECT_NE(first.resultDependentVarValues(), second.resultDependentVarValues());
    EXPECT_NE(first.suppliedIndependentVarValues(), first.resultDependentVarValues());
}

TEST_F(SurrogateModelInputTableBuilderTest, KeepsItsTablesWhateverChangesAfterwards)
{
    const VarPtr a = independent("A", {1, 2});
    const VarPtr y = dependent("y");
    const SurrogateModelInputTableBuilder tables(manager, variables);

    manager.independents->set({});
    variables.inputs[a] = {7};
    variables.dependents.clear();
    project.renameVariable(y, "other");

    EXPECT_EQ(column(*tables.suppliedIndependentVarValues(), 0), (Values{1, 2}));
    EXPECT_EQ(names(*tables.resultDependentVarValues()), (std::vector<std::string>{"y"}));
}

TEST_F(SurrogateModelInputTableBuilderTest, TakesVariablesOfEveryNatureAndRemovedOnes)
{
    const VarPtr text = project.addTextVariable("material", Variable::Unassigned);
    const VarPtr a = independent("A", {1, 2});
    const VarPtr y = dependent("y");
    manager.independents->set({text, a, y});
    variables.inputs[text] = {5};
    variables.inputs[y] = {6};
    project.removeVariable(a);
    project.removeVariable(y);

    const SurrogateModelInputTableBuilder tables(manager, variables);

    EXPECT_EQ(names(*tables.suppliedIndependentVarValues()),
              (std::vector<std::string>{"material", "A", "y"}));
    EXPECT_EQ(column(*tables.suppliedIndependentVarValues(), 0), (Values{5, 5}));
    EXPECT_EQ(names(*tables.resultDependentVarValues()), (std::vector<std::string>{"y"}));
}

TEST_F(SurrogateModelInputTableBuilderTest, AHandleOfNoVariableIsAHandleError)
{
    variables.dependents = {VarPtr()};
    EXPECT_THROW(builder(), HandleError);

    variables.dependents.clear();
    manager.independents->set({VarPtr()});
    EXPECT_THROW(builder(), HandleError);
}

TEST_F(SurrogateModelInputTableBuilderTest, AVariableListedTwiceStaysWithinTheGrid)
{
    const VarPtr a = independent("A", {1, 2, 3});
    manager.independents->set(std::vector<VarPtr>(50, a));
    dependent("y");

    const SurrogateModelInputTableBuilder tables(manager, variables);

    // One column, since columns are found by name; the first of the list is written last.
    EXPECT_EQ(names(*tables.suppliedIndependentVarValues()), (std::vector<std::string>{"A"}));
    EXPECT_EQ(column(*tables.suppliedIndependentVarValues(), 0), (Values{1, 1, 1}));
    EXPECT_EQ(tables.resultDependentVarValues()->GetNumberOfRows(), 3);
}

TEST_F(SurrogateModelInputTableBuilderTest, AVariableWithoutValuesInTheMapIsNaNOneNotListedCounts)
{
    const VarPtr a = independent("A", {1, 2});
    independent("B", {10, 20});
    variables.inputs.erase(a);
    variables.inputs[project.addNumericVariable("C", Variable::Independent)] = {1, 2, 3};

    const auto table = builder().suppliedIndependentVarValues();

    ASSERT_EQ(table->GetNumberOfRows(), 6);
    expectNaN(column(*table, 0));
    EXPECT_EQ(column(*table, 1), (Values{10, 20, 10, 20, 10, 20}));
}

std::string refusal(const SurrogateModelManagerInterface& manager,
                    const InterpolationVariablesInterface& variables)
{
    try {
        const SurrogateModelInputTableBuilder tables(manager, variables);
    } catch (const SurrogateModelInterface::Error& error) {
        return error.what();
    }
    return "no error";
}

TEST_F(SurrogateModelInputTableBuilderTest, RefusesAGridThatDoesNotFitIntoMemory)
{
    const auto message = [](const std::string& points, int columns) {
        return "The evaluation grid is too large: " + points + " points in " +
               std::to_string(columns) +
               " columns take more than three quarters of this machine's memory. Evaluate the "
               "model at fewer values per variable.";
    };
    for (const char* name : {"A", "B", "C", "D", "E"}) {
        independent(name, Values(1000, 1.0));
    }
    dependent("y");
    EXPECT_EQ(refusal(manager, variables), message("1000000000000000", 6));

    for (auto& [variable, values] : variables.inputs) {
        values.assign(65536, 1.0); // to the power of 4 that is 0 in 64 bits
    }
    EXPECT_EQ(refusal(manager, variables), message("more than 9223372036854775807", 6));
    variables.inputs.begin()->second.clear();
    EXPECT_EQ(builder().suppliedIndependentVarValues()->GetNumberOfRows(), 0)
        << "an empty list empties a grid that would be too large";
}

TEST_F(SurrogateModelInputTableBuilderTest, KeepsTheOrderOfItsVirtualOperations)
{
    // Behind the two forms of the destructor.
    EXPECT_TRUE(isVirtualSlot(&SurrogateModelInputTableBuilder::suppliedIndependentVarValues, 2));
    EXPECT_TRUE(isVirtualSlot(&SurrogateModelInputTableBuilder::resultDependentVarValues, 3));
}

} // namespace

TEST_F(SurrogateModelInputTableBuilderTest, TakesTheMemoryOfItsColumnsAndAFixedAmount)
{
    if (!memoryCanBeMeasured) {
        GTEST_SKIP();
    }
    independent("A", Values(100, 1.0));
    independent("B", Values(100, 2.0));
    const VarPtr last = independent("C", Values());
    dependent("Y");
    const auto growthOver = [&](std::size_t lastValues) {
        variables.inputs[last] = Values(lastValues, 3.0);
        return megabytesGrownBy([&] { builder(); });
    };

    const int small = growthOver(100);
    const int large = growthOver(400);

    const int smallColumns = 4 * 8; // megabytes, as are these
    const int fixed = 8;
    EXPECT_GE(small, smallColumns - 2);
    EXPECT_LE(small, smallColumns + fixed);
    EXPECT_LE(large, 4 * smallColumns + fixed);
}
