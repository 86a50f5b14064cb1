#include <mirel_fitting/polynomial/QuadraticBasis.h>

#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>

namespace {

std::vector<std::string> namesOf(const QuadraticBasis& basis)
{
    std::vector<std::string> names;
    for (std::size_t term = 0; term < basis.size(); ++term) {
        names.push_back(basis.name(term));
    }
    return names;
}

} // namespace

TEST(QuadraticBasis, ListsConstantThenLinearThenProductsUpToItsOrder)
{
    EXPECT_EQ(namesOf(QuadraticBasis(2, 2)),
              (std::vector<std::string>{"1", "V1", "V2", "V1^2", "V1 V2", "V2^2"}));
    EXPECT_EQ(namesOf(QuadraticBasis(3, 2)),
              (std::vector<std::string>{"1", "V1", "V2", "V3", "V1^2", "V1 V2", "V1 V3", "V2^2",
                                        "V2 V3", "V3^2"}));
    EXPECT_EQ(namesOf(QuadraticBasis(2, 0)), (std::vector<std::string>{"1"}));
    EXPECT_EQ(namesOf(QuadraticBasis(2, 1)), (std::vector<std::string>{"1", "V1", "V2"}));
    for (int order = 0; order <= 2; ++order) {
        EXPECT_EQ(namesOf(QuadraticBasis(0, order)), (std::vector<std::string>{"1"}));
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

TEST(QuadraticBasis, FindsTheProductOfTwoInputs)
{
    const QuadraticBasis basis(4, 2);
    for (std::size_t term = 5; term < basis.size(); ++term) {
        EXPECT_EQ(basis.productOf(basis.terms()[term].first, basis.terms()[term].second), term);
    }
}

TEST(QuadraticBasis, EvaluatesColumnByColumn)
{
    const double v1[] = {2.0, -1.0};
    const double v2[] = {3.0, 0.5};
    const double* columns[] = {v1, v2};
    const std::size_t stride = 3;
    std::vector<double> values(6 * stride, 99.0);

    QuadraticBasis(2, 2).evaluate(columns, 2, values.data(), stride);

    EXPECT_EQ(values, (std::vector<double>{1, 1, 99, 2, -1, 99, 3, 0.5, 99, //
                                           4, 1, 99, 6, -0.5, 99, 9, 0.25, 99}));
}

TEST(QuadraticBasis, EvaluatesOneTerm)
{
    const double v1[] = {2.0, -1.0};
    const double v2[] = {3.0, 0.5};
    const double* columns[] = {v1, v2};
    std::vector<double> values(2);

    QuadraticBasis(2, 2).evaluateTerm(4, columns, 2, values.data());

    EXPECT_EQ(values, (std::vector<double>{6.0, -0.5}));
}
