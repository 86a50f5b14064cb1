#include <mirel_fitting/polynomial/QuadraticBasis.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <stdexcept>

QuadraticBasis::QuadraticBasis(std::size_t inputs, int order) : inputCount(inputs), highest(order)
{
    if (order < 0 || order > 2) {
        throw std::invalid_argument("A polynomial has order 0, 1 or 2, not " +
                                    std::to_string(order) + ".");
    }
    termList.reserve(termCount(inputs, order));
    termList.push_back({});
    for (std::size_t i = 0; order >= 1 && i < inputs; ++i) {
        termList.push_back({i, noInput});
    }
    // j starts at i: V_i V_j and V_j V_i are one column, and keeping both would leave the design
    // matrix rank deficient.
    for (std::size_t i = 0; order == 2 && i < inputs; ++i) {
        for (std::size_t j = i; j < inputs; ++j) {
            termList.push_back({i, j});
        }
    }
}

std::size_t QuadraticBasis::termCount(std::size_t inputs, int order)
{
    // Beyond 2^31 inputs the product below would wrap.
    constexpr std::size_t maxInputs = std::size_t{1} << 31;
    if (order <= 0) {
        return 1;
    }
    if (inputs >= maxInputs) {
        return std::numeric_limits<std::size_t>::max();
    }
    return order == 1 ? inputs + 1 : (inputs + 1) * (inputs + 2) / 2;
}

std::vector<double> QuadraticBasis::substituted(const std::vector<double>& coefficients,
                                                const std::vector<double>& offsets,
                                                const std::vector<double>& slopes) const
{
    std::vector<double> result(size(), 0.0);
    for (std::size_t t = 0; t < size(); ++t) {
        const double c = coefficients[t];
        const auto [i, j] = termList[t];
        if (i == noInput) {
            result[0] += c;
        } else if (j == noInput) {
            result[0] += c * offsets[i];
            result[t] += c * slopes[i];
        } else {
            result[0] += c * offsets[i] * offsets[j];
            result[1 + i] += c * slopes[i] * offsets[j];
            result[1 + j] += c * offsets[i] * slopes[j];
            result[t] += c * slopes[i] * slopes[j];
        }
    }
    return result;
}

double QuadraticBasis::sumOfMagnitudes(const std::vector<double>& coefficients,
                                       const std::vector<double>& magnitudes) const
{
    double sum = 0.0;
    for (std::size_t t = 0; t < size(); ++t) {
        double size = std::fabs(coefficients[t]);
        for (const std::size_t input : termList[t].inputs()) {
            size *= magnitudes[input];
        }
        sum += size;
    }
    return sum;
}

std::string QuadraticBasis::name(const Term& term, const InputNames& names)
{
    switch (term.order()) {
    case 0:
        return "1";
    case 1:
        return names.input(term.first);
    default:
        return names.product(term.first, term.second);
    }
}

std::string QuadraticBasis::name(std::size_t term, const InputNames& names) const
{
    return name(termList.at(term), names);
}

void QuadraticBasis::evaluateTerm(std::size_t term, const double* const* columns, std::size_t count,
                                  double* values) const
{
    const Term& inputsOfTerm = termList[term];
    if (inputsOfTerm.order() == 0) {
        std::fill_n(values, count, 1.0);
        return;
    }
    const double* first = columns[inputsOfTerm.first];
    if (inputsOfTerm.order() == 1) {
        std::copy_n(first, count, values);
        return;
    }
    std::transform(first, first + count, columns[inputsOfTerm.second], values, std::multiplies<>());
}

void QuadraticBasis::evaluate(const double* const* columns, std::size_t count, double* values,
                              std::size_t stride) const
{
    for (std::size_t term = 0; term < size(); ++term) {
        evaluateTerm(term, columns, count, values + term * stride);
    }
}
