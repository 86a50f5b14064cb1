#include <mirel_fitting/numerics/BoxConstrainedQuadratic.h>

#include "RecordedWork.h"
#include "UniformNumbers.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using Vector = std::vector<double>;

struct Problem
{
    Vector hessian;
    Vector slope;
    Vector lowest;
    Vector highest;

    /** The matrix is the square of a random one of that rank, times the square of `coupling`, with
     *  which its condition grows. */
    Problem(std::size_t size, std::size_t rank, double coupling, std::uint64_t seed)
        : hessian(size * size), slope(size), lowest(size), highest(size)
    {
        UniformNumbers numbers(seed);
        Vector root(rank * size);
        for (double& value : root) {
            value = coupling * numbers.next(-1.0, 1.0);
        }
        for (std::size_t i = 0; i < size; ++i) {
            for (std::size_t j = 0; j < size; ++j) {
                for (std::size_t k = 0; k < rank; ++k) {
                    hessian[i * size + j] += root[i * rank + k] * root[j * rank + k];
                }
            }
            slope[i] = numbers.next(-5.0, 5.0);
            lowest[i] = numbers.next(-2.0, 0.0);
            highest[i] = numbers.next(0.0, 2.0);
        }
    }

    Problem(std::size_t size, double coupling, std::uint64_t seed)
        : Problem(size, size, coupling, seed)
    {
        for (std::size_t i = 0; i < size; ++i) {
            hessian[i * size + i] += 1e-3;
        }
    }
};

/** As a likelihood of few cases sees many lengths: the matrix is of low rank but for a millionth of
 *  its diagonal. */
Problem oneOfFewCases(std::size_t size, std::size_t rank, std::uint64_t seed)
{
    Problem problem(size, rank, 1.0, seed);
    for (std::size_t i = 0; i < size; ++i) {
        problem.hessian[i * size + i] *= 1.0 + 1e-6;
    }
    return problem;
}

double valueAt(const Problem& problem, const Vector& point)
{
    double value = 0.0;
    for (std::size_t i = 0; i < point.size(); ++i) {
        value += problem.slope[i] * point[i];
        for (std::size_t k = 0; k < point.size(); ++k) {
            value -= 0.5 * point[i] * problem.hessian[i * point.size() + k] * point[k];
        }
    }
    return value;
}

/** Where the point is inside, the slope has to vanish; on the box it has to point outside. */
void expectMaximum(const Problem& problem, const Vector& point, double tolerance)
{
    const std::size_t size = point.size();
    for (std::size_t i = 0; i < size; ++i) {
        double rest = problem.slope[i];
        for (std::size_t k = 0; k < size; ++k) {
            rest -= problem.hessian[i * size + k] * point[k];
        }
        EXPECT_GE(point[i], problem.lowest[i]);
        EXPECT_LE(point[i], problem.highest[i]);
        if (point[i] < problem.highest[i]) {
            EXPECT_LT(rest, tolerance);
        }
        if (point[i] > problem.lowest[i]) {
            EXPECT_GT(rest, -tolerance);
        }
    }
}

} // namespace

TEST(BoxConstrainedQuadratic, IsGreatestWhereTheSlopeVanishesOrPointsOutOfTheBox)
{
    const Vector hessian = {2.0, 1.0, 1.0, 20.0};
    const Vector slope = {6.0, -20.0};

    const Vector inside = BoxConstrainedQuadratic(hessian, slope).maximum({-9.0, -9.0}, {9.0, 9.0});
    EXPECT_NEAR(inside[0], 140.0 / 39.0, 1e-14);
    EXPECT_NEAR(inside[1], -46.0 / 39.0, 1e-14);
    const Vector onBox = BoxConstrainedQuadratic(hessian, slope).maximum({-9.0, -9.0}, {1.0, 9.0});
    EXPECT_EQ(onBox[0], 1.0);
    EXPECT_NEAR(onBox[1], -21.0 / 20.0, 1e-14);
}

TEST(BoxConstrainedQuadratic, FindsTheMaximumOfManyVariables)
{
    for (std::uint64_t seed = 1; seed <= 5; ++seed) {
        for (const std::size_t size : {1, 3, 12, 60, 90}) {
            for (const double coupling : {0.01, 0.3, 3.0}) {
                const Problem problem(size, coupling, seed);
                BoxConstrainedQuadratic model(problem.hessian, problem.slope);

                expectMaximum(problem, model.maximum(problem.lowest, problem.highest), 1e-8);
            }
        }
    }
}

TEST(BoxConstrainedQuadratic, TakesFewFactorsHoweverManyVariablesThereAre)
{
    for (const std::size_t rank : {5, 30, 100}) {
        const Problem problem = oneOfFewCases(200, rank, rank);
        const RecordedWork recorded;
        BoxConstrainedQuadratic model(problem.hessian, problem.slope);

        const Vector point = model.maximum(problem.lowest, problem.highest);

        EXPECT_GE(recorded.reports(), 1);
        EXPECT_LE(recorded.reports(), 5);
        EXPECT_GT(valueAt(problem, point), 0.0);
        for (std::size_t i = 0; i < point.size(); ++i) {
            EXPECT_GE(point[i], problem.lowest[i]);
            EXPECT_LE(point[i], problem.highest[i]);
        }
    }
}

TEST(BoxConstrainedQuadratic, EndsBeforeAnyFactorOfManyVariables)
{
    const Problem problem = oneOfFewCases(100, 10, 3);
    BoxConstrainedQuadratic model(problem.hessian, problem.slope);
    const RecordedWork recorded(1.0, 1);

    EXPECT_THROW(model.maximum(problem.lowest, problem.highest), std::runtime_error);
}

TEST(BoxConstrainedQuadratic, ReportsNothingForFewVariables)
{
    const Problem problem(BoxConstrainedQuadratic::maxFewVariables, 0.3, 3);
    BoxConstrainedQuadratic model(problem.hessian, problem.slope);
    const RecordedWork recorded;

    expectMaximum(problem, model.maximum(problem.lowest, problem.highest), 1e-8);

    EXPECT_EQ(recorded.reports(), 0);
}

TEST(BoxConstrainedQuadratic,
     StaysAtTheOriginInABoxOfNoSizeAndAscendsWhereRoundingMadeTheMatrixIndefinite)
{
    const Problem problem(5, 1.0, 7);
    const Vector origin(5, 0.0);

    EXPECT_EQ(BoxConstrainedQuadratic(problem.hessian, problem.slope).maximum(origin, origin),
              origin);

    const Vector hessian = {1.0, 2.0, 2.0, 1.0};
    const Vector slope = {1.0, 0.5};

    const Vector point = BoxConstrainedQuadratic(hessian, slope).maximum({-1.0, -1.0}, {1.0, 1.0});

    EXPECT_GT(slope[0] * point[0] + slope[1] * point[1], 0.0);
    EXPECT_LE(std::fabs(point[0]), 1.0);
    EXPECT_LE(std::fabs(point[1]), 1.0);
}
