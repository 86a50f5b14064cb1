#include <mirel_property/ValidationResult.h>

#include <gtest/gtest.h>

TEST(ValidationResult, IsValidUnlessItHasAnErrorTextEvenAnEmptyOne)
{
    EXPECT_TRUE(veska::ValidationResult().isValid());
    EXPECT_EQ(veska::ValidationResult().errorString(), "");
    EXPECT_FALSE(veska::ValidationResult("too large").isValid());
    EXPECT_EQ(veska::ValidationResult("too large").errorString(), "too large");
    EXPECT_FALSE(veska::ValidationResult(std::string()).isValid());
}
