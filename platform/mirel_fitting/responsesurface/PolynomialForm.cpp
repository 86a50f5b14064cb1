#include <mirel_fitting/responsesurface/PolynomialForm.h>

#include <mirel_fitting/SurrogateModelInterface.h>

namespace {

using Error = SurrogateModelInterface::Error;

/** The triangular factor of so many terms takes 800 MB; three of them are held at a time. */
constexpr std::size_t maxTerms = 10000;

} // namespace

PolynomialForm PolynomialForm::of(PolynomialTerms terms)
{
    return {terms == PolynomialTerms::Linear ? 1 : 2, terms != PolynomialTerms::Interactions};
}

std::size_t PolynomialForm::termCount(std::size_t inputs) const
{
    return QuadraticBasis::termCount(inputs, order) - (order == 2 && !hasSquares ? inputs : 0);
}

std::string PolynomialForm::name() const
{
    return order == 0   ? "constant"
           : order == 1 ? "linear"
           : hasSquares ? "full quadratic"
                        : "linear with interactions";
}

PolynomialForm PolynomialForm::lowered(std::size_t inputs, std::size_t cases) const
{
    if (order < 0 || order > 2) {
        throw Error("The highest order of a response surface is 0, 1 or 2, not " +
                    std::to_string(order) + ".");
    }
    PolynomialForm form = *this;
    // One input has no interactions.
    const bool isLinear = order == 2 && !hasSquares && inputs < 2;
    if (isLinear || inputs == 0) {
        form.order = inputs == 0 ? 0 : 1;
    }
    while (form.order > 0 && form.termCount(inputs) > cases) {
        --form.order;
    }
    const std::size_t terms = form.termCount(inputs);
    if (terms > maxTerms) {
        throw Error("The " + form.name() + " polynomial of " + std::to_string(inputs) +
                    " inputs has " + std::to_string(terms) + " terms; at most " +
                    std::to_string(maxTerms) + " can be fitted.");
    }
    return form;
}

std::vector<char> PolynomialForm::wantedTerms(const QuadraticBasis& basis) const
{
    std::vector<char> isWanted;
    if (hasSquares || basis.order() < 2) {
        return isWanted;
    }
    for (const QuadraticBasis::Term& term : basis.terms()) {
        const bool isSquare = term.second != QuadraticBasis::noInput && term.first == term.second;
        isWanted.push_back(isSquare ? 0 : 1);
    }
    return isWanted;
}
