#pragma once

#include <mirel_fitting/polynomial/QuadraticBasis.h>

#include <string>
#include <vector>

/** One polynomial, with a coefficient per term of a basis, in V and in V - c. */
struct EquationForms
{
    std::vector<double> expanded; ///< of the terms of V
    double loss;                  ///< a bound on the rounding error of its value over the cases
    std::vector<double> centred;  ///< of the terms of V - c
    std::vector<double> centres;  ///< c, one per input
    std::vector<char> isWritten;  ///< per term; empty: all are
};

/**
 * A polynomial as one line, which spreadsheets and programming languages read with little change:
 * `5.5 - 1.25 * V1 + 2 * V1^2 + 0.5 * V1 * V2`. Numbers are those of NumberText::shortest(). In V,
 * or in (V - c) where the rounding of the expanded polynomial may exceed 1e-9 of the output's
 * range.
 * @param offset is added to the constant.
 */
std::string equationText(const QuadraticBasis& basis, const EquationForms& forms,
                         double outputRange, double offset);
