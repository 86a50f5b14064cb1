#include "KrigingWaveTestSupport.h"

#include <gtest/gtest.h>

using namespace wavetest;

TEST(KrigingGradients, EqualFiniteDifferencesOfThePredictions)
{
    const Columns inputs = latinHypercube(40, 3, 11);
    const auto function = [](const std::vector<double>& x) { return wave(x) + x[2] * x[2] * x[0]; };
    for (const int order : {0, 1, 2}) {
        KrigingArguments arguments;
        arguments.trendOrder = order;
        const KrigingSurrogateModel model = arguments.model(inputs, {valuesOf(function, inputs)});
        const Columns points = latinHypercube(1100, 3, 12); // more than a block
        const Columns slopes = gradients(model, points);

        const double step = 1e-5;
        for (std::size_t k = 0; k < 3; ++k) {
            Columns more = points;
            Columns less = points;
            for (std::size_t i = 0; i < 1100; ++i) {
                more[k][i] += step;
                less[k][i] -= step;
            }
            const std::vector<double> above = predictions(model, more);
            const std::vector<double> below = predictions(model, less);
            for (std::size_t i = 0; i < 1100; ++i) {
                // The difference is good to the square of the step, and to the rounding of the
                // predictions over it.
                ASSERT_NEAR(slopes[k][i], (above[i] - below[i]) / (2.0 * step), 5e-6)
                    << order << ", input " << k << ", point " << i;
            }
        }
    }
}

TEST(KrigingGradients, AreInTheUnitsOfTheColumns)
{
    const Given given;
    Columns inputs = given.inputs;
    std::vector<double> output = valuesOf(wave, inputs);
    for (std::size_t i = 0; i < output.size(); ++i) {
        inputs[0][i] = 1e6 * inputs[0][i] + 3e6;
        output[i] *= 1e-9;
    }
    const KrigingArguments arguments{
        {1e-4, {0.4e6, 0.9}, 1, 0.5, 0.01, KrigingOptions::NuggetMode::Fixed}};

    const Columns expected = gradients(given.model(1, 0.01), {{0.25}, {0.5}});
    const Columns found = gradients(arguments.model(inputs, {output}), {{1e6 * 0.25 + 3e6}, {0.5}});

    EXPECT_NEAR(found[0][0], 1e-15 * expected[0][0], 1e-24);
    EXPECT_NEAR(found[1][0], 1e-9 * expected[1][0], 1e-18);
}

TEST(KrigingGradients, AreZeroForAConstantInput)
{
    Columns inputs = latinHypercube(20, 3, 11);
    inputs[1].assign(20, 4.0);
    const KrigingSurrogateModel model = KrigingArguments().model(
        inputs, {valuesOf([](const auto& x) { return std::sin(5.0 * x[0]) * x[2]; }, inputs)});

    const Columns slopes = gradients(model, {{0.5}, {4.5}, {0.5}});

    EXPECT_NE(slopes[0][0], 0.0);
    EXPECT_EQ(slopes[1][0], 0.0);
    EXPECT_NE(slopes[2][0], 0.0);
}
