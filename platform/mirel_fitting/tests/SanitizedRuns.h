#pragma once

#include <cstddef>

/**
 * How often a test repeats its fits or commands. In the sanitizer build each takes five to twenty
 * times as long, and the repetitions, which vary figures, run through the same code.
 */
constexpr std::size_t runs(std::size_t inOtherBuilds, [[maybe_unused]] std::size_t sanitized)
{
#if defined(__has_feature)
#if __has_feature(address_sanitizer)
    return sanitized;
#endif
#endif
    return inOtherBuilds;
}
