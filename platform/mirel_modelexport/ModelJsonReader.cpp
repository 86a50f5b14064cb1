#include <mirel_modelexport/ModelExport.h>

#include <mirel_modelexport/CheckPoints.h>
#include <mirel_modelexport/ExportText.h>
#include <mirel_modelexport/ModelJsonNames.h>

#include <nlohmann/json.hpp>

#include <cmath>
#include <limits>
#include <utility>

using Json = nlohmann::ordered_json; // the report keeps its order

namespace {

using Description = PredictorDescription;

[[noreturn]] void fail(const std::string& sentence)
{
    throw ModelImportError(sentence);
}

/** A part of the document, with the place where it stands. */
class Part
{
public:
    Part(const Json& json, std::string place) : json(json), place(std::move(place)) {}

    bool has(const char* name) const { return json.is_object() && json.contains(name); }

    Part member(const char* name) const
    {
        require(json.is_object(), "an object");
        const std::string at = place.empty() ? name : place + "." + name;
        const auto found = json.find(name);
        if (found == json.end()) {
            fail("the member \"" + at + "\" is missing.");
        }
        return {*found, at};
    }

    std::vector<Part> items() const
    {
        require(json.is_array(), "a list");
        std::vector<Part> parts;
        parts.reserve(json.size());
        for (const Json& item : json) {
            parts.emplace_back(item, place + "[" + std::to_string(parts.size()) + "]");
        }
        return parts;
    }

    double number() const
    {
        require(json.is_number(), "a number");
        return json.get<double>();
    }

    /** null where the number does not exist. */
    double numberOr(double none) const
    {
        require(json.is_number() || json.is_null(), "a number or null");
        return json.is_null() ? none : json.get<double>();
    }

    std::size_t count() const
    {
        require(json.is_number_unsigned(), "a whole number that is not negative");
        return json.get<std::size_t>();
    }

    bool truth() const
    {
        require(json.is_boolean(), "true or false");
        return json.get<bool>();
    }

    std::string text() const
    {
        require(json.is_string(), "a text");
        return json.get<std::string>();
    }

    const Json& object() const
    {
        require(json.is_object(), "an object");
        return json;
    }

    std::vector<double> numbers(std::size_t wanted) const
    {
        const std::vector<double> all = numbers();
        if (all.size() != wanted) {
            fail("the member \"" + place + "\" has " + std::to_string(all.size()) +
                 " numbers where " + std::to_string(wanted) + " are expected.");
        }
        return all;
    }

    std::vector<double> numbers() const
    {
        require(json.is_array(), "a list of numbers");
        std::vector<double> all;
        all.reserve(json.size());
        for (const Json& item : json) {
            require(item.is_number(), "a list of numbers");
            all.push_back(item.get<double>());
        }
        return all;
    }

    void require(bool condition, const std::string& expected) const
    {
        if (!condition) {
            fail("the member \"" + place + "\" is not what it has to be: " + expected + ".");
        }
    }

    const std::string& where() const { return place; }

private:
    const Json& json;
    std::string place;
};

/** The kind, after the document has turned out to be one that this version reads. */
Description::Kind kindOf(const Part& document)
{
    if (!document.has("format") || document.member("format").text() != ModelJsonNames::format) {
        fail(std::string("it is no exported model: its member \"format\" is not \"") +
             ModelJsonNames::format + "\".");
    }
    const Part schema = document.member("schema");
    if (schema.number() != ModelJsonNames::schema &&
        schema.number() != ModelJsonNames::schemaWithTransforms) {
        fail("its member \"schema\" is " + NumberText::shortest(schema.number()) +
             "; this version reads schemas " + std::to_string(ModelJsonNames::schema) + " and " +
             std::to_string(ModelJsonNames::schemaWithTransforms) + " only.");
    }
    const Part model = document.member("model");
    const std::string name = model.text();
    model.require(name == ModelJsonNames::kriging || name == ModelJsonNames::responseSurface,
                  "\"kriging\" or \"response-surface\"");
    return name == ModelJsonNames::kriging ? Description::Kind::Kriging
                                           : Description::Kind::Polynomial;
}

FitMetrics readMetrics(const Part& part)
{
    FitMetrics metrics;
    metrics.cases = part.member("cases").count();
    metrics.terms = part.member("terms").count();
    for (const ModelJsonNames::Metric& metric : ModelJsonNames::metrics) {
        metrics.*metric.value = part.member(metric.name).numberOr(FitMetrics::none);
    }
    return metrics;
}

Description::Term readTerm(const Part& part)
{
    const std::vector<Part> factors = part.member("factors").items();
    part.member("factors").require(factors.size() <= 2, "a list of up to two factors");
    Description::Term term;
    term.first = factors.empty() ? Description::noFactor : factors[0].count();
    term.second = factors.size() < 2 ? Description::noFactor : factors[1].count();
    term.coefficient = part.member("coefficient").number();
    return term;
}

/** The cases of a Kriging model, which the document has case by case. */
void readCorrelation(const Part& part, Description& predictor)
{
    const std::size_t coordinates = predictor.coordinates.size();
    predictor.weights = part.member("weights").numbers();
    const std::size_t cases = predictor.weights.size();
    const std::vector<Part> lengths = part.member("lengths").items();
    part.member("lengths").require(lengths.size() == (cases == 0 ? 0 : coordinates),
                                   "a length for each coordinate");
    for (const Part& length : lengths) {
        predictor.lengths.push_back(length.numberOr(std::numeric_limits<double>::infinity()));
    }
    const std::vector<Part> rows = part.member("cases").items();
    part.member("cases").require(rows.size() == cases, "a case for each weight");
    predictor.cases.resize(cases * coordinates);
    for (std::size_t j = 0; j < cases; ++j) {
        const std::vector<double> row = rows[j].numbers(coordinates);
        for (std::size_t k = 0; k < coordinates; ++k) {
            predictor.cases[k * cases + j] = row[k];
        }
    }
}

ExportedModel::Output readOutput(const Part& part, Description predictor)
{
    ExportedModel::Output output;
    output.name = part.member("name").text();
    output.model.metrics = readMetrics(part.member("metrics"));
    for (const Part& warning : part.member("warnings").items()) {
        output.model.warnings.push_back(warning.text());
    }
    predictor.offset = part.member("offset").number();
    predictor.scale = part.member("scale").number();
    if (part.has("transform")) {
        const auto transform = OutputTransforms::ofWord(part.member("transform").text());
        part.member("transform").require(transform.has_value(), "\"none\", \"sqrt\" or \"log\"");
        predictor.transform = *transform;
    }
    for (const Part& coordinate : part.member("coordinates").items()) {
        predictor.coordinates.push_back({coordinate.member("input").count(),
                                         coordinate.member("origin").number(),
                                         coordinate.member("unit").number()});
    }
    for (const Part& term : part.member("terms").items()) {
        predictor.terms.push_back(readTerm(term));
    }
    if (predictor.kind == Description::Kind::Kriging) {
        readCorrelation(part, predictor);
    }
    output.model.predictor = std::move(predictor);
    try {
        DescribedSurrogateModel({output.model});
    } catch (const SurrogateModelInterface::Error& error) {
        fail("the member \"" + part.where() + "\" cannot be used. " + error.what());
    }
    return output;
}

/** What the document says that the model predicts, against what it does predict. */
void checkPredictions(const Part& check, const ExportedModel& model)
{
    const std::vector<Part> points = check.member("points").items();
    const std::vector<Part> values = check.member("values").items();
    const std::vector<Part> tolerances = check.member("tolerances").items();
    check.member("points").require(!points.empty(), "a list of points");
    check.member("values").require(values.size() == model.outputs.size(), "a list for each output");
    check.member("tolerances")
        .require(tolerances.size() == model.outputs.size(), "a list for each output");

    std::vector<std::vector<double>> coordinates;
    for (const Part& point : points) {
        coordinates.push_back(point.numbers(model.inputs.size()));
    }
    for (std::size_t output = 0; output < model.outputs.size(); ++output) {
        const std::vector<double> expected = values[output].numbers(points.size());
        const std::vector<double> allowed = tolerances[output].numbers(points.size());
        const std::vector<double> predicted = predictionsAt(model, output, coordinates);
        for (std::size_t i = 0; i < points.size(); ++i) {
            if (!(std::fabs(predicted[i] - expected[i]) <= allowed[i])) {
                fail("its self-check fails: \"" + model.outputs[output].name + "\" comes out as " +
                     NumberText::shortest(predicted[i]) + " at the check point " +
                     std::to_string(i) + ", counted from 0, and should be " +
                     NumberText::shortest(expected[i]) + ". A number in it has changed.");
            }
        }
    }
}

Json parsed(const std::string& text)
{
    try {
        return Json::parse(text);
    } catch (const Json::parse_error& error) {
        fail("it is no JSON document, or a damaged one: it cannot be read at byte " +
             std::to_string(error.byte) + ".");
    } catch (const Json::exception&) {
        fail("it is no JSON document, or a damaged one: it holds a number that is none.");
    }
}

} // namespace

ExportedModel readExportedModel(const std::string& json)
{
    const Json root = parsed(json);
    const Part document(root, "");
    if (!root.is_object()) {
        fail("it is no exported model: it is JSON, but no object.");
    }
    Description start;
    start.kind = kindOf(document);
    ExportedModel model;
    for (const Part& input : document.member("inputs").items()) {
        model.inputs.push_back({input.member("name").text(), input.member("minimum").number(),
                                input.member("maximum").number()});
        input.member("maximum").require(std::isfinite(model.inputs.back().minimum) &&
                                            std::isfinite(model.inputs.back().maximum) &&
                                            model.inputs.back().minimum <=
                                                model.inputs.back().maximum,
                                        "at least the minimum");
        if (input.has("held")) {
            model.inputs.back().held = input.member("held").number();
        }
        start.inputs.push_back({input.member("caseMinimum").number(),
                                input.member("caseMaximum").number(),
                                input.member("isConstant").truth()});
    }
    for (const Part& output : document.member("outputs").items()) {
        model.outputs.push_back(readOutput(output, start));
    }
    document.member("outputs").require(!model.outputs.empty(), "a list of at least one output");
    checkPredictions(document.member("check"), model);
    if (document.has("report")) {
        model.report = document.member("report").object();
    }
    return model;
}
