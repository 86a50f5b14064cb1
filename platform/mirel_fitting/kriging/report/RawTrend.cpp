#include <mirel_fitting/kriging/report/RawTrend.h>

#include <mirel_fitting/polynomial/EquationText.h>

#include <algorithm>
#include <cmath>
#include <limits>

RawTrend::RawTrend(const KrigingCases& cases, const OutputScale& scale, const KrigingTrend& trend,
                   const std::vector<double>& coefficients)
    : basis(cases.inputCount(), trend.order()), isWritten(basis.size(), 0),
      centres(cases.inputCount(), 0.0), magnitudes(centres), offset(scale.offset)
{
    // The trend's inputs are 2 (V - minimum) / range - 1.
    std::vector<double> slopes(cases.inputCount(), 0.0);
    std::vector<double> atZero(cases.inputCount(), 0.0);
    std::vector<double> atCentre(cases.inputCount(), 0.0);
    for (std::size_t k = 0; k < cases.activeInputs().size(); ++k) {
        const std::size_t input = cases.activeInputs()[k];
        const double minimum = cases.minimum()[k];
        const double range = cases.range()[k];
        const double centre = minimum + 0.5 * range;
        centres[input] = centre;
        magnitudes[input] =
            std::max(std::fabs(minimum), std::fabs(minimum + range)) + std::fabs(centre);
        slopes[input] = 2.0 / range;
        atZero[input] = -(2.0 * (minimum / range) + 1.0);
        // The centre is rounded: this is not exactly 0.
        atCentre[input] = -(2.0 * ((minimum - centre) / range) + 1.0);
    }

    std::vector<double> scaled(basis.size(), 0.0);
    for (std::size_t t = 0; t < trend.size(); ++t) {
        const QuadraticBasis::Term term = trend.keptTerms()[t].renumbered(cases.activeInputs());
        isWritten[0] = 1;
        for (const std::size_t input : term.inputs()) {
            isWritten[1 + input] = 1;
        }
        isWritten[basis.position(term)] = 1;
        scaled[basis.position(term)] += scale.scale * coefficients[t];
    }
    centred = basis.substituted(scaled, atCentre, slopes);
    expanded = basis.substituted(scaled, atZero, slopes);
}

std::vector<RawTrend::Term> RawTrend::terms() const
{
    std::vector<Term> result;
    for (std::size_t t = 0; t < basis.size(); ++t) {
        if (isWritten[t]) {
            result.push_back(
                {basis.name(t), expanded[t] + (t == 0 ? offset : 0.0), basis.terms()[t].inputs()});
        }
    }
    return result;
}

std::string RawTrend::text(double outputRange) const
{
    const double loss =
        std::numeric_limits<double>::epsilon() * basis.sumOfMagnitudes(centred, magnitudes);
    return equationText(basis, {expanded, loss, centred, centres, isWritten}, outputRange, offset);
}
