#pragma once

#include <mirel_fitting/polynomial/QuadraticBasis.h>

#include <cstddef>
#include <string>
#include <vector>

/**
 * Writes a polynomial as one line, which spreadsheets and programming languages read with little
 * change: `5.5 - 1.25 * V1 + 2 * V1^2 + 0.5 * V1 * V2` and a newline. Numbers are those of
 * NumberText::shortest().
 */
class EquationText
{
public:
    explicit EquationText(const QuadraticBasis& basis);

    /** Leaves a term out of the text. */
    void leaveOut(std::size_t term);

    /** One polynomial, with a coefficient per term of the basis, in V and in V - c. */
    struct Forms
    {
        std::vector<double> expanded; ///< of the terms of V
        double loss;                  ///< a bound on the rounding error of its value over the cases
        std::vector<double> centred;  ///< of the terms of V - c
        std::vector<double> centres;  ///< c, one per input
    };
    /**
     * In V, or in (V - c) where the rounding of the expanded polynomial may exceed 1e-9 of the
     * output's range.
     * @param offset is added to the constant.
     */
    std::string write(Forms forms, double outputRange, double offset);

    /** @param coefficients one per term of the basis. */
    std::string write(const std::vector<double>& coefficients) const;

private:
    void setCentres(const std::vector<double>& centres);
    std::string factors(std::size_t term) const;

    const QuadraticBasis& basis;
    std::vector<std::string> symbols; // per input
    std::vector<char> isLeftOut;      // per term
};
