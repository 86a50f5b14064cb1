#include <surrogatemodel/SurrogateModelInputTableBuilder.h>

#include <surrogatemodel/InterpolationVariablesInterface.h>
#include <surrogatemodel/SurrogateModelManagerInterface.h>

#include <mirel_fitting/SurrogateModelInterface.h>

#include <boost/format.hpp>

#include <vtkDoubleArray.h>
#include <vtkNew.h>
#include <vtkTable.h>

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <new>
#include <string>

namespace {

/** Number of values that are copied at a time: 32 KB, the size of a first-level cache. */
const vtkIdType CopiedBlock = 4096;

void addColumn(vtkTable& table, const VarPtr& variable)
{
    vtkNew<vtkDoubleArray> column;
    column->SetName(variable.lock()->name().c_str());
    table.AddColumn(column);
}

/** The column named after `variable`; there is one. */
vtkDoubleArray& columnOf(vtkTable& table, const VarPtr& variable)
{
    return *vtkDoubleArray::SafeDownCast(table.GetColumnByName(variable.lock()->name().c_str()));
}

/** How many doubles three quarters of the machine's memory hold. */
vtkIdType affordableDoubles()
{
    const vtkIdType pages = sysconf(_SC_PHYS_PAGES);
    const vtkIdType pageSize = sysconf(_SC_PAGESIZE);
    if (pages <= 0 || pageSize <= 0) {
        return std::numeric_limits<vtkIdType>::max(); // unknown to the system
    }
    return pages / 4 * 3 * (pageSize / static_cast<vtkIdType>(sizeof(double)));
}

[[noreturn]] void refuseGrid(const std::string& points, vtkIdType columns)
{
    boost::format message("The evaluation grid is too large: %1% points in %2% columns take more "
                          "than three quarters of this machine's memory. Evaluate the model at "
                          "fewer values per variable.");
    throw SurrogateModelInterface::Error((message % points % std::to_string(columns)).str());
}

/**
 * The number of combinations of the values.
 * @throw SurrogateModelInterface::Error if they cannot be counted or do not fit into memory.
 */
vtkIdType gridPoints(const std::map<VarPtr, std::vector<double>>& values, vtkIdType columns)
{
    // First: a variable without values empties the grid, even if the product would overflow.
    const bool isEmpty = std::any_of(values.begin(), values.end(),
                                     [](const auto& entry) { return entry.second.empty(); });
    if (isEmpty) {
        return 0;
    }

    const vtkIdType most = std::numeric_limits<vtkIdType>::max();
    vtkIdType points = 1;
    for (const auto& [variable, list] : values) {
        const auto count = static_cast<vtkIdType>(list.size());
        if (points > most / count) {
            refuseGrid("more than " + std::to_string(most), columns);
        }
        points *= count;
    }
    if (columns != 0 && points > affordableDoubles() / columns) {
        refuseGrid(std::to_string(points), columns);
    }
    return points;
}

/**
 * Allocates a large column in pages of 2 MB where the system offers them on request. In pages of
 * 4 KB the first touch of fresh memory takes five times as long as filling the column.
 */
void useLargePages(vtkDoubleArray& column, vtkIdType rows)
{
    const std::size_t page = std::size_t{2} << 20;
    const std::size_t bytes = static_cast<std::size_t>(rows) * sizeof(double);
    if (bytes < page) {
        return;
    }
    void* const memory = std::aligned_alloc(page, (bytes + page - 1) / page * page);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    // A last page that is filled in part would be taken whole: it stays one of small pages.
    madvise(memory, bytes / page * page, MADV_HUGEPAGE);
    column.SetArray(static_cast<double*>(memory), rows, 0, vtkDoubleArray::VTK_DATA_ARRAY_FREE);
}

void setRows(vtkTable& table, vtkIdType rows)
{
    for (vtkIdType i = 0; i < table.GetNumberOfColumns(); ++i) {
        useLargePages(*vtkDoubleArray::SafeDownCast(table.GetColumn(i)), rows);
    }
    table.SetNumberOfRows(rows);
}

/**
 * Writes each of `values` into `repeat` consecutive rows, and all of them again from the start
 * until the column is full.
 */
void fillColumn(vtkDoubleArray& column, const std::vector<double>& values, vtkIdType repeat)
{
    const vtkIdType rows = column.GetNumberOfTuples();
    double* const first = column.GetPointer(0);

    // Every write is bounded by the number of rows: for a variable that is listed twice `repeat`
    // times the number of values exceeds it.
    vtkIdType filled = 0;
    for (auto value = values.begin(); value != values.end() && filled < rows; ++value) {
        const vtkIdType count = std::min(repeat, rows - filled);
        std::fill_n(first + filled, count, *value);
        filled += count;
    }

    // The rows written so far are a whole number of periods, so that copies continue the pattern.
    vtkIdType block = filled;
    while (filled < rows) {
        const vtkIdType count = std::min(block, rows - filled);
        std::copy_n(first, count, first + filled);
        filled += count;
        if (block < CopiedBlock) {
            block = filled;
        }
    }
}

void fillWithNaN(vtkDoubleArray& column)
{
    std::fill_n(column.GetPointer(0), column.GetNumberOfTuples(),
                std::numeric_limits<double>::quiet_NaN());
}

} // namespace

SurrogateModelInputTableBuilder::SurrogateModelInputTableBuilder(
    const SurrogateModelManagerInterface& manager, const InterpolationVariablesInterface& variables)
{
    computeTable(manager, variables);
}

SurrogateModelInputTableBuilder::~SurrogateModelInputTableBuilder() = default;

vtkSmartPointer<vtkTable> SurrogateModelInputTableBuilder::suppliedIndependentVarValues() const
{
    return suppliedIndependent;
}

vtkSmartPointer<vtkTable> SurrogateModelInputTableBuilder::resultDependentVarValues() const
{
    return resultDependent;
}

void SurrogateModelInputTableBuilder::computeTable(const SurrogateModelManagerInterface& manager,
                                                   const InterpolationVariablesInterface& variables)
{
    suppliedIndependent = vtkSmartPointer<vtkTable>::New();
    resultDependent = vtkSmartPointer<vtkTable>::New();
    addColumnsToIndependentVarTable(manager);
    addResultingDepenedentVariables(variables.dependentVariables());
    populateTableArrays(manager.independentVars()->get(), *variables.inputIndependentVariables());
}

void SurrogateModelInputTableBuilder::addColumnsToIndependentVarTable(
    const SurrogateModelManagerInterface& manager)
{
    for (const VarPtr& variable : manager.independentVars()->get()) {
        addColumn(*suppliedIndependent, variable);
    }
}

void SurrogateModelInputTableBuilder::addResultingDepenedentVariables(
    const std::set<VarPtr>& dependents)
{
    for (const VarPtr& variable : dependents) {
        addColumn(*resultDependent, variable);
    }
}

void SurrogateModelInputTableBuilder::populateTableArrays(
    const std::vector<VarPtr>& independents, const std::map<VarPtr, std::vector<double>>& values)
{
    const vtkIdType columns =
        suppliedIndependent->GetNumberOfColumns() + resultDependent->GetNumberOfColumns();
    const vtkIdType points = gridPoints(values, columns);
    setRows(*suppliedIndependent, points);
    setRows(*resultDependent, points);

    // Results that the model does not write are NaN.
    for (vtkIdType i = 0; i < resultDependent->GetNumberOfColumns(); ++i) {
        fillWithNaN(*vtkDoubleArray::SafeDownCast(resultDependent->GetColumn(i)));
    }

    const vtkIdType rows = suppliedIndependent->GetNumberOfRows();
    vtkIdType repeat = 1;
    for (auto variable = independents.rbegin(); variable != independents.rend(); ++variable) {
        vtkDoubleArray& column = columnOf(*suppliedIndependent, *variable);
        const auto entry = values.find(*variable);
        if (entry == values.end()) {
            fillWithNaN(column);
        } else if (rows > 0) {
            fillColumn(column, entry->second, repeat);
            const auto count = static_cast<vtkIdType>(entry->second.size());
            // Only a variable that is listed twice would exceed the rows; no overflow then.
            repeat = repeat > rows / count ? rows : repeat * count;
        }
    }
}
