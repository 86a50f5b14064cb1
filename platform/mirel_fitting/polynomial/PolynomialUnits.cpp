#include <mirel_fitting/polynomial/PolynomialUnits.h>

#include <cmath>
#include <limits>

PolynomialUnits::PolynomialUnits(const QuadraticBasis& basis,
                                 const std::vector<ColumnScale>& scales)
    : basis(basis), scales(scales)
{}

std::vector<double> PolynomialUnits::centred(const std::vector<double>& scaled) const
{
    std::vector<double> result = scaled;
    result.resize(basis.size());
    for (std::size_t term = 0; term < result.size(); ++term) {
        for (const std::size_t input : {basis.terms()[term].first, basis.terms()[term].second}) {
            if (input != QuadraticBasis::noInput) {
                result[term] /= scales[input].unit();
            }
        }
    }
    return result;
}

std::vector<double> PolynomialUnits::expanded(const std::vector<double>& scaled) const
{
    std::vector<double> result = centred(scaled);
    for (std::size_t term = 1; term < result.size(); ++term) {
        const QuadraticBasis::Term& inputs = basis.terms()[term];
        const double coefficient = result[term];
        const double first = scales[inputs.first].centre();
        if (inputs.second == QuadraticBasis::noInput) {
            // Products come later: this is still the coefficient of V - c alone.
            result[0] -= coefficient * first;
            continue;
        }
        const double second = scales[inputs.second].centre();
        result[0] += coefficient * first * second;
        result[1 + inputs.first] -= coefficient * second;
        result[1 + inputs.second] -= coefficient * first;
    }
    return result;
}

std::vector<double> PolynomialUnits::expandedMagnitudes(const std::vector<double>& scaled) const
{
    std::vector<double> result = centred(scaled);
    for (double& coefficient : result) {
        coefficient = std::fabs(coefficient);
    }
    for (std::size_t term = 1 + basis.inputs(); term < result.size(); ++term) {
        const QuadraticBasis::Term& inputs = basis.terms()[term];
        result[1 + inputs.first] += result[term] * std::fabs(scales[inputs.second].centre());
        result[1 + inputs.second] += result[term] * std::fabs(scales[inputs.first].centre());
    }
    for (std::size_t input = 0; basis.order() > 0 && input < basis.inputs(); ++input) {
        result[0] += result[1 + input] * std::fabs(scales[input].centre());
    }
    return result;
}

std::vector<double> PolynomialUnits::coded(const std::vector<double>& scaled) const
{
    std::vector<double> result = scaled;
    result.resize(basis.size());
    for (std::size_t term = 0; term < result.size(); ++term) {
        for (const std::size_t input : {basis.terms()[term].first, basis.terms()[term].second}) {
            if (input != QuadraticBasis::noInput) {
                result[term] *= scales[input].halfRange() / scales[input].unit();
            }
        }
    }
    return result;
}

std::vector<double> PolynomialUnits::term(std::size_t index) const
{
    std::vector<double> result(basis.size(), 0.0);
    const QuadraticBasis::Term& inputs = basis.terms()[index];
    if (inputs.first == QuadraticBasis::noInput) {
        result[0] = 1.0;
        return result;
    }
    const ColumnScale& first = scales[inputs.first];
    if (inputs.second == QuadraticBasis::noInput) {
        result[0] = first.centre();
        result[index] = first.unit();
        return result;
    }
    const ColumnScale& second = scales[inputs.second];
    result[0] = first.centre() * second.centre();
    result[1 + inputs.first] += first.unit() * second.centre();
    result[1 + inputs.second] += second.unit() * first.centre();
    result[index] = first.unit() * second.unit();
    return result;
}

double PolynomialUnits::expansionLoss(const std::vector<double>& scaled) const
{
    const std::vector<double> coefficients = centred(scaled);
    const auto reach = [&](std::size_t input) {
        return input == QuadraticBasis::noInput
                   ? 1.0
                   : scales[input].largest() + std::fabs(scales[input].centre());
    };
    double size = 0.0;
    for (std::size_t term = 0; term < coefficients.size(); ++term) {
        const QuadraticBasis::Term& inputs = basis.terms()[term];
        size += std::fabs(coefficients[term]) * reach(inputs.first) * reach(inputs.second);
    }
    return std::numeric_limits<double>::epsilon() * size;
}
