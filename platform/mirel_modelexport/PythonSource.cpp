#include <mirel_modelexport/PythonSource.h>

#include <mirel_fitting/numerics/TextPieces.h>
#include <mirel_modelexport/CheckPoints.h>
#include <mirel_modelexport/ExportText.h>
#include <mirel_modelexport/SourceTerms.h>
#include <mirel_modelexport/TableSum.h>

#include <algorithm>
#include <cmath>

namespace {

using Description = PredictorDescription;

/** (a, b): one element keeps a comma. */
std::string tuple(const std::vector<std::string>& items)
{
    std::string text;
    for (const std::string& item : items) {
        text += (text.empty() ? "" : ", ") + item;
    }
    return "(" + text + (items.size() == 1 ? ",)" : ")");
}

std::string tuple(const std::vector<double>& numbers)
{
    std::vector<std::string> items;
    items.reserve(numbers.size());
    for (const double number : numbers) {
        items.push_back(realNumber(number));
    }
    return tuple(items);
}

/** A tuple of tuples, one a line. */
std::string table(const std::vector<std::vector<double>>& rows)
{
    std::string text = "(";
    for (const std::vector<double>& row : rows) {
        text += "\n    " + tuple(row) + ",";
    }
    return text + "\n)";
}

template <class Variable>
std::string names(const std::vector<Variable>& variables)
{
    std::vector<std::string> items;
    for (const Variable& variable : variables) {
        items.push_back(pythonName(variable.name));
    }
    return tuple(items);
}

std::string header(const ExportedModel& model)
{
    std::string text = "#!/usr/bin/env python3\n\"\"\"";
    text += model.isKriging() ? "A Kriging model" : "A response surface";
    text += ": " + countedText(model.outputs.size(), "output") + " of " +
            countedText(model.inputs.size(), "input");
    text += R"(, as a module of the standard library alone.

predict(inputs) gives the list of the outputs, in the order of OUTPUTS, for a sequence of the
inputs, in the order of INPUTS. An input that is NaN or infinite gives NaN. Outside of RANGES do not
rely on the outputs.

self_check() gives 0 if the check points come out as they should, and raises RuntimeError if not.

As a script it takes the inputs as arguments and prints the outputs, one a line.
"""

import math
import sys

)";
    std::vector<std::string> ranges;
    for (const Description::InputRange& range : model.outputs.front().model.predictor.inputs) {
        ranges.push_back(tuple(std::vector<double>{range.minimum, range.maximum}));
    }
    text += "INPUTS = " + names(model.inputs) + "\n";
    text += "OUTPUTS = " + names(model.outputs) + "\n";
    text += "RANGES = " + tuple(ranges) + "\n";
    return text;
}

const char* const krigingFunctions = R"(

def _coordinate(value, origin, unit):
    """Kept so small that products of two are finite."""
    return min(max((value - origin) / unit, -1e150), 1e150)


def _correlation(a, b):
    """The product Matern 5/2 correlation of two points, (1 + z + z^2 / 3) exp(-z) for each
    coordinate; coordinates are scaled by sqrt(5) / length."""
    product = 1.0
    total = 0.0
    for k, (left, right) in enumerate(zip(a, b)):
        z = min(abs(left - right), 1000.0)
        product *= 1.0 + z * (1.0 + z / 3.0)
        total += z
        if k % 32 == 31:
            product *= math.exp(-total)
            total = 0.0
    return product * math.exp(-total)
)";

const char* const expFunction = R"(

def _exp(logarithm):
    """Without the error that math.exp() raises for large numbers."""
    return math.exp(logarithm) if logarithm < 709.78 else math.inf
)";

const char* const squareFunction = R"(

def _square(root):
    return max(root, 0.0) * max(root, 0.0)
)";

std::string subscript(const char* name, std::size_t k)
{
    return std::string(name) + "[" + std::to_string(k) + "]";
}

std::string coordinateTuple(const Description& predictor)
{
    std::vector<std::string> items;
    for (const Description::Coordinate& coordinate : predictor.coordinates) {
        const std::string input = subscript("inputs", coordinate.input);
        const std::string origin = realNumber(coordinate.origin);
        const std::string unit = realNumber(coordinate.unit);
        items.push_back(predictor.kind == Description::Kind::Kriging
                            ? "_coordinate(" + input + ", " + origin + ", " + unit + ")"
                            : "(" + input + signedNumber(-coordinate.origin, realNumber) + ") / " +
                                  unit);
    }
    return tuple(items);
}

/** The end of a function. @param total what follows the offset. */
std::string returned(const Description& predictor, const std::string& total)
{
    return "    return " +
           outputOf(predictor.transform, realNumber(predictor.offset) + total, "_exp(%)",
                    "_square(%)") +
           "\n";
}

/** The order in which the model itself adds. */
std::string polynomial(const Description& predictor, std::size_t output)
{
    std::string text = "\n\ndef _output_" + std::to_string(output) + "(inputs):\n";
    std::string terms;
    for (const std::string& group : nestedTerms(predictor)) {
        terms += "    total += " + group + "\n";
    }
    if (terms.empty()) {
        return text + returned(predictor, "");
    }
    text += "    x = " + coordinateTuple(predictor) + "\n    total = 0.0\n" + terms;
    return text + returned(predictor, " + total");
}

std::string kriging(const Description& predictor, std::size_t output)
{
    const std::size_t coordinates = predictor.coordinates.size();
    const std::string number = std::to_string(output);
    std::string text;
    if (!predictor.weights.empty()) {
        const std::vector<double> scaled = scaledCases(predictor);
        std::vector<std::vector<double>> cases;
        for (std::size_t j = 0; j < predictor.weights.size(); ++j) {
            const auto first = scaled.begin() + static_cast<std::ptrdiff_t>(j * coordinates);
            cases.emplace_back(first, first + static_cast<std::ptrdiff_t>(coordinates));
        }
        constexpr std::size_t perLine = 4;
        text += "\n# The scaled coordinates of the cases.\n_CASES_" + number + " = " +
                table(cases) + "\n_WEIGHTS_" + number + " = (";
        for (std::size_t j = 0; j < predictor.weights.size(); ++j) {
            text += (j % perLine == 0 ? "\n    " : " ") + realNumber(predictor.weights[j]) + ",";
        }
        text += "\n)\n";
    }

    text += "\n\ndef _output_" + number + "(inputs):\n";
    const bool hasSlopes = hasFactors(predictor);
    if (needsCoordinates(predictor)) {
        text += "    u = " + coordinateTuple(predictor) + "\n";
    }
    text += hasSlopes ? "    x = [2.0 * value - 1.0 for value in u]\n" : "";
    text += "    total = 0.0\n";
    for (const std::string& term : productTerms(predictor)) {
        text += "    total += " + term + "\n";
    }
    if (!predictor.weights.empty()) {
        std::vector<std::string> scaled;
        const std::vector<double> scales = correlationScales(predictor);
        for (std::size_t k = 0; k < coordinates; ++k) {
            scaled.push_back(subscript("u", k) + " * " + realNumber(scales[k]));
        }
        text += "    scaled = " + tuple(scaled) + "\n    correlated = 0.0\n";
        text += "    for weight, case in zip(_WEIGHTS_" + number + ", _CASES_" + number +
                "):\n        correlated += weight * _correlation(scaled, case)\n"
                "    total += correlated\n";
    }
    return text + returned(predictor, " + " + realNumber(predictor.scale) + " * total");
}

std::string predictFunction(const ExportedModel& model)
{
    std::vector<std::string> calls;
    for (std::size_t k = 0; k < model.outputs.size(); ++k) {
        calls.push_back("_output_" + std::to_string(k) + "(values)");
    }
    std::string list = tuple(calls);
    list.front() = '[';
    list.back() = ']';
    return R"(

def predict(inputs):
    """The list of the outputs."""
    values = [float(value) for value in inputs]
    if len(values) != len(INPUTS):
        raise ValueError("The model has %d inputs, but %d were given." % (len(INPUTS), len(values)))
    if not all(math.isfinite(value) for value in values):
        return [math.nan] * len(OUTPUTS)
    return )" +
           list + "\n";
}

std::string selfCheck(const ExportedModel& model)
{
    const CheckPoints check(model);
    std::string text = "\n\n_CHECK_POINTS = " + table(check.points) + "\n";
    text += "_EXPECTED = " + table(check.values) + "\n";
    text += "_TOLERANCES = " + table(check.tolerances) + "\n";
    std::string sums;
    for (std::size_t k = 0; k < model.outputs.size(); ++k) {
        const Description& predictor = model.outputs[k].model.predictor;
        if (predictor.weights.empty()) {
            continue;
        }
        const std::string number = std::to_string(k);
        const TableSum cases(scaledCases(predictor));
        const TableSum weights(predictor.weights);
        const auto line = [&](const std::string& numbers, const TableSum& sum) {
            sums += "    (" + numbers + ", " + realNumber(sum.value) + ", " +
                    realNumber(sum.tolerance) + "),\n";
        };
        line("[number for case in _CASES_" + number + " for number in case]", cases);
        line("_WEIGHTS_" + number, weights);
    }
    text += sums.empty() ? "" : "_TABLE_SUMS = (\n" + sums + ")\n";
    text += R"(

def self_check():
    """0 if the check points come out as they should, else RuntimeError."""
    for point, expected, tolerances in zip(_CHECK_POINTS, zip(*_EXPECTED), zip(*_TOLERANCES)):
        for name, value, wanted, tolerance in zip(OUTPUTS, predict(point), expected, tolerances):
            if not abs(value - wanted) <= tolerance:
                raise RuntimeError("The self-check fails: %s is %r at %r, and should be %r."
                                   % (name, value, point, wanted))
)";
    if (!sums.empty()) {
        text += R"(    for numbers, wanted, tolerance in _TABLE_SUMS:
        total = 0.0
        for i, number in enumerate(numbers):
            total += number * (1 + i % 7)
        if not abs(total - wanted) <= tolerance:
            raise RuntimeError("The self-check fails: a number in the tables has changed.")
)";
    }
    return text + "    return 0\n";
}

const char* const mainFunction = R"(

def _number(position, text):
    try:
        if "_" in text:
            raise ValueError
        return float(text)
    except ValueError:
        raise ValueError("The input %d is no number: %r." % (position, text)) from None


def _main(arguments):
    try:
        outputs = predict(_number(k + 1, text) for k, text in enumerate(arguments))
    except ValueError as error:
        print(error, file=sys.stderr)
        return 2
    try:
        self_check()
    except RuntimeError as error:
        print(error, file=sys.stderr)
        return 1
    for value in outputs:
        print("%.17g" % value)
    return 0


if __name__ == "__main__":
    sys.exit(_main(sys.argv[1:]))
)";

} // namespace

std::string pythonSource(const ExportedModel& model)
{
    std::string text = header(model);
    const bool hasSlopes =
        std::any_of(model.outputs.begin(), model.outputs.end(),
                    [](const auto& output) { return !output.model.predictor.coordinates.empty(); });
    if (model.isKriging() && hasSlopes) {
        text += krigingFunctions;
    }
    text += hasTransform(model, OutputTransform::Logarithm) ? expFunction : "";
    text += hasTransform(model, OutputTransform::SquareRoot) ? squareFunction : "";
    for (std::size_t k = 0; k < model.outputs.size(); ++k) {
        const Description& predictor = model.outputs[k].model.predictor;
        text += model.isKriging() ? kriging(predictor, k) : polynomial(predictor, k);
    }
    return text + predictFunction(model) + selfCheck(model) + mainFunction;
}
