#pragma once

#include <SurrogatePredictionFilterModule.h>
#include <vtkTableAlgorithm.h>

/**
 * Adds a column "NAME predicted" to a table for each output of an exported model. The model's
 * inputs are the columns of their names; each has one number per row.
 */
class SURROGATEPREDICTIONFILTER_EXPORT vtkSurrogatePrediction : public vtkTableAlgorithm
{
public:
    static vtkSurrogatePrediction* New();
    vtkTypeMacro(vtkSurrogatePrediction, vtkTableAlgorithm);

    /** The file that the model was exported to as JSON. */
    vtkSetFilePathMacro(Model);
    vtkGetFilePathMacro(Model);

    vtkSurrogatePrediction(const vtkSurrogatePrediction&) = delete;
    void operator=(const vtkSurrogatePrediction&) = delete;

protected:
    vtkSurrogatePrediction() = default;
    ~vtkSurrogatePrediction() override;

    int RequestData(vtkInformation*, vtkInformationVector**, vtkInformationVector*) override;

private:
    char* Model = nullptr;
};
