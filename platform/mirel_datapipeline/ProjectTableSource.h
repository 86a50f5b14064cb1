#pragma once

#include <mirel_datamanagement/Variable.h>

#include <boost/smart_ptr/shared_ptr.hpp>
#include <vtkSmartPointer.h>
#include <vtkStdString.h>
#include <vtkTableAlgorithm.h>

#include <map>
#include <string>
#include <vector>

class Project;
class vtkAbstractArray;

/**
 * The algorithm of the project's pipeline: builds the cases table when it is updated, and not
 * before. Number columns are shared with the project, so that a table costs the same however many
 * cases it has.
 */
class ProjectTableSource : public vtkTableAlgorithm
{
public:
    static ProjectTableSource* New();
    vtkTypeMacro(ProjectTableSource, vtkTableAlgorithm)

    /** The project that is shown, shared; not null. */
    void setProject(boost::shared_ptr<const Project> project);

    ProjectTableSource(const ProjectTableSource&) = delete;
    ProjectTableSource& operator=(const ProjectTableSource&) = delete;

protected:
    ProjectTableSource();
    ~ProjectTableSource() override;

    int RequestData(vtkInformation*, vtkInformationVector**, vtkInformationVector*) override;

private:
    /** A text column in VTK's own strings, and what it was made from. */
    struct TextColumn
    {
        boost::shared_ptr<const std::vector<std::string>> values;
        boost::shared_ptr<const std::vector<vtkStdString>> strings;
    };

    std::string idColumnName() const;
    vtkSmartPointer<vtkAbstractArray> idColumn() const;
    vtkSmartPointer<vtkAbstractArray> numberColumn(const VarPtr&) const;
    TextColumn textColumn(const VarPtr&) const;

    boost::shared_ptr<const Project> project;

    /** The text columns of the last table: most changes leave them as they are. */
    std::map<VarPtr, TextColumn> textColumns;
};
