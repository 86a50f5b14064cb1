#pragma once

#include <mirel_fitting/Export.h>

#include <cstddef>
#include <vector>

/**
 * The factors of a matrix F = Q T, Q with orthonormal columns, T upper triangular, for least
 * squares. By Gram-Schmidt, each column twice: then Q is orthogonal to the last digits. Giraud,
 * Langou, Rozloznik: The loss of orthogonality in the Gram-Schmidt orthogonalization process,
 * Computers and Mathematics with Applications 50 (2005).
 *
 * The bits do not depend on threads where OpenBLAS works with one (SingleThreadedBlas).
 */
class MIREL_FITTING_EXPORT OrthonormalColumns
{
public:
    /** For append(): a smaller part orthogonal to the other columns is rounding. */
    static constexpr double independent = 1e-9;

    OrthonormalColumns(std::size_t rows, std::size_t maxColumns);

    /**
     * Takes the next column of F.
     * @param smallestShare of the column's length that has to be orthogonal to the others.
     * @return false if it is not, or not finite: then the column is not taken.
     */
    bool append(const double* column, double smallestShare = 0.0);

    std::size_t size() const { return taken; }
    /** Q by columns, rows x size(). */
    const std::vector<double>& values() const { return columns; }
    /** T by columns of maxColumns elements. */
    const std::vector<double>& triangle() const { return factors; }

    /** Of F' F; F may be any matrix with this T. */
    double logDeterminant() const;

    /** The residuals of least squares take the place of `values`. @return the coefficients of F. */
    std::vector<double> solve(double* values) const;

private:
    void project(double* values, double* parts) const;

    std::size_t rows;
    std::size_t stride;
    std::size_t taken = 0;
    std::vector<double> columns;
    std::vector<double> factors;
};
