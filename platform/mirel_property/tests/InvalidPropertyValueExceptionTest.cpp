#include <mirel_property/InvalidPropertyValueException.h>

#include <gtest/gtest.h>

TEST(InvalidPropertyValueException, IsCaughtAsExceptionBaseWithItsText)
{
    try {
        throw veska::InvalidPropertyValueException("out of range");
    } catch (const veska::ExceptionBase& error) {
        EXPECT_STREQ(error.what(), "out of range");
    }
}
