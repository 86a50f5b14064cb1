#include <mirel_fitting/BoxCoxProfile.h>

#include "ResponseSurfaceTestSupport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

using namespace fittingtest;

namespace {

/** By full quadratic polynomials of the inputs. */
BoxCoxProfile profile(Cases cases)
{
    return BoxCoxProfile::of(cases.outputs[0], [&](const std::vector<Column>& outputs) {
        Cases transformed = {cases.inputs, outputs};
        const Model model = fit(transformed);
        std::vector<double> likelihoods;
        for (std::size_t k = 0; k < outputs.size(); ++k) {
            likelihoods.push_back(model.fitMetrics(static_cast<int>(k)).logLikelihood);
        }
        return likelihoods;
    });
}

Cases exponential(double power, std::size_t count)
{
    Cases cases = twoInputs(count, 2.0);
    for (double& value : cases.outputs[0]) {
        value = power == 0.0 ? std::exp(value / 8.0) : std::pow(value / 8.0 + 4.0, 1.0 / power);
    }
    return cases;
}

} // namespace

TEST(BoxCoxProfile, IsThatOfR)
{
    const BoxCoxProfile plain = profile(vapourDeposition());
    EXPECT_NEAR(plain.power, 1.348000750512466, 1e-3);
    EXPECT_NEAR(plain.lower, -0.288390544351734, 1e-3);
    EXPECT_EQ(plain.upper, 2.0);
    EXPECT_EQ(plain.transform, OutputTransform::None);
    EXPECT_TRUE(plain.isBetweenLimits);

    Cases cases = vapourDeposition();
    for (double& value : cases.outputs[0]) {
        value = std::exp(value);
    }
    const BoxCoxProfile exponentials = profile(cases);
    EXPECT_NEAR(exponentials.power, 0.0634149413755676, 1e-3);
    EXPECT_NEAR(exponentials.lower, -0.2241372114942328, 1e-3);
    EXPECT_NEAR(exponentials.upper, 0.3239422436643870, 1e-3);
    EXPECT_EQ(exponentials.transform, OutputTransform::Logarithm);
    EXPECT_TRUE(exponentials.isBetweenLimits);
}

TEST(BoxCoxProfile, TakesTheCustomaryPowerBetweenTheLimits)
{
    EXPECT_EQ(profile(exponential(0.5, 200)).transform, OutputTransform::SquareRoot);
    EXPECT_EQ(profile(exponential(0.0, 200)).transform, OutputTransform::Logarithm);
    EXPECT_EQ(profile(exponential(1.0, 200)).transform, OutputTransform::None);

    const BoxCoxProfile many = profile(exponential(0.0, 4000));

    EXPECT_LT(many.lower, 0.0);
    EXPECT_GT(many.upper, 0.0);
    EXPECT_LT(many.upper - many.lower, 0.1);

    const BoxCoxProfile reciprocal = profile(exponential(-1.0, 4000));

    EXPECT_NEAR(reciprocal.power, -1.0, 0.4);
    EXPECT_LT(reciprocal.upper, 0.0);
    EXPECT_EQ(reciprocal.transform, OutputTransform::Logarithm);
    EXPECT_FALSE(reciprocal.isBetweenLimits);
}

TEST(BoxCoxProfile, KeepsThePowerThatFitsExactly)
{
    Cases cases = twoInputs(30, 0.0);
    for (double& value : cases.outputs[0]) {
        value += 10.0;
    }
    const BoxCoxProfile exact = profile(cases);

    EXPECT_NEAR(exact.power, 1.0, 1e-2);
    EXPECT_EQ(exact.transform, OutputTransform::None);
}
