// Widgets need an application around all tests.

#include <plot/DrawingApplication.h>

#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    const DrawingApplication application;
    return RUN_ALL_TESTS();
}
