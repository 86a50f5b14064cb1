#pragma once

#include <mirel_fitting/polynomial/QuadraticBasis.h>

#include <cstddef>
#include <string>
#include <vector>

/**
 * Writes a polynomial as one line that a person reads and that a spreadsheet or a programming
 * language takes with little change: `5.5 - 1.25 * V1 + 2 * V1^2 + 0.5 * V1 * V2` and a newline.
 * Numbers are the shortest that read back as the same double, in the C locale.
 */
class EquationText
{
public:
    explicit EquationText(const QuadraticBasis& basis);

    /** Leaves a term out of the text. */
    void leaveOut(std::size_t term);

    /** Writes (V1 - c) in the place of V1, and so on; one centre per input. */
    void setCentres(const std::vector<double>& centres);

    /** @param coefficients one per term of the basis. */
    std::string write(const std::vector<double>& coefficients) const;

    /** The shortest text that reads back as the same double. */
    static std::string number(double value);

private:
    std::string factors(std::size_t term) const;

    const QuadraticBasis& basis;
    std::vector<std::string> symbols; // per input
    std::vector<char> isLeftOut;      // per term
};
