#pragma once

#include <vtkDoubleArray.h>
#include <vtkNew.h>
#include <vtkStringArray.h>
#include <vtkTable.h>
#include <vtkVariantArray.h>

#include <cstddef>
#include <string>
#include <vector>

/** A pipeline table as tests write it down: the record ids, then a column per variable. */
class CaseTable
{
public:
    /** Records 1, 2, ... `rows`. */
    explicit CaseTable(int rows)
    {
        vtkNew<vtkVariantArray> ids;
        ids->SetName("Record");
        for (int id = 1; id <= rows; ++id) {
            ids->InsertNextValue(vtkVariant(id));
        }
        table->AddColumn(ids);
    }

    explicit CaseTable(const std::vector<vtkVariant>& recordIds)
    {
        addVariants("Record", recordIds);
    }

    CaseTable& addNumbers(const std::string& name, const std::vector<double>& values)
    {
        vtkNew<vtkDoubleArray> column;
        for (const double value : values) {
            column->InsertNextValue(value);
        }
        return add(name, column);
    }

    CaseTable& addTexts(const std::string& name, const std::vector<std::string>& values)
    {
        vtkNew<vtkStringArray> column;
        for (const std::string& value : values) {
            column->InsertNextValue(value);
        }
        return add(name, column);
    }

    CaseTable& addVariants(const std::string& name, const std::vector<vtkVariant>& values)
    {
        vtkNew<vtkVariantArray> column;
        for (const vtkVariant& value : values) {
            column->InsertNextValue(value);
        }
        return add(name, column);
    }

    CaseTable& add(const std::string& name, vtkAbstractArray* column)
    {
        column->SetName(name.c_str());
        table->AddColumn(column);
        return *this;
    }

    /** Changes a cell in place, without a signal. */
    void set(int row, const std::string& name, const vtkVariant& value)
    {
        table->SetValueByName(row, name.c_str(), value);
    }

    vtkTable* get() const { return table; }

private:
    vtkNew<vtkTable> table;
};

/** What a column pointer shows. */
inline std::vector<double> shown(const double* column, vtkTable* table)
{
    return {column, column + table->GetNumberOfRows()};
}
