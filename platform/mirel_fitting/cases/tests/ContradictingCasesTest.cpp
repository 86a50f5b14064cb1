#include <mirel_fitting/cases/ContradictingCases.h>

#include "RecordedWork.h"

#include <gtest/gtest.h>

namespace {

/** Three cases of two inputs, the first two this far apart, with these outputs. */
std::size_t placesWith(double apart, std::vector<double> output)
{
    KrigingData data;
    data.cases = 3;
    data.inputs = 2;
    data.coordinates = {0.5, 0.5 + apart, 0.0, 0.25, 0.25 - apart, 1.0};
    data.output = std::move(output);
    return ContradictingCases::places(data);
}

} // namespace

TEST(ContradictingCases, LieNextToEachOtherAndHaveOutputsThatNoModelExplains)
{
    EXPECT_EQ(placesWith(1e-13, {1.0, -1.0, 0.0}), 1u);
    EXPECT_EQ(placesWith(1e-13, {1.0, 1.0 + 1e-8, 0.0}), 0u);
    EXPECT_EQ(placesWith(1e-6, {1.0, -1.0, 0.0}), 0u);
}

TEST(ContradictingCases, AreNearInEveryInputAndCountOnceAPlace)
{
    KrigingData data;
    data.cases = 3;
    data.inputs = 2;
    data.coordinates = {0.5, 0.5, 0.5, 0.0, 0.5, 1.0};
    data.output = {1.0, -1.0, 0.0};

    EXPECT_EQ(ContradictingCases::places(data), 0u);

    data.cases = 5;
    data.inputs = 1;
    data.coordinates = {0.0, 1e-12, 2e-12, 1.0 - 1e-13, 1.0};
    data.output = {1.0, -1.0, 0.0, 2.0, 1.0};

    EXPECT_EQ(ContradictingCases::places(data), 2u);

    data.cases = 6;
    data.inputs = 2;
    // Of a grid, one case next to another; every value of each input is there more than once.
    data.coordinates = {0.0, 0.0, 0.5, 0.5, 1.0, 1.0 - 1e-13, 0.0, 1.0, 0.0, 1.0, 1.0, 1.0};
    data.output = {0.0, 1.0, 2.0, 3.0, 4.0, 5.0};

    EXPECT_EQ(ContradictingCases::places(data), 1u);
}

TEST(ContradictingCases, AreSearchedWithReports)
{
    KrigingData data;
    data.cases = 100000;
    data.inputs = 1;
    data.output.resize(data.cases);
    for (std::size_t i = 0; i < data.cases; ++i) {
        data.coordinates.push_back(static_cast<double>(i) / 1e5);
    }
    const RecordedWork recorded;

    EXPECT_EQ(ContradictingCases::places(data), 0u);

    EXPECT_GE(recorded.reports(), 2);
}
