#pragma once

#include <mirel_fitting/machine/AlignedBuffer.h>
#include <mirel_fitting/numerics/ProductKernels.h>
#include <mirel_fitting/polynomial/QuadraticProducts.h>

#include <cstddef>
#include <vector>

/**
 * The normal equations of a polynomial of several outputs. They square the condition of the terms,
 * so that solve() refuses terms that are not clearly separable, and correct() regains the digits
 * from residuals.
 *
 * Terms and outputs are scaled; coefficients are listed output by output, in the order of the
 * basis.
 */
class NormalEquations
{
public:
    /** What a thread sums over its cases. */
    class Sums
    {
    public:
        Sums(const QuadraticProducts& products, std::size_t outputs);

        void clear();

        /** Of the terms with each other. @param cases of which the last may be filled with zeros,
         *  like everywhere here. */
        void addProducts(const ProductKernels::Columns& terms, std::size_t cases);

        /** Of outputs, or their residuals, with the terms. */
        void addOutputs(const std::vector<const double*>& outputs,
                        const ProductKernels::Columns& terms, std::size_t cases);

    private:
        friend class NormalEquations;
        const QuadraticProducts& products;
        std::size_t outputCount;
        AlignedBuffer ofTerms;
        AlignedBuffer ofOutputs;
        std::size_t sizeOfTerms;
        std::size_t sizeOfOutputs;
    };

    /** @param basis is borrowed; it must outlive this object. */
    NormalEquations(const QuadraticBasis& basis, std::size_t cases, std::size_t outputs);

    const QuadraticProducts& products() const { return pairs; }

    /** Not at the same time from several threads; nor addGradients(). */
    void add(const Sums& sums);

    /**
     * Answers false if the terms are not clearly separable.
     * @param factor       receives the upper triangular factor of the terms, terms x terms.
     * @param coefficients receives the solution.
     */
    bool solve(std::vector<double>& factor, std::vector<double>& coefficients);

    // After solve().

    double mean(std::size_t output) const { return means[output]; }

    /** values[k] -= the polynomial at case k. */
    void subtract(const double* coefficients, const ProductKernels::Columns& terms,
                  std::size_t cases, double* values) const;

    /** values[k] -= the leverage of case k. */
    void subtractLeverages(const ProductKernels::Columns& terms, std::size_t cases,
                           double* values) const;

    /** The sums of the residuals that the coefficients leave. */
    void addGradients(const Sums& sums);

    /** Corrects the coefficients by them, and forgets them; answers the largest sum of squares,
     * over the outputs, by which the polynomial changes at the cases. */
    double correct(std::vector<double>& coefficients);

private:
    const QuadraticBasis& basis;
    QuadraticProducts pairs;
    std::size_t cases;
    std::size_t outputs;
    std::vector<double> sumsOfTerms;   // one per product
    std::vector<double> sumsOfOutputs; // one per term and output
    std::vector<double> gradients;
    std::vector<double> triangle; // the factor
    std::vector<double> weights;  // of the leverage, negative
    std::vector<double> means;
};
