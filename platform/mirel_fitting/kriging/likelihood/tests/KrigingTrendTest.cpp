#include <mirel_fitting/kriging/likelihood/KrigingTrend.h>

#include "KrigingTestSupport.h"
#include "RecordedWork.h"

#include <gtest/gtest.h>

namespace {

using Texts = std::vector<std::string>;

Texts namesOf(const KrigingTrend& trend)
{
    Texts names;
    for (const QuadraticBasis::Term& term : trend.keptTerms()) {
        names.push_back(QuadraticBasis::name(term));
    }
    return names;
}

/** Two inputs, by columns. */
std::vector<double> scattered(std::size_t cases)
{
    return UniformNumbers(3).next(2 * cases);
}

} // namespace

TEST(KrigingTrend, HasTheTermsOfItsOrder)
{
    const std::vector<double> x = scattered(20);

    EXPECT_EQ(namesOf(KrigingTrend(20, 2, x, 0, 3)), Texts({"1"}));
    EXPECT_EQ(namesOf(KrigingTrend(20, 2, x, 1, 3)), Texts({"1", "V1", "V2"}));
    EXPECT_EQ(namesOf(KrigingTrend(20, 2, x, 2, 3)),
              Texts({"1", "V1", "V2", "V1^2", "V1 V2", "V2^2"}));
    EXPECT_EQ(namesOf(KrigingTrend(1, 0, {}, 2, 3)), Texts({"1"}));
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

    EXPECT_EQ(namesOf(trend), Texts({"1", "V1", "V2", "V1 V2"}));
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

TEST(KrigingTrend, ReportsEachTerm)
{
    const RecordedWork recorded;

    const KrigingTrend trend(20, 2, scattered(20), 2, 1);

    EXPECT_EQ(recorded.reports(), 6);
}
