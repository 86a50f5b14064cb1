#include <mirel_fitting/numerics/OrthonormalColumns.h>

#include <cblas.h>

#include <algorithm>
#include <cmath>

OrthonormalColumns::OrthonormalColumns(std::size_t rows, std::size_t maxColumns)
    : rows(rows), stride(maxColumns), factors(maxColumns * maxColumns, 0.0)
{
    columns.reserve(rows * maxColumns);
}

bool OrthonormalColumns::append(const double* column, double smallestShare)
{
    const int order = static_cast<int>(rows);
    const std::size_t first = columns.size();
    columns.insert(columns.end(), column, column + rows);
    double* rest = columns.data() + first;
    double* parts = factors.data() + taken * stride;
    const double whole = cblas_dnrm2(order, rest, 1);
    project(rest, parts);
    const double length = cblas_dnrm2(order, rest, 1);
    if (!(length > smallestShare * whole) || !std::isfinite(length)) {
        columns.resize(first);
        std::fill_n(parts, taken, 0.0);
        return false;
    }
    cblas_dscal(order, 1.0 / length, rest, 1);
    parts[taken++] = length;
    return true;
}

/** Takes out of `values` what the columns span, whose coefficients are added to `parts`. The second
 *  round removes the rounding of the first, which is large where the columns explain nearly
 *  everything. */
void OrthonormalColumns::project(double* values, double* parts) const
{
    const int order = static_cast<int>(rows);
    for (int round = 0; round < 2; ++round) {
        for (std::size_t j = 0; j < taken; ++j) {
            const double* direction = columns.data() + j * rows;
            const double part = cblas_ddot(order, direction, 1, values, 1);
            cblas_daxpy(order, -part, direction, 1, values, 1);
            parts[j] += part;
        }
    }
}

std::vector<double> OrthonormalColumns::solve(double* values) const
{
    std::vector<double> coefficients(taken, 0.0);
    project(values, coefficients.data());
    cblas_dtrsv(CblasColMajor, CblasUpper, CblasNoTrans, CblasNonUnit, static_cast<int>(taken),
                factors.data(), static_cast<int>(stride), coefficients.data(), 1);
    return coefficients;
}

double OrthonormalColumns::logDeterminant() const
{
    double sum = 0.0;
    for (std::size_t j = 0; j < taken; ++j) {
        sum += 2.0 * std::log(factors[j * stride + j]);
    }
    return sum;
}
