#include <plot/drawing/PictureSize.h>

#include "../../../session/tests/MessageOf.h"

#include <session/text/SessionErrors.h>

#include <gtest/gtest.h>

TEST(PictureSize, ReadsWidthAndHeight)
{
    const PictureSize size = PictureSize::parse("1024x300");

    EXPECT_EQ(size.width, 1024);
    EXPECT_EQ(size.height, 300);
}

TEST(PictureSize, RefusesWhatIsNoSize)
{
    for (const char* text : {"", "x", "800", "800x", "x600", "800x600x2", "800 x 600", "-800x600",
                             "299x600", "800x10001", "99999999999x600"}) {
        EXPECT_THROW(PictureSize::parse(text), UsageError) << text;
    }
}

TEST(PictureSize, SaysWhatASizeLooksLike)
{
    EXPECT_EQ(messageOf<UsageError>([] { PictureSize::parse("big"); }),
              "The size of a picture needs width and height in pixels such as 800x600, each from "
              "300 to 10000, not \"big\".");
}
