#pragma once

#include <cstddef>
#include <vector>

/**
 * Least squares by the normal equations X'X b = X'y, X the terms at the cases and y the outputs,
 * scaled both. They square the condition number of X: solve() refuses terms that are not clearly
 * separable, and refine() regains the digits from the residuals (corrected seminormal equations:
 * Bjorck, Linear Algebra Appl. 88/89 (1987)).
 *
 * Matrices are column-major. Rows arrive in blocks, O(p^2) per row for p terms.
 */
class NormalEquations
{
public:
    struct Solution
    {
        /** The upper triangular Cholesky factor R of X'X, terms x terms. */
        std::vector<double> factor;
        /** One per term, output by output. */
        std::vector<double> coefficients;
    };

    NormalEquations(std::size_t terms, std::size_t outputs);

    /** @param design, outputs `rows` rows of all columns, at most
     *         BlockedLeastSquares::rowsPerBlock; column c starts at c times that. */
    void addRows(const double* design, const double* outputs, std::size_t rows);

    /** Adds the rows that `other` has been given, with as many terms and outputs. */
    void merge(const NormalEquations& other);

    /** Answers false, and leaves the solution as it is, if the terms are not clearly separable. */
    bool solve(Solution& solution) const;

    /**
     * One step of iterative refinement: adds the solution d of R'R d = X'r to the coefficients.
     * @param gradients X'r, r the residuals that the coefficients leave: one per term, output by
     *                  output.
     * @return the largest |X d|^2 of all outputs: by how much the predictions at the cases change.
     */
    static double refine(Solution& solution, std::vector<double> gradients);

private:
    std::size_t termCount;
    std::size_t outputCount;
    std::vector<double> ofTerms;   // X'X, upper triangle
    std::vector<double> ofOutputs; // X'y
};
