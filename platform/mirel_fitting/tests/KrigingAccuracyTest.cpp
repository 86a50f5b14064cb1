#include <mirel_fitting/KrigingSurrogateModel.h>

#include "KrigingTestSupport.h"
#include "TestFunctions.h"

#include <gtest/gtest.h>

namespace {

double errorOf(const KrigingSurrogateModel& model, const Function& function, std::size_t inputs)
{
    const Columns points = latinHypercube(1000, inputs, 4711);
    return relativeError(predictions(model, points), valuesOf(function, points));
}

double errorOfFit(const Function& function, std::size_t inputs, std::size_t cases, int trendOrder)
{
    const Columns design = latinHypercube(cases, inputs, 17);
    KrigingArguments arguments;
    arguments.trendOrder = trendOrder;
    return errorOf(arguments.model(design, {valuesOf(function, design)}), function, inputs);
}

} // namespace

// The limits are about twice what maximum likelihood with this correlation reaches on such designs:
// Branin 4e-3 and 5e-5, Hartmann 0.4. A search that ends in a false optimum misses them by far.

TEST(KrigingAccuracy, PredictsBraninAndHartmann)
{
    EXPECT_LT(errorOfFit(branin, 2, 50, 0), 1e-2);
    EXPECT_LT(errorOfFit(branin, 2, 50, 1), 1e-2);
    EXPECT_LT(errorOfFit(branin, 2, 50, 2), 1e-2);
    EXPECT_LT(errorOfFit(branin, 2, 200, 1), 1e-4);
    EXPECT_LT(errorOfFit(hartmann6, 6, 200, 1), 0.6);
}

TEST(KrigingAccuracy, SmoothsNoiseAway)
{
    // Noise of 5 over the spread of 51; 200 cases average it to about a third.
    const Columns design = latinHypercube(200, 2, 17);
    std::vector<double> output = valuesOf(branin, design);
    UniformNumbers numbers(23);
    for (double& y : output) {
        y += 5.0 * numbers.normal();
    }
    const KrigingSurrogateModel model = KrigingArguments().model(design, {output});

    EXPECT_LT(errorOf(model, branin, 2), 0.08);
    const KrigingReport report = model.krigingReport(0);
    EXPECT_NEAR(std::sqrt(report.nugget * report.processVariance), 5.0, 1.0);
    EXPECT_GT(model.fitMetrics(0).rmse, 3.0) << "it does not pass through the cases";
}

TEST(KrigingAccuracy, EstimatesItsErrorByLeavingCasesOut)
{
    const Columns design = latinHypercube(100, 2, 17);
    const KrigingSurrogateModel model =
        KrigingArguments().model(design, {valuesOf(branin, design)});
    const Columns points = latinHypercube(1000, 2, 4711);
    const std::vector<double> expected = valuesOf(branin, points);
    const std::vector<double> found = predictions(model, points);
    double squares = 0.0;
    for (std::size_t i = 0; i < 1000; ++i) {
        squares += (found[i] - expected[i]) * (found[i] - expected[i]);
    }

    // Errors concentrate at the border: an estimate of the order of the error is what to expect.
    const double ratio = model.fitMetrics(0).looRmse / std::sqrt(squares / 1000.0);
    EXPECT_GT(ratio, 0.2);
    EXPECT_LT(ratio, 5.0);
}

// The stress of the deposition experiment (NIST/SEMATECH e-Handbook of Statistical
// Methods, 5.4.7.3) over both factors and the other output. In the best optimum known, -0.402, the
// third input has no influence; searches from the standard starts end at -1.007.
TEST(KrigingAccuracy, FindsTheBestOptimumOfFewCases)
{
    const Columns inputs = {{80, 42, 68.87, 15.13, 4, 42, 15.13, 42, 68.87, 42, 42},
                            {6, 6, 3.17, 8.83, 6, 6, 3.17, 2, 8.83, 10, 6},
                            {4.6, 6.2, 3.4, 6.9, 7.3, 6.4, 8.6, 6.3, 5.1, 5.4, 5.0}};
    const std::vector<double> stress = {8.04, 7.78, 7.58, 7.27, 6.49, 7.69,
                                        6.66, 7.16, 8.33, 8.19, 7.9};

    EXPECT_GT(KrigingArguments().model(inputs, {stress}).krigingReport(0).logLikelihood, -0.41);
}
