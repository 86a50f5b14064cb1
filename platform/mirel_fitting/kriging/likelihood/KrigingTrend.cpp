#include <mirel_fitting/kriging/likelihood/KrigingTrend.h>

#include <mirel_fitting/FitProgress.h>
#include <mirel_fitting/machine/SingleThreadedBlas.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

KrigingTrend::KrigingTrend(std::size_t cases, std::size_t inputs,
                           const std::vector<double>& coordinates, int highestOrder,
                           std::size_t otherParameters)
{
    usedOrder = inputs == 0 ? 0 : highestOrder;
    while (usedOrder > 0 &&
           QuadraticBasis::termCount(inputs, usedOrder) + otherParameters > cases) {
        --usedOrder;
    }

    const SingleThreadedBlas singleThreaded;
    const QuadraticBasis allTerms(inputs, usedOrder);
    std::vector<const double*> points;
    for (std::size_t k = 0; k < inputs; ++k) {
        points.push_back(coordinates.data() + k * cases);
    }
    orthonormal = OrthonormalColumns(cases, allTerms.size());
    for (const Term& term : allTerms.terms()) {
        FitProgress::advance();
        std::vector<double> column(cases);
        evaluate(term, points, cases, column.data());
        if (!orthonormal.append(column.data(), OrthonormalColumns::independent)) {
            dropped.push_back(term);
            continue;
        }
        terms.push_back(term);
        values.insert(values.end(), column.begin(), column.end());
    }
}

std::shared_ptr<const KrigingTrend> KrigingTrend::of(KrigingData& data, int highestOrder,
                                                     std::size_t otherParameters)
{
    auto trend = std::make_shared<KrigingTrend>(data.cases, data.inputs, data.coordinates,
                                                highestOrder, otherParameters);
    data.terms = trend->size();
    data.trend = trend->matrix();
    return trend;
}

KrigingTrend::KrigingTrend(std::vector<QuadraticBasis::Term> terms) : terms(std::move(terms))
{
    for (const Term& term : this->terms) {
        usedOrder = std::max(usedOrder, term.order());
    }
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

void KrigingTrend::add(const std::vector<const double*>& points, std::size_t count,
                       const std::vector<double>& coefficients, double* result) const
{
    for (std::size_t t = 0; t < terms.size(); ++t) {
        const double* x = terms[t].order() > 0 ? points[terms[t].first] : nullptr;
        const double* y = terms[t].order() > 1 ? points[terms[t].second] : nullptr;
        for (std::size_t i = 0; i < count; ++i) {
            result[i] += coefficients[t] * (x ? centred(x[i]) : 1.0) * (y ? centred(y[i]) : 1.0);
        }
    }
}

/** One term at points. */
void KrigingTrend::evaluate(const Term& term, const std::vector<const double*>& points,
                            std::size_t count, double* column)
{
    std::fill_n(column, count, 1.0);
    for (const std::size_t factor : term.inputs()) {
        for (std::size_t i = 0; i < count; ++i) {
            column[i] *= centred(points[factor][i]);
        }
    }
}

void KrigingTrend::evaluate(const std::vector<const double*>& points, std::size_t count,
                            double* result, std::size_t stride) const
{
    for (std::size_t t = 0; t < terms.size(); ++t) {
        evaluate(terms[t], points, count, result + t * stride);
    }
}

void KrigingTrend::addGradients(const std::vector<const double*>& points, std::size_t count,
                                const std::vector<double>& coefficients,
                                const std::vector<double*>& gradients) const
{
    constexpr double slope = 2.0; // of centred()
    for (std::size_t t = 0; t < terms.size(); ++t) {
        const Term term = terms[t];
        if (term.order() == 0) {
            continue;
        }
        if (term.order() == 1) {
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
