#include <mirel_modelexport/ExportedModel.h>

#include <boost/make_shared.hpp>

#include <algorithm>
#include <utility>

using Error = SurrogateModelInterface::Error;

namespace {

PredictorDescription described(const PredictiveModel& model,
                               const ExportedModel::WantedOutput& wanted)
{
    try {
        return model.predictorDescription(wanted.offset);
    } catch (const Error& error) {
        throw Error("\"" + wanted.name + "\" cannot be exported. " + error.what());
    }
}

} // namespace

ExportedModel ExportedModel::of(const SurrogateModelInterface& model,
                                const std::vector<Input>& inputs,
                                const std::vector<WantedOutput>& outputs)
{
    const auto* describer = dynamic_cast<const PredictiveModel*>(&model);
    if (describer == nullptr) {
        throw Error("This kind of model cannot be exported: it does not describe itself.");
    }
    ExportedModel exported;
    exported.inputs = inputs;
    std::vector<std::string> inputNames;
    for (const Input& input : inputs) {
        inputNames.push_back(input.name);
    }
    for (const WantedOutput& wanted : outputs) {
        Output output;
        output.name = wanted.name;
        output.model.predictor = described(*describer, wanted);
        output.model.metrics = describer->fitMetrics(wanted.offset);
        const std::vector<std::string> notes = describer->fitNotes(wanted.offset, inputNames);
        for (std::string& warning : describer->fitWarnings(wanted.offset, inputNames)) {
            if (std::find(notes.begin(), notes.end(), warning) == notes.end()) {
                output.model.warnings.push_back(std::move(warning));
            }
        }
        exported.outputs.push_back(std::move(output));
    }
    exported.predictor(); // for what it refuses
    return exported;
}

boost::shared_ptr<DescribedSurrogateModel> ExportedModel::predictor() const
{
    std::vector<DescribedSurrogateModel::Output> models;
    for (const Output& output : outputs) {
        models.push_back(output.model);
        if (output.model.predictor.inputs.size() != inputs.size()) {
            throw Error("The model has " + std::to_string(output.model.predictor.inputs.size()) +
                        " inputs, but " + std::to_string(inputs.size()) + " are named.");
        }
        if (output.model.predictor.kind != outputs.front().model.predictor.kind) {
            throw Error("The outputs of an exported model are all of one kind.");
        }
    }
    return boost::make_shared<DescribedSurrogateModel>(models);
}

bool ExportedModel::isKriging() const
{
    return !outputs.empty() &&
           outputs.front().model.predictor.kind == PredictorDescription::Kind::Kriging;
}
