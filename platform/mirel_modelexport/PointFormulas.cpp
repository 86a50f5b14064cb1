#include <mirel_modelexport/PointFormulas.h>

#include <mirel_modelexport/CheckPoints.h>
#include <mirel_modelexport/ExportText.h>
#include <mirel_modelexport/SourceTerms.h>
#include <mirel_modelexport/WorkbookFile.h>

#include <boost/algorithm/string/replace.hpp>

#include <algorithm>
#include <cmath>

namespace {

using Description = PredictorDescription;

constexpr std::size_t noFactor = Description::noFactor;

/** Stands for the number of the row; no formula has it otherwise. */
const char* const rowMark = "#";

/** Formulas are split before they come near the longest that spreadsheets take; the marks of rows
 *  grow to up to seven digits. */
constexpr std::size_t longFormula = 5000;

std::string inRow(const std::string& formula, std::size_t row)
{
    return boost::algorithm::replace_all_copy(formula, rowMark, std::to_string(row + 1));
}

std::string subtracted(double value)
{
    return signedNumber(-value, formulaNumber);
}

} // namespace

PointFormulas::PointFormulas(const ExportedModel& model, const Columns& columns) : columns(columns)
{
    for (std::size_t k = 0; k < model.outputs.size(); ++k) {
        const Description& predictor = model.outputs[k].model.predictor;
        const std::string formula =
            model.isKriging() ? kriging(predictor, k) : polynomial(predictor);
        outputs.push_back(outputOf(predictor.transform, formula, "EXP(%)", "MAX(0,%)^2"));
    }
}

/** Its position; the same formula is one step. */
std::size_t PointFormulas::addStep(const Step& step)
{
    const auto known = std::find_if(steps.begin(), steps.end(), [&](const Step& earlier) {
        return earlier.formula == step.formula;
    });
    if (known != steps.end()) {
        return static_cast<std::size_t>(known - steps.begin());
    }
    steps.push_back(step);
    return steps.size() - 1;
}

std::string PointFormulas::inputCell(std::size_t input) const
{
    return "$" + WorkbookFile::columnName(columns.inputs + input) + rowMark;
}

std::string PointFormulas::stepCell(std::size_t step) const
{
    return "$" + WorkbookFile::columnName(columns.steps + step) + rowMark;
}

/** @param isClamped whether it is at most 1e150 in magnitude, so that products of two are finite.
 */
std::size_t PointFormulas::addCoordinate(const Description::Coordinate& coordinate, bool isClamped)
{
    const std::string cell = inputCell(coordinate.input);
    const std::string scaled =
        "(" + cell + subtracted(coordinate.origin) + ")/" + formulaNumber(coordinate.unit);
    const auto value = [coordinate, isClamped](const Values& point, const Values&) {
        const double u = (point[coordinate.input] - coordinate.origin) / coordinate.unit;
        return isClamped ? std::clamp(u, -1e150, 1e150) : u;
    };
    return addStep({(isClamped ? "u" : "x") + std::to_string(coordinate.input + 1),
                    isClamped ? "MAX(-1E150,MIN(1E150," + scaled + "))" : scaled, value});
}

/** constant + (x_1 * (b_1 + b_11 * x_1 + ...) + ...), in steps where it is long. */
std::string PointFormulas::polynomial(const Description& predictor)
{
    std::vector<std::string> groups;
    std::vector<std::function<double(const Values&, const Values&)>> values;
    std::vector<std::size_t> x;
    for (const Description::Coordinate& coordinate : predictor.coordinates) {
        const bool hasTerms = !predictor.terms.empty();
        x.push_back(hasTerms ? addCoordinate(coordinate, false) : 0);
    }
    for (std::size_t i = 0; i < predictor.coordinates.size(); ++i) {
        std::string slope;
        std::vector<Description::Term> ofGroup;
        for (const Description::Term& term : predictor.terms) {
            if (term.first != i) {
                continue;
            }
            ofGroup.push_back(term);
            const std::string number = signedNumber(term.coefficient, formulaNumber);
            slope += slope.empty() ? formulaNumber(term.coefficient) : number;
            slope += term.second == noFactor ? "" : "*" + stepCell(x[term.second]);
        }
        if (ofGroup.empty()) {
            continue;
        }
        groups.push_back(stepCell(x[i]) + "*(" + slope + ")");
        values.push_back([i, ofGroup, x](const Values&, const Values& before) {
            double sum = 0.0;
            for (const Description::Term& term : ofGroup) {
                sum += term.coefficient * (term.second == noFactor ? 1.0 : before[x[term.second]]);
            }
            return sum * before[x[i]];
        });
    }

    std::size_t length = 0;
    for (const std::string& group : groups) {
        length += group.size() + 1;
    }
    const bool isLong = length > longFormula;
    std::string sum;
    for (std::size_t g = 0; g < groups.size(); ++g) {
        sum += (sum.empty() ? "" : "+") +
               (isLong ? stepCell(addStep({"part " + std::to_string(g + 1), groups[g], values[g]}))
                       : groups[g]);
    }
    return formulaNumber(predictor.offset) + (sum.empty() ? "" : "+(" + sum + ")");
}

/** offset + scale * (trend + SUMPRODUCT(...)). */
std::string PointFormulas::kriging(const Description& predictor, std::size_t output)
{
    const bool hasCases = !predictor.weights.empty();
    std::vector<std::size_t> u;
    for (const Description::Coordinate& coordinate : predictor.coordinates) {
        u.push_back(needsCoordinates(predictor) ? addCoordinate(coordinate, true) : 0);
    }
    std::string sum = trend(predictor, u);
    if (hasCases) {
        sum += "+" + correlated(predictor, u, output);
    }
    return formulaNumber(predictor.offset) + "+" + formulaNumber(predictor.scale) + "*(" + sum +
           ")";
}

std::string PointFormulas::trend(const Description& predictor, const std::vector<std::size_t>& u)
{
    const auto factor = [&](std::size_t k) {
        const std::size_t step = u[k];
        return stepCell(addStep(
            {"x" + std::to_string(predictor.coordinates[k].input + 1), "2*" + stepCell(step) + "-1",
             [step](const Values&, const Values& before) { return 2.0 * before[step] - 1.0; }}));
    };
    std::string sum;
    for (const Description::Term& term : predictor.terms) {
        sum += sum.empty() ? formulaNumber(term.coefficient)
                           : signedNumber(term.coefficient, formulaNumber);
        sum += term.first == noFactor ? "" : "*" + factor(term.first);
        sum += term.second == noFactor ? "" : "*" + factor(term.second);
    }
    if (sum.size() <= longFormula) {
        return sum.empty() ? "0" : sum;
    }
    const std::vector<Description::Term> terms = predictor.terms;
    return stepCell(addStep({"trend", sum, [terms, u](const Values&, const Values& before) {
                                 double value = 0.0;
                                 for (const Description::Term& term : terms) {
                                     double product = term.coefficient;
                                     for (const std::size_t k : {term.first, term.second}) {
                                         product *= k == noFactor ? 1.0 : 2.0 * before[u[k]] - 1.0;
                                     }
                                     value += product;
                                 }
                                 return value;
                             }}));
}

/**
 * The weighted sum of the correlations, as one formula over the columns of the cases. A scaled
 * coordinate goes no further from the cases than where the correlation is 0 to every digit, so that
 * no polynomial overflows.
 */
std::string PointFormulas::correlated(const Description& predictor,
                                      const std::vector<std::size_t>& u, std::size_t output)
{
    constexpr double farthest = 1000.0;
    constexpr std::size_t perGroup = 32; // the product of more polynomials could overflow
    const std::vector<double> scales = correlationScales(predictor);
    const std::vector<double> cases = scaledCases(predictor);
    const std::size_t coordinates = u.size();
    std::string product = weightsName(output);
    std::string exponent;
    for (std::size_t k = 0; k < coordinates; ++k) {
        double lowest = cases[k];
        double highest = cases[k];
        for (std::size_t j = 0; j < predictor.weights.size(); ++j) {
            lowest = std::min(lowest, cases[j * coordinates + k]);
            highest = std::max(highest, cases[j * coordinates + k]);
        }
        lowest -= farthest;
        highest += farthest;
        const std::size_t step = u[k];
        const double scale = scales[k];
        const std::size_t scaled =
            addStep({"scaled " + std::to_string(predictor.coordinates[k].input + 1) +
                         " for output " + std::to_string(output + 1),
                     "MAX(" + formulaNumber(lowest) + ",MIN(" + formulaNumber(highest) + "," +
                         stepCell(step) + "*" + formulaNumber(scale) + "))",
                     [=](const Values&, const Values& before) {
                         return std::clamp(before[step] * scale, lowest, highest);
                     }});
        const std::string distance = "ABS(" + stepCell(scaled) + "-" + casesName(output, k) + ")";
        product += "*(1+" + distance + "*(1+" + distance + "/3))";
        exponent += "-" + distance;
        if (k % perGroup == perGroup - 1 || k + 1 == coordinates) {
            product += "*EXP(" + exponent + ")";
            exponent.clear();
        }
    }
    return "SUMPRODUCT(" + product + ")";
}

std::string PointFormulas::stepFormula(std::size_t step, std::size_t row) const
{
    return inRow(steps[step].formula, row);
}

std::string PointFormulas::outputFormula(std::size_t output, std::size_t row) const
{
    return inRow(outputs[output], row);
}

std::vector<double> PointFormulas::stepValues(const std::vector<double>& point) const
{
    std::vector<double> values;
    for (const Step& step : steps) {
        values.push_back(step.value(point, values));
    }
    return values;
}

std::string PointFormulas::weightsName(std::size_t output)
{
    return "weights_" + std::to_string(output);
}

std::string PointFormulas::casesName(std::size_t output, std::size_t coordinate)
{
    return "x_" + std::to_string(output) + "_" + std::to_string(coordinate);
}
