#include <mirel_fitting/kriging/likelihood/KrigingTrend.h>

#include "KrigingTestSupport.h"
#include "RecordedWork.h"

#include <gtest/gtest.h>

namespace {

using Texts = std::vector<std::string>;

/** Two inputs, by columns. */
std::vector<double> scattered(std::size_t cases)
{
    return UniformNumbers(3).next(2 * cases);
}

} // namespace

TEST(KrigingTrend, HasTheTermsOfItsOrderNamedByTheNumbersOfInputs)
{
    const std::vector<double> x = scattered(20);

    EXPECT_EQ(KrigingTrend(20, 2, x, 0, 3).names({1, 2}), Texts({"1"}));
    EXPECT_EQ(KrigingTrend(20, 2, x, 1, 3).names({1, 2}), Texts({"1", "V1", "V2"}));
    EXPECT_EQ(KrigingTrend(20, 2, x, 2, 3).names({1, 2}),
              Texts({"1", "V1", "V2", "V1^2", "V1 V2", "V2^2"}));
    EXPECT_EQ(KrigingTrend(20, 2, scattered(20), 2, 3).names({2, 5}),
              Texts({"1", "V2", "V5", "V2^2", "V2 V5", "V5^2"}));
    EXPECT_EQ(KrigingTrend(1, 0, {}, 2, 3).names({}), Texts({"1"}));
}

TEST(KrigingTrend, LowersItsOrderUntilTheCasesSufficeForAllParameters)
{
    // A full quadratic has 6 terms, a linear trend 3.
    EXPECT_EQ(KrigingTrend(9, 2, scattered(9), 2, 3).order(), 2);
    EXPECT_EQ(KrigingTrend(8, 2, scattered(8), 2, 3).order(), 1);
    EXPECT_EQ(KrigingTrend(6, 2, scattered(6), 2, 3).order(), 1);
    EXPECT_EQ(KrigingTrend(5, 2, scattered(5), 2, 3).order(), 0);
}

TEST(KrigingTrend, DropsTermsThatTheCasesCannotSeparate)
{
    // At the corners of a square both squares are 1.
    const std::vector<double> corners = {0, 0, 1, 1, 0, 0, 1, 1, 0, 1, 0, 1, 0, 1, 0, 1};

    const KrigingTrend trend(8, 2, corners, 2, 1);

    EXPECT_EQ(trend.names({1, 2}), Texts({"1", "V1", "V2", "V1 V2"}));
    ASSERT_EQ(trend.droppedTerms().size(), 2u);
    EXPECT_EQ(QuadraticBasis::name(trend.droppedTerms()[0]), "V1^2");
    EXPECT_EQ(QuadraticBasis::name(trend.droppedTerms()[1]), "V2^2");
}

TEST(KrigingTrend, FitsByLeastSquares)
{
    const std::vector<double> x = scattered(20);
    std::vector<double> y;
    for (std::size_t i = 0; i < 20; ++i) {
        const double u = 2.0 * x[i] - 1.0;
        const double v = 2.0 * x[20 + i] - 1.0;
        y.push_back(1.0 + 2.0 * u - v + 0.5 * u * u + 3.0 * u * v - 4.0 * v * v);
    }

    const KrigingTrend::LeastSquares fit = KrigingTrend(20, 2, x, 2, 3).leastSquares(y);

    const std::vector<double> expected = {1.0, 2.0, -1.0, 0.5, 3.0, -4.0};
    for (std::size_t t = 0; t < 6; ++t) {
        EXPECT_NEAR(fit.coefficients[t], expected[t], 1e-12);
    }
    EXPECT_LT(fit.variance, 1e-28);
}

TEST(KrigingTrend, LeavesOutCasesLikeRefits)
{
    // The mean of 0, 0 and 6: what is left out lies off the mean of the other two.
    const KrigingTrend trend(3, 1, {0.0, 0.5, 1.0}, 0, 1);

    const KrigingTrend::LeastSquares fit = trend.leastSquares({0.0, 0.0, 6.0});

    EXPECT_NEAR(fit.variance, 12.0, 1e-14);
    EXPECT_NEAR(fit.leaveOneOutResiduals[0], -3.0, 1e-14);
    EXPECT_NEAR(fit.leaveOneOutResiduals[2], 6.0, 1e-14);
}

TEST(KrigingTrend, EvaluatesTheSamePolynomialInScaledAndRawInputs)
{
    const std::vector<double> x = scattered(20);
    const KrigingTrend trend(20, 2, x, 2, 3);
    const std::vector<double> coefficients = {1.0, 2.0, -1.0, 0.5, 3.0, -4.0};
    const std::vector<double> minimum = {10.0, -3.0};
    const std::vector<double> range = {4.0, 0.5};

    const auto raw = trend.inRawInputs(coefficients, minimum, range, {1, 2});
    std::vector<double> scaled(20, 0.0);
    trend.add({x.data(), x.data() + 20}, 20, coefficients, scaled.data());

    ASSERT_EQ(raw.size(), 6u);
    for (std::size_t i = 0; i < 20; ++i) {
        const double a = minimum[0] + range[0] * x[i];
        const double b = minimum[1] + range[1] * x[20 + i];
        const double factors[] = {1.0, a, b, a * a, a * b, b * b};
        double value = 0.0;
        for (std::size_t t = 0; t < 6; ++t) {
            value += raw[t].coefficient * factors[t];
        }
        // Terms of some thousands cancel to about 1.
        EXPECT_NEAR(value, scaled[i], 1e-10);
    }
}

TEST(KrigingTrend, ListsTheLowerTermsThatRawInputsBringInForDroppedOnes)
{
    // V1 is V2 here: V1 V2 and V2^2 go, and V2 too; V1^2 in raw inputs needs V1.
    std::vector<double> same = UniformNumbers(5).next(10);
    same.insert(same.end(), same.begin(), same.begin() + 10);
    const KrigingTrend trend(10, 2, same, 2, 3);

    const auto raw = trend.inRawInputs({0.0, 0.0, 1.0}, {0.0, 0.0}, {2.0, 2.0}, {1, 2});

    ASSERT_EQ(trend.names({1, 2}), Texts({"1", "V1", "V1^2"}));
    ASSERT_EQ(raw.size(), 3u); // (x - 1)^2
    EXPECT_DOUBLE_EQ(raw[0].coefficient, 1.0);
    EXPECT_DOUBLE_EQ(raw[1].coefficient, -2.0);
    EXPECT_DOUBLE_EQ(raw[2].coefficient, 1.0);
}

TEST(KrigingTrend, ReportsEachTerm)
{
    const RecordedWork recorded;

    const KrigingTrend trend(20, 2, scattered(20), 2, 1);

    EXPECT_EQ(recorded.reports(), 6);
}
