#include <mirel_fitting/polynomial/ResidualPass.h>

#include "FittingTestSupport.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace fittingtest;

namespace {

/** Five cases on a line, scaled by nothing: x about its mean 0, squares 10. */
struct Line
{
    Cases cases{{{-2, -1, 0, 1, 2}}, {{1, 0, 3, 2, 9}}};
    QuadraticBasis basis{1, 1};
    std::vector<double*> inputs = cases.inputPointers();
    std::vector<double*> outputs = cases.outputPointers();
    std::vector<ColumnScale> inputScales{1};
    std::vector<ColumnScale> outputScales{1};
    WeightedBlocks equal;
    FitColumns columns{basis, inputs, outputs, 5, inputScales, outputScales, equal};

    std::vector<std::size_t> terms{0, 1};
    std::vector<double> inverseFactor{1.0 / std::sqrt(5.0), 0.0, 0.0, 1.0 / std::sqrt(10.0)};
    std::vector<double> coefficients{3.0, 1.8}; // mean 15 / 5, slope 18 / 10
    const Column residuals{1.6, -1.2, 0.0, -2.8, 2.4};
    const Column leverages{0.6, 0.3, 0.2, 0.3, 0.6}; // 1 / 5 + x^2 / 10

    FitResiduals evaluate(const std::vector<std::size_t>& sample = {})
    {
        const FactoredFit fit{terms, inverseFactor, coefficients};
        FitResiduals result;
        DesignPass::run(
            columns, [&] { return std::make_unique<ResidualPass>(columns, fit, sample, result); },
            0.0, 1.0);
        return result;
    }
};

} // namespace

TEST(ResidualPass, GivesResidualsAndLeveragesInClosedForm)
{
    Line line;

    const FitResiduals found = line.evaluate();

    EXPECT_LT(largestDifference(found.outputs[0].ofSampled, line.residuals), 1e-15);
    EXPECT_LT(largestDifference(found.leveragesOfSampled, line.leverages), 1e-15);
    EXPECT_NEAR(found.largestLeverage, 0.6, 1e-15);
    double squares = 0.0;
    double press = 0.0;
    for (std::size_t k = 0; k < 5; ++k) {
        squares += std::pow(line.residuals[k], 2);
        press += std::pow(line.residuals[k] / (1.0 - line.leverages[k]), 2);
    }
    EXPECT_NEAR(found.outputs[0].squares, squares, 1e-14);
    EXPECT_NEAR(found.outputs[0].press, press, 1e-13);
}

TEST(ResidualPass, KeepsTheFiguresOfSampledCasesAndSumsThemForARefinement)
{
    Line line;

    const FitResiduals found = line.evaluate({1, 4});

    EXPECT_LT(largestDifference(found.outputs[0].ofSampled, {-1.2, 2.4}), 1e-15);
    EXPECT_LT(largestDifference(found.leveragesOfSampled, {0.3, 0.6}), 1e-15);
    EXPECT_NEAR(found.outputs[0].squares, line.evaluate().outputs[0].squares, 0.0);

    EXPECT_NEAR(line.evaluate().gradients[0], 0.0, 1e-14) << "at the least squares";
    EXPECT_NEAR(line.evaluate().gradients[1], 0.0, 1e-14);

    line.coefficients = {2.0, 1.3}; // both too small: by 1 times 5 cases, by 0.5 times 10

    EXPECT_NEAR(line.evaluate().gradients[0], 5.0, 1e-14);
    EXPECT_NEAR(line.evaluate().gradients[1], 5.0, 1e-14);
}
