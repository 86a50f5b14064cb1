#pragma once

#include <mirel_fitting/machine/AlignedBuffer.h>
#include <mirel_fitting/numerics/SmallCholesky.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <vector>

/**
 * Cholesky factor of a symmetric positive definite matrix, and the columns of its inverse, for
 * orders up to some ten thousand. Several threads share blocks of fixed size, which do not depend
 * on the number of threads, so that neither do the bits of the result. Between blocks, at least
 * every tenth of a second, FitProgress::advance() gets the multiplications done; an exception of it
 * ends the work and passes through. Golub, Van Loan: Matrix Computations, 4th ed., Johns Hopkins
 * 2013, 4.2.9.
 *
 * OpenBLAS has to work with one thread meanwhile (SingleThreadedBlas).
 */
class BlockedCholesky
{
public:
    /** Below this order, starting threads takes longer than they save. */
    static constexpr std::size_t smallestToSplit = 500;

    BlockedCholesky(std::size_t order, int threads);

    std::size_t order() const { return size; }
    /** 1 where the order is too small to split. */
    int threads() const { return threadCount; }

    /** By columns; the caller writes the lower triangle, which factorise() replaces by the factor.
     *  The elements above the diagonal are undefined. */
    double* values() { return matrix.data(); }
    const double* values() const { return matrix.data(); }

    /** @return false if the matrix is not positive definite in double precision. */
    bool factorise();

    /** Columns of order() elements become the inverse of the factor times them. */
    void solveLower(double* columns, std::size_t count) const;

    /** The same with the transposed factor. */
    void solveTransposed(double* columns, std::size_t count) const;

    /** Receives the lower triangle of the inverse, a block of columns at a time. */
    class Visitor
    {
    public:
        virtual ~Visitor();

        /**
         * @param block the element of row first + i and column first + j, i >= j, is
         *              block[j * stride + i]. Called at the same time as other visitors.
         */
        virtual void visit(std::size_t first, std::size_t columns, const double* block,
                           std::size_t stride) = 0;

        /** Adds the result of the last visit() to the whole: in the order of the columns, never
         *  concurrently. */
        virtual void handOver() = 0;
    };

    /**
     * Computes the inverse from the factor, which is kept.
     * @param makeVisitor is called on the calling thread, once per thread used.
     */
    void visitInverse(const std::function<std::unique_ptr<Visitor>()>& makeVisitor);

    /**
     * Calls work(first, last) for ranges of columns that together are all of them, on several
     * threads at once.
     * @param multiplications of all the ranges together.
     */
    void forColumns(double multiplications,
                    const std::function<void(std::size_t first, std::size_t last)>& work);

private:
    bool isSplit() const { return size >= smallestToSplit; }
    bool factoriseBlocks();

    std::size_t size;
    int threadCount;
    AlignedBuffer matrix;
    std::vector<double> inverse;          // only where nothing is split
    std::unique_ptr<SmallCholesky> small; // only for few rows
};
