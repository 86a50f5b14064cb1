#include <mirel_fitting/kriging/grid/AxisFactors.h>

#include "KrigingTestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace {

using Numbers = std::vector<double>;

const double epsilon = std::numeric_limits<double>::epsilon();

AxisFactors factorsOf(const Numbers& values, const Numbers& cases)
{
    return {values, std::vector<char>(values.size(), 1), cases};
}

/** The products of both matrices: one row of cases per value. */
std::vector<Numbers> productsOf(const AxisFactors& factors, std::size_t values, std::size_t cases)
{
    std::vector<Numbers> result(values, Numbers(cases, 0.0));
    for (const AxisFactors::Group& group : factors.groups()) {
        const std::size_t size = group.lastCase - group.firstCase;
        for (std::size_t v = 0; v < values; ++v) {
            for (std::size_t k = 0; k < group.columns; ++k) {
                const double factor =
                    factors.valueFactors()[v * factors.columns() + group.firstColumn + k];
                for (std::size_t j = 0; j < size; ++j) {
                    result[v][group.firstCase + j] += factor * group.caseFactors[k * size + j];
                }
            }
        }
    }
    return result;
}

void expectCorrelations(const Numbers& values, const Numbers& cases)
{
    const std::vector<Numbers> found =
        productsOf(factorsOf(values, cases), values.size(), cases.size());
    for (std::size_t v = 0; v < values.size(); ++v) {
        for (std::size_t j = 0; j < cases.size(); ++j) {
            const long double z = std::fabs(static_cast<long double>(values[v]) - cases[j]);
            const long double c = (1.0L + z + z * z / 3.0L) * std::exp(-z);
            // Distances are sums of two rounded ones; beyond 1000 they make no difference.
            const long double tolerance =
                c * epsilon * (6.0L + 2.0L * (std::fabs(values[v]) + std::fabs(cases[j])));
            ASSERT_NEAR(found[v][j], static_cast<double>(c),
                        static_cast<double>(tolerance) + 1e-300)
                << values[v] << " " << cases[j];
        }
    }
}

Numbers randomCases(std::size_t count, double from, double to)
{
    Numbers cases = UniformNumbers(5).next(count);
    for (double& z : cases) {
        z = from + (to - from) * z;
    }
    std::sort(cases.begin(), cases.end());
    return cases;
}

Numbers evenly(std::size_t count, double from, double to)
{
    Numbers values;
    for (std::size_t i = 0; i < count; ++i) {
        values.push_back(from +
                         (to - from) * static_cast<double>(i) / static_cast<double>(count - 1));
    }
    return values;
}

TEST(AxisFactors, MultiplyToTheCorrelationsForEveryNumberOfValues)
{
    expectCorrelations({1.0}, randomCases(40, -2.0, 5.0));
    for (std::size_t count = 2; count < 20; ++count) {
        expectCorrelations(evenly(count, 0.0, 4.0), randomCases(40, -2.0, 5.0));
    }
}

TEST(AxisFactors, TakeValuesInAnyOrderAndAgain)
{
    expectCorrelations({3.0, 0.5, 0.5, 7.0, -1.0, 3.0, 2.0, 2.5, 6.0}, randomCases(60, -2.0, 8.0));
}

TEST(AxisFactors, TakeCasesAtTheValuesThemselves)
{
    expectCorrelations(evenly(9, 0.0, 8.0), evenly(17, 0.0, 8.0));
}

TEST(AxisFactors, TakeCasesThatAreAllBelowOrAbove)
{
    expectCorrelations(evenly(9, 0.0, 8.0), {-3.0, -2.0, -2.0});
    expectCorrelations(evenly(9, 0.0, 8.0), {9.0, 10.0});
}

TEST(AxisFactors, NeitherOverflowNorMakeUpCorrelationsFarAway)
{
    expectCorrelations(evenly(9, -600.0, 600.0), randomCases(30, -600.0, 600.0));
    const std::vector<Numbers> far =
        productsOf(factorsOf({0.0, 1e150, 2e150, 3e150, 4e150}, {0.0, 5e150}), 5, 2);
    EXPECT_EQ(far[0][0], 1.0);
    EXPECT_EQ(far[0][1], 0.0);
    EXPECT_EQ(far[3][0], 0.0);
}

TEST(AxisFactors, NeverCancel)
{
    const AxisFactors factors = factorsOf(evenly(12, 0.0, 4.0), randomCases(50, -1.0, 5.0));

    for (const AxisFactors::Group& group : factors.groups()) {
        EXPECT_GE(*std::min_element(group.caseFactors.begin(), group.caseFactors.end()), 0.0);
    }
    const Numbers& ofValues = factors.valueFactors();
    EXPECT_GE(*std::min_element(ofValues.begin(), ofValues.end()), 0.0);
}

TEST(AxisFactors, GiveNothingToValuesThatAreNotFinite)
{
    const Numbers cases = randomCases(30, 0.0, 4.0);
    const Numbers values = {0.0, 0.0, 1.0, 2.0, 3.0, 4.0};
    const AxisFactors factors(values, {1, 0, 1, 1, 1, 1}, cases);

    const std::vector<Numbers> found = productsOf(factors, values.size(), cases.size());

    EXPECT_EQ(found[1], Numbers(cases.size(), 0.0));
    EXPECT_GT(found[0][0], 0.5);
}

TEST(AxisFactors, HaveNoColumnsWithoutAFiniteValue)
{
    EXPECT_EQ(AxisFactors({0.0}, {0}, {1.0, 2.0}).columns(), 0u);
}

TEST(AxisFactors, AreAtMostSixPerCaseAndAsManyAsForeseen)
{
    for (const std::size_t count : {2u, 5u, 6u, 10u, 30u}) {
        // One case in the middle of each interval, and one on either side.
        const double reach = static_cast<double>(count);
        const AxisFactors factors =
            factorsOf(evenly(count, 0.5, reach - 0.5), evenly(count + 1, 0.0, reach));
        std::size_t between = 0;
        for (const AxisFactors::Group& group : factors.groups()) {
            EXPECT_LE(group.columns, std::min<std::size_t>(count, 6));
            const bool isBetween = group.firstCase > 0 && group.lastCase <= count;
            between += isBetween ? group.columns : 0;
        }
        EXPECT_EQ(static_cast<double>(factors.columns()), AxisFactors::columnsFor(count));
        EXPECT_DOUBLE_EQ(static_cast<double>(between) / static_cast<double>(count - 1),
                         AxisFactors::factorsPerCase(count));
    }
}

} // namespace
