#include <mirel_fitting/BlasThreads.h>

#include <mirel_fitting/ThreadCount.h>

#include <gtest/gtest.h>

#include <cblas.h>

TEST(BlasThreads, WorksWithOneThreadOnSmallMatrices)
{
    const BlasThreads threads(100);

    EXPECT_EQ(openblas_get_num_threads(), 1);
}

TEST(BlasThreads, KeepsToTheLimitOnLargeMatrices)
{
    setThreadCount(1);
    {
        const BlasThreads threads(2000);
        EXPECT_EQ(openblas_get_num_threads(), 1);
    }
    setThreadCount(2);
    {
        const BlasThreads threads(2000);
        EXPECT_EQ(openblas_get_num_threads(), 2);
    }
    setThreadCount(0);
}

TEST(BlasThreads, RestoresWhatWasSet)
{
    const int before = openblas_get_num_threads();
    openblas_set_num_threads(2);
    {
        const BlasThreads outer(2000);
        const BlasThreads inner(10);
    }

    EXPECT_EQ(openblas_get_num_threads(), 2);
    openblas_set_num_threads(before);
}
