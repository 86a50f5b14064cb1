// No include guard: what MaternKernels promises, for the vectors of the file that includes it. That
// file defines, in its unnamed namespace, Vector (so many doubles), VectorBits (as many 64-bit
// integers), VectorWords (the same in 16-bit integers), multiplyAdd(a, b, c), larger(a, b), isFused
// (whether multiplyAdd is one operation) and casesAtOnce (see addSums). It includes nothing with
// inline functions of external linkage: a copy of such a function for a newer processor must not be
// the one that the linker keeps for all.
#include <mirel_fitting/kriging/correlation/MaternKernels.h>
#include <mirel_fitting/kriging/correlation/PowersOfTwo.h>

#define SURROGATE_INLINE __attribute__((always_inline)) static inline

namespace {

using Reach = MaternKernels::Reach;

constexpr std::size_t width = sizeof(Vector) / sizeof(double);

// The product of so many polynomials does not overflow before the exponential makes it small.
constexpr std::size_t inputsPerGroup = 32;

SURROGATE_INLINE Vector all(double value)
{
    return value - Vector{}; // x - 0 is x for every x, which the compiler knows; x + 0 is not
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

// exp(x) = 2^k exp(r), k an integer in what it is counted by, r at most half of that.
constexpr double log2OfE = 1.44269504088896340736;
constexpr double ln2 = 0.693147180559945309417;
// Adding it rounds to an integer, which then stands in the low bits of the sum.
constexpr double rounder = 6755399441055744.0;
constexpr int mantissaBits = 52;

/** exp(x) for -708 <= x <= 0 by a polynomial, which costs little where operations are fused. */
SURROGATE_INLINE Vector expByPolynomial(Vector x)
{
    const Vector shifted = multiplyAdd(x, all(log2OfE), all(rounder));
    // The constant is off by 2e-17, and so is the exponent by k times that: less than the rounding
    // of the sum of distances that it is.
    const Vector r = multiplyAdd(shifted - rounder, all(-ln2), x);

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

/**
 * The same where each operation counts: with k in steps of 1/1024, whose fractions are looked up,
 * r is so small that a cubic is good to 1e-16. Tang: Table-driven implementation of the exponential
 * function in IEEE floating-point arithmetic, ACM Trans. Math. Softw. 15 (1989).
 */
SURROGATE_INLINE Vector expByTable(Vector x)
{
    constexpr auto steps = static_cast<double>(PowersOfTwo::count);
    constexpr long long fractionMask = PowersOfTwo::count - 1;
    constexpr std::size_t wordsPerLane = 4; // the first holds the low bits

    const Vector shifted = multiplyAdd(x, all(log2OfE * steps), all(rounder));
    const Vector r = multiplyAdd(shifted - rounder, all(-ln2 / steps), x);
    const auto words = reinterpret_cast<VectorWords>(shifted);
    Vector power;
    for (std::size_t lane = 0; lane < width; ++lane) {
        power[lane] = PowersOfTwo::table.values[words[lane * wordsPerLane] & fractionMask];
    }

    // exp(r) = 1 + r + r^2 (a + r / 6), where a - 1/2 halves the largest error, that of r^4 / 24.
    Vector p = multiplyAdd(r, all(1.0 / 6.0), all(0.500000003953977));
    p = multiplyAdd(p, r * r, r);
    p = multiplyAdd(p, power, power);
    const VectorBits whole = reinterpret_cast<VectorBits>(shifted) & ~fractionMask;
    constexpr int toExponent = mantissaBits - static_cast<int>(PowersOfTwo::bits);
    return reinterpret_cast<Vector>(reinterpret_cast<VectorBits>(p) + (whole << toExponent));
}

/** exp(x) for x <= 0, within 2 units in the last place and 0.15 more per unit of x, 0.65 where
 * multiplyAdd rounds twice; exp(-708) below, so that it never underflows. */
template <Reach reach>
SURROGATE_INLINE Vector expOfNegative(Vector x)
{
    constexpr double smallest = -708.0;

    if (reach != Reach::Near) {
        x = larger(x, all(smallest));
    }
    return isFused ? expByPolynomial(x) : expByTable(x);
}

template <Reach reach>
SURROGATE_INLINE Vector distance(Vector difference)
{
    const Vector z = magnitude(difference);
    return reach == Reach::Unlimited ? -larger(-z, all(-MaternKernels::farthest)) : z;
}

/**
 * `count` vectors of points against one case: products of (3 + 3 z + z^2), one addition, one
 * multiplication and one fused operation per input, and exponents. The correlation, times `start`,
 * is product * exp(exponent) / 3^inputs.
 */
template <std::size_t count, Reach reach>
SURROGATE_INLINE void factors(const double* points, std::size_t stride, const double* atCase,
                              std::size_t inputs, double start, Vector* product, Vector* exponent)
{
    for (std::size_t u = 0; u < count; ++u) {
        product[u] = all(start);
        exponent[u] = Vector{};
    }
    for (std::size_t k = 0; k < inputs; ++k) {
        const Vector center = all(atCase[k]);
        for (std::size_t u = 0; u < count; ++u) {
            const Vector z = distance<reach>(load(points + k * stride + u * width) - center);
            exponent[u] -= z;
            product[u] *= multiplyAdd(z, z + 3.0, all(3.0));
        }
    }
}

/** Exactly 1 where all coordinates are equal: the polynomials are 1 + z + z^2 / 3 here. */
template <std::size_t count, Reach reach>
SURROGATE_INLINE void correlations(const double* points, std::size_t stride, const double* atCase,
                                   std::size_t inputs, Vector* result)
{
    for (std::size_t u = 0; u < count; ++u) {
        result[u] = all(1.0);
    }
    for (std::size_t first = 0; first < inputs; first += inputsPerGroup) {
        const std::size_t last = first + inputsPerGroup < inputs ? first + inputsPerGroup : inputs;
        Vector exponent[count];
        for (std::size_t u = 0; u < count; ++u) {
            exponent[u] = Vector{};
        }
        for (std::size_t k = first; k < last; ++k) {
            const Vector center = all(atCase[k]);
            for (std::size_t u = 0; u < count; ++u) {
                const Vector z = distance<reach>(load(points + k * stride + u * width) - center);
                exponent[u] -= z;
                result[u] *= multiplyAdd(z, multiplyAdd(z, all(1.0 / 3.0), all(1.0)), all(1.0));
            }
        }
        for (std::size_t u = 0; u < count; ++u) {
            result[u] *= expOfNegative<reach>(exponent[u]);
        }
    }
}

/** The exponentials of several cases follow each other, where the processor works on many at a
 * time: each alone it would have to wait for. */
template <std::size_t count, Reach reach>
SURROGATE_INLINE void addSums(const double* points, std::size_t stride,
                              const MaternKernels::Cases& cases, const double* weights,
                              double* sums)
{
    Vector total[count];
    for (std::size_t u = 0; u < count; ++u) {
        total[u] = Vector{};
    }
    if (cases.inputs <= inputsPerGroup) {
        for (std::size_t first = 0; first < cases.count; first += casesAtOnce) {
            const std::size_t left = cases.count - first;
            const std::size_t size = left < casesAtOnce ? left : casesAtOnce;
            Vector product[casesAtOnce * count];
            Vector exponent[casesAtOnce * count];
            for (std::size_t j = 0; j < size; ++j) {
                factors<count, reach>(
                    points, stride, cases.coordinates + (first + j) * cases.inputs, cases.inputs,
                    weights[first + j], product + j * count, exponent + j * count);
            }
            for (std::size_t j = 0; j < size; ++j) {
                for (std::size_t u = 0; u < count; ++u) {
                    const std::size_t one = j * count + u;
                    total[u] =
                        multiplyAdd(product[one], expOfNegative<reach>(exponent[one]), total[u]);
                }
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
            correlations<count, reach>(points, stride, cases.coordinates + j * cases.inputs,
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

template <std::size_t count, Reach reach>
SURROGATE_INLINE void correlateCases(const double* points, std::size_t stride,
                                     const MaternKernels::Cases& cases, double* result,
                                     std::size_t resultStride)
{
    for (std::size_t j = 0; j < cases.count; ++j) {
        Vector value[count];
        correlations<count, reach>(points, stride, cases.coordinates + j * cases.inputs,
                                   cases.inputs, value);
        for (std::size_t u = 0; u < count; ++u) {
            store(value[u], result + j * resultStride + u * width);
        }
    }
}

template <Reach reach>
SURROGATE_INLINE void addGradients(const double* points, std::size_t stride,
                                   const MaternKernels::Cases& cases, const double* weights,
                                   double* gradients, std::size_t gradientStride)
{
    for (std::size_t j = 0; j < cases.count; ++j) {
        const double* atCase = cases.coordinates + j * cases.inputs;
        Vector value[1];
        correlations<1, reach>(points, stride, atCase, cases.inputs, value);
        const Vector factor = value[0] * -weights[j];
        for (std::size_t k = 0; k < cases.inputs; ++k) {
            // d ln c / dx = -(x - x') (1 + z) / (3 + 3 z + z^2)
            Vector difference = load(points + k * stride) - atCase[k];
            if (reach == Reach::Unlimited) {
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

template <Reach reach>
void addSumsOfBlock(const MaternKernels::Points& points, const MaternKernels::Cases& cases,
                    const double* weights, double* sums)
{
    std::size_t i = 0;
    for (; i + atATime * width <= points.count; i += atATime * width) {
        addSums<atATime, reach>(points.coordinates + i, points.stride, cases, weights, sums + i);
    }
    for (; i < points.count; i += width) {
        addSums<1, reach>(points.coordinates + i, points.stride, cases, weights, sums + i);
    }
}

template <Reach reach>
void correlateBlock(const MaternKernels::Points& points, const MaternKernels::Cases& cases,
                    double* result, std::size_t stride)
{
    std::size_t i = 0;
    for (; i + atATime * width <= points.count; i += atATime * width) {
        correlateCases<atATime, reach>(points.coordinates + i, points.stride, cases, result + i,
                                       stride);
    }
    for (; i < points.count; i += width) {
        correlateCases<1, reach>(points.coordinates + i, points.stride, cases, result + i, stride);
    }
}

template <Reach reach>
void addGradientsOfBlock(const MaternKernels::Points& points, const MaternKernels::Cases& cases,
                         const double* weights, double* gradients, std::size_t stride)
{
    for (std::size_t i = 0; i < points.count; i += width) {
        addGradients<reach>(points.coordinates + i, points.stride, cases, weights, gradients + i,
                            stride);
    }
}

void addWeightedSums(const MaternKernels::Points& points, const MaternKernels::Cases& cases,
                     const double* weights, double* sums)
{
    switch (cases.reach) {
    case Reach::Near:
        return addSumsOfBlock<Reach::Near>(points, cases, weights, sums);
    case Reach::Far:
        return addSumsOfBlock<Reach::Far>(points, cases, weights, sums);
    case Reach::Unlimited:
        return addSumsOfBlock<Reach::Unlimited>(points, cases, weights, sums);
    }
}

void correlate(const MaternKernels::Points& points, const MaternKernels::Cases& cases,
               double* result, std::size_t stride)
{
    switch (cases.reach) {
    case Reach::Near:
        return correlateBlock<Reach::Near>(points, cases, result, stride);
    case Reach::Far:
        return correlateBlock<Reach::Far>(points, cases, result, stride);
    case Reach::Unlimited:
        return correlateBlock<Reach::Unlimited>(points, cases, result, stride);
    }
}

void addWeightedGradients(const MaternKernels::Points& points, const MaternKernels::Cases& cases,
                          const double* weights, double* gradients, std::size_t stride)
{
    switch (cases.reach) {
    case Reach::Near:
        return addGradientsOfBlock<Reach::Near>(points, cases, weights, gradients, stride);
    case Reach::Far:
        return addGradientsOfBlock<Reach::Far>(points, cases, weights, gradients, stride);
    case Reach::Unlimited:
        return addGradientsOfBlock<Reach::Unlimited>(points, cases, weights, gradients, stride);
    }
}

/** `columns` columns of addProducts(). */
template <std::size_t columns>
SURROGATE_INLINE void
addProductsTo(const MaternKernels::Product* products, std::size_t productCount, const double* start,
              std::size_t startStride, double* result, std::size_t stride, std::size_t firstColumn)
{
    constexpr std::size_t vectors = MaternKernels::lanes / width;
    Vector total[columns][vectors];
    for (std::size_t i = 0; i < columns; ++i) {
        for (std::size_t v = 0; v < vectors; ++v) {
            total[i][v] = load(start + (firstColumn + i) * startStride + v * width);
        }
    }
    for (std::size_t p = 0; p < productCount; ++p) {
        const MaternKernels::Product& product = products[p];
        const double* right = product.right + firstColumn * product.rightStride;
        for (std::size_t k = 0; k < product.count; ++k) {
            const double* left = product.left + k * product.leftStride;
            for (std::size_t i = 0; i < columns; ++i) {
                const Vector factor = all(right[i * product.rightStride + k]);
                for (std::size_t v = 0; v < vectors; ++v) {
                    total[i][v] = multiplyAdd(load(left + v * width), factor, total[i][v]);
                }
            }
        }
    }
    for (std::size_t i = 0; i < columns; ++i) {
        for (std::size_t v = 0; v < vectors; ++v) {
            store(total[i][v], result + (firstColumn + i) * stride + v * width);
        }
    }
}

void addProducts(const MaternKernels::Product* products, std::size_t productCount,
                 const double* start, std::size_t startStride, std::size_t columns, double* result,
                 std::size_t stride)
{
    // Eight registers of sums hide the latency of an operation.
    constexpr std::size_t columnsAtATime = width;
    std::size_t i = 0;
    for (; i + columnsAtATime <= columns; i += columnsAtATime) {
        addProductsTo<columnsAtATime>(products, productCount, start, startStride, result, stride,
                                      i);
    }
    for (; i < columns; ++i) {
        addProductsTo<1>(products, productCount, start, startStride, result, stride, i);
    }
}

} // namespace

#undef SURROGATE_INLINE
