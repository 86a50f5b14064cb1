#include <mirel_fitting/polynomial/NormalEquations.h>

#include <cblas.h>
#include <lapacke.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr std::size_t lanes = ProductKernels::lanes;

void addLanes(const double* sums, std::vector<double>& totals)
{
    for (std::size_t k = 0; k < totals.size(); ++k) {
        const double* lane = sums + k * lanes;
        totals[k] += ((lane[0] + lane[1]) + (lane[2] + lane[3])) +
                     ((lane[4] + lane[5]) + (lane[6] + lane[7]));
    }
}

} // namespace

NormalEquations::Sums::Sums(const QuadraticProducts& products, std::size_t outputs)
    : products(products), outputCount(outputs), ofTerms(products.size() * lanes),
      ofOutputs(outputs * products.terms() * lanes), sizeOfTerms(products.size() * lanes),
      sizeOfOutputs(outputs * products.terms() * lanes)
{}

void NormalEquations::Sums::clear()
{
    std::fill_n(ofTerms.data(), sizeOfTerms, 0.0);
    std::fill_n(ofOutputs.data(), sizeOfOutputs, 0.0);
}

void NormalEquations::Sums::addProducts(const ProductKernels::Columns& terms, std::size_t cases)
{
    products.addSums(terms, cases, ofTerms.data());
}

void NormalEquations::Sums::addOutputs(const std::vector<const double*>& outputs,
                                       const ProductKernels::Columns& terms, std::size_t cases)
{
    ProductKernels::best().addProducts(outputs.data(), outputs.size(), terms, cases,
                                       ofOutputs.data());
}

NormalEquations::NormalEquations(const QuadraticBasis& basis, std::size_t cases,
                                 std::size_t outputs)
    : basis(basis), pairs(basis), cases(cases), outputs(outputs), sumsOfTerms(pairs.size(), 0.0),
      sumsOfOutputs(basis.size() * outputs, 0.0), gradients(basis.size() * outputs, 0.0)
{}

void NormalEquations::add(const Sums& sums)
{
    addLanes(sums.ofTerms.data(), sumsOfTerms);
    addLanes(sums.ofOutputs.data(), sumsOfOutputs);
}

void NormalEquations::addGradients(const Sums& sums)
{
    addLanes(sums.ofOutputs.data(), gradients);
}

bool NormalEquations::solve(std::vector<double>& factor, std::vector<double>& coefficients)
{
    // For columns of length 1. What the others leave of a term is then at least 3e-3 of it, and the
    // squared condition takes at most five digits of the factor.
    constexpr double leastReciprocalCondition = 1e-5;

    const std::size_t p = basis.size();
    const auto order = static_cast<lapack_int>(p);
    std::vector<double> lengths(p);
    for (std::size_t term = 0; term < p; ++term) {
        lengths[term] = std::sqrt(sumsOfTerms[pairs.index(term, term)]);
        if (!(lengths[term] > 0.0)) {
            return false;
        }
    }
    std::vector<double> matrix(p * p, 0.0);
    double norm = 0.0;
    for (std::size_t column = 0; column < p; ++column) {
        double sum = 0.0;
        for (std::size_t row = 0; row < p; ++row) {
            const double cosine =
                sumsOfTerms[pairs.index(row, column)] / (lengths[row] * lengths[column]);
            sum += std::fabs(cosine);
            if (row <= column) {
                matrix[column * p + row] = cosine;
            }
        }
        norm = std::max(norm, sum);
    }
    if (LAPACKE_dpotrf_work(LAPACK_COL_MAJOR, 'U', order, matrix.data(), order) != 0) {
        return false;
    }
    double reciprocal = 0.0;
    std::vector<double> work(3 * p);
    std::vector<lapack_int> integers(p);
    LAPACKE_dpocon_work(LAPACK_COL_MAJOR, 'U', order, matrix.data(), order, norm, &reciprocal,
                        work.data(), integers.data());
    if (!(reciprocal >= leastReciprocalCondition)) {
        return false;
    }

    for (std::size_t column = 0; column < p; ++column) {
        for (std::size_t row = 0; row <= column; ++row) {
            matrix[column * p + row] *= lengths[column];
        }
    }
    triangle = matrix;
    factor = triangle;
    coefficients = sumsOfOutputs;
    LAPACKE_dpotrs_work(LAPACK_COL_MAJOR, 'U', order, static_cast<lapack_int>(outputs),
                        triangle.data(), order, coefficients.data(), order);
    for (std::size_t output = 0; output < outputs; ++output) {
        means.push_back(sumsOfOutputs[output * p] / static_cast<double>(cases));
    }

    LAPACKE_dpotri_work(LAPACK_COL_MAJOR, 'U', order, matrix.data(), order);
    weights = pairs.weightsOf(matrix);
    for (double& weight : weights) {
        weight = -weight;
    }
    return true;
}

void NormalEquations::subtract(const double* coefficients, const ProductKernels::Columns& terms,
                               std::size_t count, double* values) const
{
    // The constant term times the polynomial.
    std::vector<double> negative(coefficients, coefficients + basis.size());
    for (double& coefficient : negative) {
        coefficient = -coefficient;
    }
    ProductKernels::best().addForm(&terms.values, 1, terms, negative.data(), count, values);
}

void NormalEquations::subtractLeverages(const ProductKernels::Columns& terms, std::size_t count,
                                        double* values) const
{
    pairs.addForm(terms, weights, count, values);
}

double NormalEquations::correct(std::vector<double>& coefficients)
{
    const std::size_t p = basis.size();
    const auto order = static_cast<lapack_int>(p);
    // The change at the cases has the length of the solution with the transposed factor.
    cblas_dtrsm(CblasColMajor, CblasLeft, CblasUpper, CblasTrans, CblasNonUnit, order,
                static_cast<int>(outputs), 1.0, triangle.data(), order, gradients.data(), order);
    double largest = 0.0;
    for (std::size_t output = 0; output < outputs; ++output) {
        const double* change = gradients.data() + output * p;
        largest = std::max(largest, cblas_ddot(order, change, 1, change, 1));
    }
    cblas_dtrsm(CblasColMajor, CblasLeft, CblasUpper, CblasNoTrans, CblasNonUnit, order,
                static_cast<int>(outputs), 1.0, triangle.data(), order, gradients.data(), order);
    for (std::size_t k = 0; k < coefficients.size(); ++k) {
        coefficients[k] += gradients[k];
        gradients[k] = 0.0;
    }
    return largest;
}
