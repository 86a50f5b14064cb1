#include "session/model/ModelFile.h"

#include "session/files/ByteSource.h"
#include "session/model/CaseSession.h"
#include "session/text/QuotedText.h"
#include "session/text/SessionErrors.h"

#include <mirel_datamanagement/Project.h>

#include <cmath>
#include <optional>
#include <utility>

namespace {
/** A project takes the names, in the roles of the model. */
void requireNames(const ExportedModel& model, const std::string& path)
{
    Project scratch;
    try {
        for (const ExportedModel::Input& input : model.inputs) {
            scratch.addNumericVariable(input.name, Variable::Independent);
        }
        for (const ExportedModel::Output& output : model.outputs) {
            scratch.addNumericVariable(output.name, Variable::Dependent);
        }
    } catch (const veska::ExceptionBase& refusal) {
        throw ModelFileError(quotedText(path) + " cannot be used. " + refusal.what());
    }
}
} // namespace

bool ModelFile::isModelFile(const std::string& path)
{
    const std::string ending = fileEnding;
    return path.size() > ending.size() &&
           path.compare(path.size() - ending.size(), ending.size(), ending) == 0;
}

ExportedModel ModelFile::exported(CaseSession& session, nlohmann::ordered_json report)
{
    const SurrogateModelInterface& model = session.model();
    const std::vector<double> held = session.heldValues();
    std::vector<ExportedModel::Input> inputs;
    for (std::size_t i = 0; i < session.inputs().size(); ++i) {
        const auto variable = session.inputs()[i].lock();
        const auto [least, most] = variable->range();
        inputs.push_back({variable->name(), least, most,
                          std::isfinite(held[i]) ? std::make_optional(held[i]) : std::nullopt});
    }
    std::vector<ExportedModel::WantedOutput> outputs;
    for (std::size_t i = 0; i < session.outputs().size(); ++i) {
        outputs.push_back({session.outputs()[i].lock()->name(), session.outputOffsets()[i]});
    }
    ExportedModel exported = ExportedModel::of(model, inputs, outputs);
    exported.report = std::move(report);
    return exported;
}

ExportedModel ModelFile::read(const std::string& path)
{
    const std::string content = ByteSource::contentOf(path);
    try {
        ExportedModel model = readExportedModel(content);
        requireNames(model, path);
        return model;
    } catch (const ModelImportError& error) {
        throw ModelFileError(quotedText(path) + " cannot be used: " + error.what());
    }
}
