#pragma once

#include <mirel_fitting/machine/AlignedBuffer.h>

#include <cstddef>

/**
 * Cholesky factor and inverse of a symmetric positive definite matrix of up to some hundred rows,
 * where LAPACK's overhead per call exceeds the arithmetic: Kriging fits of 50 to 100 cases take up
 * to twice as long with LAPACK (docs/performance.md). Works on tiles of eight by eight, which stay
 * in registers, in the order of Golub, Van Loan: Matrix Computations, 4th ed., Johns Hopkins 2013,
 * 4.2.5 and 4.2.9. All processors give the same bits.
 */
class SmallCholesky
{
public:
    /** Above this order LAPACK is as fast. */
    static constexpr std::size_t largestOrder = 128;

    explicit SmallCholesky(std::size_t order);

    /**
     * @param matrix by columns; its lower triangle is replaced by the factor.
     * @return false if it is not positive definite in double precision; the matrix is as before
     *         then.
     */
    bool factorise(double* matrix);

    /** The lower triangle of the inverse of the last matrix factorised; the element of row i and
     *  column j is result[j * stride() + i]. Valid until the next call. */
    const double* invert();

    std::size_t stride() const { return width; }

private:
    std::size_t order;
    std::size_t width; // the order, padded to whole tiles by an identity matrix
    AlignedBuffer factor;
    AlignedBuffer factorInverse; // by rows
    AlignedBuffer inverse;
};
