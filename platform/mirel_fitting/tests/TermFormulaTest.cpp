#include <mirel_fitting/TermFormula.h>

#include "FittingTestSupport.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace fittingtest;

namespace {

using Term = TermFormula::Term;
using Terms = std::vector<Term>;

const std::vector<std::string> names = {"A", "Wall thickness", "x+1", "H2/WF6"};

Terms termsOf(const std::string& text)
{
    return TermFormula(text, names).terms();
}

} // namespace

TEST(TermFormula, ListsLinearTermsAndThoseOfSecondOrder)
{
    EXPECT_EQ(termsOf("A + H2/WF6 + A:H2/WF6 + A^2"), (Terms{{0}, {3}, {0, 0}, {0, 3}}));
    EXPECT_EQ(termsOf("A"), (Terms{{0}}));
    EXPECT_EQ(termsOf("1"), Terms());
    EXPECT_EQ(termsOf(" A^2+Wall thickness:A +A+A^1 + Wall thickness*A"),
              termsOf("A + Wall thickness + A:Wall thickness + A:A"));
    EXPECT_EQ(termsOf("\"x+1\"^2 + 'x+1' : 'A'"), (Terms{{0}, {2}, {0, 2}, {2, 2}}));
}

TEST(TermFormula, AddsTheLinearTermsOfProductsAndSquaresAndIsTheSameInSymbols)
{
    const TermFormula formula("A + A:H2/WF6 + Wall thickness^2", names);

    EXPECT_EQ(formula.terms(), (Terms{{0}, {1}, {3}, {0, 3}, {1, 1}}));
    EXPECT_EQ(formula.addedInputs(), (std::vector<std::size_t>{1, 3}));

    EXPECT_EQ(formula.symbols(), "1 + V1 + V1:V4 + V2:V2");
    const TermFormula again(formula.symbols(), 4);
    EXPECT_EQ(again.terms(), formula.terms());
    EXPECT_EQ(again.addedInputs(), formula.addedInputs());
}

TEST(TermFormula, NamesWhatIsWrong)
{
    const std::pair<const char*, const char*> refusals[] = {
        {"", "The terms \"\" have an empty term."},
        {"A ++ A^2", "The terms \"A ++ A^2\" have an empty term."},
        {"A +", "The terms \"A +\" have an empty term."},
        {"A + B", "The terms \"A + B\" name \"B\", which is no input."},
        {"A + A^3", "The term \"A^3\" is of third order or higher: a response surface has terms of "
                    "first and second order."},
        {"A:H2/WF6:Wall thickness",
         "The term \"A:H2/WF6:Wall thickness\" is of third order or higher: a response "
         "surface has terms of first and second order."},
        {"A^x", "The terms \"A^x\" have the power \"x\"; it can be 1 or 2."},
        {"'A' A", "The terms \"'A' A\" have \"A\" where +, : or the end is expected."},
    };
    for (const auto& [text, message] : refusals) {
        EXPECT_EQ(errorOf([text = text] { TermFormula(text, names); }), message);
    }
}
