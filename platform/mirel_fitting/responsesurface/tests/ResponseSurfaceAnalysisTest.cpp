#include <mirel_fitting/responsesurface/ResponseSurfaceAnalysis.h>

#include "FittingTestSupport.h"

#include <cblas.h>
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

using namespace fittingtest;

namespace {

PolynomialFit fit(Cases cases, int order, const std::vector<char>& isWanted = {})
{
    return {QuadraticBasis(cases.inputs.size(), order), cases.inputPointers(),
            cases.outputPointers(), cases.count(), isWanted};
}

/** With the mean 4, Sxx = 5, Sxy = 7, Syy = 26: slope 1.4, intercept 1.9, SSE = 26 - 9.8 = 16.2. */
Cases fourOnALine()
{
    return {{{0.0, 1.0, 2.0, 3.0}}, {{4.0, 1.0, 3.0, 8.0}}};
}

/** A full two-level design of two factors, each run twice. */
Cases factorial()
{
    return {{{-1, 1, -1, 1, -1, 1, -1, 1}, {-1, -1, 1, 1, -1, -1, 1, 1}},
            {{28, 36, 18, 31, 25, 32, 19, 30}}};
}

} // namespace

TEST(ResponseSurfaceAnalysis, GivesTheStandardErrorsOfALineInClosedForm)
{
    const PolynomialFit line = fit(fourOnALine(), 1);
    const std::vector<CoefficientStatistics> found =
        ResponseSurfaceAnalysis(line, 0, {})
            .coefficients(ResponseSurfaceAnalysis::Inputs::Raw, 0.95);

    // s^2 = SSE / 2 = 8.1; variance of the slope s^2 / Sxx, of the intercept s^2 (1/4 + 1.5^2 / 5).
    // The t distribution with 2 degrees of freedom: P(|T| > t) = 1 - t / sqrt(2 + t^2), and its
    // 97.5 % quantile is 0.95 sqrt(2 / (1 - 0.95^2)).
    const double slopeError = std::sqrt(8.1 / 5.0);
    const double t = 1.4 / slopeError;
    const double quantile = 0.95 * std::sqrt(2.0 / (1.0 - 0.95 * 0.95));
    ASSERT_EQ(found.size(), 2u);
    EXPECT_EQ(found[0].term, "1");
    EXPECT_NEAR(found[0].estimate, 1.9, 1e-14);
    EXPECT_NEAR(found[0].standardError, std::sqrt(8.1 * (0.25 + 0.45)), 1e-13);
    EXPECT_EQ(found[1].term, "V1");
    EXPECT_NEAR(found[1].estimate, 1.4, 1e-14);
    EXPECT_NEAR(found[1].standardError, slopeError, 1e-13);
    EXPECT_NEAR(found[1].t, t, 1e-13);
    EXPECT_NEAR(found[1].p, 1.0 - t / std::sqrt(2.0 + t * t), 1e-13);
    EXPECT_NEAR(found[1].lower, 1.4 - quantile * slopeError, 1e-12);
    EXPECT_NEAR(found[1].upper, 1.4 + quantile * slopeError, 1e-12);
    EXPECT_NEAR(found[1].varianceInflation, 1.0, 1e-14);
    EXPECT_TRUE(std::isnan(found[0].varianceInflation));
}

TEST(ResponseSurfaceAnalysis, CodesInputsToTheirRanges)
{
    // V1 = 1.5 + 1.5 c: 1.9 + 1.4 V1 = 4 + 2.1 c.
    const PolynomialFit line = fit(fourOnALine(), 1);
    const std::vector<CoefficientStatistics> found =
        ResponseSurfaceAnalysis(line, 0, {})
            .coefficients(ResponseSurfaceAnalysis::Inputs::Coded, 0.95);

    EXPECT_NEAR(found[0].estimate, 4.0, 1e-14);
    EXPECT_NEAR(found[1].estimate, 2.1, 1e-14);
    EXPECT_NEAR(found[1].standardError, 1.5 * std::sqrt(8.1 / 5.0), 1e-13);
}

TEST(ResponseSurfaceAnalysis, SplitsSquaresByKindOfTerm)
{
    // The coefficients are the contrasts over 8: 4.875, -2.875 and 1.125 (interaction) about the
    // mean 27.375; each one's sum of squares is 8 times its square.
    const PolynomialFit twisted = fit(factorial(), 2, {1, 1, 1, 0, 1, 0});
    const ResponseSurfaceAnalysis::PureError pureError{4, 1.0};
    const std::vector<AnovaRow> rows = ResponseSurfaceAnalysis(twisted, 0, pureError).anova();

    const double linear = 8.0 * (4.875 * 4.875 + 2.875 * 2.875);
    const double interaction = 8.0 * 1.125 * 1.125;
    ASSERT_EQ(rows.size(), 7u);
    EXPECT_EQ(rows[0].source, "Model");
    EXPECT_EQ(rows[0].degreesOfFreedom, 3u);
    EXPECT_NEAR(rows[0].sumOfSquares, linear + interaction, 1e-11);
    EXPECT_EQ(rows[1].source, "Linear");
    EXPECT_EQ(rows[1].degreesOfFreedom, 2u);
    EXPECT_NEAR(rows[1].sumOfSquares, linear, 1e-11);
    EXPECT_EQ(rows[2].source, "Interaction");
    EXPECT_NEAR(rows[2].sumOfSquares, interaction, 1e-11);
    // Within the pairs: (9 + 16 + 1 + 1) / 2.
    EXPECT_EQ(rows[3].source, "Residual");
    EXPECT_EQ(rows[3].degreesOfFreedom, 4u);
    EXPECT_NEAR(rows[3].sumOfSquares, 13.5, 1e-11);
    EXPECT_NEAR(rows[2].f, interaction / (13.5 / 4.0), 1e-11);
    EXPECT_EQ(rows[4].source, "Lack of fit");
    EXPECT_EQ(rows[4].degreesOfFreedom, 0u);
    EXPECT_TRUE(std::isnan(rows[4].sumOfSquares));
    EXPECT_EQ(rows[5].source, "Pure error");
    EXPECT_EQ(rows[6].source, "Total");
    EXPECT_EQ(rows[6].degreesOfFreedom, 7u);
    EXPECT_NEAR(rows[6].sumOfSquares, linear + interaction + 13.5, 1e-11);
}

TEST(ResponseSurfaceAnalysis, TestsNoLackOfFitAgainstCopies)
{
    const PolynomialFit twisted = fit(factorial(), 2, {1, 1, 1, 0, 1, 0});
    const ResponseSurfaceAnalysis::PureError copies{4, 0.0};
    const std::vector<AnovaRow> rows = ResponseSurfaceAnalysis(twisted, 0, copies).anova();

    ASSERT_EQ(rows.size(), 5u);
    EXPECT_EQ(rows[3].source, "Residual");
    EXPECT_EQ(rows[4].source, "Total");
}

TEST(ResponseSurfaceAnalysis, AiccIsThatOfItsDefinitionAndNoneForHardlyMoreCasesThanTerms)
{
    const PolynomialFit line = fit({{{0, 1, 2, 3, 4, 5}}, {{1, 3, 2, 5, 4, 6}}}, 1);

    // Sxx = 17.5, Sxy = 15.5, Syy = 17.5; three parameters with the variance.
    const double squares = 17.5 - 15.5 * 15.5 / 17.5;
    const double twoPi = 6.283185307179586;
    EXPECT_NEAR(ResponseSurfaceAnalysis(line, 0, {}).aicc(),
                6.0 * (std::log(squares / 6.0) + std::log(twoPi) + 1.0) + 6.0 + 24.0 / 2.0, 1e-12);

    EXPECT_EQ(ResponseSurfaceAnalysis::aicc(1.0, 4, 2), infinity);
    EXPECT_TRUE(std::isfinite(ResponseSurfaceAnalysis::aicc(1.0, 5, 2)));
    EXPECT_TRUE(std::isnan(ResponseSurfaceAnalysis(fit(fourOnALine(), 1), 0, {}).aicc()));
}

TEST(ResponseSurfaceAnalysis, HasTheSameBitsWithAnyNumberOfBlasThreads)
{
    Random random(3);
    Cases cases;
    for (int input = 0; input < 26; ++input) {
        cases.inputs.push_back(random.next(400));
    }
    cases.outputs.push_back(random.next(400));
    const PolynomialFit whole = fit(cases, 2); // 378 terms
    const int before = openblas_get_num_threads();
    std::vector<std::vector<double>> squares;
    for (const int threads : {1, 2, 3}) {
        openblas_set_num_threads(threads);
        std::vector<double>& found = squares.emplace_back();
        for (const AnovaRow& row : ResponseSurfaceAnalysis(whole, 0, {}).anova()) {
            found.push_back(row.sumOfSquares);
        }
    }
    openblas_set_num_threads(before);

    EXPECT_EQ(squares[1], squares[0]);
    EXPECT_EQ(squares[2], squares[0]);
}
