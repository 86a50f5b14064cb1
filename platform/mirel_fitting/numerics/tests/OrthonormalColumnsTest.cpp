#include <mirel_fitting/numerics/OrthonormalColumns.h>

#include <gtest/gtest.h>

#include <limits>

TEST(OrthonormalColumns, AreTheFactorsOfTheColumnsTaken)
{
    const std::vector<double> ones = {1.0, 1.0, 1.0, 1.0};
    const std::vector<double> slope = {0.0, 1.0, 2.0, 3.0};
    OrthonormalColumns columns(4, 2);

    ASSERT_TRUE(columns.append(ones.data()));
    ASSERT_TRUE(columns.append(slope.data()));

    const std::vector<double>& q = columns.values();
    const std::vector<double>& t = columns.triangle();
    double product = 0.0;
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_NEAR(t[0] * q[i], ones[i], 1e-15);
        EXPECT_NEAR(t[2] * q[i] + t[3] * q[4 + i], slope[i], 1e-15);
        product += q[i] * q[4 + i];
    }
    EXPECT_NEAR(product, 0.0, 1e-15);
}

TEST(OrthonormalColumns, GiveCoefficientsAndResidualsOfLeastSquares)
{
    const std::vector<double> ones = {1.0, 1.0, 1.0, 1.0};
    const std::vector<double> slope = {0.0, 1.0, 2.0, 3.0};
    OrthonormalColumns columns(4, 2);
    columns.append(ones.data());
    columns.append(slope.data());
    std::vector<double> values = {1.0, 4.0, 3.0, 6.0}; // 1.4 + 1.4 x

    const std::vector<double> coefficients = columns.solve(values.data());

    EXPECT_NEAR(coefficients[0], 1.4, 1e-14);
    EXPECT_NEAR(coefficients[1], 1.4, 1e-14);
    EXPECT_NEAR(values[0], -0.4, 1e-14);
    EXPECT_NEAR(values[1], 1.2, 1e-14);
}

TEST(OrthonormalColumns, RefuseAColumnThatDependsOnOthersOrIsNotFinite)
{
    const std::vector<double> ones = {1.0, 1.0, 1.0};
    const std::vector<double> nearly = {2.0, 2.0, 2.0 + 1e-12};
    const std::vector<double> none = {0.0, std::numeric_limits<double>::quiet_NaN(), 1.0};
    const std::vector<double> slope = {0.0, 1.0, 2.0};
    OrthonormalColumns columns(3, 2);

    EXPECT_TRUE(columns.append(ones.data()));
    EXPECT_FALSE(columns.append(nearly.data(), 1e-9));
    EXPECT_FALSE(columns.append(none.data()));
    EXPECT_TRUE(columns.append(slope.data()));

    EXPECT_EQ(columns.size(), 2u);
    EXPECT_NEAR(columns.triangle()[2], 1.7320508075688772, 1e-15);
}
