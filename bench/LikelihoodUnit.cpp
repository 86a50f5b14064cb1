#include "LikelihoodUnit.h"

#include <lapacke.h>

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>

#if defined(__GLIBC__) && defined(__x86_64__) && !defined(__clang__)
// Declares the vector variants of the system's mathematical library, which the compiler otherwise
// only uses where it may break the rules of arithmetic everywhere.
extern "C" double exp(double) noexcept __attribute__((simd("notinbranch"), const));
#endif

namespace {

const double rootOfFive = std::sqrt(5.0);

int order(std::size_t cases)
{
    return static_cast<int>(cases);
}

} // namespace

LikelihoodUnit::LikelihoodUnit(std::vector<std::vector<double>> inputs, std::vector<double> output)
    : inputs(std::move(inputs)), output(std::move(output)), cases(this->output.size()),
      correlations(cases * cases), work(cases * cases), weights(cases),
      derivatives(this->inputs.size())
{}

double LikelihoodUnit::evaluate(const std::vector<double>& lengths, double nugget)
{
    fillCorrelations(lengths, nugget);
    factorise();
    const double likelihood = profile();
    invert();
    traceGradient(lengths);
    return likelihood;
}

void LikelihoodUnit::fillCorrelations(const std::vector<double>& lengths, double nugget)
{
    std::vector<double> sums(cases);
    for (std::size_t j = 0; j < cases; ++j) {
        const std::size_t count = cases - j;
        double* column = &correlations[j * cases + j];
        double* sum = sums.data();
        std::fill_n(column, count, 1.0);
        std::fill_n(sum, count, 0.0);
        for (std::size_t k = 0; k < inputs.size(); ++k) {
            const double* x = &inputs[k][j];
            const double own = x[0];
            const double rate = rootOfFive / lengths[k];
#pragma omp simd
            for (std::size_t i = 0; i < count; ++i) {
                const double z = std::fabs(x[i] - own) * rate;
                sum[i] += z;
                column[i] *= 1.0 + z * (1.0 + z * (1.0 / 3.0));
            }
        }
#pragma omp simd
        for (std::size_t i = 0; i < count; ++i) {
            column[i] *= ::exp(-sum[i]);
        }
        column[0] += nugget;
    }
}

void LikelihoodUnit::factorise()
{
    work = correlations;
    if (LAPACKE_dpotrf_work(LAPACK_COL_MAJOR, 'L', order(cases), work.data(), order(cases)) != 0) {
        throw std::runtime_error("The correlation matrix of the yardstick is not positive definite "
                                 "to working precision.");
    }
}

double LikelihoodUnit::profile()
{
    std::vector<double> solved(2 * cases, 1.0);
    std::copy(output.begin(), output.end(), solved.begin());
    LAPACKE_dpotrs_work(LAPACK_COL_MAJOR, 'L', order(cases), 2, work.data(), order(cases),
                        solved.data(), order(cases));
    double sumOfSolvedOutput = 0.0;
    double sumOfSolvedOnes = 0.0;
    double halfOfDeterminant = 0.0;
    for (std::size_t i = 0; i < cases; ++i) {
        sumOfSolvedOutput += solved[i];
        sumOfSolvedOnes += solved[cases + i];
        halfOfDeterminant += std::log(work[i * cases + i]);
    }
    const double mean = sumOfSolvedOutput / sumOfSolvedOnes;
    variance = 0.0;
    for (std::size_t i = 0; i < cases; ++i) {
        weights[i] = solved[i] - mean * solved[cases + i];
        variance += weights[i] * (output[i] - mean);
    }
    const auto n = static_cast<double>(cases);
    variance /= n;
    const double pi = 3.14159265358979323846;
    return -0.5 * (n * std::log(2.0 * pi * variance) + n) - halfOfDeterminant;
}

void LikelihoodUnit::invert()
{
    LAPACKE_dpotri_work(LAPACK_COL_MAJOR, 'L', order(cases), work.data(), order(cases));
}

void LikelihoodUnit::traceGradient(const std::vector<double>& lengths)
{
    // Of each pair: 1/2 tr((w w' / s2 - R^-1) dR) counts it twice, hence no half below.
    std::fill(derivatives.begin(), derivatives.end(), 0.0);
    std::vector<double> factors(cases);
    for (std::size_t j = 0; j + 1 < cases; ++j) {
        const std::size_t count = cases - j - 1;
        const double* inverse = &work[j * cases + j + 1];
        const double* correlation = &correlations[j * cases + j + 1];
        const double* weight = &weights[j + 1];
        const double scaled = weights[j] / variance;
        double* factor = factors.data();
#pragma omp simd
        for (std::size_t i = 0; i < count; ++i) {
            factor[i] = (weight[i] * scaled - inverse[i]) * correlation[i];
        }
        for (std::size_t k = 0; k < inputs.size(); ++k) {
            const double* x = &inputs[k][j + 1];
            const double own = inputs[k][j];
            const double rate = rootOfFive / lengths[k];
            double trace = 0.0;
#pragma omp simd reduction(+ : trace)
            for (std::size_t i = 0; i < count; ++i) {
                const double z = std::fabs(x[i] - own) * rate;
                trace += factor[i] * z * z * (1.0 + z) / (3.0 + 3.0 * z + z * z);
            }
            derivatives[k] += trace / lengths[k];
        }
    }
}
