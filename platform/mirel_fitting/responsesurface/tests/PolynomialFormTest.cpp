#include <mirel_fitting/responsesurface/PolynomialForm.h>

#include <mirel_fitting/SurrogateModelInterface.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

PolynomialForm of(PolynomialTerms terms, const std::string& formula = "")
{
    return PolynomialForm::of({terms, ResponseSurfaceOptions::Selection::All, formula}, 3);
}

const PolynomialForm quadratic = of(PolynomialTerms::Quadratic);
const PolynomialForm interactions = of(PolynomialTerms::Interactions);
const PolynomialForm linear = of(PolynomialTerms::Linear);

std::string refusal(const PolynomialForm& form, std::size_t inputs, std::size_t cases)
{
    try {
        form.lowered(inputs, cases);
    } catch (const SurrogateModelInterface::Error& error) {
        return error.what();
    }
    return "";
}

} // namespace

TEST(PolynomialForm, HasTheTermsOfAFormula)
{
    const PolynomialForm chosen = of(PolynomialTerms::Chosen, "V1 + V3 + V1:V3 + V3^2");

    EXPECT_EQ(chosen.termCount(3), 5u);
    EXPECT_EQ(chosen.name(), "chosen terms");
    // 1, V1, V2, V3, V1^2, V1 V2, V1 V3, V2^2, V2 V3, V3^2
    EXPECT_EQ(chosen.wantedTerms(QuadraticBasis(3, 2)),
              (std::vector<char>{1, 1, 0, 1, 0, 0, 1, 0, 0, 1}));
    const PolynomialForm lowered = chosen.lowered(3, 4);
    EXPECT_EQ(lowered.order, 1);
    EXPECT_EQ(lowered.wantedTerms(QuadraticBasis(3, 1)), (std::vector<char>{1, 1, 0, 1}));
    EXPECT_EQ(of(PolynomialTerms::Chosen, "V2").order, 1);
    EXPECT_EQ(of(PolynomialTerms::Chosen, "1").order, 0);
}

TEST(PolynomialForm, CountsAndNamesItsTerms)
{
    EXPECT_EQ(linear.termCount(3), 4u);
    EXPECT_EQ(interactions.termCount(3), 7u);
    EXPECT_EQ(quadratic.termCount(3), 10u);
    EXPECT_EQ((PolynomialForm{0, true}).termCount(3), 1u);

    EXPECT_EQ(linear.name(), "linear");
    EXPECT_EQ(interactions.name(), "linear with interactions");
    EXPECT_EQ(quadratic.name(), "full quadratic");
    EXPECT_EQ((PolynomialForm{0, true}).name(), "constant");
}

TEST(PolynomialForm, IsLoweredUntilCasesAndInputsSuffice)
{
    EXPECT_EQ(quadratic.lowered(2, 6).name(), "full quadratic");
    EXPECT_EQ(quadratic.lowered(2, 5).name(), "linear");
    EXPECT_EQ(interactions.lowered(2, 4).name(), "linear with interactions");
    EXPECT_EQ(interactions.lowered(2, 3).name(), "linear");
    EXPECT_EQ(quadratic.lowered(2, 2).name(), "constant");

    EXPECT_EQ(interactions.lowered(1, 100).name(), "linear");
    EXPECT_EQ(quadratic.lowered(1, 100).name(), "full quadratic");
    EXPECT_EQ(quadratic.lowered(0, 100).name(), "constant");
}

TEST(PolynomialForm, IsRefusedWithMoreTermsThanCanBeFitted)
{
    EXPECT_EQ(refusal(quadratic, 139, 9870), "");
    EXPECT_EQ(refusal(quadratic, 141, 1000000),
              "The full quadratic polynomial of 141 inputs has 10153 terms; at most 10000 can be "
              "fitted.");
}

TEST(PolynomialForm, HasAllTermsOfTheBasisButSquaresThatWereNotChosen)
{
    const QuadraticBasis basis(2, 2); // 1, V1, V2, V1^2, V1 V2, V2^2

    EXPECT_EQ(interactions.wantedTerms(basis), (std::vector<char>{1, 1, 1, 0, 1, 0}));
    EXPECT_TRUE(quadratic.wantedTerms(basis).empty());
    EXPECT_TRUE(linear.wantedTerms(QuadraticBasis(2, 1)).empty());
}
