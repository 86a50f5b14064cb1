#include <mirel_modelexport/ModelExport.h>

#include <mirel_modelexport/CSource.h>
#include <mirel_modelexport/EquationDocument.h>
#include <mirel_modelexport/ExcelWorkbook.h>
#include <mirel_modelexport/ModelJson.h>
#include <mirel_modelexport/PythonSource.h>

std::string exportModel(const ExportedModel& model, ExportFormat format)
{
    switch (format) {
    case ExportFormat::Text:
        return equationDocument(model);
    case ExportFormat::Json:
        return modelJson(model);
    case ExportFormat::C:
        return cSource(model);
    case ExportFormat::Python:
        return pythonSource(model);
    case ExportFormat::Excel:
        return excelWorkbook(model);
    }
    throw SurrogateModelInterface::Error("There is no such export format.");
}

ModelImportError::~ModelImportError() = default;
