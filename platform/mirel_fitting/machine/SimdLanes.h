#pragma once

#include <cstddef>
#include <cstring>

/**
 * A vector of eight doubles, which the compiler maps to the registers of the instruction set that a
 * function is compiled for. Operations are IEEE arithmetic lane by lane, without fused
 * multiply-add, so that results have the same bits on every processor.
 */
using Lanes = double __attribute__((vector_size(64)));
using LaneBits = long long __attribute__((vector_size(64)));

constexpr std::size_t laneCount = 8;

/**
 * Compiles a function for several instruction sets; the loader takes the best that the processor
 * has. Not under the sanitizers, whose run time is not ready yet when the loader chooses. For
 * functions in unnamed namespaces only: GCC exports others from the library, hidden or not.
 */
#if defined(__GNUC__) && !defined(__clang__) && defined(__x86_64__) &&                             \
    !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
#define SURROGATE_SIMD __attribute__((target_clones("avx512f", "avx2", "default")))
#else
#define SURROGATE_SIMD
#endif

// By reference, not by value: how a vector is passed depends on the instruction set.
#define SURROGATE_LANE_OPERATION __attribute__((always_inline)) inline void

SURROGATE_LANE_OPERATION loadLanes(const double* from, Lanes& result)
{
    std::memcpy(&result, from, sizeof(Lanes));
}

SURROGATE_LANE_OPERATION storeLanes(const Lanes& value, double* to)
{
    std::memcpy(to, &value, sizeof(Lanes));
}

/** |a| */
SURROGATE_LANE_OPERATION magnitude(const Lanes& a, Lanes& result)
{
    constexpr long long allButTheSign = 0x7fffffffffffffff;

    LaneBits bits;
    std::memcpy(&bits, &a, sizeof(bits));
    bits &= allButTheSign;
    std::memcpy(&result, &bits, sizeof(result));
}

/**
 * result = exp(-a) for a >= 0, within 2 units in the last place; exp(-708) beyond 708, so that it
 * never underflows.
 */
SURROGATE_LANE_OPERATION expOfNegative(const Lanes& a, Lanes& result)
{
    // exp(x) = 2^k exp(r), |r| <= ln 2 / 2; ln 2 is split into two parts so that k ln2High is
    // exact.
    constexpr double log2OfE = 1.44269504088896340736;
    constexpr double ln2High = 6.93147180369123816490e-01;
    constexpr double ln2Low = 1.90821492927058770002e-10;
    // 1.5 * 2^52: adding it rounds to an integer, which is in the low bits of the sum.
    constexpr double rounder = 6755399441055744.0;
    constexpr double largest = 708.0;
    constexpr int mantissaBits = 52;

    const Lanes x = (a < largest) ? -a : (Lanes{} - largest);
    const Lanes shifted = x * log2OfE + rounder;
    const Lanes k = shifted - rounder;
    const Lanes r = (x - k * ln2High) - k * ln2Low;

    // exp(r) = 1 + r q(r). q interpolates at the Chebyshev points: exp(r) is good to 1e-17. Even
    // and odd powers are two independent sums, which halves the latency.
    const Lanes square = r * r;
    Lanes even = Lanes{} + 2.7626357255270770e-07;
    Lanes odd = Lanes{} + 2.5105206384587240e-08;
    even = even * square + 2.480150434696448e-05;
    odd = odd * square + 2.7557255425720897e-06;
    even = even * square + 0.0013888888932488625;
    odd = odd * square + 0.00019841269874800512;
    even = even * square + 0.04166666666657314;
    odd = odd * square + 0.008333333333326141;
    even = even * square + 0.5000000000000006;
    odd = odd * square + 0.1666666666666667;
    const Lanes p = 1.0 + (even * square + (odd * (square * r) + r));

    LaneBits exponent;
    LaneBits bits;
    std::memcpy(&exponent, &shifted, sizeof(exponent));
    std::memcpy(&bits, &p, sizeof(bits));
    bits += exponent << mantissaBits;
    std::memcpy(&result, &bits, sizeof(result));
}
