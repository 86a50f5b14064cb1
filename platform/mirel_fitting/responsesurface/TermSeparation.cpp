#include <mirel_fitting/responsesurface/TermSeparation.h>

#include <mirel_fitting/polynomial/PolynomialFit.h>
#include <mirel_fitting/responsesurface/PolynomialForm.h>

#include <cmath>

TermSeparation::TermSeparation(const ResponseSurfaceOptions& options,
                               const std::vector<const double*>& inputs, std::size_t cases)
{
    const PolynomialForm form = PolynomialForm::of(options, inputs.size());
    const QuadraticBasis basis(inputs.size(), form.order);
    std::vector<double*> columns; // a fit reads them only
    for (const double* column : inputs) {
        columns.push_back(const_cast<double*>(column));
    }
    const PolynomialFit fit(basis, columns, {}, cases, form.wantedTerms(basis));
    rank = fit.keptCount();
    for (const PolynomialFit::Dependence& one : fit.dependences()) {
        if (basis.terms()[one.term].order() < 2) {
            continue;
        }
        dependences.push_back({basis.terms()[one.term].inputs(), {}});
        for (std::size_t k = 1; k < rank; ++k) {
            const std::size_t term = fit.keptTerm(k);
            if (std::fabs(one.combination[term]) > PolynomialFit::Dependence::rounding) {
                dependences.back().others.push_back(basis.terms()[term].inputs());
            }
        }
    }
}
