// Widgets need an application around all tests.

#include <plot/drawing/DrawingApplication.h>

#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    if (testing::GTEST_FLAG(list_tests)) {
        // The build lists the tests, without the suppressions of leaks that are the platform's.
        return RUN_ALL_TESTS();
    }
    const DrawingApplication application;
    return RUN_ALL_TESTS();
}
