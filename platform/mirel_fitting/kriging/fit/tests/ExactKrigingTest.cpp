#include <mirel_fitting/kriging/fit/ExactKriging.h>

#include "KrigingFitTestSupport.h"

#include <mirel_fitting/kriging/fit/DistinctCases.h>
#include <mirel_fitting/kriging/prediction/KrigingPredictor.h>

#include <gtest/gtest.h>

namespace {

/** Predictions at the cases of a wave, minus its values; the largest of them. */
struct AtCases
{
    AtCases(double length, double nugget, double leastNugget)
    {
        KrigingFitOptions options = withTrend(0);
        options.nugget = leastNugget;
        const Columns inputs = latinHypercube(30, 1, 3);
        FitProblem problem(inputs, valuesOf(wave, inputs), options);
        std::vector<std::string> warnings;
        auto data = std::make_shared<KrigingData>(DistinctCases(problem.input, warnings).data());
        const auto trend = problem.input.addTrend(*data);
        KrigingSearchResult found;
        found.parameters = {{length}, nugget};

        ExactKriging exact(problem.input, trend, data, found);

        interpolates = exact.model.interpolates;
        std::vector<double> values(problem.output.size());
        KrigingPredictor(exact.model)
            .predict(pointersTo(problem.inputs), 0, values.size(), values.data());
        for (std::size_t i = 0; i < values.size(); ++i) {
            largest = std::max(largest, std::fabs(values[i] - problem.output[i]));
        }
    }

    bool interpolates = false;
    double largest = 0.0;
};

} // namespace

TEST(ExactKriging, InterpolatesUnlessTheNuggetStandsForNoise)
{
    const AtCases found(0.5, 1e-12, 0.0);

    EXPECT_TRUE(found.interpolates);
    EXPECT_LT(found.largest, 1e-6);

    for (const double least : {0.0, 0.1}) {
        const AtCases smooth(0.5, 0.1, least);

        EXPECT_FALSE(smooth.interpolates);
        EXPECT_GT(smooth.largest, 1e-3);
    }
}
