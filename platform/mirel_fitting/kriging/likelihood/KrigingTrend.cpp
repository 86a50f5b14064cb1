#include <mirel_fitting/kriging/likelihood/KrigingTrend.h>

#include <mirel_fitting/FitProgress.h>
#include <mirel_fitting/machine/SingleThreadedBlas.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <tuple>
#include <utility>

KrigingTrend::KrigingTrend(std::size_t cases, std::size_t inputs,
                           const std::vector<double>& coordinates, int highestOrder,
                           std::size_t otherParameters)
    : inputCount(inputs)
{
    usedOrder = inputs == 0 ? 0 : highestOrder;
    while (usedOrder > 0 &&
           QuadraticBasis::termCount(inputs, usedOrder) + otherParameters > cases) {
        --usedOrder;
    }

    const SingleThreadedBlas singleThreaded;
    const QuadraticBasis allTerms(inputs, usedOrder);
    orthonormal = OrthonormalColumns(cases, allTerms.size());
    for (const Term& term : allTerms.terms()) {
        FitProgress::advance();
        std::vector<double> column(cases, 1.0);
        for (const std::size_t factor : {term.first, term.second}) {
            for (std::size_t i = 0; factor != QuadraticBasis::noInput && i < cases; ++i) {
                column[i] *= centred(coordinates[factor * cases + i]);
            }
        }
        if (!orthonormal.append(column.data(), OrthonormalColumns::independent)) {
            dropped.push_back(term);
            continue;
        }
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
    // A smaller 1 - leverage is rounding: without the case the trend is not determined.
    constexpr double determined = 1e-10;

    const SingleThreadedBlas singleThreaded;
    FitProgress::advance();
    const std::size_t cases = output.size();
    LeastSquares result;
    result.residuals = output;
    result.coefficients = orthonormal.solve(result.residuals.data());
    double squares = 0.0;
    for (std::size_t i = 0; i < cases; ++i) {
        squares += result.residuals[i] * result.residuals[i];
        double oneMinusLeverage = 1.0;
        for (std::size_t t = 0; t < terms.size(); ++t) {
            const double element = orthonormal.values()[t * cases + i];
            oneMinusLeverage -= element * element;
        }
        if (oneMinusLeverage <= determined) {
            oneMinusLeverage = std::numeric_limits<double>::quiet_NaN();
        }
        result.leaveOneOutResiduals.push_back(result.residuals[i] / oneMinusLeverage);
        result.leaveOneOutVariances.push_back(1.0 / oneMinusLeverage);
    }
    result.variance =
        cases > terms.size() ? squares / static_cast<double>(cases - terms.size()) : 0.0;
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
