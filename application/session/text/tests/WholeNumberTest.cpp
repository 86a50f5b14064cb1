#include <session/text/WholeNumber.h>

#include "MessageOf.h"

#include <session/text/SessionErrors.h>

#include <gtest/gtest.h>

#include <string>

TEST(WholeNumber, LiesWithinItsBounds)
{
    EXPECT_EQ(readWholeNumber("The count", "2", 2, 100), 2u);
    EXPECT_EQ(readWholeNumber("The count", "100", 2, 100), 100u);
    for (const char* text :
         {"", "1", "101", "-5", "5.0", "5 ", "five", "99999999999999999999999"}) {
        EXPECT_EQ(messageOf<UsageError>([&] { readWholeNumber("The count", text, 2, 100); }),
                  "The count needs a whole number from 2 to 100, not \"" + std::string(text) +
                      "\".");
    }
}
