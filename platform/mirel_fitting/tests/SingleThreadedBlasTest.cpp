#include <mirel_fitting/SingleThreadedBlas.h>

#include <gtest/gtest.h>

#include <cblas.h>

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
