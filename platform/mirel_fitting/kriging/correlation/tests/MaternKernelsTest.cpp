#include <mirel_fitting/kriging/correlation/MaternKernels.h>

#include <mirel_fitting/machine/AlignedBuffer.h>

#include "KrigingTestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

/** Points by columns and cases one after the other, scaled coordinates in [0, `reach`). */
struct Problem
{
    Problem(std::size_t pointCount, std::size_t caseCount, std::size_t inputs, double reach)
        : pointCount(pointCount), inputs(inputs), stride(AlignedBuffer::padded(pointCount)),
          points(stride * inputs), isCapped(reach > MaternKernels::farthest)
    {
        UniformNumbers numbers(5);
        std::generate(points.data(), points.data() + stride * inputs,
                      [&] { return reach * numbers.next(); });
        cases = numbers.next(caseCount * inputs);
        for (double& x : cases) {
            x *= reach;
        }
        for (std::size_t j = 0; j < caseCount; ++j) {
            weights.push_back(numbers.next() - 0.5);
        }
    }

    MaternKernels::Points pointBlock() const { return {points.data(), stride, stride}; }
    MaternKernels::Cases caseRows() const { return {cases.data(), inputs, weights.size()}; }

    std::vector<double> sums() const
    {
        AlignedBuffer result(stride);
        std::fill_n(result.data(), stride, 2.0);
        MaternKernels::addWeightedSums(pointBlock(), caseRows(), isCapped, weights.data(),
                                       result.data());
        return {result.data(), result.data() + pointCount};
    }
    std::vector<double> correlations() const
    {
        AlignedBuffer result(stride * weights.size());
        MaternKernels::correlate(pointBlock(), caseRows(), result.data(), stride);
        return {result.data(), result.data() + stride * weights.size()};
    }
    std::vector<double> gradients() const
    {
        AlignedBuffer result(stride * inputs);
        MaternKernels::addWeightedGradients(pointBlock(), caseRows(), weights.data(), result.data(),
                                            stride);
        return {result.data(), result.data() + stride * inputs};
    }

    // The definitions, in extended precision.

    long double distance(std::size_t i, std::size_t j, std::size_t k) const
    {
        return static_cast<long double>(points.data()[k * stride + i]) - cases[j * inputs + k];
    }
    long double correlation(std::size_t i, std::size_t j) const
    {
        long double product = 1.0L;
        for (std::size_t k = 0; k < inputs; ++k) {
            const long double z = std::fabs(distance(i, j, k));
            product *= (1.0L + z + z * z / 3.0L) * std::exp(-z);
        }
        return product;
    }
    /** Of the logarithm of the correlation. */
    long double slope(std::size_t i, std::size_t j, std::size_t k) const
    {
        const long double x = distance(i, j, k);
        const long double z = std::fabs(x);
        return -x * (1.0L + z) / (3.0L + 3.0L * z + z * z);
    }

    std::size_t pointCount;
    std::size_t inputs;
    std::size_t stride;
    AlignedBuffer points;
    std::vector<double> cases;
    std::vector<double> weights;
    bool isCapped;
};

// 71 points: whole groups of every register, and a rest.
Problem problemOf(std::size_t inputs, double reach)
{
    return {71, 23, inputs, reach};
}

const double epsilon = std::numeric_limits<double>::epsilon();

} // namespace

TEST(MaternKernels, CorrelateWithinAFewUnitsInTheLastPlace)
{
    for (const std::size_t inputs : {1u, 3u, 8u, 40u}) {
        const Problem problem = problemOf(inputs, 2.0);
        const std::vector<double> found = problem.correlations();

        for (std::size_t j = 0; j < problem.weights.size(); ++j) {
            for (std::size_t i = 0; i < problem.pointCount; ++i) {
                const auto expected = static_cast<double>(problem.correlation(i, j));
                const double units = 3.0 + 1.5 * static_cast<double>(inputs);
                ASSERT_NEAR(found[j * problem.stride + i], expected, units * epsilon * expected)
                    << inputs << " inputs, point " << i << ", case " << j;
            }
        }
    }
}

TEST(MaternKernels, CorrelateWithinAFewUnitsInTheLastPlaceHoweverFarApart)
{
    // Of one input, in short numbers: the distance is exact, and all of the error that of the
    // correlation.
    Problem problem(971, 3, 1, 699.0);
    const auto shorten = [](double x) { return std::ldexp(std::round(std::ldexp(x, 20)), -20); };
    std::transform(problem.points.data(), problem.points.data() + problem.stride,
                   problem.points.data(), shorten);
    std::transform(problem.cases.begin(), problem.cases.end(), problem.cases.begin(), shorten);
    const std::vector<double> found = problem.correlations();

    for (std::size_t j = 0; j < problem.weights.size(); ++j) {
        for (std::size_t i = 0; i < problem.pointCount; ++i) {
            const auto expected = static_cast<double>(problem.correlation(i, j));
            const auto distance = static_cast<double>(std::fabs(problem.distance(i, j, 0)));
            ASSERT_NEAR(found[j * problem.stride + i], expected,
                        (4.5 + 0.15 * distance) * epsilon * expected)
                << distance;
        }
    }
}

TEST(MaternKernels, SumWithinAFewUnitsInTheLastPlaceOfTheTerms)
{
    for (const std::size_t inputs : {1u, 3u, 8u, 40u}) {
        const Problem problem = problemOf(inputs, 2.0);
        const std::vector<double> found = problem.sums();

        for (std::size_t i = 0; i < problem.pointCount; ++i) {
            long double expected = 2.0L;
            long double size = 2.0L;
            for (std::size_t j = 0; j < problem.weights.size(); ++j) {
                expected += problem.weights[j] * problem.correlation(i, j);
                size += std::fabs(problem.weights[j]) * problem.correlation(i, j);
            }
            ASSERT_NEAR(found[i], static_cast<double>(expected),
                        4.0 * epsilon * static_cast<double>(size))
                << inputs << " inputs, point " << i;
        }
    }
}

TEST(MaternKernels, DifferentiateTheSums)
{
    for (const std::size_t inputs : {1u, 3u, 8u, 40u}) {
        const Problem problem = problemOf(inputs, 2.0);
        const std::vector<double> found = problem.gradients();

        for (std::size_t i = 0; i < problem.pointCount; ++i) {
            std::vector<long double> expected(inputs, 0.0L);
            for (std::size_t j = 0; j < problem.weights.size(); ++j) {
                const long double term = problem.weights[j] * problem.correlation(i, j);
                for (std::size_t k = 0; k < inputs; ++k) {
                    expected[k] += term * problem.slope(i, j, k);
                }
            }
            for (std::size_t k = 0; k < inputs; ++k) {
                ASSERT_NEAR(found[k * problem.stride + i], static_cast<double>(expected[k]), 1e-14)
                    << inputs << " inputs, point " << i << ", input " << k;
            }
        }
    }
}

TEST(MaternKernels, StayFiniteWhereCorrelationsAreZeroToEveryDigit)
{
    for (const double reach : {500.0, 1e100}) {
        const Problem problem = problemOf(33, reach);

        for (const double value : problem.correlations()) {
            ASSERT_GE(value, 0.0) << reach;
            ASSERT_LT(value, 1e-100) << reach;
        }
        for (const double value : problem.sums()) {
            ASSERT_EQ(value, 2.0) << reach;
        }
        for (const double value : problem.gradients()) {
            ASSERT_NEAR(value, 0.0, 1e-100) << reach;
        }
    }
}

TEST(MaternKernels, CorrelateACaseWithItselfToExactlyOne)
{
    for (const std::size_t inputs : {1u, 5u, 31u, 33u, 70u}) {
        Problem problem(8, 1, inputs, 2.0);
        for (std::size_t k = 0; k < inputs; ++k) {
            problem.cases[k] = problem.points.data()[k * problem.stride + 3];
        }

        EXPECT_EQ(problem.correlations()[3], 1.0) << inputs;
    }
}

TEST(MaternKernels, GiveTheSameBitsWhetherDistancesAreCapped)
{
    Problem problem = problemOf(8, 2.0);
    ASSERT_FALSE(problem.isCapped);
    const std::vector<double> sums = problem.sums();

    problem.isCapped = true;

    EXPECT_EQ(problem.sums(), sums);
}

/** Recorded: no instruction set may change them. */
TEST(MaternKernels, GiveTheSameBitsOnEveryProcessor)
{
    const Problem problem = problemOf(8, 2.0);

    EXPECT_EQ(problem.sums()[70], 0x1.257bf4d36cbdep+1);
    EXPECT_EQ(problem.correlations()[70], 0x1.5f27da5fa2d0ap-1);
    EXPECT_EQ(problem.gradients()[70], -0x1.826af0fe05f8ep-5);
}
