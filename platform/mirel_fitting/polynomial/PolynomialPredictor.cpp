#include <mirel_fitting/polynomial/PolynomialPredictor.h>

#include <mirel_fitting/machine/SimdLanes.h>

#include <algorithm>
#include <utility>

namespace {

/** Points of a block: with eight inputs it takes 16 KB and stays in a first-level cache. */
constexpr std::size_t pointsPerBlock = 256;

/** @param notFinite becomes NaN where the column is not finite. */
SURROGATE_SIMD void scale(const double* column, const PolynomialPredictor::Scale& scale,
                          std::size_t points, double* z, double* notFinite)
{
    const double centre = scale.centre;
    const double perUnit = 1.0 / scale.unit;
    // 0 * x is 0 for a finite x, else NaN: also for an input without influence.
    for (std::size_t k = 0; k < points; ++k) {
        z[k] = (column[k] - centre) * perUnit;
        notFinite[k] += 0.0 * column[k];
    }
}

/** values = sum over i of z_i (b_i + sum over j >= i of b_ij z_j), without the constant. */
SURROGATE_SIMD void evaluate(const QuadraticBasis& basis, const std::vector<double>& coefficients,
                             const double* scaledInputs, double* values)
{
    double slope[pointsPerBlock];
    std::size_t product = 1 + basis.inputs();
    std::fill_n(values, pointsPerBlock, 0.0);
    if (basis.order() == 0) {
        return;
    }
    for (std::size_t i = 0; i < basis.inputs(); ++i) {
        std::fill_n(slope, pointsPerBlock, coefficients[1 + i]);
        for (std::size_t j = i; basis.order() == 2 && j < basis.inputs(); ++j) {
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

} // namespace

PolynomialPredictor::PolynomialPredictor(const QuadraticBasis& basis, std::vector<Scale> scales,
                                         std::vector<Output> outputs)
    : polynomial(basis), scales(std::move(scales)), fits(std::move(outputs))
{}

void PolynomialPredictor::predict(const std::vector<double*>& inputs,
                                  const std::vector<std::size_t>& wanted,
                                  const std::vector<double*>& results, std::size_t count) const
{
    // The last block is evaluated as a whole; the surplus values are not copied.
    std::vector<double> scaledInputs(inputs.size() * pointsPerBlock, 0.0);
    double notFinite[pointsPerBlock];
    double values[pointsPerBlock];
    for (std::size_t start = 0; start < count; start += pointsPerBlock) {
        const std::size_t points = std::min(pointsPerBlock, count - start);
        std::fill_n(notFinite, pointsPerBlock, 0.0);
        for (std::size_t input = 0; input < inputs.size(); ++input) {
            scale(inputs[input] + start, scales[input], points,
                  scaledInputs.data() + input * pointsPerBlock, notFinite);
        }
        for (std::size_t w = 0; w < wanted.size(); ++w) {
            const Output& output = fits[wanted[w]];
            evaluate(polynomial, output.coefficients, scaledInputs.data(), values);
            for (std::size_t k = 0; k < points; ++k) {
                results[w][start + k] = output.constant + values[k] + notFinite[k];
            }
        }
    }
}
