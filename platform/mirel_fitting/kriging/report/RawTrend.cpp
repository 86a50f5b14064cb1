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
        QuadraticBasis::Term term = trend.keptTerms()[t];
        isWritten[0] = 1;
        for (std::size_t* const input : {&term.first, &term.second}) {
            if (*input != QuadraticBasis::noInput) {
                *input = cases.activeInputs()[*input];
                isWritten[1 + *input] = 1;
            }
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
            Term& term = result.emplace_back();
            term.name = basis.name(t);
            term.coefficient = expanded[t] + (t == 0 ? offset : 0.0);
            for (const std::size_t input : {basis.terms()[t].first, basis.terms()[t].second}) {
                if (input != QuadraticBasis::noInput) {
                    term.factors.push_back(input);
                }
            }
        }
    }
    return result;
}

std::string RawTrend::text(double outputRange) const
{
    constexpr double tolerableLoss = 1e-9; // of the output's range

    EquationText text(basis);
    for (std::size_t t = 0; t < basis.size(); ++t) {
        if (!isWritten[t]) {
            text.leaveOut(t);
        }
    }
    std::vector<double> coefficients = expanded;
    const double loss =
        std::numeric_limits<double>::epsilon() * basis.sumOfMagnitudes(centred, magnitudes);
    if (!(loss <= tolerableLoss * outputRange)) {
        text.setCentres(centres);
        coefficients = centred;
    }
    coefficients[0] += offset;
    std::string line = text.write(coefficients);
    line.pop_back(); // the end of the line
    return line;
}
