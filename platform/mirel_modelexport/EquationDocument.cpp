#include <mirel_modelexport/EquationDocument.h>

#include <mirel_modelexport/CheckPoints.h>
#include <mirel_modelexport/ExportText.h>
#include <mirel_modelexport/SourceTerms.h>

#include <cmath>

namespace {

using Description = PredictorDescription;

constexpr std::size_t noFactor = Description::noFactor;

std::string symbol(const char* letter, std::size_t position)
{
    return letter + std::to_string(position + 1);
}

/** "1.5 * x1 * x2": a square has its factor twice, as in every other export. */
std::string product(const Description::Term& term, const std::string& number)
{
    std::string text = number;
    if (term.first != noFactor && term.second == term.first) {
        return text + " * " + symbol("x", term.first) + "^2";
    }
    text += term.first == noFactor ? "" : " * " + symbol("x", term.first);
    text += term.second == noFactor ? "" : " * " + symbol("x", term.second);
    return text;
}

/** The sum that begins with `start` (nothing: with the first term), a line for each term. */
std::string sum(const std::string& start, const Description& predictor)
{
    std::string text = start;
    for (const Description::Term& term : predictor.terms) {
        if (text.empty()) {
            text = product(term, NumberText::shortest(term.coefficient));
            continue;
        }
        text += std::signbit(term.coefficient) ? "\n      - " : "\n      + ";
        text += product(term, NumberText::shortest(std::fabs(term.coefficient)));
    }
    return text.empty() ? "0" : text;
}

std::string scaledInput(const Description::Coordinate& coordinate)
{
    const std::string input = symbol("V", coordinate.input);
    const std::string difference =
        coordinate.origin == 0.0
            ? input
            : "(" + input + signedNumber(-coordinate.origin, NumberText::shortest) + ")";
    return coordinate.unit == 1.0 ? difference
                                  : difference + " / " + NumberText::shortest(coordinate.unit);
}

std::string polynomial(const Description& predictor, const std::string& output)
{
    std::string text =
        "  " + output + " = " + sum(NumberText::shortest(predictor.offset), predictor) + "\n";
    for (std::size_t k = 0; hasFactors(predictor) && k < predictor.coordinates.size(); ++k) {
        text += "  " + symbol("x", k) + " = " + scaledInput(predictor.coordinates[k]) + "\n";
    }
    return text;
}

std::string kriging(const Description& predictor, const std::string& output)
{
    const std::size_t coordinates = predictor.coordinates.size();
    const std::size_t cases = predictor.weights.size();
    std::string text = "  " + output + " = " + NumberText::shortest(predictor.offset) + " + " +
                       NumberText::shortest(predictor.scale) + " * (trend" +
                       (cases > 0 ? " + sum" : "") + ")\n";
    text += "  trend = " + sum("", predictor) + "\n";
    if (cases > 0) {
        text += "  sum = w_1 c_1 + ... + w_" + std::to_string(cases) + " c_" +
                std::to_string(cases) + ", over the cases\n";
        text += "  c_j = product over k of (1 + z + z^2 / 3) exp(-z), z = sqrt(5) |u_k - u_jk| / "
                "L_k\n";
    }
    if (needsCoordinates(predictor)) {
        for (std::size_t k = 0; k < coordinates; ++k) {
            text += "  " + symbol("u", k) + " = " + scaledInput(predictor.coordinates[k]) + ", " +
                    symbol("x", k) + " = 2 " + symbol("u", k) + " - 1\n";
        }
    }
    if (cases == 0) {
        return text;
    }
    for (std::size_t k = 0; k < coordinates; ++k) {
        text += "  " + symbol("L", k) + " = " +
                (std::isinf(predictor.lengths[k]) ? "infinite (no influence)"
                                                  : NumberText::shortest(predictor.lengths[k])) +
                "\n";
    }
    text += "  Cases: w_j";
    for (std::size_t k = 0; k < coordinates; ++k) {
        text += " u_j" + std::to_string(k + 1);
    }
    for (std::size_t j = 0; j < cases; ++j) {
        text += "\n    " + NumberText::shortest(predictor.weights[j]);
        for (std::size_t k = 0; k < coordinates; ++k) {
            text += " " + NumberText::shortest(predictor.cases[k * cases + j]);
        }
    }
    return text + "\n";
}

/** The equation of the output, by its transform if that is modelled. */
std::string equation(const Description& predictor, const std::string& output)
{
    const auto equationOf = [&](const std::string& value) {
        return predictor.kind == Description::Kind::Kriging ? kriging(predictor, value)
                                                            : polynomial(predictor, value);
    };
    if (predictor.transform == OutputTransform::None) {
        return equationOf(output);
    }
    const std::string value = "T" + output.substr(1);
    return "  " + output + " = " + outputOf(predictor.transform, value, "exp(%)", "max(0, %)^2") +
           "\n" + equationOf(value);
}

std::string checkTable(const ExportedModel& model)
{
    const CheckPoints check(model);
    std::string text = "Check points:";
    for (std::size_t k = 0; k < model.inputs.size(); ++k) {
        text += " " + symbol("V", k);
    }
    for (std::size_t k = 0; k < model.outputs.size(); ++k) {
        text += " " + symbol("Y", k);
    }
    for (std::size_t i = 0; i < CheckPoints::count; ++i) {
        std::string row;
        for (const double value : check.points[i]) {
            row += (row.empty() ? "" : " ") + NumberText::shortest(value);
        }
        for (std::size_t k = 0; k < model.outputs.size(); ++k) {
            row += (row.empty() ? "" : " ") + NumberText::shortest(check.values[k][i]);
        }
        text += "\n  " + row;
    }
    return text + "\n";
}

} // namespace

std::string equationDocument(const ExportedModel& model)
{
    std::string text = model.isKriging() ? "Kriging model\n\n" : "Response surface\n\n";
    for (std::size_t k = 0; k < model.inputs.size(); ++k) {
        const Description::InputRange& range = model.outputs.front().model.predictor.inputs[k];
        text += symbol("V", k) + ": " + lineName(model.inputs[k].name) + ", from " +
                NumberText::shortest(range.minimum) + " to " + NumberText::shortest(range.maximum) +
                "\n";
    }
    for (std::size_t k = 0; k < model.outputs.size(); ++k) {
        const std::string output = symbol("Y", k);
        text += "\n" + output + ": " + lineName(model.outputs[k].name) + "\n";
        text += equation(model.outputs[k].model.predictor, output);
    }
    return text + "\n" + checkTable(model);
}
