#include <session/model/PolynomialWords.h>

#include <gtest/gtest.h>

TEST(PolynomialWords, AreReadAsTheyAreWritten)
{
    for (const PolynomialTerms terms :
         {PolynomialTerms::Linear, PolynomialTerms::Interactions, PolynomialTerms::Quadratic}) {
        EXPECT_EQ(termsOfWord(termsWord(terms)), terms);
    }
    EXPECT_STREQ(termsWord(PolynomialTerms::Interactions), "interactions");
}

TEST(PolynomialWords, AreNoOthers)
{
    EXPECT_EQ(termsOfWord(""), std::nullopt);
    EXPECT_EQ(termsOfWord("Linear"), std::nullopt);
    EXPECT_EQ(termsOfWord("cubic"), std::nullopt);
}
