// Response surfaces of which terms were chosen.

#include "ResponseSurfaceTestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

using namespace fittingtest;

namespace {

using Texts = std::vector<std::string>;

const Texts noTexts;

/** 1 + 2 V1 - 3 V2 + 4 V1 V2 at points that a full quadratic polynomial could be fitted to. */
Cases twisted(std::size_t count)
{
    Cases cases = twoInputs(count, 0.0);
    for (std::size_t k = 0; k < count; ++k) {
        const double v1 = cases.inputs[0][k];
        const double v2 = cases.inputs[1][k];
        cases.outputs[0][k] = 1.0 + 2.0 * v1 - 3.0 * v2 + 4.0 * v1 * v2;
    }
    return cases;
}

} // namespace

TEST(ResponseSurfaceTerms, MayBeThoseOfAFormula)
{
    Cases cases = vapourDeposition();
    const Model model(
        cases.inputPointers(), cases.outputPointers(), cases.count(),
        ResponseSurfaceOptions{PolynomialTerms::Chosen, Model::Selection::All, "V2 + V1:V2"});

    // R: lm(y ~ V1 + V2 + V1:V2), response_surface_statistics.R.
    const std::vector<CoefficientStatistics> found =
        model.responseSurfaceStatistics(0).coefficients;
    EXPECT_EQ(termsOf(model, true), (Texts{"1", "V1", "V2", "V1 V2"}));
    ASSERT_EQ(found.size(), 4u);
    expectFigure(found[1].estimate, -0.1173954350642329, "V1");
    expectFigure(found[3].standardError, 0.00405312329472906, "V1 V2");
    EXPECT_EQ(model.fitWarnings(0, {"A", "B"}),
              (Texts{"\"A\" was added to the chosen terms, since a product or square needs the "
                     "linear terms of its inputs: without them the fit would depend on where the "
                     "inputs are 0."}));
}

TEST(ResponseSurfaceTerms, AreTheOnesThatWereChosen)
{
    const std::pair<PolynomialTerms, Texts> rows[] = {
        {PolynomialTerms::Linear, {"1", "V1", "V2"}},
        {PolynomialTerms::Interactions, {"1", "V1", "V2", "V1 V2"}},
        {PolynomialTerms::Quadratic, {"1", "V1", "V2", "V1^2", "V1 V2", "V2^2"}},
    };
    for (const auto& [terms, names] : rows) {
        EXPECT_EQ(termsOf(fit(twoInputs(40, 1.0), terms), true), names);
    }
}

TEST(ResponseSurfaceTerms, WithInteractionsReproduceATwistedPlane)
{
    const Model model = fit(twisted(5), PolynomialTerms::Interactions);

    const double expected[] = {1.0, 2.0, -3.0, 4.0};
    const std::vector<CoefficientStatistics> table =
        model.responseSurfaceStatistics(0).coefficients;
    ASSERT_EQ(table.size(), 4u);
    for (std::size_t k = 0; k < 4; ++k) {
        EXPECT_NEAR(table[k].estimate, expected[k], 1e-12) << table[k].term;
    }
    EXPECT_EQ(model.surfaceCoefficientInformation(0).find("^2"), std::string::npos);
    EXPECT_NEAR(predict(model, {{1.5}, {-4.0}})[0], 1.0 + 3.0 + 12.0 - 24.0, 1e-11);
}

TEST(ResponseSurfaceTerms, WithInteractionsFitLeastSquares)
{
    const Cases cases = twoInputs(40, 3.0);
    const Model model = fit(cases, PolynomialTerms::Interactions);

    // The residuals are orthogonal to every term, and to no other one.
    const Column predicted = predict(model, cases.inputs);
    double sums[5] = {};
    for (std::size_t k = 0; k < cases.count(); ++k) {
        const double v1 = cases.inputs[0][k];
        const double v2 = cases.inputs[1][k];
        const double residual = cases.outputs[0][k] - predicted[k];
        const double terms[] = {1.0, v1, v2, v1 * v2, v1 * v1};
        for (std::size_t t = 0; t < 5; ++t) {
            sums[t] += residual * terms[t];
        }
    }
    for (std::size_t t = 0; t < 4; ++t) {
        EXPECT_NEAR(sums[t], 0.0, 1e-11) << t;
    }
    EXPECT_GT(std::fabs(sums[4]), 0.1);
}

TEST(ResponseSurfaceTerms, AreNotCalledDroppedIfNotChosen)
{
    const Model model = fit(twoInputs(40, 1.0), PolynomialTerms::Interactions);
    const ResponseSurfaceStatistics statistics = model.responseSurfaceStatistics(0);

    EXPECT_EQ(statistics.droppedTerms, noTexts);
    EXPECT_EQ(statistics.codedCoefficients.size(), 4u);
    EXPECT_EQ(statistics.residualDegreesOfFreedom, 36u);
    EXPECT_EQ(model.fitWarnings(0), noTexts);
    const std::string text = model.qualityMetricInformation(0);
    EXPECT_NE(text.find("Terms: 4\nOrder: linear with interactions\n"), std::string::npos) << text;
    EXPECT_EQ(text.find("Square:"), std::string::npos) << text;
}

TEST(ResponseSurfaceTerms, BecomeLinearWithTooFewCasesOrInputs)
{
    const Model model = fit(twoInputs(3, 1.0), PolynomialTerms::Interactions);

    EXPECT_EQ(termsOf(model, true), (Texts{"1", "V1", "V2"}));
    EXPECT_EQ(model.fitWarnings(0),
              Texts{"The order was lowered from linear with interactions to linear: 4 terms need "
                    "at least as many cases."});
    EXPECT_EQ(termsOf(fit(twoInputs(4, 1.0), PolynomialTerms::Interactions), true).size(), 4u);

    const Model ofOne = fit({{{0, 1, 2, 3, 5}}, {{1, 2, 3, 5, 6}}}, PolynomialTerms::Interactions);

    EXPECT_EQ(termsOf(ofOne, true), (Texts{"1", "V1"}));
    EXPECT_EQ(ofOne.fitWarnings(0), noTexts);
    EXPECT_EQ(termsOf(fit({{}, {{1, 2, 6}}}, PolynomialTerms::Interactions), true), Texts{"1"});
}

TEST(ResponseSurfaceTerms, AreSelectedAmongThoseChosen)
{
    const Model model = fit({{{0, 1, 2, 3, 4, 5, 6, 7}, {1, 0, 0, 1, 1, 0, 1, 0}},
                             {{1.1, 2.9, 5.1, 6.9, 9.1, 10.9, 13.1, 14.9}}},
                            PolynomialTerms::Interactions, Model::Selection::BackwardAicc);

    EXPECT_EQ(model.responseSurfaceStatistics(0).droppedTerms, (Texts{"V2", "V1 V2"}));
}

TEST(ResponseSurfaceTerms, HaveNoStationaryPointButASaddleWithInteractions)
{
    const auto point = [](PolynomialTerms terms) {
        return fit(twisted(40), terms).responseSurfaceStatistics(0).stationaryPoint;
    };

    EXPECT_FALSE(point(PolynomialTerms::Linear).has_value());
    ASSERT_TRUE(point(PolynomialTerms::Interactions).has_value());
    EXPECT_EQ(point(PolynomialTerms::Interactions)->nature, StationaryPoint::Nature::Saddle);
    EXPECT_NEAR(point(PolynomialTerms::Interactions)->coordinates[0], 0.75, 1e-11);
    EXPECT_NEAR(point(PolynomialTerms::Interactions)->coordinates[1], -0.5, 1e-11);
}
