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

    /** Writes (V1 - c) instead of V1, and so on; one centre per input. */
    void setCentres(const std::vector<double>& centres);

    /** @param coefficients one per term of the basis. */
    std::string write(const std::vector<double>& coefficients) const;

private:
    std::string factors(std::size_t term) const;

    const QuadraticBasis& basis;
    std::vector<std::string> symbols; // per input
    std::vector<char> isLeftOut;      // per term
};
