// An exported model: refused with a sentence, or a model that exports as bytes which give the same
// model again, and that predicts.
#include "FuzzCheck.h"

#include <mirel_modelexport/ModelExport.h>

#include <mirel_fitting/SurrogateModelInterface.h>

#include <cstdint>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    try {
        const ExportedModel model = readExportedModel(std::string(bytes, bytes + size));
        const std::string text = exportModel(model, ExportFormat::Json);
        FUZZ_CHECK(exportModel(readExportedModel(text), ExportFormat::Json) == text);

        std::vector<double> point;
        for (const ExportedModel::Input& input : model.inputs) {
            point.push_back(input.minimum);
        }
        std::vector<double*> inputs;
        for (double& coordinate : point) {
            inputs.push_back(&coordinate);
        }
        double value = 0.0;
        std::vector<double*> outputs = {&value};
        model.predictor()->interpolateDependentValues(inputs, {0}, outputs, 1);
        for (const ExportFormat format :
             {ExportFormat::Text, ExportFormat::C, ExportFormat::Python}) {
            FUZZ_CHECK(!exportModel(model, format).empty());
        }
    } catch (const ModelImportError& error) {
        FUZZ_CHECK(error.what()[0] != '\0');
    } catch (const SurrogateModelInterface::Error& error) {
        FUZZ_CHECK(error.what()[0] != '\0');
    }
    return 0;
}
