#include <mirel_fitting/polynomial/QuadraticBasis.h>

#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>

namespace {

using Names = std::vector<std::string>;

Names namesOf(const QuadraticBasis& basis)
{
    Names names;
    for (std::size_t term = 0; term < basis.size(); ++term) {
        names.push_back(basis.name(term));
    }
    return names;
}

} // namespace

TEST(QuadraticBasis, ListsConstantThenLinearThenProductsUpToItsOrder)
{
    EXPECT_EQ(namesOf(QuadraticBasis(2, 2)), (Names{"1", "V1", "V2", "V1^2", "V1 V2", "V2^2"}));
    EXPECT_EQ(namesOf(QuadraticBasis(3, 2)),
              (Names{"1", "V1", "V2", "V3", "V1^2", "V1 V2", "V1 V3", "V2^2", "V2 V3", "V3^2"}));
    EXPECT_EQ(namesOf(QuadraticBasis(2, 0)), (Names{"1"}));
    EXPECT_EQ(namesOf(QuadraticBasis(2, 1)), (Names{"1", "V1", "V2"}));
    for (int order = 0; order <= 2; ++order) {
        EXPECT_EQ(namesOf(QuadraticBasis(0, order)), (Names{"1"}));
    }
    EXPECT_THROW(QuadraticBasis(2, -1), std::invalid_argument);
    EXPECT_THROW(QuadraticBasis(2, 3), std::invalid_argument);
}

TEST(QuadraticBasis, CountsItsTermsWithoutBeingMade)
{
    for (int order = 0; order <= 2; ++order) {
        for (std::size_t inputs = 0; inputs < 12; ++inputs) {
            EXPECT_EQ(QuadraticBasis::termCount(inputs, order),
                      QuadraticBasis(inputs, order).size());
        }
    }
    EXPECT_EQ(QuadraticBasis::termCount(std::size_t{1} << 40, 2),
              std::numeric_limits<std::size_t>::max());
}

TEST(QuadraticBasis, FindsItsTerms)
{
    const QuadraticBasis basis(4, 2);
    for (std::size_t term = 0; term < basis.size(); ++term) {
        EXPECT_EQ(basis.position(basis.terms()[term]), term);
    }
}

TEST(QuadraticBasis, WritesTheSamePolynomialInOtherInputs)
{
    const QuadraticBasis basis(2, 2);
    const std::vector<double> coefficients = {1.0, 2.0, -1.0, 0.5, 3.0, -4.0};

    // z1 = 3 + V1 / 2, z2 = -1 + 4 V2
    const std::vector<double> other = basis.substituted(coefficients, {3.0, -1.0}, {0.5, 4.0});

    const auto value = [](const std::vector<double>& c, double x, double y) {
        return c[0] + c[1] * x + c[2] * y + c[3] * x * x + c[4] * x * y + c[5] * y * y;
    };
    for (const double v1 : {-2.0, 0.0, 1.0}) {
        for (const double v2 : {-1.0, 0.0, 0.5}) {
            EXPECT_EQ(value(other, v1, v2), value(coefficients, 3.0 + 0.5 * v1, -1.0 + 4.0 * v2));
        }
    }
}

TEST(QuadraticBasis, SumsMagnitudesOfTerms)
{
    EXPECT_EQ(QuadraticBasis(2, 2).sumOfMagnitudes({-1, 1, -1, 1, -1, 1}, {2.0, 3.0}),
              1.0 + 2.0 + 3.0 + 4.0 + 6.0 + 9.0);
}

TEST(QuadraticBasis, EvaluatesColumnByColumnOrOneTerm)
{
    const double v1[] = {2.0, -1.0};
    const double v2[] = {3.0, 0.5};
    const double* columns[] = {v1, v2};
    const std::size_t stride = 3;
    std::vector<double> values(6 * stride, 99.0);
    std::vector<double> product(2);

    QuadraticBasis(2, 2).evaluate(columns, 2, values.data(), stride);
    QuadraticBasis(2, 2).evaluateTerm(4, columns, 2, product.data());

    EXPECT_EQ(values, (std::vector<double>{1, 1, 99, 2, -1, 99, 3, 0.5, 99, //
                                           4, 1, 99, 6, -0.5, 99, 9, 0.25, 99}));
    EXPECT_EQ(product, (std::vector<double>{6.0, -0.5}));
}
