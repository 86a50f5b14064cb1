#include <mirel_modelexport/CSource.h>

#include <mirel_fitting/numerics/TextPieces.h>
#include <mirel_modelexport/CheckPoints.h>
#include <mirel_modelexport/ExportText.h>
#include <mirel_modelexport/SourceTerms.h>
#include <mirel_modelexport/TableSum.h>

#include <algorithm>
#include <cmath>

namespace {

using Description = PredictorDescription;

/** Rows of numbers, `perRow` on a line. */
std::string rowsOf(const std::vector<double>& numbers, std::size_t perRow)
{
    std::string text;
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        text += i % perRow == 0 ? "\n    " : " ";
        text += realNumber(numbers[i]) + (i + 1 < numbers.size() ? "," : "");
    }
    return text;
}

/** A number behind a minus sign. */
std::string subtrahend(double number)
{
    return std::signbit(number) ? "(" + realNumber(number) + ")" : realNumber(number);
}

/** {a, b}; C has no empty arrays, so that one without elements gets a zero. */
std::string braced(const std::vector<double>& numbers)
{
    std::string text;
    for (const double number : numbers) {
        text += (text.empty() ? "" : ", ") + realNumber(number);
    }
    return "{" + (text.empty() ? "0.0" : text) + "}";
}

std::string header(const ExportedModel& model)
{
    std::string text = "/*\n * ";
    text += model.isKriging() ? "Kriging model" : "Response surface";
    text +=
        ": " + countedText(model.outputs.size(), "output") + " of " +
        countedText(model.inputs.size(), "input") +
        ".\n"
        " *\n"
        " *   double surrogate_K(const double *inputs)   the output K of these inputs\n"
        " *   int surrogate_self_check(void)             0 if the check points come out as they\n"
        " *                                              should, else 1 + the output that fails\n"
        " *\n"
        " * With -DSURROGATE_MAIN it is a program that takes the inputs as arguments and prints\n"
        " * the outputs, one a line. An input that is NaN or infinite gives NaN. Outside of the\n"
        " * ranges of the inputs do not rely on the outputs.\n"
        " *\n"
        " *     cc -std=c99 -O2 -DSURROGATE_MAIN THIS_FILE.c -lm\n"
        " *\n";
    for (std::size_t k = 0; k < model.inputs.size(); ++k) {
        const Description::InputRange& range = model.outputs.front().model.predictor.inputs[k];
        text += " * inputs[" + std::to_string(k) + "]: " + commentName(model.inputs[k].name) +
                ", from " + NumberText::shortest(range.minimum) + " to " +
                NumberText::shortest(range.maximum) + "\n";
    }
    for (std::size_t k = 0; k < model.outputs.size(); ++k) {
        text +=
            " * surrogate_" + std::to_string(k) + ": " + commentName(model.outputs[k].name) + "\n";
    }
    return text + " */\n";
}

std::string declarations(const ExportedModel& model)
{
    std::string text = "#include <math.h>\n\n";
    text += "#define SURROGATE_INPUTS " + std::to_string(model.inputs.size()) + "\n";
    text += "#define SURROGATE_OUTPUTS " + std::to_string(model.outputs.size()) + "\n\n";
    for (std::size_t k = 0; k < model.outputs.size(); ++k) {
        text += "double surrogate_" + std::to_string(k) + "(const double *inputs);\n";
    }
    text += R"(int surrogate_self_check(void);

static int surrogate_all_finite(const double *inputs)
{
    int k;
    for (k = 0; k < SURROGATE_INPUTS; ++k) {
        if (!isfinite(inputs[k])) {
            return 0;
        }
    }
    return 1;
}
)";
    return text;
}

const char* const krigingFunctions = R"(
/* Kept so small that products of two are finite. */
static double surrogate_coordinate(double value, double origin, double unit)
{
    const double u = (value - origin) / unit;
    return u < -1e150 ? -1e150 : u > 1e150 ? 1e150 : u;
}
)";

const char* const correlationFunctions = R"(
/* The product Matern 5/2 correlation of two points, (1 + z + z^2 / 3) exp(-z) for each coordinate;
   coordinates are scaled by sqrt(5) / length. */
static double surrogate_correlation(const double *a, const double *b, int coordinates)
{
    double product = 1.0;
    double sum = 0.0;
    int k;
    for (k = 0; k < coordinates; ++k) {
        double z = fabs(a[k] - b[k]);
        if (z > 1000.0) {
            z = 1000.0;
        }
        product *= 1.0 + z * (1.0 + z / 3.0);
        sum += z;
        if (k % 32 == 31) {
            product *= exp(-sum);
            sum = 0.0;
        }
    }
    return product * exp(-sum);
}
)";

const char* const squareFunction = R"(
static double surrogate_square(double root)
{
    return root < 0.0 ? 0.0 : root * root;
}
)";

/** The end of a function. @param sum what follows the offset. */
std::string returned(const Description& predictor, const std::string& sum)
{
    return "    return " +
           outputOf(predictor.transform, realNumber(predictor.offset) + sum, "exp(%)",
                    "surrogate_square(%)") +
           ";\n}\n";
}

std::string polynomial(const Description& predictor, std::size_t output)
{
    const std::size_t coordinates = predictor.coordinates.size();
    std::string terms;
    for (const std::string& group : nestedTerms(predictor)) {
        terms += "    sum += " + group + ";\n";
    }
    std::string text =
        "\ndouble surrogate_" + std::to_string(output) + "(const double *inputs)\n{\n";
    if (!terms.empty()) {
        text += "    double x[" + std::to_string(coordinates) + "];\n    double sum = 0.0;\n";
    }
    text += "    if (!surrogate_all_finite(inputs)) {\n        return NAN;\n    }\n";
    for (std::size_t k = 0; !terms.empty() && k < coordinates; ++k) {
        const Description::Coordinate& coordinate = predictor.coordinates[k];
        text += "    x[" + std::to_string(k) + "] = (inputs[" + std::to_string(coordinate.input) +
                "] - " + subtrahend(coordinate.origin) + ") / " + realNumber(coordinate.unit) +
                ";\n";
    }
    text += terms;
    return text + returned(predictor, terms.empty() ? "" : " + sum");
}

std::string kriging(const Description& predictor, std::size_t output)
{
    const std::string name = "surrogate_" + std::to_string(output);
    const std::size_t coordinates = predictor.coordinates.size();
    const std::size_t cases = predictor.weights.size();
    const bool hasSlopes = hasFactors(predictor);
    std::string text;
    if (cases > 0) {
        text += "\n/* The scaled coordinates of the " + countedText(cases, "case") + ". */\n";
        text += "static const double " + name + "_cases[] = {" +
                rowsOf(scaledCases(predictor), coordinates) + "};\n\n";
        text += "static const double " + name + "_weights[] = {" + rowsOf(predictor.weights, 4) +
                "};\n";
    }

    text += "\ndouble " + name + "(const double *inputs)\n{\n";
    if (needsCoordinates(predictor)) {
        const std::string size = "[" + std::to_string(coordinates) + "]";
        text += "    double u" + size + "; /* from 0 to 1 over the cases */\n";
        text += hasSlopes ? "    double x" + size + "; /* from -1 to 1 */\n" : "";
    }
    if (cases > 0) {
        text += "    double scaled[" + std::to_string(coordinates) + "];\n";
        text += "    double correlated = 0.0;\n    int j;\n";
    }
    text += "    double sum = 0.0;\n";
    text += "    if (!surrogate_all_finite(inputs)) {\n        return NAN;\n    }\n";
    const std::vector<double> scales = correlationScales(predictor);
    for (std::size_t k = 0; needsCoordinates(predictor) && k < coordinates; ++k) {
        const Description::Coordinate& coordinate = predictor.coordinates[k];
        const std::string at = "[" + std::to_string(k) + "]";
        text += "    u" + at + " = surrogate_coordinate(inputs[" +
                std::to_string(coordinate.input) + "], " + realNumber(coordinate.origin) + ", " +
                realNumber(coordinate.unit) + ");\n";
        if (hasSlopes) {
            text += "    x" + at + " = 2.0 * u" + at + " - 1.0;\n";
        }
        if (cases > 0) {
            text += "    scaled" + at + " = u" + at + " * " + realNumber(scales[k]) + ";\n";
        }
    }
    for (const std::string& term : productTerms(predictor)) {
        text += "    sum += " + term + ";\n";
    }
    if (cases > 0) {
        text += "    for (j = 0; j < " + std::to_string(cases) + "; ++j) {\n";
        text += "        correlated += " + name + "_weights[j] * surrogate_correlation(scaled, " +
                name + "_cases + " + std::to_string(coordinates) + " * j, " +
                std::to_string(coordinates) + ");\n    }\n    sum += correlated;\n";
    }
    return text + returned(predictor, " + " + realNumber(predictor.scale) + " * sum");
}

/** One line for each table: a changed number in it is found even where no check point is near. */
std::string tableChecks(const ExportedModel& model)
{
    std::string text;
    for (std::size_t k = 0; k < model.outputs.size(); ++k) {
        const Description& predictor = model.outputs[k].model.predictor;
        if (predictor.weights.empty()) {
            continue;
        }
        const auto check = [&](const std::string& table, const std::vector<double>& numbers) {
            const TableSum sum(numbers);
            text += "    if (!(fabs(surrogate_table_sum(surrogate_" + std::to_string(k) + "_" +
                    table + ", " + std::to_string(numbers.size()) + ") - " + subtrahend(sum.value) +
                    ") <= " + realNumber(sum.tolerance) + ")) {\n        return " +
                    std::to_string(k + 1) + ";\n    }\n";
        };
        check("cases", scaledCases(predictor));
        check("weights", predictor.weights);
    }
    return text;
}

std::string selfCheck(const ExportedModel& model)
{
    const CheckPoints check(model);
    const std::size_t width = std::max<std::size_t>(model.inputs.size(), 1);
    std::string text;
    if (hasCorrelation(model)) {
        text += R"(
/* The sum of the numbers, weighted by their positions. */
static double surrogate_table_sum(const double *numbers, long count)
{
    double sum = 0.0;
    long i;
    for (i = 0; i < count; ++i) {
        sum += numbers[i] * (double)(1 + i % 7);
    }
    return sum;
}
)";
    }
    text += "\nint surrogate_self_check(void)\n{\n";
    text += "    static const double points[" + std::to_string(CheckPoints::count) + "][" +
            std::to_string(width) + "] = {";
    for (std::size_t i = 0; i < CheckPoints::count; ++i) {
        text += (i == 0 ? "\n        " : ",\n        ") + braced(check.points[i]);
    }
    text += "};\n";
    const auto table = [&](const std::string& name, const std::vector<std::vector<double>>& rows) {
        text += "    static const double " + name + "[SURROGATE_OUTPUTS][" +
                std::to_string(CheckPoints::count) + "] = {";
        for (std::size_t k = 0; k < rows.size(); ++k) {
            text += (k == 0 ? "\n        " : ",\n        ") + braced(rows[k]);
        }
        text += "};\n";
    };
    table("expected", check.values);
    table("tolerances", check.tolerances);
    text += "    static double (*const outputs[SURROGATE_OUTPUTS])(const double *) = {";
    for (std::size_t k = 0; k < model.outputs.size(); ++k) {
        text += (k == 0 ? "\n        " : ",\n        ") + ("surrogate_" + std::to_string(k));
    }
    text += "};\n    int k;\n    int i;\n";
    text += tableChecks(model);
    text += "    for (k = 0; k < SURROGATE_OUTPUTS; ++k) {\n";
    text += "        for (i = 0; i < " + std::to_string(CheckPoints::count) + "; ++i) {\n";
    text +=
        R"(            if (!(fabs(outputs[k](points[i]) - expected[k][i]) <= tolerances[k][i])) {
                return 1 + k;
            }
        }
    }
    return 0;
}
)";
    return text;
}

const char* const mainFunction = R"(
#ifdef SURROGATE_MAIN
#include <stdio.h>
#include <stdlib.h>

static void surrogate_print(double value)
{
    if (isnan(value)) {
        puts("nan");
    } else {
        printf("%.17g\n", value);
    }
}

int main(int argc, char *argv[])
{
    double inputs[SURROGATE_INPUTS + 1];
    int k;
    if (argc - 1 != SURROGATE_INPUTS) {
        fprintf(stderr, "The model has %d inputs, listed at the top of its source, but %d were given.\n",
                SURROGATE_INPUTS, argc - 1);
        return 2;
    }
    for (k = 0; k < SURROGATE_INPUTS; ++k) {
        char *end = argv[k + 1];
        inputs[k] = strtod(argv[k + 1], &end);
        if (end == argv[k + 1] || *end != '\0') {
            fprintf(stderr, "The input %d is no number: \"%s\".\n", k + 1, argv[k + 1]);
            return 2;
        }
    }
    if (surrogate_self_check() != 0) {
        fprintf(stderr, "The self-check fails: this program does not compute the exported model.\n");
        return 1;
    }
)";

} // namespace

std::string cSource(const ExportedModel& model)
{
    std::string text = header(model) + declarations(model);
    if (model.isKriging()) {
        const bool hasCoordinates =
            std::any_of(model.outputs.begin(), model.outputs.end(), [](const auto& output) {
                return needsCoordinates(output.model.predictor);
            });
        text += hasCoordinates ? krigingFunctions : "";
        text += hasCorrelation(model) ? correlationFunctions : "";
    }
    text += hasTransform(model, OutputTransform::SquareRoot) ? squareFunction : "";
    for (std::size_t k = 0; k < model.outputs.size(); ++k) {
        const Description& predictor = model.outputs[k].model.predictor;
        text += "\n/* " + commentName(model.outputs[k].name) + " */";
        text += model.isKriging() ? kriging(predictor, k) : polynomial(predictor, k);
    }
    text += selfCheck(model);
    text += mainFunction;
    for (std::size_t k = 0; k < model.outputs.size(); ++k) {
        text += "    surrogate_print(surrogate_" + std::to_string(k) + "(inputs));\n";
    }
    return text + "    return ferror(stdout) || fflush(stdout) != 0 ? 1 : 0;\n}\n#endif\n";
}
