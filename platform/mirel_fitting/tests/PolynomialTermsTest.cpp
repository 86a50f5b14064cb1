#include <mirel_fitting/PolynomialTerms.h>

#include <gtest/gtest.h>

TEST(PolynomialTerms, HaveTheWordsOfUsers)
{
    for (const char* word : {"linear", "interactions", "quadratic"}) {
        EXPECT_STREQ(termsWord(termsOfWord(word)), word);
    }
    EXPECT_EQ(termsOfWord("A + B"), PolynomialTerms::Chosen);
    EXPECT_EQ(termsOfWord("Linear"), PolynomialTerms::Chosen);
}
