#include <mirel_modelexport/ModelJson.h>

#include <mirel_modelexport/CheckPoints.h>
#include <mirel_modelexport/ExportText.h>
#include <mirel_modelexport/FitJson.h>
#include <mirel_modelexport/ModelJsonNames.h>
#include <mirel_modelexport/SourceTerms.h>

#include <nlohmann/json.hpp>

#include <cmath>

using Json = nlohmann::ordered_json;

namespace {

using Description = PredictorDescription;

/** On one line; bytes that are no UTF-8 become U+FFFD. */
std::string line(const Json& json)
{
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

Json inputJson(const ExportedModel::Input& input, const Description::InputRange& range)
{
    Json json = {{"name", input.name},           {"minimum", input.minimum},
                 {"maximum", input.maximum},     {"caseMinimum", range.minimum},
                 {"caseMaximum", range.maximum}, {"isConstant", range.isConstant}};
    if (input.held) {
        json["held"] = *input.held;
    }
    return json;
}

Json termJson(const Description::Term& term)
{
    Json factors = Json::array();
    for (const std::size_t factor : {term.first, term.second}) {
        if (factor != Description::noFactor) {
            factors.push_back(factor);
        }
    }
    return {{"factors", factors}, {"coefficient", term.coefficient}};
}

/** One item a line. */
template <class Items, class Write>
std::string list(const Items& items, const std::string& indent, Write write)
{
    std::string text = "[";
    for (const auto& item : items) {
        text += (text.size() == 1 ? "\n  " : ",\n  ") + indent + write(item);
    }
    return text + (text.size() == 1 ? "" : "\n" + indent) + "]";
}

std::string outputJson(const ExportedModel::Output& output)
{
    const Description& predictor = output.model.predictor;
    const std::string indent = "\n      ";
    std::string text = "{" + indent + "\"name\": " + line(output.name);
    const auto member = [&](const std::string& name, const std::string& value) {
        text += "," + indent + "\"" + name + "\": " + value;
    };
    member("metrics", line(FitJson::of(output.model.metrics)));
    member("warnings", line(output.model.warnings));
    member("offset", line(predictor.offset));
    member("scale", line(predictor.scale));
    if (predictor.transform != OutputTransform::None) {
        member("transform", line(OutputTransforms::word(predictor.transform)));
    }
    member("coordinates",
           list(predictor.coordinates, "      ", [](const Description::Coordinate& coordinate) {
               return line({{"input", coordinate.input},
                            {"origin", coordinate.origin},
                            {"unit", coordinate.unit}});
           }));
    member("terms", list(predictor.terms, "      ",
                         [](const Description::Term& term) { return line(termJson(term)); }));
    if (predictor.kind == Description::Kind::Kriging) {
        // An infinite length is null.
        member("lengths", line(predictor.lengths));
        member("weights", line(predictor.weights));
        std::vector<std::vector<double>> cases(predictor.weights.size());
        for (std::size_t j = 0; j < cases.size(); ++j) {
            for (std::size_t k = 0; k < predictor.coordinates.size(); ++k) {
                cases[j].push_back(predictor.cases[k * cases.size() + j]);
            }
        }
        member("cases",
               list(cases, "      ", [](const std::vector<double>& row) { return line(row); }));
    }
    return text + "\n    }";
}

std::string checkJson(const ExportedModel& model)
{
    const CheckPoints check(model);
    const auto row = [](const std::vector<double>& numbers) { return line(numbers); };
    return "{\n    \"points\": " + list(check.points, "    ", row) +
           ",\n    \"values\": " + list(check.values, "    ", row) +
           ",\n    \"tolerances\": " + list(check.tolerances, "    ", row) + "\n  }";
}

} // namespace

std::string modelJson(const ExportedModel& model)
{
    const std::vector<Description::InputRange>& ranges =
        model.outputs.front().model.predictor.inputs;
    std::vector<Json> inputs;
    for (std::size_t k = 0; k < model.inputs.size(); ++k) {
        inputs.push_back(inputJson(model.inputs[k], ranges[k]));
    }
    const bool hasTransforms = hasTransform(model, OutputTransform::SquareRoot) ||
                               hasTransform(model, OutputTransform::Logarithm);
    std::string text =
        "{\n  \"schema\": " + std::to_string(hasTransforms ? ModelJsonNames::schemaWithTransforms
                                                           : ModelJsonNames::schema);
    text += std::string(",\n  \"format\": \"") + ModelJsonNames::format + "\"";
    text += std::string(",\n  \"model\": \"") +
            (model.isKriging() ? ModelJsonNames::kriging : ModelJsonNames::responseSurface) + "\"";
    text += ",\n  \"inputs\": " + list(inputs, "  ", line);
    text += ",\n  \"outputs\": " + list(model.outputs, "  ", outputJson);
    text += ",\n  \"check\": " + checkJson(model);
    if (!model.report.is_null()) {
        text += ",\n  \"report\": " + line(model.report);
    }
    return text + "\n}\n";
}
