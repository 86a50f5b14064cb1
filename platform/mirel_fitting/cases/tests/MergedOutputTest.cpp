#include <mirel_fitting/cases/MergedOutput.h>

#include "RecordedWork.h"

#include <gtest/gtest.h>

#include <numeric>

namespace {

MergedOutput merged(std::vector<double> input, const std::vector<double>& output)
{
    return MergedOutput(KrigingCases({input.data()}, input.size()), output);
}

} // namespace

TEST(MergedOutput, CountsCopiesOnceUnlessOtherRowsDiffer)
{
    const MergedOutput output = merged({1.0, 0.0, 1.0, 1.0}, {5.0, 2.0, 5.0, 5.0});

    EXPECT_EQ(output.means, (std::vector<double>{2.0, 5.0}));
    EXPECT_EQ(output.replicates, (std::vector<double>{1.0, 1.0}));
    EXPECT_EQ(output.withinSquares, (std::vector<double>{0.0, 0.0}));
    EXPECT_EQ(output.copies, 2u);
    EXPECT_EQ(output.conflicts, 0u);

    const MergedOutput scattered = merged({0.0, 0.0, 1.0}, {1.0, 3.0, 7.0});

    EXPECT_EQ(scattered.means, (std::vector<double>{2.0, 7.0}));
    EXPECT_EQ(scattered.replicates, (std::vector<double>{2.0, 1.0}));
    EXPECT_EQ(scattered.withinSquares, (std::vector<double>{2.0, 0.0}));
    EXPECT_EQ(scattered.conflicts, 1u);

    const MergedOutput both =
        merged({0.0, 0.0, 0.0, 0.0, 1.0, 1.0}, {5.0, 5.0, 6.0, 5.0, 7.0, 7.0});

    EXPECT_EQ(both.means, (std::vector<double>{5.25, 7.0}));
    EXPECT_EQ(both.replicates, (std::vector<double>{4.0, 2.0}));
    EXPECT_EQ(both.withinSquares, (std::vector<double>{0.75, 0.0}));
    EXPECT_EQ(both.copies, 3u);

    // Three tenths, divided by three and added up, are not a tenth.
    const MergedOutput tenths = merged({0.0, 0.0, 1.0, 1.0, 1.0}, {1.0, 2.0, 0.1, 0.1, 0.1});

    EXPECT_EQ(tenths.means[1], 0.1);
    EXPECT_EQ(tenths.withinSquares[1], 0.0);
}

TEST(MergedOutput, ReportsWhileItMerges)
{
    constexpr std::size_t rows = 100000;
    std::vector<double> input(rows);
    std::iota(input.begin(), input.end(), 0.0);
    const KrigingCases cases({input.data()}, rows);
    const RecordedWork recorded;

    const MergedOutput output(cases, input);

    EXPECT_EQ(output.means, input);
    // Twice over all points, each 65 536 of them.
    EXPECT_EQ(recorded.reports(), 4);
}
