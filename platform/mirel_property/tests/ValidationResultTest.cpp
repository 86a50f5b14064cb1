#include <mirel_property/ValidationResult.h>

#include <gtest/gtest.h>

TEST(ValidationResult, IsValidByDefault)
{
    EXPECT_TRUE(veska::ValidationResult().isValid());
    EXPECT_EQ(veska::ValidationResult().errorString(), "");
}

TEST(ValidationResult, IsInvalidWithAnErrorText)
{
    EXPECT_FALSE(veska::ValidationResult("too large").isValid());
    EXPECT_EQ(veska::ValidationResult("too large").errorString(), "too large");
}

TEST(ValidationResult, IsInvalidAlsoWithAnEmptyErrorText)
{
    EXPECT_FALSE(veska::ValidationResult(std::string()).isValid());
}
