#include <mirel_fitting/kriging/report/RawTrend.h>

#include <mirel_fitting/polynomial/EquationText.h>
#include <mirel_fitting/polynomial/QuadraticBasis.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

const char* const constantTerm = "1";

} // namespace

RawTrend::RawTrend(const KrigingCases& cases, const OutputScale& scale, const KrigingTrend& trend,
                   const std::vector<double>& coefficients)
    : cases(cases), scale(scale), trend(trend), coefficients(coefficients)
{}

std::vector<std::size_t> RawTrend::inputNumbers(const KrigingCases& cases)
{
    std::vector<std::size_t> numbers = cases.activeInputs();
    for (std::size_t& number : numbers) {
        ++number;
    }
    return numbers;
}

std::vector<KrigingTrend::RawTerm> RawTrend::terms() const
{
    std::vector<KrigingTrend::RawTerm> result =
        trend.inRawInputs(coefficients, cases.minimum(), cases.range(), inputNumbers(cases));
    for (KrigingTrend::RawTerm& term : result) {
        term.coefficient =
            scale.scale * term.coefficient + (term.name == constantTerm ? scale.offset : 0.0);
    }
    return result;
}

std::string RawTrend::text(double outputRange) const
{
    constexpr double tolerableLoss = 1e-9; // of the output's range

    std::map<std::string, double> centred = centredTerms();
    const bool isExpanded = roundingOfExpanded(centred) <= tolerableLoss * outputRange;
    centred[constantTerm] += scale.offset;

    const QuadraticBasis basis(cases.inputCount(), trend.order());
    EquationText text(basis);
    if (!isExpanded) {
        text.setCentres(centres());
    }
    std::map<std::string, double> expanded;
    for (const KrigingTrend::RawTerm& term : terms()) {
        expanded[term.name] = term.coefficient;
    }
    std::vector<double> inOrder;
    for (std::size_t t = 0; t < basis.size(); ++t) {
        const std::string name = basis.name(t);
        if (expanded.count(name) == 0) {
            text.leaveOut(t);
        }
        const std::map<std::string, double>& written = isExpanded ? expanded : centred;
        const auto found = written.find(name);
        inOrder.push_back(found == written.end() ? 0.0 : found->second);
    }
    std::string line = text.write(inOrder);
    line.pop_back(); // the end of the line
    return line;
}

double RawTrend::centre(std::size_t k) const
{
    return cases.minimum()[k] + 0.5 * cases.range()[k];
}

/** One per input, 0 for one that does not vary. */
std::vector<double> RawTrend::centres() const
{
    std::vector<double> result(cases.inputCount(), 0.0);
    for (std::size_t k = 0; k < cases.activeInputs().size(); ++k) {
        result[cases.activeInputs()[k]] = centre(k);
    }
    return result;
}

/** Coefficients of the polynomial in V1 - c, ..., by the names of the terms; without the offset. */
std::map<std::string, double> RawTrend::centredTerms() const
{
    std::vector<double> minimumAboutCentre;
    for (std::size_t k = 0; k < cases.activeInputs().size(); ++k) {
        // The centre is a rounded number, so that this is not exactly half the range.
        minimumAboutCentre.push_back(cases.minimum()[k] - centre(k));
    }
    std::map<std::string, double> result;
    for (const KrigingTrend::RawTerm& term :
         trend.inRawInputs(coefficients, minimumAboutCentre, cases.range(), inputNumbers(cases))) {
        result[term.name] = scale.scale * term.coefficient;
    }
    return result;
}

/** A bound on the rounding error of the expanded polynomial over the cases: a product of V - c
 *  expands to terms as large as the product of |V| + |c|. */
double RawTrend::roundingOfExpanded(const std::map<std::string, double>& centred) const
{
    std::vector<double> reach(cases.inputCount(), 0.0); // the sum of the largest |V| and |c|
    for (std::size_t k = 0; k < cases.activeInputs().size(); ++k) {
        const double minimum = cases.minimum()[k];
        const double maximum = minimum + cases.range()[k];
        reach[cases.activeInputs()[k]] =
            std::max(std::fabs(minimum), std::fabs(maximum)) + std::fabs(centre(k));
    }
    const QuadraticBasis basis(cases.inputCount(), trend.order());
    double error = 0.0;
    for (std::size_t t = 0; t < basis.size(); ++t) {
        const std::string name = basis.name(t);
        const auto found = centred.find(name);
        if (found == centred.end()) {
            continue;
        }
        double size = std::fabs(found->second);
        for (const std::size_t input : {basis.terms()[t].first, basis.terms()[t].second}) {
            size *= input == QuadraticBasis::noInput ? 1.0 : reach[input];
        }
        error += std::numeric_limits<double>::epsilon() * size;
    }
    return error;
}
