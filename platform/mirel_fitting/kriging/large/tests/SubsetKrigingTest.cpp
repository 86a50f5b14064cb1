#include <mirel_fitting/kriging/large/SubsetKriging.h>

#include "KrigingTestSupport.h"

#include <mirel_fitting/kriging/correlation/NuggetBounds.h>

#include <gtest/gtest.h>

#include <numeric>

namespace {

constexpr std::size_t cases = 120;
constexpr std::size_t inSubset = 60;

double bump(const std::vector<double>& x)
{
    return std::sin(3.0 * x[0]) + x[0] * x[1];
}

KrigingData allCases()
{
    const Columns x = latinHypercube(cases, 2, 5);
    return *dataOf(x, valuesOf(bump, x));
}

SubsetKriging::Subset firstHalf(const KrigingData& all)
{
    SubsetKriging::Subset subset;
    subset.indices.resize(inSubset);
    std::iota(subset.indices.begin(), subset.indices.end(), std::size_t{0});
    auto data = std::make_shared<KrigingData>(all.subset(subset.indices));
    subset.trend = std::make_shared<KrigingTrend>(data->cases, 2, data->coordinates, 0, 3);
    data->terms = subset.trend->size();
    data->trend = subset.trend->matrix();
    subset.data = data;
    return subset;
}

double largest(const std::vector<double>& values, std::size_t first, std::size_t last)
{
    double result = 0.0;
    for (std::size_t i = first; i < last; ++i) {
        result = std::max(result, std::fabs(values[i]));
    }
    return result;
}

} // namespace

TEST(SubsetKriging, InterpolatesItsCasesUnlessTheNuggetStandsForNoise)
{
    const KrigingData all = allCases();
    const SubsetKriging::Subset subset = firstHalf(all);
    SubsetKriging kriging(all, subset, {0.8, 0.8});

    const SubsetKriging::Model model = kriging.fit(NuggetBounds::sound, true);
    const std::vector<double> residuals = kriging.residuals(model);

    EXPECT_TRUE(model.interpolates);
    EXPECT_LT(largest(residuals, 0, inSubset), 1e-9);
    EXPECT_GT(largest(residuals, inSubset, cases), 1e-9);
    EXPECT_LT(largest(residuals, inSubset, cases), 0.1);

    const SubsetKriging::Model smooth = kriging.fit(0.1, true);

    EXPECT_FALSE(smooth.interpolates);
    EXPECT_GT(largest(kriging.residuals(smooth), 0, inSubset), 1e-3);

    SubsetKriging::Model trend = model;
    trend.weights.clear();
    const std::vector<double> ofTrend = kriging.residuals(trend);

    for (std::size_t i = 0; i < cases; ++i) {
        EXPECT_NEAR(ofTrend[i], all.output[i] - model.coefficients[0], 1e-12);
    }
}

TEST(SubsetKriging, RaisesANuggetThatLeavesTheMatrixSingular)
{
    const KrigingData all = allCases();
    const SubsetKriging::Subset subset = firstHalf(all);
    SubsetKriging kriging(all, subset, {1e6, 1e6}); // all correlations are 1 to the last digit

    const SubsetKriging::Model model = kriging.fit(1e-18, true);

    EXPECT_TRUE(model.isNuggetRaised);
    EXPECT_GT(model.nugget, 1e-18);
    EXPECT_FALSE(model.interpolates);
}
