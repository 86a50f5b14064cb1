#include <mirel_fitting/kriging/correlation/MaternKernels.h>

#include <mirel_fitting/machine/AlignedBuffer.h>

#include "KrigingTestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace {

struct Variant
{
    const char* name;
    InstructionSet set;
};

void PrintTo(const Variant& variant, std::ostream* out)
{
    *out << variant.name;
}

const Variant variants[] = {{"Baseline", InstructionSet::Baseline},
                            {"Avx2", InstructionSet::Avx2},
                            {"Avx512", InstructionSet::Avx512}};

/** While it lives, the kernels are those of one instruction set, if the processor has it. */
class Forced
{
public:
    explicit Forced(InstructionSet set) { setInstructionSetLimit(set); }
    ~Forced() { setInstructionSetLimit(InstructionSet::Avx512); }
    Forced(const Forced&) = delete;
    Forced& operator=(const Forced&) = delete;
};

/** Points by columns and cases one after the other, scaled coordinates in [0, `reach`). */
struct Problem
{
    Problem(std::size_t pointCount, std::size_t caseCount, std::size_t inputs, double reach)
        : pointCount(pointCount), inputs(inputs), stride(AlignedBuffer::padded(pointCount)),
          points(stride * inputs), reach(reachOf(reach * static_cast<double>(inputs), reach))
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

    static MaternKernels::Reach reachOf(double sum, double single)
    {
        if (sum < MaternKernels::nearSum) {
            return MaternKernels::Reach::Near;
        }
        return single < MaternKernels::farthest ? MaternKernels::Reach::Far
                                                : MaternKernels::Reach::Unlimited;
    }

    MaternKernels::Points pointBlock() const { return {points.data(), stride, stride}; }
    MaternKernels::Cases caseRows() const { return {cases.data(), inputs, weights.size(), reach}; }

    std::vector<double> sums() const
    {
        AlignedBuffer result(stride);
        std::fill_n(result.data(), stride, 2.0);
        MaternKernels::best().addWeightedSums(pointBlock(), caseRows(), weights.data(),
                                              result.data());
        return {result.data(), result.data() + pointCount};
    }
    std::vector<double> correlations() const
    {
        AlignedBuffer result(stride * weights.size());
        MaternKernels::best().correlate(pointBlock(), caseRows(), result.data(), stride);
        return {result.data(), result.data() + stride * weights.size()};
    }
    std::vector<double> gradients() const
    {
        AlignedBuffer result(stride * inputs);
        MaternKernels::best().addWeightedGradients(pointBlock(), caseRows(), weights.data(),
                                                   result.data(), stride);
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
    MaternKernels::Reach reach;
};

// 71 points: whole groups of every register, and a rest.
Problem problemOf(std::size_t inputs, double reach)
{
    return {71, 23, inputs, reach};
}

const double epsilon = std::numeric_limits<double>::epsilon();

class MaternKernelsVariants : public testing::TestWithParam<Variant>
{
protected:
    void SetUp() override
    {
        if (instructionSet() != GetParam().set) {
            GTEST_SKIP() << "The processor does not have it.";
        }
    }

    Forced forced{GetParam().set};
};

} // namespace

TEST_P(MaternKernelsVariants, CorrelateWithinAFewUnitsInTheLastPlace)
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

TEST_P(MaternKernelsVariants, CorrelateWithinAFewUnitsInTheLastPlaceHoweverFarApart)
{
    // Of one input, in short numbers: the distance is exact, and all of the error that of the
    // correlation.
    Problem problem(971, 3, 1, 699.0);
    const auto shorten = [](double x) { return std::ldexp(std::round(std::ldexp(x, 20)), -20); };
    std::transform(problem.points.data(), problem.points.data() + problem.stride,
                   problem.points.data(), shorten);
    std::transform(problem.cases.begin(), problem.cases.end(), problem.cases.begin(), shorten);
    const std::vector<double> found = problem.correlations();
    const double perUnit = GetParam().set == InstructionSet::Baseline ? 0.65 : 0.15;

    for (std::size_t j = 0; j < problem.weights.size(); ++j) {
        for (std::size_t i = 0; i < problem.pointCount; ++i) {
            const auto expected = static_cast<double>(problem.correlation(i, j));
            const auto distance = static_cast<double>(std::fabs(problem.distance(i, j, 0)));
            ASSERT_NEAR(found[j * problem.stride + i], expected,
                        (4.5 + perUnit * distance) * epsilon * expected)
                << distance;
        }
    }
}

TEST_P(MaternKernelsVariants, SumWithinAFewUnitsInTheLastPlaceOfTheTerms)
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

TEST_P(MaternKernelsVariants, DifferentiateTheSums)
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

TEST_P(MaternKernelsVariants, StayFiniteWhereCorrelationsAreZeroToEveryDigit)
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

TEST_P(MaternKernelsVariants, CorrelateACaseWithItselfToExactlyOne)
{
    for (const std::size_t inputs : {1u, 5u, 31u, 33u, 70u}) {
        Problem problem(8, 1, inputs, 2.0);
        for (std::size_t k = 0; k < inputs; ++k) {
            problem.cases[k] = problem.points.data()[k * problem.stride + 3];
        }

        EXPECT_EQ(problem.correlations()[3], 1.0) << inputs;
    }
}

TEST_P(MaternKernelsVariants, AddProductsOfSmallMatrices)
{
    // Small integers: every order of the additions gives the same.
    constexpr std::size_t lanes = MaternKernels::lanes;
    constexpr std::size_t columns = 13;
    constexpr std::size_t mostRows = 5;
    AlignedBuffer left(mostRows * 2 * lanes);
    std::vector<double> right(columns * 7);
    AlignedBuffer result(columns * 2 * lanes);
    for (std::size_t i = 0; i < mostRows * 2 * lanes; ++i) {
        left.data()[i] = static_cast<double>(i % 11) - 4.0;
    }
    for (std::size_t i = 0; i < right.size(); ++i) {
        right[i] = static_cast<double>(i % 13) - 6.0;
    }
    const MaternKernels::Product products[] = {
        {left.data(), 2 * lanes, right.data(), 7, 5},
        {left.data() + lanes, lanes, right.data() + 1, 7, 2}};
    for (std::size_t i = 0; i < columns * 2 * lanes; ++i) {
        result.data()[i] = static_cast<double>(i);
    }

    MaternKernels::best().addProducts(products, 2, result.data(), 2 * lanes, columns, result.data(),
                                      2 * lanes);

    for (std::size_t i = 0; i < columns; ++i) {
        for (std::size_t r = 0; r < 2 * lanes; ++r) {
            auto expected = static_cast<double>(i * 2 * lanes + r);
            for (std::size_t k = 0; r < lanes && k < 5; ++k) {
                expected += left.data()[k * 2 * lanes + r] * right[i * 7 + k];
            }
            for (std::size_t k = 0; r < lanes && k < 2; ++k) {
                expected += left.data()[lanes + k * lanes + r] * right[i * 7 + 1 + k];
            }
            EXPECT_EQ(result.data()[i * 2 * lanes + r], expected) << i << ", " << r;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(, MaternKernelsVariants, testing::ValuesIn(variants),
                         [](const auto& row) { return row.param.name; });

TEST(MaternKernels, GiveTheSameBitsWhateverIsKnownOfTheReach)
{
    Problem problem = problemOf(8, 2.0);
    ASSERT_EQ(problem.reach, MaternKernels::Reach::Near);
    const std::vector<double> sums = problem.sums();
    const std::vector<double> correlations = problem.correlations();
    const std::vector<double> gradients = problem.gradients();

    for (const auto reach : {MaternKernels::Reach::Far, MaternKernels::Reach::Unlimited}) {
        problem.reach = reach;
        EXPECT_EQ(problem.sums(), sums);
        EXPECT_EQ(problem.correlations(), correlations);
        EXPECT_EQ(problem.gradients(), gradients);
    }
}

TEST(MaternKernels, GiveTheSameBitsWithAvx2AndAvx512)
{
    if (instructionSet() != InstructionSet::Avx512) {
        GTEST_SKIP() << "The processor does not have it.";
    }
    const Problem problem = problemOf(8, 2.0);
    const std::vector<double> sums = problem.sums();
    const std::vector<double> correlations = problem.correlations();
    const std::vector<double> gradients = problem.gradients();

    const Forced forced(InstructionSet::Avx2);

    EXPECT_EQ(problem.sums(), sums);
    EXPECT_EQ(problem.correlations(), correlations);
    EXPECT_EQ(problem.gradients(), gradients);
}

TEST(InstructionSet, IsTheBaselineWhenLimitedToIt)
{
    const InstructionSet best = instructionSet();
    {
        const Forced forced(InstructionSet::Baseline);
        EXPECT_EQ(instructionSet(), InstructionSet::Baseline);
    }
    EXPECT_EQ(instructionSet(), best);
}
