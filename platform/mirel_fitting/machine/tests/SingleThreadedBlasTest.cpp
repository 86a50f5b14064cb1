#include <mirel_fitting/machine/SingleThreadedBlas.h>

#include <gtest/gtest.h>

#include <cblas.h>

#include <memory>

TEST(SingleThreadedBlas, LimitsOpenBlasToOneThreadAndRestoresWhatWasSet)
{
    const int before = openblas_get_num_threads();
    openblas_set_num_threads(2);
    {
        const SingleThreadedBlas outer;
        EXPECT_EQ(openblas_get_num_threads(), 1);
        {
            const SingleThreadedBlas inner;
        }
        EXPECT_EQ(openblas_get_num_threads(), 1);
    }

    EXPECT_EQ(openblas_get_num_threads(), 2);
    openblas_set_num_threads(before);
}

TEST(SingleThreadedBlas, IsUndoneByTheLastOfThoseThatOverlap)
{
    // As two fits in two threads do: the first to begin is the first to end.
    const int before = openblas_get_num_threads();
    openblas_set_num_threads(2);
    auto first = std::make_unique<SingleThreadedBlas>();
    auto second = std::make_unique<SingleThreadedBlas>();

    first.reset();
    EXPECT_EQ(openblas_get_num_threads(), 1);
    second.reset();

    EXPECT_EQ(openblas_get_num_threads(), 2);
    openblas_set_num_threads(before);
}
