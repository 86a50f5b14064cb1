#include <mirel_fitting/machine/SingleThreadedBlas.h>

#include <gtest/gtest.h>

#include <cblas.h>

#include <cstdlib>
#include <memory>
#include <new>

#include <sys/resource.h>

namespace {

/** With less memory than a call takes. Waits for ever where the call is made nevertheless. */
[[noreturn]] void multiplyWithoutMemory()
{
    const rlimit limit = {rlim_t{1} << 20, rlim_t{1} << 20};
    setrlimit(RLIMIT_AS, &limit);
    try {
        const SingleThreadedBlas blas;
        double c = 0.0;
        const double one = 1.0;
        cblas_dgemm(CblasColMajor, CblasNoTrans, CblasNoTrans, 1, 1, 1, 1.0, &one, 1, &one, 1, 0.0,
                    &c, 1);
    } catch (const std::bad_alloc&) {
        std::_Exit(SingleThreadedBlas::affordableThreads(4));
    }
    std::_Exit(EXIT_FAILURE + 1);
}

[[noreturn]] void askDuringAndAfterAShortage()
{
    rlimit limit;
    getrlimit(RLIMIT_AS, &limit);
    const rlim_t before = limit.rlim_cur;
    limit.rlim_cur = rlim_t{1} << 20;
    setrlimit(RLIMIT_AS, &limit);
    const int during = SingleThreadedBlas::affordableThreads(3);
    limit.rlim_cur = before;
    setrlimit(RLIMIT_AS, &limit);
    std::_Exit(10 * during + SingleThreadedBlas::affordableThreads(3));
}

} // namespace

TEST(SingleThreadedBlasDeathTest, AffordsAllThreadsAgainAfterAShortage)
{
    testing::FLAGS_gtest_death_test_style = "threadsafe"; // a process without buffers
    EXPECT_EXIT(askDuringAndAfterAShortage(), testing::ExitedWithCode(13), "");
}

TEST(SingleThreadedBlasDeathTest, RefusesCallsThatThereIsNoMemoryFor)
{
    testing::FLAGS_gtest_death_test_style = "threadsafe"; // a process without buffers
    EXPECT_EXIT(multiplyWithoutMemory(), testing::ExitedWithCode(1), "");
}

TEST(SingleThreadedBlas, AffordsThreadsWhereThereIsMemory)
{
    EXPECT_EQ(SingleThreadedBlas::affordableThreads(3), 3);
    EXPECT_EQ(SingleThreadedBlas::affordableThreads(1), 1);
}

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
