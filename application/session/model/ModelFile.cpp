#include "session/model/ModelFile.h"

#include "session/files/ByteSource.h"
#include "session/model/CaseSession.h"
#include "session/report/SessionReport.h"
#include "session/text/QuotedText.h"
#include "session/text/SessionErrors.h"

#include <surrogatemodel/SurrogateModelManagerInterface.h>

#include <mirel_datamanagement/Project.h>

#include <nlohmann/json.hpp>

#include <map>

namespace {
/** What a fit says about itself, without how long it took and where it was last evaluated. */
std::string reportOf(CaseSession& session)
{
    auto report = nlohmann::ordered_json::parse(SessionReport::fitJson(session, 0.0));
    report.erase("seconds");
    report.erase("extrapolation");
    return report.dump();
}

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

std::string contentOf(const std::string& path)
{
    ByteSource source(path);
    std::string content;
    std::string block(1 << 16, '\0');
    while (const std::size_t size = source.read(block.data(), block.size())) {
        content.append(block, 0, size);
    }
    return content;
}
} // namespace

bool ModelFile::isModelFile(const std::string& path)
{
    const std::string ending = fileEnding;
    return path.size() > ending.size() &&
           path.compare(path.size() - ending.size(), ending.size(), ending) == 0;
}

ExportFormat ModelFile::formatOf(const std::string& word)
{
    const std::map<std::string, ExportFormat> formats = {{"text", ExportFormat::Text},
                                                         {"json", ExportFormat::Json},
                                                         {"c", ExportFormat::C},
                                                         {"python", ExportFormat::Python},
                                                         {"excel", ExportFormat::Excel}};
    const auto found = formats.find(word);
    if (found == formats.end()) {
        throw UsageError("--format needs text, json, c, python or excel, not " + quotedText(word) +
                         '.');
    }
    return found->second;
}

ExportedModel ModelFile::exported(CaseSession& session)
{
    const SurrogateModelInterface& model = session.fit();
    std::vector<ExportedModel::Input> inputs;
    for (const VarPtr& input : session.inputs()) {
        const auto variable = input.lock();
        inputs.push_back({variable->name(), variable->range().first, variable->range().second});
    }
    std::vector<ExportedModel::WantedOutput> outputs;
    for (const VarPtr& output : session.outputs()) {
        const std::string name = output.lock()->name();
        outputs.push_back({name, static_cast<int>(session.manager().offsetForVariableName(name))});
    }
    ExportedModel exported = ExportedModel::of(model, inputs, outputs);
    exported.report = reportOf(session);
    return exported;
}

ExportedModel ModelFile::read(const std::string& path)
{
    const std::string content = contentOf(path);
    try {
        ExportedModel model = readExportedModel(content);
        requireNames(model, path);
        return model;
    } catch (const ModelImportError& error) {
        throw ModelFileError(quotedText(path) + " cannot be used: " + error.what());
    }
}
