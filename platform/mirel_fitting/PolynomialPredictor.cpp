#include <mirel_fitting/PolynomialPredictor.h>

#include <algorithm>
#include <utility>

namespace {

/** Points that are evaluated together: 16 KB for eight inputs stay in a first-level cache. */
constexpr std::size_t pointsPerBlock = 256;

} // namespace

PolynomialPredictor::PolynomialPredictor(const QuadraticBasis& basis, std::vector<Scale> scales,
                                         std::vector<Output> outputs)
    : polynomial(basis), scales(std::move(scales)), fits(std::move(outputs))
{}

/** values = sum over i of z_i (b_i + sum over j >= i of b_ij z_j), without the constant. */
void PolynomialPredictor::evaluate(const std::vector<double>& coefficients,
                                   const double* scaledInputs, double* values) const
{
    double slope[pointsPerBlock];
    std::size_t product = 1 + polynomial.inputs();
    std::fill_n(values, pointsPerBlock, 0.0);
    if (polynomial.order() == 0) {
        return;
    }
    for (std::size_t i = 0; i < polynomial.inputs(); ++i) {
        std::fill_n(slope, pointsPerBlock, coefficients[1 + i]);
        for (std::size_t j = i; polynomial.order() == 2 && j < polynomial.inputs(); ++j) {
            const double coefficient = coefficients[product++];
            const double* z = scaledInputs + j * pointsPerBlock;
            for (std::size_t k = 0; k < pointsPerBlock; ++k) {
                slope[k] += coefficient * z[k];
            }
        }
        const double* z = scaledInputs + i * pointsPerBlock;
        for (std::size_t k = 0; k < pointsPerBlock; ++k) {
            values[k] += slope[k] * z[k];
        }
    }
}

void PolynomialPredictor::predict(const std::vector<double*>& inputs,
                                  const std::vector<std::size_t>& wanted,
                                  const std::vector<double*>& results, std::size_t count) const
{
    // A last block that is not full is evaluated like a full one, at points that nobody sees.
    std::vector<double> scaledInputs(inputs.size() * pointsPerBlock, 0.0);
    double notFinite[pointsPerBlock];
    double values[pointsPerBlock];
    for (std::size_t start = 0; start < count; start += pointsPerBlock) {
        const std::size_t points = std::min(pointsPerBlock, count - start);
        std::fill_n(notFinite, pointsPerBlock, 0.0);
        for (std::size_t input = 0; input < inputs.size(); ++input) {
            const double* column = inputs[input] + start;
            const double centre = scales[input].centre;
            const double perUnit = 1.0 / scales[input].unit;
            double* z = scaledInputs.data() + input * pointsPerBlock;
            // 0 times a finite number is 0, and NaN otherwise. An input without influence counts.
            for (std::size_t k = 0; k < points; ++k) {
                z[k] = (column[k] - centre) * perUnit;
                notFinite[k] += 0.0 * column[k];
            }
        }
        for (std::size_t w = 0; w < wanted.size(); ++w) {
            const Output& output = fits[wanted[w]];
            evaluate(output.coefficients, scaledInputs.data(), values);
            for (std::size_t k = 0; k < points; ++k) {
                results[w][start + k] = output.constant + values[k] + notFinite[k];
            }
        }
    }
}
