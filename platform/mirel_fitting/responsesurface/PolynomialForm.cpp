#include <mirel_fitting/responsesurface/PolynomialForm.h>

#include <mirel_fitting/SurrogateModelInterface.h>

#include <algorithm>

namespace {

using Error = SurrogateModelInterface::Error;

} // namespace

PolynomialForm PolynomialForm::of(const ResponseSurfaceOptions& options, std::size_t inputs,
                                  bool mayLoseSquares)
{
    PolynomialForm form;
    form.mayLoseSquares = mayLoseSquares && options.terms == PolynomialTerms::Quadratic;
    if (options.terms == PolynomialTerms::Chosen) {
        form.formula = TermFormula(options.formula, inputs);
        const std::vector<TermFormula::Term>& terms = form.formula->terms();
        form.order = terms.empty() ? 0 : static_cast<int>(terms.back().size());
    } else {
        form.order = options.terms == PolynomialTerms::Linear ? 1 : 2;
        form.hasSquares = options.terms != PolynomialTerms::Interactions;
    }
    return form;
}

std::size_t PolynomialForm::termCount(std::size_t inputs) const
{
    if (formula) {
        const std::vector<TermFormula::Term>& terms = formula->terms();
        return 1 + static_cast<std::size_t>(
                       std::count_if(terms.begin(), terms.end(), [this](const auto& term) {
                           return term.size() <= static_cast<std::size_t>(order);
                       }));
    }
    return QuadraticBasis::termCount(inputs, order) - (order == 2 && !hasSquares ? inputs : 0);
}

std::string PolynomialForm::name() const
{
    return order == 0   ? "constant"
           : order == 1 ? "linear"
           : formula    ? "chosen terms"
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
    if (mayLoseSquares && form.order == 2 && inputs > 1 && form.termCount(inputs) > cases) {
        form.hasSquares = false;
        if (form.termCount(inputs) < cases) {
            return form;
        }
        form.hasSquares = true;
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

bool PolynomialForm::isInFormula(const QuadraticBasis::Term& term) const
{
    const TermFormula::Term factors = term.inputs();
    const std::vector<TermFormula::Term>& terms = formula->terms();
    return factors.empty() || std::find(terms.begin(), terms.end(), factors) != terms.end();
}

std::vector<char> PolynomialForm::wantedTerms(const QuadraticBasis& basis) const
{
    std::vector<char> isWanted;
    if (formula) {
        for (const QuadraticBasis::Term& term : basis.terms()) {
            isWanted.push_back(isInFormula(term) ? 1 : 0);
        }
        return isWanted;
    }
    if (hasSquares || basis.order() < 2) {
        return isWanted;
    }
    for (const QuadraticBasis::Term& term : basis.terms()) {
        isWanted.push_back(term.isSquare() ? 0 : 1);
    }
    return isWanted;
}
