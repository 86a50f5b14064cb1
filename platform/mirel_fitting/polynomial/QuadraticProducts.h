#pragma once

#include <mirel_fitting/machine/AlignedBuffer.h>
#include <mirel_fitting/numerics/ProductKernels.h>
#include <mirel_fitting/polynomial/QuadraticBasis.h>

#include <cstddef>
#include <cstdint>
#include <vector>

/**
 * The products of all pairs of terms of a polynomial, summed over cases or weighted at one. With
 * z_0 = 1 every term of a full quadratic is a z_i z_j, and the product of two of them z_a z_b z_c
 * z_d with a <= b <= c <= d: of 8 inputs 495 different ones instead of the 1035 pairs. Each is
 * formed once, as (z_a z_b)(z_c z_d): for every b, the terms with b as their second factor times
 * those whose first factor is b or later, which are the last ones of the basis.
 */
class QuadraticProducts
{
public:
    explicit QuadraticProducts(const QuadraticBasis& basis);

    /** Number of terms. */
    std::size_t terms() const { return basis.size(); }

    /** Number of different products. */
    std::size_t size() const { return count; }

    /** The product that two terms make. */
    std::size_t index(std::size_t term, std::size_t other) const;

    /**
     * Adds the products at some cases to sums, ProductKernels::lanes numbers for each product.
     * @param terms the columns of all terms, as ProductKernels takes them.
     */
    void addSums(const ProductKernels::Columns& terms, std::size_t cases, double* sums) const;

    /** One weight per product from a symmetric matrix of terms x terms: such that their sum is the
     *  quadratic form of the terms. */
    std::vector<double> weightsOf(const std::vector<double>& matrix) const;

    /** result[k] += that form at case k. */
    void addForm(const ProductKernels::Columns& terms, const std::vector<double>& weights,
                 std::size_t cases, double* result) const;

private:
    struct Group
    {
        std::vector<std::size_t> rows; // terms
        std::size_t firstColumn;       // a term: the columns are this one and all later
        std::size_t firstProduct;
    };

    template <typename Action>
    void forEachGroup(const ProductKernels::Columns& terms, const Action& action) const;

    std::size_t termOf(std::size_t first, std::size_t second) const;

    const QuadraticBasis& basis;
    std::size_t count = 0;
    std::vector<Group> groups;
};
