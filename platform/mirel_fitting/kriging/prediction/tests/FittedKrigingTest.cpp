#include <mirel_fitting/kriging/prediction/FittedKriging.h>

#include "KrigingTestSupport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

TEST(FittedKriging, CapsCoordinatesSoThatTheirProductsAreFinite)
{
    FittedKriging model;
    model.minimum = {10.0};
    model.range = {0.5};

    EXPECT_DOUBLE_EQ(model.coordinate(0, 10.25), 0.5);
    for (const double sign : {-1.0, 1.0}) {
        const double far = model.coordinate(0, sign * std::numeric_limits<double>::max());
        EXPECT_EQ(far, sign * 1e150);
        EXPECT_TRUE(std::isfinite(far * far));
    }
}
