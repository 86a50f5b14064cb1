#include <mirel_datapipeline/ProjectTableSource.h>

#include <mirel_datamanagement/Project.h>
#include <mirel_datapipeline/SharedColumnArray.h>

#include <vtkDoubleArray.h>
#include <vtkInformation.h>
#include <vtkNew.h>
#include <vtkObjectFactory.h>
#include <vtkStringArray.h>
#include <vtkTable.h>
#include <vtkUnsignedLongArray.h>

#include <utility>

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
    vtkTable* const table = vtkTable::GetData(outputs);
    table->Initialize();
    table->AddColumn(idColumn());

    std::map<VarPtr, TextColumn> shownTextColumns;
    for (const VarPtr& handle : project->variables()) {
        const boost::shared_ptr<Variable> variable = handle.lock();
        const std::string name = variable->name();
        if (variable->isNumeric()) {
            table->AddColumn(numberColumn(handle, name));
        } else {
            TextColumn& column = shownTextColumns[handle] = textColumn(handle, name);
            table->AddColumn(column.array);
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
    ids->SetName(idColumnName().c_str());
    return ids.Get();
}

vtkSmartPointer<vtkAbstractArray> ProjectTableSource::numberColumn(const VarPtr& variable,
                                                                   const std::string& name) const
{
    vtkNew<SharedColumnArray<vtkDoubleArray>> numbers;
    numbers->show(project->sharedNumericValues(variable));
    numbers->SetName(name.c_str());
    return numbers.Get();
}

ProjectTableSource::TextColumn ProjectTableSource::textColumn(const VarPtr& variable,
                                                              const std::string& name) const
{
    boost::shared_ptr<const std::vector<std::string>> values = project->sharedTextValues(variable);
    const auto known = textColumns.find(variable);
    // The values are held since the last table, so the project would have changed a copy. A column
    // of another name is a new array, since the one before may still be shown under the old name.
    if (known != textColumns.end() && known->second.values == values &&
        known->second.name == name) {
        return known->second;
    }

    vtkNew<vtkStringArray> texts;
    texts->SetName(name.c_str());
    texts->SetNumberOfValues(static_cast<vtkIdType>(values->size()));
    vtkIdType row = 0;
    for (const std::string& text : *values) {
        texts->SetValue(row++, text);
    }
    return {std::move(values), name, texts.Get()};
}
