#include <mirel_fitting/kriging/grid/GridProduct.h>

#include "KrigingGridTestSupport.h"

using namespace gridtest;

TEST(GridProduct, TakesMoreCombinationsThanATileHas)
{
    expectTheScatteredPredictions(
        Model(2, 1, 20), gridOf(3, {{0, evenly(701, -1.5, 1.5)}, {2, evenly(530, 0.0, 3.0)}}));
}
