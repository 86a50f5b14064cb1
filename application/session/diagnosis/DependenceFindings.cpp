#include "session/diagnosis/DependenceFindings.h"

#include "session/diagnosis/FindingWords.h"

#include "session/text/NumberText.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <string>
#include <utility>

using Column = DiagnosedCases::Column;
using FindingWords::names;

namespace {
using Numbers = std::vector<double>;

constexpr std::size_t maxInputs = 300;

double dot(const Numbers& left, const Numbers& right)
{
    return std::inner_product(left.begin(), left.end(), right.begin(), 0.0);
}

double mean(const Numbers& values)
{
    return std::accumulate(values.begin(), values.end(), 0.0) / static_cast<double>(values.size());
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

/** Modified Gram-Schmidt over the inputs in their order: those that depend on earlier ones are set
 *  apart, the others are kept. */
class LinearDependences
{
public:
    explicit LinearDependences(const DiagnosedCases& allCases) : cases(allCases)
    {
        for (std::size_t i = 0; i < std::min(cases.inputs.size(), maxInputs); ++i) {
            add(i);
        }
    }

    std::vector<Finding> dependent;

    /** One group of inputs after the other whose variance inflation is above 10. */
    std::vector<Finding> collinear() const;

private:
    struct Kept
    {
        std::size_t input;
        Numbers direction; ///< of unit length, orthogonal to those before
        double mean;
        double length; ///< of the centred column
        double range;
        double step;        ///< of the last digit
        Numbers components; ///< of the centred column along the directions up to its own
    };

    /** Few cases more than columns: any column is a combination of the others. */
    bool hasCasesFor(std::size_t columns) const
    {
        constexpr std::size_t spare = 4;
        return cases.count() > columns + spare;
    }

    void add(std::size_t input);
    bool addDependence(const Kept& column, double residual);
    Numbers coefficientsOf(const Kept& column) const;
    std::string formula(const Kept& column, const Numbers& coefficients, double tolerance,
                        std::vector<std::string>& columns) const;
    double largestError(const Kept& column, const Numbers& coefficients) const;
    std::string effectOf(bool isExact) const;

    const DiagnosedCases& cases;
    std::vector<Kept> kept;
};

void LinearDependences::add(std::size_t input)
{
    const Column& source = cases.inputs[input];
    if (!hasCasesFor(kept.size()) || source.isConstant()) {
        return;
    }
    Kept column{input, source.values, mean(source.values), 0.0, source.range(), 0.0, {}};
    for (double& value : column.direction) {
        value -= column.mean;
    }
    column.length = std::sqrt(dot(column.direction, column.direction));
    column.components.assign(kept.size(), 0.0);
    for (int pass = 0; pass < 2; ++pass) { // the second removes the rounding of the first
        for (std::size_t k = 0; k < kept.size(); ++k) {
            const double component = dot(kept[k].direction, column.direction);
            column.components[k] += component;
            for (std::size_t row = 0; row < column.direction.size(); ++row) {
                column.direction[row] -= component * kept[k].direction[row];
            }
        }
    }
    const double residual = std::sqrt(dot(column.direction, column.direction));
    column.step = lastDigit(source.values);
    if (!kept.empty() && addDependence(column, residual / column.length)) {
        return;
    }
    column.components.push_back(residual);
    for (double& value : column.direction) {
        value /= residual;
    }
    kept.push_back(std::move(column));
}

/** Back substitution: the components of the kept columns are a triangular matrix. */
Numbers LinearDependences::coefficientsOf(const Kept& column) const
{
    Numbers coefficients = column.components;
    for (std::size_t k = kept.size(); k-- > 0;) {
        coefficients[k] /= kept[k].components[k];
        for (std::size_t i = 0; i < k; ++i) {
            coefficients[i] -= coefficients[k] * kept[k].components[i];
        }
    }
    return coefficients;
}

double LinearDependences::largestError(const Kept& column, const Numbers& coefficients) const
{
    double largest = 0.0;
    for (std::size_t row = 0; row < cases.count(); ++row) {
        double error = cases.inputs[column.input].values[row] - column.mean;
        for (std::size_t k = 0; k < kept.size(); ++k) {
            error -= coefficients[k] * (cases.inputs[kept[k].input].values[row] - kept[k].mean);
        }
        largest = std::max(largest, std::fabs(error));
    }
    return largest;
}

bool LinearDependences::addDependence(const Kept& column, double residual)
{
    constexpr double exact = 1e-7;               // relative to the column: rounding of the sums
    constexpr double maxRoundingResidual = 0.02; // larger residuals may be chance
    constexpr double ofLeastSquares = 1.5;       // which do not make the largest error least
    constexpr double finestShare = 0.05;         // of the range: coarser digits explain anything
    if (residual > maxRoundingResidual) {
        return false;
    }
    const Numbers coefficients = coefficientsOf(column);
    double rounding = column.step / 2.0;
    for (std::size_t k = 0; k < kept.size(); ++k) {
        rounding += std::fabs(coefficients[k]) * kept[k].step / 2.0;
    }
    const bool isExact = residual <= exact;
    const bool isRounded = rounding <= finestShare * column.range &&
                           largestError(column, coefficients) <= ofLeastSquares * rounding;
    if (!isExact && !isRounded) {
        return false;
    }
    const std::string& name = cases.inputs[column.input].name;
    std::vector<std::string> columns = {name};
    const double tolerance = isExact ? exact * column.range : rounding;
    const std::string text = formula(column, coefficients, tolerance, columns);
    dependent.push_back({"dependentInput", Finding::Warning, columns,
                         text + (cases.isSample ? " in every compared case" : " in every case") +
                             (isExact ? "" : ", up to rounding") + effectOf(isExact) +
                             " and predictions off this " +
                             (columns.size() > 2 ? "plane" : "line") +
                             " are extrapolation; leave " + names({name}) +
                             " out of -x or vary it independently."});
    return true;
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
    double constant = column.mean;
    std::string text;
    for (std::size_t k = 0; k < kept.size(); ++k) {
        const double share = std::fabs(coefficients[k]) * kept[k].range;
        if (share <= std::max(1e-6 * column.range, tolerance)) {
            constant -= coefficients[k] * kept[k].mean;
            continue;
        }
        const double coefficient =
            rounded(coefficients[k], std::max(1e-6 * column.range, tolerance) / kept[k].range);
        constant -= coefficient * kept[k].mean;
        const double size = std::fabs(coefficient);
        text += text.empty() ? (coefficient < 0.0 ? "-" : "") : (coefficient < 0.0 ? " - " : " + ");
        text += size == 1.0 ? "" : shownNumber(size, digits) + ' ';
        text += names({cases.inputs[kept[k].input].name});
        columns.push_back(cases.inputs[kept[k].input].name);
    }
    constant = rounded(constant, std::max(1e-6 * column.range, tolerance));
    if (std::fabs(constant) > std::max(1e-6 * column.range, tolerance)) {
        text += (constant < 0.0 ? " - " : " + ") + shownNumber(std::fabs(constant), digits);
    }
    return names({cases.inputs[column.input].name}) + " = " + text;
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

    // The inverse of the triangular matrix of the standardised columns; its rows give the inverse
    // of their correlations, whose diagonal is the variance inflation.
    std::vector<Numbers> inverse(columns, Numbers(columns, 0.0));
    for (std::size_t j = 0; j < columns; ++j) {
        for (std::size_t i = j + 1; i-- > 0;) {
            double sum = i == j ? 1.0 : 0.0;
            for (std::size_t k = i + 1; k <= j; ++k) {
                sum -= kept[k].components[i] / kept[k].length * inverse[k][j];
            }
            inverse[i][j] = sum / (kept[i].components[i] / kept[i].length);
        }
    }
    const double cases_ = static_cast<double>(cases.count());
    // By as many cases as there are, chance alone inflates the variance.
    const double byChance = (cases_ - 1.0) / (cases_ - static_cast<double>(columns));
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
                members.push_back(cases.inputs[kept[i].input].name);
                largest = std::max(largest, inflation[i]);
            }
        }
        if (members.size() < 2) {
            continue;
        }
        const std::string list = names(members);
        const bool areMany = members.size() > 3;
        const std::string effect =
            cases.isKriging
                ? "the effects of " + (areMany ? "these inputs" : list) + " cannot be told apart"
                : "coefficients of " + (areMany ? "these inputs" : list) +
                      " cannot be interpreted one by one";
        findings.push_back({"collinearInputs", Finding::Warning, members,
                            list + " vary together (variance inflation " +
                                FindingWords::figure(largest) + "): " + effect +
                                ", and predictions off their common " +
                                (members.size() > 2 ? "plane" : "line") +
                                " are extrapolation; vary them independently or leave " +
                                (members.size() > 2 ? "some" : "one") + " out of -x."});
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
    std::vector<Finding> findings = dependences.dependent;
    const std::vector<Finding> collinear = dependences.collinear();
    findings.insert(findings.end(), collinear.begin(), collinear.end());
    return findings;
}
