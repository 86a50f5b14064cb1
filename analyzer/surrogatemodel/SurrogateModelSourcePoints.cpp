#include <surrogatemodel/SurrogateModelSourcePoints.h>

#include <mirel_datamanagement/NatureSpecificVariableProvider.h>
#include <mirel_datamanagement/NumericVariableProvider.h>
#include <mirel_datamanagement/Project.h>
#include <mirel_datamanagement/Record.h>
#include <mirel_datapipeline/SharedColumnArray.h>
#include <mirel_datapipeline/isInvalidValue.h>

#include <vtkDoubleArray.h>
#include <vtkNew.h>
#include <vtkTable.h>
#include <vtkUnsignedLongArray.h>
#include <vtkVariant.h>

#include <algorithm>
#include <limits>
#include <optional>
#include <string>
#include <typeinfo>

namespace {

/** The name of a variable; none for a null handle or a destroyed variable. */
std::optional<std::string> nameOf(const VarPtr& variable)
{
    const boost::shared_ptr<Variable> locked = variable.tryLock();
    return locked ? std::make_optional(locked->name()) : std::nullopt;
}

NatureSpecificVariableProvider numericVariables(const std::vector<VarPtr>& variables,
                                                Variable::Nature nature)
{
    return NatureSpecificVariableProvider(NumericVariableProvider(variables), nature);
}

/**
 * The array as an Array whose memory may be read directly; null for other classes: one derived from
 * a VTK array may compute its values.
 */
template <class Array>
Array* viewed(vtkAbstractArray* array)
{
    const bool isPlain = array != nullptr && (typeid(*array) == typeid(Array) ||
                                              typeid(*array) == typeid(SharedColumnArray<Array>));
    return isPlain ? static_cast<Array*>(array) : nullptr;
}

/**
 * One column of the pipeline's table, looked up by name once per rebuild: a look-up per cell would
 * cost more than the value. A column that is missing has invalid values only, and so
 * has one with several components.
 *
 * The usual column of numbers is read in place. Its pointer and length are read again for every
 * cell, since a call to a record or a column may change the table.
 */
class CaseColumn
{
public:
    CaseColumn(vtkTable* table, const char* name) : CaseColumn(table->GetColumnByName(name)) {}

    explicit CaseColumn(vtkAbstractArray* column)
        : array(column != nullptr && column->GetNumberOfComponents() == 1 ? column : nullptr),
          doubles(viewed<vtkDoubleArray>(array))
    {}

    vtkVariant value(vtkIdType row) const
    {
        return array != nullptr && row < array->GetNumberOfTuples() ? array->GetVariantValue(row)
                                                                    : vtkVariant();
    }

    bool isInvalid(vtkIdType row) const
    {
        const bool isViewed = doubles != nullptr && row < doubles->GetNumberOfValues();
        return isViewed ? isInvalidNumber(doubles->GetValue(row)) : isInvalidValue(value(row));
    }

    /** Writes the numbers of `rows` to `numbers`, NaN for a cell that is no number. */
    void copy(const std::vector<vtkIdType>& rows, double* numbers) const
    {
        // The usual column; one that is shorter than the table is read cell by cell.
        auto* const dense = vtkArrayDownCast<vtkDoubleArray>(array.GetPointer());
        if (dense != nullptr && !rows.empty() && rows.back() < dense->GetNumberOfTuples()) {
            copy(rows, dense->GetPointer(0), numbers);
            return;
        }
        std::transform(rows.begin(), rows.end(), numbers, [this](vtkIdType row) {
            bool isNumber = false;
            const double number = value(row).ToDouble(&isNumber);
            return isNumber ? number : std::numeric_limits<double>::quiet_NaN();
        });
    }

private:
    static void copy(const std::vector<vtkIdType>& rows, const double* values, double* numbers)
    {
        const bool isOneRun = rows.back() - rows.front() == static_cast<vtkIdType>(rows.size()) - 1;
        if (isOneRun) {
            std::copy_n(values + rows.front(), rows.size(), numbers);
        } else {
            std::transform(rows.begin(), rows.end(), numbers,
                           [values](vtkIdType row) { return values[row]; });
        }
    }

    vtkSmartPointer<vtkAbstractArray> array;
    vtkDoubleArray* doubles; ///< the same array; null if it is not read in place
};

/** The column of the record identities. */
class IdentityColumn
{
public:
    explicit IdentityColumn(vtkTable* table)
        : cells(table->GetColumn(0)), identities(viewed<vtkUnsignedLongArray>(table->GetColumn(0)))
    {}

    unsigned long identity(vtkIdType row) const
    {
        const bool isViewed = identities != nullptr && identities->GetNumberOfComponents() == 1 &&
                              row < identities->GetNumberOfValues();
        return isViewed ? identities->GetValue(row) : cells.value(row).ToUnsignedLong();
    }

private:
    CaseColumn cells; ///< keeps the array alive
    vtkUnsignedLongArray* identities;
};

/** A column for each variable, in the order of the handles. */
std::vector<CaseColumn> columnsOf(const std::set<VarPtr>& variables, vtkTable* table)
{
    std::vector<CaseColumn> columns;
    columns.reserve(variables.size());
    for (const VarPtr& variable : variables) {
        const std::optional<std::string> name = nameOf(variable);
        columns.push_back(name ? CaseColumn(table, name->c_str()) : CaseColumn(nullptr));
    }
    return columns;
}

bool anyInvalid(const std::vector<CaseColumn>& columns, vtkIdType row)
{
    return std::any_of(columns.begin(), columns.end(),
                       [row](const CaseColumn& column) { return column.isInvalid(row); });
}

/** False for a row whose record is unknown to the project or removed. */
bool takesPart(const Project& project, unsigned long identity)
{
    const boost::shared_ptr<Record> record = project.record(identity).tryLock();
    return record && record->isIncluded();
}

void addColumn(vtkTable* table, const VarPtr& variable)
{
    const std::optional<std::string> name = nameOf(variable);
    if (!name) {
        return;
    }
    vtkNew<vtkDoubleArray> column;
    column->SetName(name->c_str());
    table->AddColumn(column);
}

/** A table with a column per variable and `rows` filled in from these rows of the pipeline. */
vtkSmartPointer<vtkTable> copyCases(const std::vector<VarPtr>& independentVars,
                                    const NatureSpecificVariableProvider& dependents,
                                    vtkTable* pipelineTable, const std::vector<vtkIdType>& rows)
{
    auto table = vtkSmartPointer<vtkTable>::New();
    for (const VarPtr& variable : independentVars) {
        addColumn(table, variable);
    }
    for (const VarPtr& variable : dependents) {
        addColumn(table, variable);
    }
    table->SetNumberOfRows(static_cast<vtkIdType>(rows.size()));

    // By column, not by variable: two variables of one name share a column.
    for (vtkIdType j = 0; j < table->GetNumberOfColumns(); ++j) {
        vtkAbstractArray* const column = table->GetColumn(j);
        const CaseColumn source(pipelineTable, column->GetName());
        source.copy(rows, vtkArrayDownCast<vtkDoubleArray>(column)->GetPointer(0));
    }
    return table;
}

/** The first value of each variable's column. */
std::vector<double*> columnPointers(vtkTable* table,
                                    const NatureSpecificVariableProvider& variables)
{
    std::vector<double*> pointers;
    for (const VarPtr& variable : variables) {
        vtkAbstractArray* const column = table->GetColumnByName(variable.lock()->name().c_str());
        pointers.push_back(vtkArrayDownCast<vtkDoubleArray>(column)->GetPointer(0));
    }
    return pointers;
}

} // namespace

class SurrogateModelSourcePoints::Impl
{
public:
    std::vector<vtkIdType> validRows(const std::set<VarPtr>& independentVars,
                                     const std::set<VarPtr>& dependents, vtkTable* pipelineTable,
                                     bool fullRebuild);

    std::set<std::size_t> badIndependentRows; ///< row numbers, as of the last full rebuild
    vtkSmartPointer<vtkTable> sourceTable = vtkSmartPointer<vtkTable>::New();
    std::vector<double*> independentColumns;
    std::vector<double*> dependentColumns;
};

std::vector<vtkIdType>
SurrogateModelSourcePoints::Impl::validRows(const std::set<VarPtr>& independentVars,
                                            const std::set<VarPtr>& dependents,
                                            vtkTable* pipelineTable, bool fullRebuild)
{
    if (fullRebuild) {
        badIndependentRows.clear();
    }
    const boost::shared_ptr<Project> project = Project::project();
    const IdentityColumn identities(pipelineTable);
    const std::vector<CaseColumn> independentColumns = columnsOf(independentVars, pipelineTable);
    const std::vector<CaseColumn> dependentColumns = columnsOf(dependents, pipelineTable);

    std::vector<vtkIdType> rows;
    rows.reserve(static_cast<std::size_t>(pipelineTable->GetNumberOfRows()));
    // Rows come in increasing order, so the next bad row is the only one to compare with.
    auto nextBadRow = badIndependentRows.begin();

    // The record comes first: the values of an excluded row are not checked, so that the row is not
    // listed as bad either. The number of rows is read again, since a call to a record may change
    // the table.
    for (vtkIdType row = 0; row < pipelineTable->GetNumberOfRows(); ++row) {
        const auto number = static_cast<std::size_t>(row);
        if (!takesPart(*project, identities.identity(row))) {
            continue;
        }
        if (fullRebuild) {
            if (anyInvalid(independentColumns, row)) {
                badIndependentRows.insert(badIndependentRows.end(), number);
                continue;
            }
        } else {
            while (nextBadRow != badIndependentRows.end() && *nextBadRow < number) {
                ++nextBadRow;
            }
            if (nextBadRow != badIndependentRows.end() && *nextBadRow == number) {
                continue;
            }
        }
        if (!anyInvalid(dependentColumns, row)) {
            rows.push_back(row);
        }
    }
    while (!rows.empty() && rows.back() >= pipelineTable->GetNumberOfRows()) {
        rows.pop_back();
    }
    return rows;
}

SurrogateModelSourcePoints::SurrogateModelSourcePoints() : impl(std::make_unique<Impl>()) {}

SurrogateModelSourcePoints::~SurrogateModelSourcePoints() = default;

void SurrogateModelSourcePoints::rebuild(const std::vector<VarPtr>& independentVars,
                                         const std::set<VarPtr>& dependents,
                                         vtkTable* pipelineTable, bool fullRebuild)
{
    const std::vector<vtkIdType> rows = impl->validRows(
        {independentVars.begin(), independentVars.end()}, dependents, pipelineTable, fullRebuild);

    const NatureSpecificVariableProvider projectDependents =
        numericVariables(Project::project()->variables(), Variable::Dependent);
    impl->sourceTable = copyCases(independentVars, projectDependents, pipelineTable, rows);
    impl->dependentColumns = columnPointers(impl->sourceTable, projectDependents);
    impl->independentColumns =
        columnPointers(impl->sourceTable, numericVariables(independentVars, Variable::Independent));
}

std::vector<double*> SurrogateModelSourcePoints::independentColumns() const
{
    return impl->independentColumns;
}

std::vector<double*> SurrogateModelSourcePoints::dependentColumns() const
{
    return impl->dependentColumns;
}

vtkSmartPointer<vtkTable> SurrogateModelSourcePoints::sourceTable() const
{
    return impl->sourceTable;
}
