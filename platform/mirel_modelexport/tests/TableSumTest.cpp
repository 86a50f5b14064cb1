#include <mirel_modelexport/TableSum.h>

#include <gtest/gtest.h>

#include <cmath>
#include <utility>
#include <vector>

namespace {

const std::vector<double> numbers = {1.5, -2.0, 0.25, 4.0, 8.0, -1.0, 3.0, 5.0};

} // namespace

TEST(TableSum, WeightsEachNumberByItsPlaceAndAllowsForRoundingOnly)
{
    // Factors 1 to 7, then 1 again.
    EXPECT_DOUBLE_EQ(TableSum(numbers).value, 1.5 - 4.0 + 0.75 + 16.0 + 40.0 - 6.0 + 21.0 + 5.0);

    std::vector<double> exchanged = numbers;
    std::swap(exchanged[1], exchanged[2]);

    EXPECT_GT(std::fabs(TableSum(exchanged).value - TableSum(numbers).value),
              TableSum(numbers).tolerance);

    EXPECT_NEAR(TableSum(numbers).tolerance, 1e-13 * 94.25, 1e-20);
    EXPECT_EQ(TableSum({}).tolerance, 0.0);
}
