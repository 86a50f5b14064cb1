#include <mirel_property/ExceptionBase.h>

#include <gtest/gtest.h>

#include <utility>

TEST(ExceptionBase, CarriesItsMessage)
{
    EXPECT_STREQ(veska::ExceptionBase("no such variable").what(), "no such variable");
}

TEST(ExceptionBase, IsCaughtAsStandardException)
{
    try {
        throw veska::ExceptionBase("text");
    } catch (const std::exception& error) {
        EXPECT_STREQ(error.what(), "text");
    }
}

TEST(ExceptionBase, KeepsItsMessageWhenCopiedOrMovedFrom)
{
    veska::ExceptionBase original("text");
    veska::ExceptionBase copy = original;
    veska::ExceptionBase moved = std::move(original); // NOLINT(performance-move-const-arg): tried

    EXPECT_STREQ(copy.what(), "text");
    EXPECT_STREQ(moved.what(), "text");
    EXPECT_STREQ(original.what(), "text"); // NOLINT(bugprone-use-after-move): it is the promise
}
