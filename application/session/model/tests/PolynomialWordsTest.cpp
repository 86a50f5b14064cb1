#include <session/model/PolynomialWords.h>

#include <gtest/gtest.h>

TEST(PolynomialWords, AreThoseOfOptionsAndReports)
{
    EXPECT_STREQ(termsWord(PolynomialTerms::Linear), "linear");
    EXPECT_STREQ(termsWord(PolynomialTerms::Interactions), "interactions");
    EXPECT_STREQ(termsWord(PolynomialTerms::Quadratic), "quadratic");
}
