#include <mirel_fitting/kriging/likelihood/KrigingEquations.h>

#include "KrigingLikelihoodTestSupport.h"

#include <gtest/gtest.h>

namespace {

class KrigingEquationsOfCases : public ::testing::Test
{
protected:
    KrigingEquationsOfCases() { equations.solve(someLengths, someNugget); }

    const std::shared_ptr<KrigingData> data = someData(15);
    KrigingEquations equations{data};
};

} // namespace

TEST_F(KrigingEquationsOfCases, HasResidualsAndVariancesOfLeftOutCasesLikeRefits)
{
    const auto withNoise = equations.leaveOneOut(true);
    const auto withoutNoise = equations.leaveOneOut(false);

    EXPECT_EQ(withoutNoise.residuals, withNoise.residuals);
    for (std::size_t i = 0; i < data->cases; ++i) {
        SCOPED_TRACE(i);
        const DirectKriging others = direct(*data, someLengths, someNugget, i);
        const DirectKriging::Vector point = {data->coordinates[i],
                                             data->coordinates[data->cases + i]};
        const DirectKriging::Vector terms = {1.0L, point[0], point[1]};
        EXPECT_NEAR(withNoise.residuals[i],
                    static_cast<double>(data->output[i] - others.predict(point, terms)), 1e-9);
        EXPECT_NEAR(withNoise.variances[i],
                    static_cast<double>(others.relativeVariance(point, terms)) + someNugget, 1e-10);
        EXPECT_NEAR(withoutNoise.variances[i],
                    static_cast<double>(others.errorWithoutNoise(point, terms)), 1e-10);
    }
}

TEST(KrigingEquations, LeavesOutNoCaseThatTheTrendCannotDoWithout)
{
    // Only the last case has another second coordinate: without it the slope is unknown.
    const auto data = someData(8);
    for (std::size_t i = 0; i < 8; ++i) {
        data->coordinates[8 + i] = data->trend[16 + i] = i == 7 ? 1.0 : 0.0;
    }
    KrigingEquations equations(data);
    equations.solve(someLengths, someNugget);

    const std::vector<double> residuals = equations.leaveOneOut(true).residuals;

    EXPECT_TRUE(std::isfinite(residuals[0]));
    EXPECT_TRUE(std::isnan(residuals[7]));
}

TEST_F(KrigingEquationsOfCases, KnowsTheErrorsOfTheTrendsCoefficients)
{
    const std::vector<double> errors = equations.coefficientErrors();

    // A point that nothing correlates with has the variance 1 more than the trend there.
    const DirectKriging all = direct(*data, someLengths, someNugget);
    const DirectKriging::Vector farAway = {1e6, 1e6};
    for (std::size_t t = 0; t < 3; ++t) {
        DirectKriging::Vector term(3, 0.0L);
        term[t] = 1.0L;
        EXPECT_NEAR(errors[t] * errors[t],
                    static_cast<double>(all.relativeVariance(farAway, term)) - 1.0, 1e-10)
            << t;
    }
}

TEST(KrigingEquations, EstimatesTheCondition)
{
    // Nearly independent cases: close to 1. Long lengths and a small nugget: the largest eigenvalue
    // is near the number of cases, the smallest near the nugget.
    KrigingEquations equations(someData(30));

    equations.solve({1e-4, 1e-4}, 1e-3);
    EXPECT_NEAR(equations.conditionEstimate(), 1.0, 1e-6);

    equations.solve({300.0, 300.0}, 1e-3);
    EXPECT_GT(equations.conditionEstimate(), 1e4);
    EXPECT_LT(equations.conditionEstimate(), 30.0 * 30.0 / 1e-3);
}

TEST_F(KrigingEquationsOfCases, ReportsItsResiduals)
{
    const std::vector<double> residuals = equations.residuals();

    // R weights = y - trend, and R is the correlation plus the nugget.
    for (std::size_t i = 0; i < data->cases; ++i) {
        EXPECT_NEAR(residuals[i], someNugget * equations.weights()[i], 1e-10) << i;
    }
}

TEST(KrigingEquations, KnowsWhetherMostCasesLieFartherApartThanALength)
{
    KrigingEquations equations(someData(30));

    equations.solve(someLengths, someNugget);
    EXPECT_FALSE(equations.areCasesFarApart());

    equations.solve({0.02, 0.02}, someNugget);
    EXPECT_TRUE(equations.areCasesFarApart());
}
