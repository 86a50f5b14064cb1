#include <mirel_fitting/kriging/neighbours/NearestNeighbours.h>

#include "KrigingTestSupport.h"
#include "RecordedWork.h"

#include <gtest/gtest.h>

namespace {

double squaredDistance(const double* a, const double* b, std::size_t inputs)
{
    double squares = 0.0;
    for (std::size_t k = 0; k < inputs; ++k) {
        squares += (a[k] - b[k]) * (a[k] - b[k]);
    }
    return squares;
}

} // namespace

TEST(NearestNeighbours, AreThoseOfASearchThroughAllPoints)
{
    constexpr std::size_t points = 500;
    constexpr std::size_t inputs = 3;
    constexpr std::size_t wanted = 12;
    UniformNumbers numbers(5);
    const std::vector<double> coordinates = numbers.next(points * inputs);
    const NearestNeighbours neighbours(coordinates.data(), points, inputs);

    for (int trial = 0; trial < 20; ++trial) {
        const std::vector<double> at = numbers.next(inputs);
        std::vector<std::uint32_t> indices(wanted);
        std::vector<double> squares(wanted);
        ASSERT_EQ(neighbours.find(at.data(), wanted, indices.data(), squares.data()), wanted);

        std::vector<double> all;
        for (std::size_t i = 0; i < points; ++i) {
            all.push_back(squaredDistance(at.data(), coordinates.data() + i * inputs, inputs));
        }
        for (std::size_t j = 0; j < wanted; ++j) {
            EXPECT_DOUBLE_EQ(squares[j], all[indices[j]]);
        }
        std::sort(all.begin(), all.end());
        EXPECT_TRUE(std::equal(squares.begin(), squares.end(), all.begin()));
    }
}

TEST(NearestNeighbours, AreAllPointsWhereThereAreNoMore)
{
    const std::vector<double> coordinates = {0.0, 1.0, 3.0};
    const NearestNeighbours neighbours(coordinates.data(), 3, 1);
    std::vector<std::uint32_t> indices(5);
    std::vector<double> squares(5);
    const double at = 2.9;

    EXPECT_EQ(neighbours.find(&at, 5, indices.data(), squares.data()), 3u);

    EXPECT_EQ(indices[0], 2u);
    EXPECT_EQ(indices[2], 0u);
    EXPECT_EQ(neighbours.find(&at, 0, nullptr, nullptr), 0u);
}

TEST(NearestNeighbours, TakePointsThatCoincide)
{
    const std::vector<double> coordinates(200, 0.5);
    const NearestNeighbours neighbours(coordinates.data(), 100, 2);
    std::vector<std::uint32_t> indices(7);
    std::vector<double> squares(7, -1.0);

    EXPECT_EQ(neighbours.find(coordinates.data(), 7, indices.data(), squares.data()), 7u);

    EXPECT_EQ(squares, std::vector<double>(7, 0.0));
}

TEST(NearestNeighbours, ReportsWhileItMakesTheTree)
{
    constexpr std::size_t count = 100000;
    const std::vector<double> coordinates = UniformNumbers(4).next(3 * count);
    const RecordedWork recorded;

    const NearestNeighbours neighbours(coordinates.data(), count, 3);

    EXPECT_GE(recorded.reports(), 5);
    const int whileMaking = recorded.reports();
    std::vector<std::uint32_t> found(10);
    std::vector<double> squares(10);
    for (std::size_t i = 0; i < 1000; ++i) {
        neighbours.find(coordinates.data() + 3 * i, 10, found.data(), squares.data());
    }
    EXPECT_EQ(recorded.reports(), whileMaking);
}

TEST(NearestNeighbours, EndsInTheMiddleOfTheTreeWhenTheReportThrows)
{
    constexpr std::size_t count = 100000;
    const std::vector<double> coordinates = UniformNumbers(4).next(3 * count);
    const RecordedWork recorded(1.0, 2);

    EXPECT_THROW(NearestNeighbours(coordinates.data(), count, 3), std::runtime_error);
    EXPECT_EQ(recorded.reports(), 2);
}
