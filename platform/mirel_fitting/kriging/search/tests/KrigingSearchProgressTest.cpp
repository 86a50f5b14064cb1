#include <mirel_fitting/kriging/search/KrigingSearchProgress.h>

#include <mirel_fitting/FitProgress.h>

#include <gtest/gtest.h>

#include <string>

namespace {

KrigingData casesOf(std::size_t cases)
{
    KrigingData data;
    data.cases = cases;
    return data;
}

/** What is reported after so much work. */
double fractionAfter(double multiplications, const KrigingData& data,
                     const KrigingSearch::Settings& settings)
{
    double result = 0.0;
    FitProgress progress([&](double fraction, const std::string&) {
        result = fraction;
        return true;
    });
    KrigingSearchProgress(100, data, settings).add(multiplications);
    return result;
}

} // namespace

TEST(KrigingSearchProgress, ComesCloseToTheEndWithoutReachingIt)
{
    EXPECT_LT(fractionAfter(1e30, casesOf(50), {}), 1.0);
    EXPECT_GT(fractionAfter(1e30, casesOf(50), {}), 0.95);
    EXPECT_EQ(fractionAfter(0.0, casesOf(50), {}), 0.0);
}

TEST(KrigingSearchProgress, ExpectsMoreOfMoreCases)
{
    EXPECT_GT(fractionAfter(1e6, casesOf(50), {}), fractionAfter(1e6, casesOf(500), {}));
}

TEST(KrigingSearchProgress, ExpectsTheStepsThatAreAllowed)
{
    KrigingSearch::Settings one;
    one.mostSteps = 1;

    // A likelihood takes n^3 / 6 multiplications, a gradient twice as many.
    EXPECT_GT(fractionAfter(1e9, casesOf(1000), one), 0.8);
    EXPECT_LT(fractionAfter(1e9, casesOf(1000), {}), 0.4);
}
