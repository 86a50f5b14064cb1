#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

/**
 * The SHA-256 digest of bytes that come in pieces, by the processor's own instructions where it has
 * them: a case file is looked at each time its project is opened or saved, and hashing it should
 * not take longer than reading it.
 * NIST: Secure Hash Standard, FIPS PUB 180-4, 2015.
 */
class Sha256
{
public:
    enum Instructions
    {
        Best,    ///< what this processor offers
        Baseline ///< what every processor offers
    };

    explicit Sha256(Instructions instructions = Best);

    void add(const char* bytes, std::size_t count);

    /** Ends the message; nothing can be added then. @return 64 digits in lower case. */
    std::string digest();

private:
    static constexpr std::size_t blockSize = 64;

    using State = std::array<std::uint32_t, 8>;
    using Compress = void (*)(State& state, const unsigned char* bytes, std::size_t blocks);

    static void compressBaseline(State& state, const unsigned char* bytes, std::size_t blocks);
    static void compressBySha(State& state, const unsigned char* bytes, std::size_t blocks);
    static bool hasShaInstructions();

    Compress compress;
    State state;
    std::array<unsigned char, blockSize> rest; ///< what does not fill a block yet
    std::uint64_t length = 0;                  ///< in bytes
};
