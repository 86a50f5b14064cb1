#include <mirel_fitting/responsesurface/TermSelection.h>

#include <mirel_fitting/responsesurface/ResponseSurfaceAnalysis.h>

#include "FittingTestSupport.h"

#include <gtest/gtest.h>

#include <string>

using namespace fittingtest;

namespace {

PolynomialFit fit(Cases cases, const std::vector<char>& isWanted = {})
{
    return {QuadraticBasis(cases.inputs.size(), 2), cases.inputPointers(), cases.outputPointers(),
            cases.count(), isWanted};
}

double aiccOf(const PolynomialFit& fit)
{
    return ResponseSurfaceAnalysis(fit, 0, {}).aicc();
}

std::vector<std::string> termsOf(const TermSelection& selection, const QuadraticBasis& basis)
{
    std::vector<std::string> names;
    for (std::size_t term = 0; term < basis.size(); ++term) {
        if (selection.isWanted()[term]) {
            names.push_back(basis.name(term));
        }
    }
    return names;
}

/** A function of two inputs that its cases follow but for some noise. */
Cases noisy(double (*function)(double, double), std::size_t count, double noise)
{
    Cases cases = twoInputs(count, 0.0);
    Random random(7);
    for (std::size_t k = 0; k < count; ++k) {
        cases.outputs[0][k] =
            function(cases.inputs[0][k], cases.inputs[1][k]) + noise * (random.next() - 0.5);
    }
    return cases;
}

using Texts = std::vector<std::string>;

} // namespace

TEST(TermSelection, KeepsTheTermsOfTheFunctionAndTheLinearOnesOfItsProducts)
{
    struct
    {
        Cases cases;
        Texts kept;
    } const rows[] = {
        {noisy([](double, double y) { return 1.0 + 2.0 * y + y * y; }, 60, 0.0),
         {"1", "V2", "V2^2"}},
        // About the middle of the ranges the linear terms of this function are nearly 0.
        {noisy([](double x, double y) { return (x - 2.0) * (y - 0.5); }, 60, 0.01),
         {"1", "V1", "V2", "V1 V2"}},
        {noisy([](double, double) { return 5.0; }, 200, 0.0), {"1"}}};
    for (const auto& row : rows) {
        const PolynomialFit whole = fit(row.cases);
        const TermSelection selection(whole, 0);

        EXPECT_EQ(termsOf(selection, whole.basis()), row.kept);
        EXPECT_TRUE(selection.dropsAny());
    }
}

TEST(TermSelection, KeepsAllWhereEachLowersTheCriterionAndOfTooFewCases)
{
    const PolynomialFit whole = fit(twoInputs(60, 0.01));
    const TermSelection selection(whole, 0);

    EXPECT_FALSE(selection.dropsAny());
    EXPECT_EQ(termsOf(selection, whole.basis()).size(), 6u);

    // AICc is infinite for every polynomial that three cases can be fitted with.
    Cases cases{{{0.0, 1.0, 3.0}}, {{1.0, 5.0, 2.0}}};
    const PolynomialFit few = fit(cases);

    EXPECT_FALSE(TermSelection(few, 0).dropsAny());
}

TEST(TermSelection, EndsWhereNoFitWithoutASingleTermIsBetter)
{
    for (const std::size_t count : {12, 20, 40}) {
        const Cases cases = noisy(surface, count, 20.0);
        const PolynomialFit whole = fit(cases);
        const TermSelection selection(whole, 0);
        const double chosen = aiccOf(fit(cases, selection.isWanted()));

        EXPECT_LE(chosen, aiccOf(whole));
        // Refits without one of the squares and products left.
        for (std::size_t term = 3; term < 6; ++term) {
            std::vector<char> fewer = selection.isWanted();
            if (fewer[term]) {
                fewer[term] = 0;
                EXPECT_GE(aiccOf(fit(cases, fewer)), chosen - 1e-9);
            }
        }
    }
}

TEST(TermSelection, NeverKeepsWhatTheCasesCannotSeparate)
{
    Cases cases = twoInputs(40, 1.0);
    cases.inputs[0].assign(40, 2.0);
    const PolynomialFit whole = fit(cases);

    for (const std::size_t term : {1, 3, 4}) {
        EXPECT_FALSE(TermSelection(whole, 0).isWanted()[term]);
    }
}

TEST(TermSelection, ChoosesForTheOutputAskedFor)
{
    Cases cases = noisy([](double x, double) { return 1.0 + x; }, 60, 0.0);
    cases.outputs.push_back(
        noisy([](double, double y) { return 1.0 - y * y; }, 60, 0.0).outputs[0]);
    const PolynomialFit whole = fit(cases);

    EXPECT_EQ(termsOf(TermSelection(whole, 0), whole.basis()), (Texts{"1", "V1"}));
    EXPECT_EQ(termsOf(TermSelection(whole, 1), whole.basis()), (Texts{"1", "V2", "V2^2"}));
}
