#include <mirel_fitting/kriging/fit/KrigingEstimate.h>

#include "KrigingFitTestSupport.h"

#include <mirel_fitting/kriging/fit/DistinctCases.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace {

/** A smooth function at distinct points, and what is estimated from it. */
struct Estimated : FitProblem
{
    Estimated(Columns points, std::vector<double> values, const KrigingFitOptions& wanted)
        : FitProblem(std::move(points), std::move(values), wanted)
    {
        std::vector<std::string> warnings;
        auto data = std::make_shared<KrigingData>(DistinctCases(input, warnings).data());
        const auto trend = input.addTrend(*data);
        estimate = std::make_unique<KrigingEstimate>(input, trend, data);
    }

    std::vector<std::string> warnings() const
    {
        KrigingFit fit{KrigingPredictor(FittedKriging())};
        estimate->warn(fit);
        return KrigingTexts::warnings(fit);
    }

    std::unique_ptr<KrigingEstimate> estimate;
};

Estimated ofWave(std::size_t cases, const KrigingFitOptions& options)
{
    const Columns inputs = latinHypercube(cases, 2, 3);
    return {inputs, valuesOf(wave, inputs), options};
}

} // namespace

TEST(KrigingEstimate, ChoosesATrendThatPredictsBetter)
{
    const Estimated estimated = ofWave(30, withTrend(1));

    EXPECT_EQ(estimated.estimate->trend()->order(), 0);
    EXPECT_EQ(estimated.estimate->data()->terms, 1u);
    ASSERT_EQ(estimated.warnings().size(), 1u);
    EXPECT_EQ(estimated.warnings()[0].rfind("The order of the trend was lowered from 1 to 0", 0),
              0u);
}

TEST(KrigingEstimate, UsesASubsetOfTooManyCases)
{
    KrigingFitOptions options = withTrend(0);
    options.sizes.maxSearched = 50;
    options.sizes.searched = 40;
    const Estimated estimated = ofWave(60, options);

    EXPECT_EQ(estimated.estimate->data()->cases, 60u);
    EXPECT_EQ(estimated.warnings(),
              (std::vector<std::string>{
                  "There are more than 50 distinct cases: the model is the exact one of all of "
                  "them, with the correlation lengths of 40 cases spread over all, refined with "
                  "all."}));
}

TEST(KrigingEstimate, AveragesReplicatesThatDifferByRoundingNotByNoise)
{
    for (const double noise : {1e-13, 0.2}) {
        Columns inputs = latinHypercube(20, 1, 3);
        std::vector<double> output = valuesOf(wave, inputs);
        inputs[0].push_back(inputs[0][4]);
        output.push_back(output[4] + noise);

        const Estimated estimated(inputs, output, withTrend(0));

        EXPECT_EQ(estimated.estimate->data()->rowCount(), noise == 0.2 ? 21.0 : 20.0);
        EXPECT_EQ(estimated.estimate->data()->hasPureError(), noise == 0.2);
    }
}
