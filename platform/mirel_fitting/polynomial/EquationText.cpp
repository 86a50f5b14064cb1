#include <mirel_fitting/polynomial/EquationText.h>

#include <mirel_fitting/numerics/NumberText.h>

#include <cmath>
#include <utility>

EquationText::EquationText(const QuadraticBasis& basis) : basis(basis), isLeftOut(basis.size(), 0)
{
    for (std::size_t input = 0; input < basis.inputs(); ++input) {
        symbols.push_back("V" + std::to_string(input + 1));
    }
}

void EquationText::leaveOut(std::size_t term)
{
    isLeftOut[term] = 1;
}

std::string EquationText::write(Forms forms, double outputRange, double offset)
{
    constexpr double tolerableLoss = 1e-9; // of the output's range

    if (!(forms.loss <= tolerableLoss * outputRange)) {
        setCentres(forms.centres);
        forms.expanded = std::move(forms.centred);
    }
    forms.expanded[0] += offset;
    return write(forms.expanded);
}

/** Symbols become (V1 - c) instead of V1, and so on. */
void EquationText::setCentres(const std::vector<double>& centres)
{
    for (std::size_t input = 0; input < symbols.size(); ++input) {
        const double centre = centres[input];
        if (centre != 0.0) {
            symbols[input] = "(V" + std::to_string(input + 1) + (centre < 0.0 ? " + " : " - ") +
                             NumberText::shortest(std::fabs(centre)) + ")";
        }
    }
}

std::string EquationText::write(const std::vector<double>& coefficients) const
{
    std::string text;
    for (std::size_t term = 0; term < basis.size(); ++term) {
        if (isLeftOut[term]) {
            continue;
        }
        // Adding 0 turns -0 into 0.
        const double coefficient = coefficients[term] + 0.0;
        const bool isNegative = std::signbit(coefficient);
        if (text.empty()) {
            text += isNegative ? "-" : "";
        } else {
            text += isNegative ? " - " : " + ";
        }
        text += NumberText::shortest(std::fabs(coefficient)) + factors(term);
    }
    return text + "\n";
}

std::string EquationText::factors(std::size_t term) const
{
    const QuadraticBasis::Term& inputs = basis.terms()[term];
    if (inputs.isSquare()) {
        return " * " + symbols[inputs.first] + "^2";
    }
    std::string text;
    for (const std::size_t input : inputs.inputs()) {
        text += " * " + symbols[input];
    }
    return text;
}
