#include <session/text/DateText.h>

#include <gtest/gtest.h>

TEST(DateText, DatesAndTimesAreKnownFromFractionsSpansAndOtherTexts)
{
    for (const char* text : {"2024-01-31", "31.01.2024 12:30", "1.2.2024 08:00",
                             "2024-01-31T12:30:05Z", "7:05 PM", "12-Jan-2024", "04.03."}) {
        EXPECT_TRUE(isDateOrTime(text)) << text;
    }
    for (const char* text :
         {"north", "A-12/7", "1:4", "3/8", "0.5-1.5", "2.5-", "3 mm", "1 2", "12", ""}) {
        EXPECT_FALSE(isDateOrTime(text)) << text;
    }
}
