#include <mirel_fitting/PolynomialUnits.h>

#include <cmath>
#include <limits>

PolynomialUnits::PolynomialUnits(const QuadraticBasis& basis,
                                 const std::vector<ColumnScale>& scales)
    : basis(basis), scales(scales)
{}

std::vector<double> PolynomialUnits::centred(const std::vector<double>& scaled) const
{
    std::vector<double> result = scaled;
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
