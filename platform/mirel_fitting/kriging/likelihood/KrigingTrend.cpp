#include <mirel_fitting/kriging/likelihood/KrigingTrend.h>

#include <mirel_fitting/FitProgress.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <tuple>
#include <utility>

namespace {

double dot(const double* a, const double* b, std::size_t count)
{
    double sum = 0.0;
    for (std::size_t i = 0; i < count; ++i) {
        sum += a[i] * b[i];
    }
    return sum;
}

double norm(const std::vector<double>& column)
{
    return std::sqrt(dot(column.data(), column.data(), column.size()));
}

/** Takes out of `column` what lies in the span of the orthonormal `basis`. */
void orthogonalise(std::vector<double>& column, const std::vector<std::vector<double>>& basis)
{
    // Twice is enough: Giraud, Langou, Rozloznik, Comput. Math. Appl. 50 (2005).
    for (int round = 0; round < 2; ++round) {
        for (const std::vector<double>& direction : basis) {
            const double part = dot(direction.data(), column.data(), column.size());
            for (std::size_t i = 0; i < column.size(); ++i) {
                column[i] -= part * direction[i];
            }
        }
    }
}

} // namespace

KrigingTrend::KrigingTrend(std::size_t cases, std::size_t inputs,
                           const std::vector<double>& coordinates, int highestOrder,
                           std::size_t otherParameters)
    : inputCount(inputs)
{
    // What is left of a column whose terms differ only by rounding, relative to the column.
    constexpr double independent = 1e-9;

    usedOrder = inputs == 0 ? 0 : highestOrder;
    while (usedOrder > 0 &&
           QuadraticBasis::termCount(inputs, usedOrder) + otherParameters > cases) {
        --usedOrder;
    }

    const QuadraticBasis allTerms(inputs, usedOrder);
    for (const Term& term : allTerms.terms()) {
        FitProgress::advance();
        std::vector<double> column(cases, 1.0);
        for (const std::size_t factor : {term.first, term.second}) {
            for (std::size_t i = 0; factor != QuadraticBasis::noInput && i < cases; ++i) {
                column[i] *= centred(coordinates[factor * cases + i]);
            }
        }
        std::vector<double> rest = column;
        orthogonalise(rest, orthonormal);
        const double length = norm(rest);
        if (length <= independent * norm(column)) {
            dropped.push_back(term);
            continue;
        }
        for (double& value : rest) {
            value /= length;
        }
        orthonormal.push_back(std::move(rest));
        terms.push_back(term);
        values.insert(values.end(), column.begin(), column.end());
    }
}

KrigingTrend::KrigingTrend(std::size_t inputs, std::vector<QuadraticBasis::Term> terms)
    : inputCount(inputs), terms(std::move(terms))
{
    for (const Term& term : this->terms) {
        const int order = static_cast<int>(term.first != QuadraticBasis::noInput) +
                          static_cast<int>(term.second != QuadraticBasis::noInput);
        usedOrder = std::max(usedOrder, order);
    }
}

std::string KrigingTrend::name(const Term& term, const std::vector<std::size_t>& inputNumbers)
{
    if (term.first == QuadraticBasis::noInput) {
        return "1";
    }
    const std::string first = "V" + std::to_string(inputNumbers[term.first]);
    if (term.second == QuadraticBasis::noInput) {
        return first;
    }
    if (term.second == term.first) {
        return first + "^2";
    }
    return first + " V" + std::to_string(inputNumbers[term.second]);
}

int KrigingTrend::order() const
{
    return usedOrder;
}

std::size_t KrigingTrend::size() const
{
    return terms.size();
}

const std::vector<QuadraticBasis::Term>& KrigingTrend::keptTerms() const
{
    return terms;
}

const std::vector<double>& KrigingTrend::matrix() const
{
    return values;
}

KrigingTrend::LeastSquares KrigingTrend::leastSquares(const std::vector<double>& output) const
{
    // Less than this left of a case is rounding: without it the trend is not determined.
    constexpr double determined = 1e-10;

    const std::size_t cases = output.size();
    const std::size_t p = terms.size();
    LeastSquares result;
    result.coefficients.resize(p);
    for (std::size_t t = 0; t < p; ++t) {
        result.coefficients[t] = dot(orthonormal[t].data(), output.data(), cases);
    }
    // The matrix is the orthonormal basis times a triangle, whose elements are recomputed here.
    for (std::size_t t = p; t-- > 0;) {
        FitProgress::advance();
        const double* column = values.data() + t * cases;
        result.coefficients[t] /= dot(orthonormal[t].data(), column, cases);
        for (std::size_t row = 0; row < t; ++row) {
            result.coefficients[row] -=
                result.coefficients[t] * dot(orthonormal[row].data(), column, cases);
        }
    }

    std::vector<double> residuals = output;
    orthogonalise(residuals, orthonormal);
    result.variance = dot(residuals.data(), residuals.data(), cases) / static_cast<double>(cases);
    for (std::size_t i = 0; i < cases; ++i) {
        double left = 1.0;
        for (const std::vector<double>& direction : orthonormal) {
            left -= direction[i] * direction[i];
        }
        left = left > determined ? left : std::numeric_limits<double>::quiet_NaN();
        result.leaveOneOutResiduals.push_back(residuals[i] / left);
        result.leaveOneOutVariances.push_back(1.0 / left);
    }
    result.residuals = std::move(residuals);
    return result;
}

std::vector<std::string> KrigingTrend::names(const std::vector<std::size_t>& inputNumbers) const
{
    std::vector<std::string> result;
    for (const Term& term : terms) {
        result.push_back(name(term, inputNumbers));
    }
    return result;
}

std::vector<std::string>
KrigingTrend::droppedNames(const std::vector<std::size_t>& inputNumbers) const
{
    std::vector<std::string> result;
    for (const Term& term : dropped) {
        result.push_back(name(term, inputNumbers));
    }
    return result;
}

void KrigingTrend::add(const std::vector<const double*>& points, std::size_t count,
                       const std::vector<double>& coefficients, double* result) const
{
    for (std::size_t t = 0; t < terms.size(); ++t) {
        const Term term = terms[t];
        const double coefficient = coefficients[t];
        if (term.first == QuadraticBasis::noInput) {
            for (std::size_t i = 0; i < count; ++i) {
                result[i] += coefficient;
            }
        } else if (term.second == QuadraticBasis::noInput) {
            const double* x = points[term.first];
            for (std::size_t i = 0; i < count; ++i) {
                result[i] += coefficient * centred(x[i]);
            }
        } else {
            const double* x = points[term.first];
            const double* y = points[term.second];
            for (std::size_t i = 0; i < count; ++i) {
                result[i] += coefficient * centred(x[i]) * centred(y[i]);
            }
        }
    }
}

void KrigingTrend::evaluate(const std::vector<const double*>& points, std::size_t count,
                            double* result, std::size_t stride) const
{
    for (std::size_t t = 0; t < terms.size(); ++t) {
        double* column = result + t * stride;
        std::fill_n(column, count, 1.0);
        for (const std::size_t factor : {terms[t].first, terms[t].second}) {
            for (std::size_t i = 0; factor != QuadraticBasis::noInput && i < count; ++i) {
                column[i] *= centred(points[factor][i]);
            }
        }
    }
}

void KrigingTrend::addGradients(const std::vector<const double*>& points, std::size_t count,
                                const std::vector<double>& coefficients,
                                const std::vector<double*>& gradients) const
{
    constexpr double slope = 2.0; // of centred()
    for (std::size_t t = 0; t < terms.size(); ++t) {
        const Term term = terms[t];
        if (term.first == QuadraticBasis::noInput) {
            continue;
        }
        if (term.second == QuadraticBasis::noInput) {
            for (std::size_t i = 0; i < count; ++i) {
                gradients[term.first][i] += slope * coefficients[t];
            }
            continue;
        }
        for (std::size_t i = 0; i < count; ++i) {
            const double first = centred(points[term.first][i]);
            const double second = centred(points[term.second][i]);
            gradients[term.first][i] += slope * coefficients[t] * second;
            gradients[term.second][i] += slope * coefficients[t] * first;
        }
    }
}

std::vector<KrigingTrend::RawTerm>
KrigingTrend::inRawInputs(const std::vector<double>& coefficients,
                          const std::vector<double>& minimum, const std::vector<double>& range,
                          const std::vector<std::size_t>& inputNumbers) const
{
    // (x - centre) / half is the coordinate from -1 to 1; a term is the product of two of them.
    const auto precedes = [](const Term& a, const Term& b) {
        return std::tie(a.first, a.second) < std::tie(b.first, b.second);
    };
    const Term constant;
    std::map<Term, double, decltype(precedes)> sums(precedes);
    const auto slope = [&](std::size_t factor) { return 2.0 / range[factor]; };
    const auto offset = [&](std::size_t factor) {
        return -(2.0 * (minimum[factor] / range[factor]) + 1.0);
    };
    for (std::size_t t = 0; t < terms.size(); ++t) {
        const Term term = terms[t];
        const double c = coefficients[t];
        if (term.first == QuadraticBasis::noInput) {
            sums[term] += c;
        } else if (term.second == QuadraticBasis::noInput) {
            sums[constant] += c * offset(term.first);
            sums[term] += c * slope(term.first);
        } else {
            const std::size_t i = term.first;
            const std::size_t j = term.second;
            sums[constant] += c * offset(i) * offset(j);
            sums[{i, QuadraticBasis::noInput}] += c * slope(i) * offset(j);
            sums[{j, QuadraticBasis::noInput}] += c * offset(i) * slope(j);
            sums[term] += c * slope(i) * slope(j);
        }
    }

    std::vector<RawTerm> result;
    const QuadraticBasis basis(inputCount, usedOrder);
    for (const Term& term : basis.terms()) {
        const auto found = sums.find(term);
        if (found != sums.end()) {
            result.push_back({name(term, inputNumbers), found->second});
        }
    }
    return result;
}
