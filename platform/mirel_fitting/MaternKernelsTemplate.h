// No include guard: what MaternKernels promises, for the vectors of the file that includes it. That
// file defines, in its unnamed namespace, Vector (so many doubles), VectorBits (as many 64-bit
// integers), multiplyAdd(a, b, c) and larger(a, b). It includes nothing with inline functions of
// external linkage: a copy of such a function for a newer processor must not be the one that the
// linker keeps for all.
#include <mirel_fitting/MaternKernels.h>

#define SURROGATE_INLINE __attribute__((always_inline)) static inline

namespace {

constexpr std::size_t width = sizeof(Vector) / sizeof(double);

// The product of so many polynomials does not overflow before the exponential makes it small.
constexpr std::size_t inputsPerGroup = 32;

SURROGATE_INLINE Vector all(double value)
{
    return Vector{} + value;
}

SURROGATE_INLINE Vector load(const double* from)
{
    return *reinterpret_cast<const Vector*>(from);
}

SURROGATE_INLINE void store(const Vector& value, double* to)
{
    *reinterpret_cast<Vector*>(to) = value;
}

SURROGATE_INLINE Vector magnitude(Vector a)
{
    return reinterpret_cast<Vector>(reinterpret_cast<VectorBits>(a) & 0x7fffffffffffffffLL);
}

/** exp(x) for x <= 0, within 2 units in the last place; exp(-708) below, so that it never
 *  underflows. */
SURROGATE_INLINE Vector expOfNegative(Vector x)
{
    // exp(x) = 2^k exp(r), |r| <= ln 2 / 2; ln 2 in two parts so that k ln 2 is exact enough.
    constexpr double log2OfE = 1.44269504088896340736;
    constexpr double ln2High = 6.93147180369123816490e-01;
    constexpr double ln2Low = 1.90821492927058770002e-10;
    // Adding it rounds to an integer, which then stands in the low bits of the sum.
    constexpr double rounder = 6755399441055744.0;
    constexpr double smallest = -708.0;
    constexpr int mantissaBits = 52;

    x = larger(x, all(smallest));
    const Vector shifted = multiplyAdd(x, all(log2OfE), all(rounder));
    const Vector k = shifted - rounder;
    Vector r = multiplyAdd(k, all(-ln2High), x);
    r = multiplyAdd(k, all(-ln2Low), r);

    // exp(r) = 1 + r q(r); q interpolates at the Chebyshev points, exp(r) is good to 1e-17.
    Vector p = all(2.510520638458724e-08);
    p = multiplyAdd(p, r, all(2.762635725527078e-07));
    p = multiplyAdd(p, r, all(2.7557255425720897e-06));
    p = multiplyAdd(p, r, all(2.480150434696448e-05));
    p = multiplyAdd(p, r, all(0.00019841269874800512));
    p = multiplyAdd(p, r, all(0.0013888888932488625));
    p = multiplyAdd(p, r, all(0.008333333333326141));
    p = multiplyAdd(p, r, all(0.04166666666657314));
    p = multiplyAdd(p, r, all(0.1666666666666667));
    p = multiplyAdd(p, r, all(0.5000000000000006));
    p = multiplyAdd(p, r, all(1.0));
    p = multiplyAdd(p, r, all(1.0));
    return reinterpret_cast<Vector>(reinterpret_cast<VectorBits>(p) +
                                    (reinterpret_cast<VectorBits>(shifted) << mantissaBits));
}

template <bool isCapped>
SURROGATE_INLINE Vector distance(Vector difference)
{
    const Vector z = magnitude(difference);
    return isCapped ? -larger(-z, all(-MaternKernels::farthest)) : z;
}

/**
 * `count` vectors of points against one case: products of (3 + 3 z + z^2), one addition, one
 * multiplication and one fused operation per input, and exponents. The correlation is
 * product * exp(exponent) / 3^inputs.
 */
template <std::size_t count, bool isCapped>
SURROGATE_INLINE void factors(const double* points, std::size_t stride, const double* atCase,
                              std::size_t inputs, Vector* product, Vector* exponent)
{
    for (std::size_t u = 0; u < count; ++u) {
        product[u] = all(1.0);
        exponent[u] = Vector{};
    }
    for (std::size_t k = 0; k < inputs; ++k) {
        const Vector center = all(atCase[k]);
        for (std::size_t u = 0; u < count; ++u) {
            const Vector z = distance<isCapped>(load(points + k * stride + u * width) - center);
            exponent[u] -= z;
            product[u] *= multiplyAdd(z, z + 3.0, all(3.0));
        }
    }
}

/** Exactly 1 where all coordinates are equal. */
template <std::size_t count, bool isCapped>
SURROGATE_INLINE void correlations(const double* points, std::size_t stride, const double* atCase,
                                   std::size_t inputs, Vector* result)
{
    for (std::size_t u = 0; u < count; ++u) {
        result[u] = all(1.0);
    }
    for (std::size_t first = 0; first < inputs; first += inputsPerGroup) {
        const std::size_t last = first + inputsPerGroup < inputs ? first + inputsPerGroup : inputs;
        Vector product[count];
        Vector exponent[count];
        factors<count, isCapped>(points + first * stride, stride, atCase + first, last - first,
                                 product, exponent);
        double divisor = 1.0; // a power of 3 that has a double
        for (std::size_t k = first; k < last; ++k) {
            divisor *= 3.0;
        }
        for (std::size_t u = 0; u < count; ++u) {
            result[u] *= product[u] / divisor * expOfNegative(exponent[u]);
        }
    }
}

template <std::size_t count, bool isCapped>
SURROGATE_INLINE void addSums(const double* points, std::size_t stride,
                              const MaternKernels::Cases& cases, const double* weights,
                              double* sums)
{
    Vector total[count];
    for (std::size_t u = 0; u < count; ++u) {
        total[u] = Vector{};
    }
    if (cases.inputs <= inputsPerGroup) {
        for (std::size_t j = 0; j < cases.count; ++j) {
            Vector product[count];
            Vector exponent[count];
            factors<count, isCapped>(points, stride, cases.coordinates + j * cases.inputs,
                                     cases.inputs, product, exponent);
            const Vector weight = all(weights[j]);
            for (std::size_t u = 0; u < count; ++u) {
                total[u] = multiplyAdd(weight * product[u], expOfNegative(exponent[u]), total[u]);
            }
        }
        double divisor = 1.0;
        for (std::size_t k = 0; k < cases.inputs; ++k) {
            divisor *= 3.0;
        }
        for (std::size_t u = 0; u < count; ++u) {
            total[u] /= divisor;
        }
    } else {
        for (std::size_t j = 0; j < cases.count; ++j) {
            Vector value[count];
            correlations<count, isCapped>(points, stride, cases.coordinates + j * cases.inputs,
                                          cases.inputs, value);
            const Vector weight = all(weights[j]);
            for (std::size_t u = 0; u < count; ++u) {
                total[u] = multiplyAdd(weight, value[u], total[u]);
            }
        }
    }
    for (std::size_t u = 0; u < count; ++u) {
        store(load(sums + u * width) + total[u], sums + u * width);
    }
}

template <std::size_t count, bool isCapped>
SURROGATE_INLINE void correlateCases(const double* points, std::size_t stride,
                                     const MaternKernels::Cases& cases, double* result,
                                     std::size_t resultStride)
{
    for (std::size_t j = 0; j < cases.count; ++j) {
        Vector value[count];
        correlations<count, isCapped>(points, stride, cases.coordinates + j * cases.inputs,
                                      cases.inputs, value);
        for (std::size_t u = 0; u < count; ++u) {
            store(value[u], result + j * resultStride + u * width);
        }
    }
}

template <bool isCapped>
SURROGATE_INLINE void addGradients(const double* points, std::size_t stride,
                                   const MaternKernels::Cases& cases, const double* weights,
                                   double* gradients, std::size_t gradientStride)
{
    for (std::size_t j = 0; j < cases.count; ++j) {
        const double* atCase = cases.coordinates + j * cases.inputs;
        Vector value[1];
        correlations<1, isCapped>(points, stride, atCase, cases.inputs, value);
        const Vector factor = value[0] * -weights[j];
        for (std::size_t k = 0; k < cases.inputs; ++k) {
            // d ln c / dx = -(x - x') (1 + z) / (3 + 3 z + z^2)
            Vector difference = load(points + k * stride) - atCase[k];
            if (isCapped) {
                difference = larger(difference, all(-MaternKernels::farthest));
                difference = -larger(-difference, all(-MaternKernels::farthest));
            }
            const Vector z = magnitude(difference);
            const Vector slope = difference * (z + 1.0) / multiplyAdd(z, z + 3.0, all(3.0));
            double* gradient = gradients + k * gradientStride;
            store(multiplyAdd(factor, slope, load(gradient)), gradient);
        }
    }
}

// Four vectors at a time hide the latencies; the rest goes one by one, with the same bits.
constexpr std::size_t atATime = 4;

template <bool isCapped>
void addSumsOfBlock(const MaternKernels::Points& points, const MaternKernels::Cases& cases,
                    const double* weights, double* sums)
{
    std::size_t i = 0;
    for (; i + atATime * width <= points.count; i += atATime * width) {
        addSums<atATime, isCapped>(points.coordinates + i, points.stride, cases, weights, sums + i);
    }
    for (; i < points.count; i += width) {
        addSums<1, isCapped>(points.coordinates + i, points.stride, cases, weights, sums + i);
    }
}

template <bool isCapped>
void correlateBlock(const MaternKernels::Points& points, const MaternKernels::Cases& cases,
                    double* result, std::size_t stride)
{
    std::size_t i = 0;
    for (; i + atATime * width <= points.count; i += atATime * width) {
        correlateCases<atATime, isCapped>(points.coordinates + i, points.stride, cases, result + i,
                                          stride);
    }
    for (; i < points.count; i += width) {
        correlateCases<1, isCapped>(points.coordinates + i, points.stride, cases, result + i,
                                    stride);
    }
}

template <bool isCapped>
void addGradientsOfBlock(const MaternKernels::Points& points, const MaternKernels::Cases& cases,
                         const double* weights, double* gradients, std::size_t stride)
{
    for (std::size_t i = 0; i < points.count; i += width) {
        addGradients<isCapped>(points.coordinates + i, points.stride, cases, weights, gradients + i,
                               stride);
    }
}

void addWeightedSums(const MaternKernels::Points& points, const MaternKernels::Cases& cases,
                     const double* weights, double* sums)
{
    cases.isCapped ? addSumsOfBlock<true>(points, cases, weights, sums)
                   : addSumsOfBlock<false>(points, cases, weights, sums);
}

void correlate(const MaternKernels::Points& points, const MaternKernels::Cases& cases,
               double* result, std::size_t stride)
{
    cases.isCapped ? correlateBlock<true>(points, cases, result, stride)
                   : correlateBlock<false>(points, cases, result, stride);
}

void addWeightedGradients(const MaternKernels::Points& points, const MaternKernels::Cases& cases,
                          const double* weights, double* gradients, std::size_t stride)
{
    cases.isCapped ? addGradientsOfBlock<true>(points, cases, weights, gradients, stride)
                   : addGradientsOfBlock<false>(points, cases, weights, gradients, stride);
}

} // namespace

#undef SURROGATE_INLINE
