#include <mirel_fitting/responsesurface/TermSelection.h>

#include <mirel_fitting/responsesurface/ResponseSurfaceAnalysis.h>

#include <algorithm>
#include <cmath>
#include <limits>

TermSelection::TermSelection(const PolynomialFit& fit, std::size_t output)
    : fit(fit), wanted(fit.columns(), 0)
{
    // Relative to the squares about the mean: a residual below is rounding and keeps no term.
    constexpr double rounding = 1e-28;

    const std::size_t kept = fit.keptCount();
    const PolynomialFit::Output& result = fit.outputs()[output];
    for (std::size_t k = 0; k < kept; ++k) {
        wanted[fit.keptTerm(k)] = 1;
        coefficients.push_back(result.coefficients[fit.keptTerm(k)] / result.scale.unit());
    }
    inverse.assign(kept * kept, 0.0);
    for (std::size_t k = 0; k < kept; ++k) {
        const std::vector<double> direction = fit.coefficientDirection(k);
        for (std::size_t j = 0; j <= k; ++j) {
            for (std::size_t i = 0; i <= k; ++i) {
                inverse[j * kept + i] += direction[fit.keptTerm(i)] * direction[fit.keptTerm(j)];
            }
        }
    }

    const auto criterion = [&](double squares) {
        const double floor = rounding * result.totalSquares;
        return ResponseSurfaceAnalysis::aicc(std::max(squares, floor), fit.cases(), kept - dropped);
    };
    double squares = result.residualSquares;
    double current = criterion(squares);
    for (;;) {
        std::size_t best = kept;
        double least = std::numeric_limits<double>::infinity();
        for (std::size_t k = 1; k < kept; ++k) {
            const std::size_t term = fit.keptTerm(k);
            if (!wanted[term] || fit.isOfBlocks(term) || isNeededByOthers(term)) {
                continue;
            }
            const double more = coefficients[k] * coefficients[k] / inverse[k * kept + k];
            if (more < least) {
                least = more;
                best = k;
            }
        }
        if (best == kept) {
            break;
        }
        ++dropped;
        const double without = criterion(squares + least);
        // While AICc is infinite, terms are dropped whether or not it falls.
        if (!(without < current) && std::isfinite(current)) {
            --dropped;
            break;
        }
        squares += least;
        current = without;
        drop(best);
    }
    if (std::isinf(current) && current > 0.0) {
        keepAll();
    }
}

void TermSelection::keepAll()
{
    for (std::size_t k = 0; k < coefficients.size(); ++k) {
        wanted[fit.keptTerm(k)] = 1;
    }
    dropped = 0;
}

bool TermSelection::isNeededByOthers(std::size_t term) const
{
    const QuadraticBasis& basis = fit.basis();
    if (basis.terms()[term].order() == 2) {
        return false;
    }
    const std::size_t input = basis.terms()[term].first;
    for (std::size_t other = 1 + basis.inputs(); other < basis.size(); ++other) {
        if (wanted[other] && basis.terms()[other].has(input)) {
            return true;
        }
    }
    return false;
}

/** Updates the other coefficients and (X'X)^-1 by a sweep, without a new factorisation. */
void TermSelection::drop(std::size_t position)
{
    const std::size_t kept = coefficients.size();
    const std::vector<double> column(&inverse[position * kept], &inverse[position * kept] + kept);
    const double diagonal = column[position];
    const double coefficient = coefficients[position];
    for (std::size_t j = 0; j < kept; ++j) {
        coefficients[j] -= column[j] * coefficient / diagonal;
        for (std::size_t i = 0; i < kept; ++i) {
            inverse[j * kept + i] -= column[i] * (column[j] / diagonal);
        }
    }
    wanted[fit.keptTerm(position)] = 0;
}
