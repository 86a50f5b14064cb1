#include <mirel_fitting/polynomial/EquationText.h>

#include <mirel_fitting/numerics/NumberText.h>

#include <cmath>

namespace {

/** "V1" for the centre 0, else "(V1 - c)". */
std::string symbol(std::size_t input, double centre)
{
    const std::string name = "V" + std::to_string(input + 1);
    return centre == 0.0 ? name
                         : "(" + name + (centre < 0.0 ? " + " : " - ") +
                               NumberText::shortest(std::fabs(centre)) + ")";
}

std::string factorsOf(const QuadraticBasis::Term& term, const std::vector<double>& centres)
{
    if (term.isSquare()) {
        return " * " + symbol(term.first, centres[term.first]) + "^2";
    }
    std::string text;
    for (const std::size_t input : term.inputs()) {
        text += " * " + symbol(input, centres[input]);
    }
    return text;
}

} // namespace

std::string equationText(const QuadraticBasis& basis, const EquationForms& forms,
                         double outputRange, double offset)
{
    constexpr double tolerableLoss = 1e-9; // of the output's range

    const bool isExpanded = forms.loss <= tolerableLoss * outputRange;
    const std::vector<double>& coefficients = isExpanded ? forms.expanded : forms.centred;
    const std::vector<double> centres =
        isExpanded ? std::vector<double>(basis.inputs(), 0.0) : forms.centres;
    std::string text;
    for (std::size_t term = 0; term < basis.size(); ++term) {
        if (!forms.isWritten.empty() && !forms.isWritten[term]) {
            continue;
        }
        // Adding 0 turns -0 into 0.
        const double coefficient = coefficients[term] + (term == 0 ? offset : 0.0) + 0.0;
        const bool isNegative = std::signbit(coefficient);
        if (text.empty()) {
            text += isNegative ? "-" : "";
        } else {
            text += isNegative ? " - " : " + ";
        }
        text +=
            NumberText::shortest(std::fabs(coefficient)) + factorsOf(basis.terms()[term], centres);
    }
    return text;
}
