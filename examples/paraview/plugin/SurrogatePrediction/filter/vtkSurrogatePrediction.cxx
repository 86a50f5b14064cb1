#include "vtkSurrogatePrediction.h"

#include <mirel_modelexport/ModelExport.h>

#include <vtkDataArray.h>
#include <vtkDoubleArray.h>
#include <vtkNew.h>
#include <vtkObjectFactory.h>
#include <vtkTable.h>

#include <fstream>
#include <iterator>
#include <set>

vtkStandardNewMacro(vtkSurrogatePrediction);

vtkSurrogatePrediction::~vtkSurrogatePrediction()
{
    this->SetModel(nullptr);
}

int vtkSurrogatePrediction::RequestData(vtkInformation*, vtkInformationVector** inputs,
                                        vtkInformationVector* outputs)
{
    vtkTable* const table = vtkTable::GetData(inputs[0]);
    vtkTable* const result = vtkTable::GetData(outputs);
    result->ShallowCopy(table);
    std::ifstream file(this->Model == nullptr ? "" : this->Model);
    if (!file) {
        vtkErrorMacro("The model \"" << (this->Model == nullptr ? "" : this->Model)
                                     << "\" cannot be opened.");
        return 0;
    }
    try {
        const ExportedModel model = readExportedModel({std::istreambuf_iterator<char>(file), {}});
        const auto rows = static_cast<std::size_t>(table->GetNumberOfRows());
        std::vector<std::vector<double>> columns;
        std::vector<double*> point;
        columns.reserve(model.inputs.size());
        for (const ExportedModel::Input& input : model.inputs) {
            auto* const array =
                vtkDataArray::SafeDownCast(table->GetColumnByName(input.name.c_str()));
            if (array == nullptr || array->GetNumberOfComponents() != 1) {
                vtkErrorMacro("The table has no column \"" << input.name
                                                           << "\" of one number per row.");
                return 0;
            }
            std::vector<double>& column = columns.emplace_back(rows);
            for (std::size_t row = 0; row < rows; ++row) {
                column[row] = array->GetTuple1(static_cast<vtkIdType>(row));
            }
            point.push_back(column.data());
        }
        std::set<int> offsets;
        std::vector<double*> wanted;
        for (const ExportedModel::Output& output : model.outputs) {
            vtkNew<vtkDoubleArray> predicted;
            predicted->SetName((output.name + " predicted").c_str());
            predicted->SetNumberOfValues(table->GetNumberOfRows());
            wanted.push_back(predicted->GetPointer(0));
            offsets.insert(static_cast<int>(offsets.size()));
            result->AddColumn(predicted);
        }
        model.predictor()->interpolateDependentValues(point, offsets, wanted, rows);
    } catch (const std::exception& error) {
        vtkErrorMacro(<< this->Model << ": " << error.what());
        return 0;
    }
    return 1;
}
