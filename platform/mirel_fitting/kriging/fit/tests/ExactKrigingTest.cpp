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
        Columns inputs = latinHypercube(30, 1, 3);
        const std::vector<double> output = valuesOf(wave, inputs);
        const KrigingCases cases(pointersTo(inputs), output.size());
        KrigingFitOptions options = withTrend(0);
        options.nugget = leastNugget;
        const KrigingFitInput input{cases, output, options, OutputScale::of(output)};
        std::vector<std::string> warnings;
        auto data = std::make_shared<KrigingData>(DistinctCases(input, warnings).data());
        const auto trend = input.addTrend(*data);
        KrigingSearchResult found;
        found.parameters = {{length}, nugget};

        ExactKriging exact(input, trend, data, found);

        interpolates = exact.model.interpolates;
        std::vector<double> values(output.size());
        KrigingPredictor(exact.model).predict(pointersTo(inputs), 0, values.size(), values.data());
        for (std::size_t i = 0; i < values.size(); ++i) {
            largest = std::max(largest, std::fabs(values[i] - output[i]));
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
