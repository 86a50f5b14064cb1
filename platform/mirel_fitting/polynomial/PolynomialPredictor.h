#pragma once

#include <mirel_fitting/polynomial/QuadraticBasis.h>

#include <cstddef>
#include <vector>

/** Evaluates fitted polynomials of the same terms: y(x) = constant + sum of b_t t(z). */
class PolynomialPredictor
{
public:
    /** z = (x - centre) / unit of one input; the unit is a power of two, so that only the
     *  difference is rounded. */
    struct Scale
    {
        double centre = 0.0;
        double unit = 1.0;
    };

    struct Output
    {
        double constant = 0.0;
        /** One per term of the basis; that of the constant term is ignored. */
        std::vector<double> coefficients;
    };

    /** @param scales one per input of the basis. */
    PolynomialPredictor(const QuadraticBasis& basis, std::vector<Scale> scales,
                        std::vector<Output> outputs);

    const QuadraticBasis& basis() const { return polynomial; }
    const std::vector<Scale>& inputScales() const { return scales; }
    const std::vector<Output>& outputs() const { return fits; }

    /**
     * The bits of a value do not depend on the other points; it is within 4 epsilon of the sum of
     * the magnitudes of the terms. A point with a coordinate that is not finite gets NaN, also
     * where that input has no influence.
     * @param inputs  one array of `count` values per input, borrowed for the call.
     * @param wanted  positions in outputs().
     * @param results one array of `count` values for each of them.
     */
    void predict(const std::vector<double*>& inputs, const std::vector<std::size_t>& wanted,
                 const std::vector<double*>& results, std::size_t count) const;

private:
    QuadraticBasis polynomial;
    std::vector<Scale> scales;
    std::vector<Output> fits;
};
