#include <mirel_fitting/polynomial/QuadraticProducts.h>

#include <mirel_fitting/machine/InstructionSet.h>

#include "FittingTestSupport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <set>

using namespace fittingtest;

namespace {

constexpr std::size_t lanes = ProductKernels::lanes;
constexpr std::size_t cases = 2 * ProductKernels::step;

/** The terms of a polynomial at random points, as the kernels take them. */
struct Terms
{
    Terms(std::size_t inputs, int order) : basis(inputs, order), values(basis.size() * cases)
    {
        Random random(3);
        std::vector<Column> points;
        std::vector<const double*> pointers;
        for (std::size_t input = 0; input < inputs; ++input) {
            points.push_back(random.column(cases, -1.0, 1.0));
        }
        for (const Column& column : points) {
            pointers.push_back(column.data());
        }
        basis.evaluate(pointers.data(), cases, values.data(), cases);
    }

    double at(std::size_t term, std::size_t row) const { return values.data()[term * cases + row]; }
    ProductKernels::Columns columns() const { return {values.data(), cases, basis.size()}; }

    QuadraticBasis basis;
    AlignedBuffer values;
};

/** Every instruction set that the processor has, one after the other. */
template <typename Action>
void onEveryInstructionSet(const Action& action)
{
    for (const InstructionSet limit :
         {InstructionSet::Baseline, InstructionSet::Avx2, InstructionSet::Avx512}) {
        setInstructionSetLimit(limit);
        action();
    }
}

} // namespace

TEST(QuadraticProducts, FormEachProductOnce)
{
    EXPECT_EQ(QuadraticProducts(QuadraticBasis(8, 2)).size(), 495u);
    EXPECT_EQ(QuadraticProducts(QuadraticBasis(8, 1)).size(), 45u);
    EXPECT_EQ(QuadraticProducts(QuadraticBasis(0, 0)).size(), 1u);
}

TEST(QuadraticProducts, FindTheSameProductForTheSamePowers)
{
    // 1, V1, V2, V1^2, V1 V2, V2^2
    const QuadraticBasis basis(2, 2);
    const QuadraticProducts products(basis);

    EXPECT_EQ(products.index(0, 4), products.index(1, 2));
    EXPECT_EQ(products.index(3, 5), products.index(4, 4));
    EXPECT_EQ(products.index(5, 3), products.index(4, 4));
    std::set<std::size_t> different;
    for (std::size_t term = 0; term < basis.size(); ++term) {
        for (std::size_t other = 0; other < basis.size(); ++other) {
            different.insert(products.index(term, other));
        }
    }
    // The powers of two inputs up to the fourth order.
    EXPECT_EQ(different.size(), 15u);
    EXPECT_EQ(*different.rbegin(), 14u);
}

TEST(QuadraticProducts, SumProductsOverTheCases)
{
    for (const int order : {0, 1, 2}) {
        const Terms terms(5, order);
        const QuadraticProducts products(terms.basis);
        onEveryInstructionSet([&] {
            AlignedBuffer sums(products.size() * lanes);
            products.addSums(terms.columns(), cases, sums.data());
            products.addSums(terms.columns(), cases, sums.data());

            for (std::size_t a = 0; a < terms.basis.size(); ++a) {
                for (std::size_t b = 0; b < terms.basis.size(); ++b) {
                    double expected = 0.0;
                    for (std::size_t row = 0; row < cases; ++row) {
                        expected += 2.0 * terms.at(a, row) * terms.at(b, row);
                    }
                    double sum = 0.0;
                    for (std::size_t lane = 0; lane < lanes; ++lane) {
                        sum += sums.data()[products.index(a, b) * lanes + lane];
                    }
                    EXPECT_NEAR(sum, expected, 1e-13) << a << " " << b;
                }
            }
        });
    }
}

TEST(QuadraticProducts, EvaluateAQuadraticFormOfTheTerms)
{
    for (const int order : {1, 2}) {
        const Terms terms(6, order);
        const QuadraticProducts products(terms.basis);
        const std::size_t p = terms.basis.size();
        Random random(9);
        std::vector<double> matrix(p * p);
        for (std::size_t a = 0; a < p; ++a) {
            for (std::size_t b = 0; b <= a; ++b) {
                matrix[a * p + b] = matrix[b * p + a] = random.next() - 0.5;
            }
        }
        onEveryInstructionSet([&] {
            AlignedBuffer result(cases);
            std::fill_n(result.data(), cases, 1.0);
            products.addForm(terms.columns(), products.weightsOf(matrix), cases, result.data());

            for (std::size_t row = 0; row < cases; ++row) {
                double expected = 1.0;
                for (std::size_t a = 0; a < p; ++a) {
                    for (std::size_t b = 0; b < p; ++b) {
                        expected += matrix[a * p + b] * terms.at(a, row) * terms.at(b, row);
                    }
                }
                EXPECT_NEAR(result.data()[row], expected, 1e-12);
            }
        });
    }
}
