#pragma once

#include <cstdio>
#include <cstdlib>

/** Ends a fuzzer, which then keeps its input, where a statement about the product does not hold. */
#define FUZZ_CHECK(statement)                                                                      \
    do {                                                                                           \
        if (!(statement)) {                                                                        \
            std::fprintf(stderr, "%s:%d: not true: %s\n", __FILE__, __LINE__, #statement);         \
            std::abort();                                                                          \
        }                                                                                          \
    } while (false)
