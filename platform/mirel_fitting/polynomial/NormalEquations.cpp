#include <mirel_fitting/polynomial/NormalEquations.h>

#include <mirel_fitting/numerics/BlockedLeastSquares.h>

#include <cblas.h>
#include <lapacke.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <utility>

namespace {

/** Scales the rows and columns of a symmetric matrix, upper triangle: a_ij s_i s_j. */
void scaleSymmetric(std::vector<double>& matrix, const std::vector<double>& scales)
{
    const std::size_t order = scales.size();
    for (std::size_t column = 0; column < order; ++column) {
        for (std::size_t row = 0; row <= column; ++row) {
            matrix[column * order + row] *= scales[row] * scales[column];
        }
    }
}

/** The reciprocal condition number, in the 1-norm, of a matrix of this norm and Cholesky factor. */
double reciprocalCondition(const std::vector<double>& factor, std::size_t order, double norm)
{
    const auto n = static_cast<lapack_int>(order);
    double result = 0.0;
    std::vector<double> work(3 * order);
    std::vector<lapack_int> integers(order);
    LAPACKE_dpocon_work(LAPACK_COL_MAJOR, 'U', n, factor.data(), n, norm, &result, work.data(),
                        integers.data());
    return result;
}

} // namespace

NormalEquations::NormalEquations(std::size_t terms, std::size_t outputs)
    : termCount(terms), outputCount(outputs), ofTerms(terms * terms, 0.0),
      ofOutputs(terms * outputs, 0.0)
{}

void NormalEquations::addRows(const double* design, const double* outputs, std::size_t rows)
{
    const auto terms = static_cast<int>(termCount);
    const auto count = static_cast<int>(rows);
    constexpr auto leading = static_cast<int>(BlockedLeastSquares::rowsPerBlock);
    cblas_dsyrk(CblasColMajor, CblasUpper, CblasTrans, terms, count, 1.0, design, leading, 1.0,
                ofTerms.data(), terms);
    if (outputCount > 0) {
        cblas_dgemm(CblasColMajor, CblasTrans, CblasNoTrans, terms, static_cast<int>(outputCount),
                    count, 1.0, design, leading, outputs, leading, 1.0, ofOutputs.data(), terms);
    }
}

void NormalEquations::merge(const NormalEquations& other)
{
    const auto add = [](std::vector<double>& sums, const std::vector<double>& more) {
        std::transform(sums.begin(), sums.end(), more.begin(), sums.begin(), std::plus<>());
    };
    add(ofTerms, other.ofTerms);
    add(ofOutputs, other.ofOutputs);
}

bool NormalEquations::solve(Solution& solution) const
{
    // Of X'X, the columns of X scaled to length 1: the component of a column orthogonal to the
    // others is then at least 3e-3, and the squared condition number costs the factor at most five
    // digits.
    constexpr double leastReciprocalCondition = 1e-5;

    const auto order = static_cast<lapack_int>(termCount);
    std::vector<double> perLength(termCount);
    for (std::size_t term = 0; term < termCount; ++term) {
        const double squares = ofTerms[term * termCount + term];
        if (!(squares > 0.0)) {
            return false;
        }
        perLength[term] = 1.0 / std::sqrt(squares);
    }
    std::vector<double> factor = ofTerms;
    scaleSymmetric(factor, perLength);
    const double norm = LAPACKE_dlansy(LAPACK_COL_MAJOR, '1', 'U', order, factor.data(), order);
    if (LAPACKE_dpotrf_work(LAPACK_COL_MAJOR, 'U', order, factor.data(), order) != 0 ||
        !(reciprocalCondition(factor, termCount, norm) >= leastReciprocalCondition)) {
        return false;
    }

    for (std::size_t column = 0; column < termCount; ++column) {
        for (std::size_t row = 0; row <= column; ++row) {
            factor[column * termCount + row] /= perLength[column];
        }
    }
    solution.factor = std::move(factor);
    solution.coefficients = ofOutputs;
    LAPACKE_dpotrs_work(LAPACK_COL_MAJOR, 'U', order, static_cast<lapack_int>(outputCount),
                        solution.factor.data(), order, solution.coefficients.data(), order);
    return true;
}

double NormalEquations::refine(Solution& solution, std::vector<double> gradients)
{
    if (gradients.empty()) {
        return 0.0;
    }
    const auto order = static_cast<int>(std::sqrt(static_cast<double>(solution.factor.size())));
    const int outputs = static_cast<int>(gradients.size()) / order;
    const auto solveTriangle = [&](CBLAS_TRANSPOSE side) {
        cblas_dtrsm(CblasColMajor, CblasLeft, CblasUpper, side, CblasNonUnit, order, outputs, 1.0,
                    solution.factor.data(), order, gradients.data(), order);
    };
    // |X d| = |R d|, as the columns of X R^-1 are orthonormal; and R d solves R' (R d) = X'r.
    solveTriangle(CblasTrans);
    double largest = 0.0;
    for (int output = 0; output < outputs; ++output) {
        const double* change = gradients.data() + output * order;
        largest = std::max(largest, cblas_ddot(order, change, 1, change, 1));
    }
    solveTriangle(CblasNoTrans);
    std::transform(solution.coefficients.begin(), solution.coefficients.end(), gradients.begin(),
                   solution.coefficients.begin(), std::plus<>());
    return largest;
}
