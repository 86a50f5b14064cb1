#include <mirel_datapipeline/ProjectTableSource.h>

#include <mirel_datamanagement/Project.h>
#include <mirel_datapipeline/SharedColumnArray.h>

#include <boost/smart_ptr/make_shared.hpp>
#include <vtkDataSetAttributes.h>
#include <vtkDoubleArray.h>
#include <vtkInformation.h>
#include <vtkNew.h>
#include <vtkObjectFactory.h>
#include <vtkStringArray.h>
#include <vtkTable.h>
#include <vtkUnsignedLongArray.h>

#include <utility>

namespace {

/**
 * Adds a new column, without a name so far, under one that no other column has. The name is set
 * afterwards: VTK compares the name of a new column with those of all columns before it, which
 * takes minutes for 200 000.
 */
void addColumn(vtkTable* table, vtkAbstractArray* column, const std::string& name)
{
    table->AddColumn(column);
    column->SetName(name.c_str());
}

} // namespace

vtkStandardNewMacro(ProjectTableSource);

ProjectTableSource::ProjectTableSource()
{
    SetNumberOfInputPorts(0);
}

ProjectTableSource::~ProjectTableSource() = default;

void ProjectTableSource::setProject(boost::shared_ptr<const Project> shownProject)
{
    project = std::move(shownProject);
    Modified();
}

int ProjectTableSource::RequestData(vtkInformation*, vtkInformationVector**,
                                    vtkInformationVector* outputs)
{
    const std::vector<VarPtr> variables = project->variables();
    vtkTable* const table = vtkTable::GetData(outputs);
    table->Initialize();
    table->GetRowData()->AllocateArrays(static_cast<int>(variables.size() + 1));
    addColumn(table, idColumn(), idColumnName());

    std::map<VarPtr, TextColumn> shownTextColumns;
    for (const VarPtr& handle : variables) {
        const boost::shared_ptr<Variable> variable = handle.lock();
        const std::string name = variable->name();
        if (variable->isNumeric()) {
            addColumn(table, numberColumn(handle), name);
        } else {
            const TextColumn& column = shownTextColumns[handle] = textColumn(handle);
            vtkNew<SharedColumnArray<vtkStringArray>> texts;
            texts->show(column.strings);
            addColumn(table, texts, name);
        }
    }
    textColumns.swap(shownTextColumns);
    return 1;
}

std::string ProjectTableSource::idColumnName() const
{
    // A VTK table has one column per name, the later replacing the earlier: a variable of this
    // name would take the place of the ids.
    std::string name = "Record";
    while (!project->variable(name).isNull()) {
        name += '_';
    }
    return name;
}

vtkSmartPointer<vtkAbstractArray> ProjectTableSource::idColumn() const
{
    vtkNew<SharedColumnArray<vtkUnsignedLongArray>> ids;
    ids->show(project->sharedRecordIds());
    return ids.Get();
}

vtkSmartPointer<vtkAbstractArray> ProjectTableSource::numberColumn(const VarPtr& variable) const
{
    vtkNew<SharedColumnArray<vtkDoubleArray>> numbers;
    numbers->show(project->sharedNumericValues(variable));
    return numbers.Get();
}

ProjectTableSource::TextColumn ProjectTableSource::textColumn(const VarPtr& variable) const
{
    boost::shared_ptr<const std::vector<std::string>> values = project->sharedTextValues(variable);
    const auto known = textColumns.find(variable);
    // The values are held since the last table, so the project would have changed a copy.
    if (known != textColumns.end() && known->second.values == values) {
        return known->second;
    }
    auto strings = boost::make_shared<std::vector<vtkStdString>>(values->begin(), values->end());
    return {std::move(values), std::move(strings)};
}
