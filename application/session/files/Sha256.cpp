#include "session/files/Sha256.h"

#include <algorithm>
#include <string_view>

#if defined(__x86_64__)
#include <cpuid.h>
#include <immintrin.h>
#endif

namespace {
/** The first 32 bits of the fractional parts of the cube roots of the first 64 primes. */
alignas(16) constexpr std::array<std::uint32_t, 64> roundConstants = {
    0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4, 0xab1c5ed5,
    0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe, 0x9bdc06a7, 0xc19bf174,
    0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f, 0x4a7484aa, 0x5cb0a9dc, 0x76f988da,
    0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7, 0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967,
    0x27b70a85, 0x2e1b2138, 0x4d2c6dfc, 0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85,
    0xa2bfe8a1, 0xa81a664b, 0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070,
    0x19a4c116, 0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
    0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7, 0xc67178f2};

std::uint32_t rotated(std::uint32_t word, int places)
{
    return (word >> places) | (word << (32 - places));
}

std::uint32_t bigEndianWord(const unsigned char* bytes)
{
    return (std::uint32_t(bytes[0]) << 24) | (std::uint32_t(bytes[1]) << 16) |
           (std::uint32_t(bytes[2]) << 8) | std::uint32_t(bytes[3]);
}
} // namespace

Sha256::Sha256(Instructions instructions)
    : compress(instructions == Best && hasShaInstructions() ? compressBySha : compressBaseline),
      // The first 32 bits of the fractional parts of the square roots of the first 8 primes.
      state{0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
            0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19}
{}

void Sha256::add(const char* bytes, std::size_t count)
{
    const auto* next = reinterpret_cast<const unsigned char*>(bytes);
    const std::size_t held = length % blockSize;
    length += count;
    if (held > 0) {
        const std::size_t taken = std::min(count, blockSize - held);
        std::copy_n(next, taken, rest.begin() + held);
        if (held + taken < blockSize) {
            return;
        }
        compress(state, rest.data(), 1);
        next += taken;
        count -= taken;
    }
    compress(state, next, count / blockSize);
    next += count / blockSize * blockSize;
    std::copy_n(next, count % blockSize, rest.begin());
}

std::string Sha256::digest()
{
    const std::uint64_t bits = 8 * length;
    const std::size_t held = length % blockSize;
    const std::size_t lengthAt = blockSize - sizeof bits;
    // A one bit, zeros up to the last eight bytes of a block, and there the length.
    std::array<char, 2 * blockSize> padding = {'\x80'};
    const std::size_t zerosEnd = (held < lengthAt ? lengthAt : blockSize + lengthAt) - held;
    for (std::size_t i = 0; i < sizeof bits; ++i) {
        padding[zerosEnd + i] = static_cast<char>(bits >> (56 - 8 * i));
    }
    add(padding.data(), zerosEnd + sizeof bits);

    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    for (const std::uint32_t word : state) {
        for (int shift = 28; shift >= 0; shift -= 4) {
            text += digits[(word >> shift) & 15];
        }
    }
    return text;
}

void Sha256::compressBaseline(State& state, const unsigned char* bytes, std::size_t blocks)
{
    for (; blocks > 0; --blocks, bytes += blockSize) {
        std::array<std::uint32_t, 64> words;
        for (std::size_t t = 0; t < 16; ++t) {
            words[t] = bigEndianWord(bytes + 4 * t);
        }
        for (std::size_t t = 16; t < 64; ++t) {
            const std::uint32_t near = words[t - 2];
            const std::uint32_t far = words[t - 15];
            words[t] = words[t - 16] + (rotated(far, 7) ^ rotated(far, 18) ^ (far >> 3)) +
                       words[t - 7] + (rotated(near, 17) ^ rotated(near, 19) ^ (near >> 10));
        }

        auto [a, b, c, d, e, f, g, h] = state;
        for (std::size_t t = 0; t < 64; ++t) {
            const std::uint32_t first = h + (rotated(e, 6) ^ rotated(e, 11) ^ rotated(e, 25)) +
                                        ((e & f) ^ (~e & g)) + roundConstants[t] + words[t];
            const std::uint32_t second =
                (rotated(a, 2) ^ rotated(a, 13) ^ rotated(a, 22)) + ((a & b) ^ (a & c) ^ (b & c));
            h = g;
            g = f;
            f = e;
            e = d + first;
            d = c;
            c = b;
            b = a;
            a = first + second;
        }
        const State added = {a, b, c, d, e, f, g, h};
        for (std::size_t i = 0; i < state.size(); ++i) {
            state[i] += added[i];
        }
    }
}

#if defined(__x86_64__)

bool Sha256::hasShaInstructions()
{
    constexpr unsigned int shaBit = 1U << 29; // of EBX, leaf 7
    unsigned int eax = 0;
    unsigned int ebx = 0;
    unsigned int ecx = 0;
    unsigned int edx = 0;
    const bool isKnown = __get_cpuid_count(7, 0, &eax, &ebx, &ecx, &edx) != 0;
    return isKnown && (ebx & shaBit) != 0 && __builtin_cpu_supports("sse4.1");
}

__attribute__((target("sha,sse4.1"))) void
Sha256::compressBySha(State& state, const unsigned char* bytes, std::size_t blocks)
{
    // The instructions want the state as two registers with a, b, e, f and c, d, g, h, the first
    // of them in the highest place.
    __m128i abef = _mm_set_epi32(static_cast<int>(state[0]), static_cast<int>(state[1]),
                                 static_cast<int>(state[4]), static_cast<int>(state[5]));
    __m128i cdgh = _mm_set_epi32(static_cast<int>(state[2]), static_cast<int>(state[3]),
                                 static_cast<int>(state[6]), static_cast<int>(state[7]));
    const __m128i bigEndian = _mm_set_epi8(12, 13, 14, 15, 8, 9, 10, 11, 4, 5, 6, 7, 0, 1, 2, 3);

    for (; blocks > 0; --blocks, bytes += blockSize) {
        const __m128i abefBefore = abef;
        const __m128i cdghBefore = cdgh;
        // The last sixteen words of the message, four to a register; four rounds each.
        __m128i words[4];
#pragma GCC unroll 16
        for (int i = 0; i < 16; ++i) {
            __m128i& now = words[i % 4];
            if (i < 4) {
                now = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes) + i);
                now = _mm_shuffle_epi8(now, bigEndian);
            } else {
                const __m128i next = words[(i + 1) % 4];
                const __m128i beforeLast = words[(i + 2) % 4];
                const __m128i last = words[(i + 3) % 4];
                const __m128i sevenBack = _mm_alignr_epi8(last, beforeLast, 4);
                now = _mm_sha256msg1_epu32(now, next);
                now = _mm_sha256msg2_epu32(_mm_add_epi32(now, sevenBack), last);
            }
            const __m128i constants =
                _mm_load_si128(reinterpret_cast<const __m128i*>(roundConstants.data()) + i);
            const __m128i sum = _mm_add_epi32(now, constants);
            cdgh = _mm_sha256rnds2_epu32(cdgh, abef, sum);
            abef = _mm_sha256rnds2_epu32(abef, cdgh, _mm_shuffle_epi32(sum, 0x0E));
        }
        abef = _mm_add_epi32(abef, abefBefore);
        cdgh = _mm_add_epi32(cdgh, cdghBefore);
    }

    alignas(16) std::array<std::uint32_t, 4> high;
    alignas(16) std::array<std::uint32_t, 4> low;
    _mm_store_si128(reinterpret_cast<__m128i*>(high.data()), abef);
    _mm_store_si128(reinterpret_cast<__m128i*>(low.data()), cdgh);
    state = {high[3], high[2], low[3], low[2], high[1], high[0], low[1], low[0]};
}

#else

bool Sha256::hasShaInstructions()
{
    return false;
}

void Sha256::compressBySha(State& state, const unsigned char* bytes, std::size_t blocks)
{
    compressBaseline(state, bytes, blocks);
}

#endif
