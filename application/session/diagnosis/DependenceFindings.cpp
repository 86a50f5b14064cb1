#include "session/diagnosis/DependenceFindings.h"

#include "session/diagnosis/FindingWords.h"

#include "session/text/DecimalText.h"
#include "session/text/SettingHint.h"

#include <mirel_fitting/numerics/OrthonormalColumns.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <optional>
#include <string>
#include <utility>

using Column = DiagnosedCases::Column;
using FindingWords::names;

namespace {
using Numbers = std::vector<double>;

constexpr std::size_t maxInputs = 300;

double mean(const Numbers& values)
{
    return std::accumulate(values.begin(), values.end(), 0.0) / static_cast<double>(values.size());
}

double dot(const Numbers& left, const Numbers& right)
{
    return std::inner_product(left.begin(), left.end(), right.begin(), 0.0);
}

double length(const Numbers& values)
{
    return std::sqrt(dot(values, values));
}

/** The number of fewest digits within a tolerance. */
double rounded(double number, double tolerance)
{
    for (int digits = 1; digits <= 6; ++digits) {
        const double candidate = std::strtod(shownNumber(number, digits).c_str(), nullptr);
        if (std::fabs(candidate - number) <= tolerance) {
            return candidate;
        }
    }
    return number;
}

/** The inputs in their order: those that depend on earlier ones are set apart, the others are kept.
 */
class LinearDependences
{
public:
    explicit LinearDependences(const DiagnosedCases& allCases)
        : cases(allCases), maxColumns(std::min(cases.inputs.size(), maxInputs)),
          orthonormal(cases.count(), maxColumns)
    {
        for (std::size_t i = 0; i < maxColumns; ++i) {
            add(cases.inputs[i]);
        }
        for (const Column& output : cases.outputs) {
            findFormulaOf(output);
        }
    }

    std::vector<Finding> dependent; ///< inputs and outputs

    /** One group of inputs after the other whose variance inflation is above 10. */
    std::vector<Finding> collinear() const;

private:
    struct Kept
    {
        const Column* source;
        double mean;
        double length; ///< of the centred column
        double range;
        double step; ///< of the last digit
    };

    /** Few cases more than columns: any column is a combination of the others. */
    bool hasCasesFor(std::size_t count) const
    {
        constexpr std::size_t spare = 4;
        return cases.count() > count + spare;
    }

    /** Of the standardised columns, the element of their triangular factor in a row and a column.
     */
    double factor(std::size_t row, std::size_t column) const
    {
        return orthonormal.triangle()[column * maxColumns + row] / kept[column].length;
    }

    /** How a column depends on those that are kept. */
    struct Dependence
    {
        std::vector<std::string> columns; ///< itself first
        std::string formula;              ///< "C = 2 A + B in every case"
        bool isExact;
    };

    Kept keptOf(const Column& source) const;
    void add(const Column& source);
    void findFormulaOf(const Column& output);
    std::optional<Dependence> dependenceOf(const Kept& column) const;
    std::string formula(const Kept& column, const Numbers& coefficients, double tolerance,
                        std::vector<std::string>& columns) const;
    double largestError(const Kept& column, const Numbers& coefficients) const;
    Numbers fewestTerms(const Kept& column, const Numbers& coefficients, double maxError) const;
    Numbers centredValues(const Kept& column) const;
    std::vector<Numbers> inverseFactor() const;
    std::string effectOf(bool isExact) const;

    const DiagnosedCases& cases;
    std::size_t maxColumns;
    OrthonormalColumns orthonormal; ///< the kept inputs, centred
    std::vector<Kept> kept;
};

LinearDependences::Kept LinearDependences::keptOf(const Column& source) const
{
    Kept column = {&source, mean(source.values), 0.0, source.range(), lastDigit(source.values)};
    column.length = length(centredValues(column));
    return column;
}

void LinearDependences::add(const Column& source)
{
    if (!hasCasesFor(kept.size()) || source.isConstant()) {
        return;
    }
    const Kept column = keptOf(source);
    if (const std::optional<Dependence> found = dependenceOf(column)) {
        dependent.push_back(
            Finding("dependentInput", Finding::Warning, found->columns,
                    found->formula + effectOf(found->isExact) + " and predictions off this " +
                        (found->columns.size() > 2 ? "plane" : "line") +
                        " are extrapolation; leave " + names({source.name}) + " out of the inputs" +
                        settingHint(Setting::Inputs) + " or vary it independently."));
    } else if (orthonormal.append(centredValues(column).data())) {
        kept.push_back(column);
    }
}

void LinearDependences::findFormulaOf(const Column& output)
{
    if (!hasCasesFor(kept.size()) || output.isConstant()) {
        return;
    }
    if (const std::optional<Dependence> found = dependenceOf(keptOf(output))) {
        const bool isOne = found->columns.size() == 2;
        dependent.push_back(
            Finding("determinedOutput", Finding::Note, found->columns,
                    found->formula + ": the model only repeats this formula; if the " +
                        (isOne ? "input was computed from the output, leave it"
                               : "output was computed from these inputs, leave them") +
                        " out of the inputs" + settingHint(Setting::Inputs) + '.'));
    }
}

double LinearDependences::largestError(const Kept& column, const Numbers& coefficients) const
{
    double largest = 0.0;
    for (std::size_t row = 0; row < cases.count(); ++row) {
        double error = column.source->values[row] - column.mean;
        for (std::size_t k = 0; k < kept.size(); ++k) {
            error -= coefficients[k] * (kept[k].source->values[row] - kept[k].mean);
        }
        largest = std::max(largest, std::fabs(error));
    }
    return largest;
}

Numbers LinearDependences::centredValues(const Kept& column) const
{
    Numbers values = column.source->values;
    for (double& value : values) {
        value -= column.mean;
    }
    return values;
}

/** Columns join one after the other, the one most like what is left first, until their
 *  combination is good enough: least squares over all give the effects of rounding terms, too. */
Numbers LinearDependences::fewestTerms(const Kept& column, const Numbers& coefficients,
                                       double maxError) const
{
    constexpr std::size_t readable = 10;
    const std::size_t maxTerms = std::min(readable, kept.size() - 1);
    OrthonormalColumns chosen(cases.count(), maxTerms);
    std::vector<std::size_t> members;
    Numbers residuals = centredValues(column);
    while (members.size() < maxTerms) {
        std::size_t best = 0;
        double greatest = -1.0;
        for (std::size_t k = 0; k < kept.size(); ++k) {
            const double share = std::fabs(dot(centredValues(kept[k]), residuals)) / kept[k].length;
            if (share > greatest) {
                greatest = share;
                best = k;
            }
        }
        if (!chosen.append(centredValues(kept[best]).data(), OrthonormalColumns::independent)) {
            break;
        }
        members.push_back(best);
        residuals = centredValues(column);
        const Numbers estimates = chosen.solve(residuals.data());
        Numbers result(kept.size(), 0.0);
        for (std::size_t m = 0; m < members.size(); ++m) {
            result[members[m]] = estimates[m];
        }
        if (largestError(column, result) <= maxError) {
            return result;
        }
    }
    return coefficients;
}

std::optional<LinearDependences::Dependence>
LinearDependences::dependenceOf(const Kept& column) const
{
    constexpr double exact = 1e-7;               // relative to the column: rounding of the sums
    constexpr double maxRoundingResidual = 0.02; // larger residuals may be chance
    constexpr double ofLeastSquares = 1.5;       // which do not make the largest error least
    constexpr double finestShare = 0.05;         // of the range: coarser digits explain anything
    if (kept.empty()) {
        return std::nullopt;
    }
    Numbers residuals = centredValues(column);
    const Numbers coefficients = orthonormal.solve(residuals.data());
    const double residual = length(residuals) / column.length;
    if (residual > maxRoundingResidual) {
        return std::nullopt;
    }
    double rounding = column.step / 2.0;
    for (std::size_t k = 0; k < kept.size(); ++k) {
        rounding += std::fabs(coefficients[k]) * kept[k].step / 2.0;
    }
    const bool isExact = residual <= exact;
    const bool isRounded = rounding <= finestShare * column.range &&
                           largestError(column, coefficients) <= ofLeastSquares * rounding;
    if (!isExact && !isRounded) {
        return std::nullopt;
    }
    const Numbers needed =
        isExact ? coefficients : fewestTerms(column, coefficients, ofLeastSquares * rounding);
    Dependence found{{column.source->name}, "", isExact};
    const double tolerance = isExact ? exact * column.range : rounding;
    found.formula = formula(column, needed, tolerance, found.columns) +
                    (cases.isSample ? " in every compared case" : " in every case") +
                    (isExact ? "" : ", up to rounding");
    return found;
}

std::string LinearDependences::effectOf(bool isExact) const
{
    return isExact || cases.isKriging ? ": their effects cannot be told apart,"
                                      : ": their coefficients cannot be interpreted one by one,";
}

std::string LinearDependences::formula(const Kept& column, const Numbers& coefficients,
                                       double tolerance, std::vector<std::string>& columns) const
{
    constexpr int digits = 4;
    const double negligible = std::max(1e-6 * column.range, tolerance);
    double constant = column.mean;
    std::string text;
    for (std::size_t k = 0; k < kept.size(); ++k) {
        if (std::fabs(coefficients[k]) * kept[k].range <= negligible) {
            constant -= coefficients[k] * kept[k].mean;
            continue;
        }
        const double coefficient = rounded(coefficients[k], negligible / kept[k].range);
        constant -= coefficient * kept[k].mean;
        const double size = std::fabs(coefficient);
        text += text.empty() ? (coefficient < 0.0 ? "-" : "") : (coefficient < 0.0 ? " - " : " + ");
        text += size == 1.0 ? "" : shownNumber(size, digits) + ' ';
        text += names({kept[k].source->name});
        columns.push_back(kept[k].source->name);
    }
    constant = rounded(constant, negligible);
    if (std::fabs(constant) > negligible) {
        text += (constant < 0.0 ? " - " : " + ") + shownNumber(std::fabs(constant), digits);
    }
    return names({column.source->name}) + " = " + text;
}

/** Its rows give the inverse of the correlations, whose diagonal is the variance inflation. */
std::vector<Numbers> LinearDependences::inverseFactor() const
{
    const std::size_t order = kept.size();
    std::vector<Numbers> inverse(order, Numbers(order, 0.0));
    for (std::size_t j = 0; j < order; ++j) {
        for (std::size_t i = j + 1; i-- > 0;) {
            double sum = i == j ? 1.0 : 0.0;
            for (std::size_t k = i + 1; k <= j; ++k) {
                sum -= factor(i, k) * inverse[k][j];
            }
            inverse[i][j] = sum / factor(i, i);
        }
    }
    return inverse;
}

std::vector<Finding> LinearDependences::collinear() const
{
    constexpr double maxInflation = 10.0;
    constexpr double partnerShare = 0.3; // of the largest standardised coefficient
    std::vector<Finding> findings;
    const std::size_t columns = kept.size();
    if (columns < 2 || !hasCasesFor(columns)) {
        return findings;
    }

    const std::vector<Numbers> inverse = inverseFactor();
    const double rows = static_cast<double>(cases.count());
    // By as many cases as there are, chance alone inflates the variance.
    const double byChance = (rows - 1.0) / (rows - static_cast<double>(columns));
    std::vector<std::size_t> group(columns);
    std::iota(group.begin(), group.end(), std::size_t(0));
    std::vector<double> inflation(columns, 0.0);
    std::vector<bool> isPartner(columns, false);
    for (std::size_t j = 0; j < columns; ++j) {
        inflation[j] = dot(inverse[j], inverse[j]);
    }
    for (std::size_t j = 0; j < columns; ++j) {
        if (inflation[j] <= maxInflation * byChance) {
            continue;
        }
        Numbers shares(columns, 0.0);
        for (std::size_t i = 0; i < columns; ++i) {
            shares[i] = i == j ? 0.0 : std::fabs(dot(inverse[i], inverse[j])) / inflation[j];
        }
        const double largest = *std::max_element(shares.begin(), shares.end());
        isPartner[j] = true;
        for (std::size_t i = 0; i < columns; ++i) {
            if (shares[i] >= partnerShare * largest) {
                isPartner[i] = true;
                const std::size_t from = group[i];
                const std::size_t to = group[j];
                std::replace(group.begin(), group.end(), from, to);
            }
        }
    }
    for (std::size_t leader = 0; leader < columns; ++leader) {
        std::vector<std::string> members;
        double largest = 0.0;
        for (std::size_t i = 0; i < columns; ++i) {
            if (group[i] == leader && isPartner[i]) {
                members.push_back(kept[i].source->name);
                largest = std::max(largest, inflation[i]);
            }
        }
        if (members.size() < 2) {
            continue;
        }
        const std::string list = names(members);
        const bool areMany = members.size() > 3;
        const std::string which = areMany ? "these inputs" : list;
        const std::string effect =
            cases.isKriging ? "the effects of " + which + " cannot be told apart"
                            : "coefficients of " + which + " cannot be interpreted one by one";
        findings.push_back(Finding(
            "collinearInputs", Finding::Warning, members,
            list + " vary together (variance inflation " + shownFigure(largest) + "): " + effect +
                ", and predictions off their common " + (members.size() > 2 ? "plane" : "line") +
                " are extrapolation; vary them independently or leave " +
                (members.size() > 2 ? "some" : "one") + " out of the inputs" +
                settingHint(Setting::Inputs) + '.'));
    }
    return findings;
}
} // namespace

std::vector<Finding> DependenceFindings::find(const DiagnosedCases& cases)
{
    if (cases.count() == 0) {
        return {};
    }
    const LinearDependences dependences(cases);
    const std::vector<Finding> collinear = dependences.collinear();
    std::vector<Finding> findings = dependences.dependent;
    findings.insert(findings.end(), collinear.begin(), collinear.end());
    return findings;
}
