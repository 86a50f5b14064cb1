#pragma once

#include <string>

/** One term of a fitted polynomial. */
struct PolynomialCoefficient
{
    std::string term;           ///< "1", "V1", "V1^2", "V1 V2", ...
    double estimate = 0.0;      ///< in units of the output and of the inputs; 0 if not kept
    double standardError = 0.0; ///< in the same units; NaN if not kept, or no case is left for it
    bool isKept = true;         ///< false: the cases cannot separate the term from the others
};
