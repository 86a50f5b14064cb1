#include <mirel_fitting/numerics/LazyZeros.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

TEST(LazyZeros, AreZeroAndCanBeWritten)
{
    LazyZeros array(1000);
    EXPECT_EQ(std::count(array.data(), array.data() + 1000, 0.0), 1000);

    array.data()[999] = 2.0;
    const LazyZeros moved = std::move(array);
    EXPECT_EQ(moved.data()[999], 2.0);
}

TEST(LazyZeros, MayBeNone)
{
    EXPECT_NO_THROW(LazyZeros(0));
}
