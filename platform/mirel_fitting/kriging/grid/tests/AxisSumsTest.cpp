#include <mirel_fitting/kriging/grid/AxisSums.h>

#include "KrigingTestSupport.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace {

const double epsilon = std::numeric_limits<double>::epsilon();

using Weights = std::vector<double>;

/** One result per row of weights and value. */
std::vector<std::vector<double>> evaluated(const AxisSums::Axis& axis,
                                           const std::vector<Weights>& rows,
                                           const std::vector<AxisSums::Trend>& trends,
                                           std::size_t panelsPerTable = 1000)
{
    const AxisSums sums(axis);
    const std::size_t stride = axis.cases.size() + 3;
    std::vector<double> weights(rows.size() * stride, 0.0);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        std::copy(rows[i].begin(), rows[i].end(),
                  weights.begin() + static_cast<std::ptrdiff_t>(i * stride));
    }
    AlignedBuffer states(rows.size() * sums.stateSize());
    sums.sumMoments(weights.data(), stride, trends, states.data());

    std::vector<std::vector<double>> results(rows.size());
    for (std::size_t p = 0; p < sums.panels(); p += panelsPerTable) {
        const std::size_t panels = std::min(panelsPerTable, sums.panels() - p);
        const std::size_t count = panels * AxisSums::panelSize;
        AlignedBuffer values(rows.size() * count);
        sums.evaluate(AxisSums::Table(sums, p, panels), weights.data(), stride, states.data(),
                      rows.size(), values.data(), count);
        for (std::size_t i = 0; i < rows.size(); ++i) {
            const double* row = values.data() + i * count;
            results[i].insert(results[i].end(), row, row + count);
        }
    }
    for (std::vector<double>& result : results) {
        result.resize(axis.values.size());
    }
    return results;
}

/** The sums as they are defined, and the sums of magnitudes. */
struct Reference
{
    Reference(const AxisSums::Axis& axis, const Weights& weights, const AxisSums::Trend& trend)
    {
        for (std::size_t v = 0; v < axis.values.size(); ++v) {
            long double sum = 0.0L;
            long double magnitude = 0.0L;
            for (std::size_t j = 0; j < weights.size(); ++j) {
                const long double z =
                    std::fabs(static_cast<long double>(axis.values[v]) - axis.cases[j]);
                const long double c = (1.0L + z + z * z / 3.0L) * std::exp(-z);
                sum += weights[j] * c;
                magnitude += std::fabs(weights[j] * c);
            }
            sum += trend.constant + static_cast<long double>(trend.slope) * axis.slopes[v] +
                   axis.offsets[v];
            values.push_back(sum);
            magnitudes.push_back(static_cast<double>(magnitude));
        }
    }

    double deviation() const
    {
        long double mean = 0.0L;
        for (const long double value : values) {
            mean += value / static_cast<long double>(values.size());
        }
        long double squares = 0.0L;
        for (const long double value : values) {
            squares += (value - mean) * (value - mean);
        }
        return static_cast<double>(std::sqrt(squares / static_cast<long double>(values.size())));
    }

    std::vector<long double> values;
    std::vector<double> magnitudes;
};

AxisSums::Axis axisOf(std::vector<double> cases, std::vector<double> values)
{
    std::sort(cases.begin(), cases.end());
    std::sort(values.begin(), values.end());
    AxisSums::Axis axis{std::move(cases), std::move(values), {}, {}};
    axis.offsets.assign(axis.values.size(), 0.0);
    axis.slopes.assign(axis.values.size(), 0.0);
    return axis;
}

/** From a fifth of the range below the cases to a fifth above. */
std::vector<double> around(double range, std::size_t count)
{
    std::vector<double> values;
    for (std::size_t v = 0; v < count; ++v) {
        const auto share = static_cast<double>(v) / static_cast<double>(count - 1);
        values.push_back(range * (-0.2 + 1.4 * share));
    }
    return values;
}

std::vector<double> scattered(double range, std::size_t count, std::uint64_t seed = 1)
{
    std::vector<double> cases = UniformNumbers(seed).next(count);
    for (double& x : cases) {
        x *= range;
    }
    return cases;
}

/** Fourth differences, which are nearly 0 for smooth functions. */
Weights cancelling(std::size_t count)
{
    const double pattern[] = {1e6, -4e6, 6e6, -4e6, 1e6};
    Weights weights;
    for (std::size_t j = 0; j < count; ++j) {
        weights.push_back(pattern[j % 5]);
    }
    return weights;
}

Weights mixed(std::size_t count)
{
    Weights weights = UniformNumbers(2).next(count);
    for (double& w : weights) {
        w -= 0.5;
    }
    return weights;
}

struct Row
{
    std::string name;
    double range; // of the cases, in units of length / sqrt(5)
    std::size_t cases;
    std::size_t values;
};

void PrintTo(const Row& row, std::ostream* out)
{
    *out << row.name;
}

class AxisSumsTable : public testing::TestWithParam<Row>
{
protected:
    /** 4 eps sum |w_j c_j|, and 1e-12 of the results' deviation if that is asked for. */
    void expectTheSums(const AxisSums::Axis& axis, const Weights& weights, double ofDeviation)
    {
        const Reference reference(axis, weights, {0.0, 0.0});
        const double nothing = 1e-290; // what correlations far away may be instead of 0
        const double allowed = ofDeviation * reference.deviation();
        const std::vector<double> found = evaluated(axis, {weights}, {{0.0, 0.0}})[0];
        for (std::size_t v = 0; v < found.size(); ++v) {
            const auto difference = static_cast<double>(found[v] - reference.values[v]);
            ASSERT_LE(std::fabs(difference),
                      4.0 * epsilon * reference.magnitudes[v] + allowed + nothing)
                << "value " << v;
        }
    }
};

INSTANTIATE_TEST_SUITE_P(
    , AxisSumsTable,
    testing::Values(Row{"VeryLongLength", 1e-3, 300, 203}, Row{"LongLength", 0.1, 300, 203},
                    Row{"LengthOfTheRange", 3.0, 300, 203}, Row{"ShortLength", 30.0, 300, 203},
                    Row{"VeryShortLength", 1e3, 300, 203},
                    Row{"ExtremelyShortLength", 1e4, 300, 203},
                    Row{"NothingIsNear", 1e12, 300, 203}, Row{"FewCases", 2.0, 3, 500},
                    Row{"OneCase", 2.0, 1, 40}, Row{"FewValues", 2.0, 900, 9},
                    Row{"ManyOfBoth", 5.0, 1000, 801}),
    [](const auto& row) { return row.param.name; });

} // namespace

TEST_P(AxisSumsTable, EqualsTheSumsOverAllCases)
{
    const Row& row = GetParam();
    expectTheSums(axisOf(scattered(row.range, row.cases), around(row.range, row.values)),
                  mixed(row.cases), 1e-12);
    // Beyond nothing cancels, and exp(-z) has no more digits than z leaves it.
    if (row.range <= 100.0) {
        expectTheSums(axisOf(scattered(row.range, row.cases), around(row.range, row.values)),
                      cancelling(row.cases), 0.0);
    }
}

TEST_P(AxisSumsTable, TakesCasesAtTheValues)
{
    const Row& row = GetParam();
    const std::vector<double> values = around(row.range, row.values);
    UniformNumbers numbers(3);
    std::vector<double> cases;
    for (std::size_t j = 0; j < row.cases; ++j) {
        cases.push_back(values[numbers.generator() % values.size()]);
    }
    expectTheSums(axisOf(cases, values), mixed(row.cases), 1e-12);
}

TEST_P(AxisSumsTable, TakesValuesThatRepeat)
{
    const Row& row = GetParam();
    std::vector<double> values = around(row.range, row.values);
    for (std::size_t v = 0; v < values.size() / 2; ++v) {
        values[v] = values[v / 20 * 20];
    }
    expectTheSums(axisOf(scattered(row.range, row.cases), values), mixed(row.cases), 1e-12);
}

TEST(AxisSums, TakesCasesThatCoincide)
{
    const AxisSums::Axis axis = axisOf(std::vector<double>(50, 1.0), around(2.0, 100));
    const std::vector<double> found = evaluated(axis, {Weights(50, 1.0)}, {{0.0, 0.0}})[0];
    for (std::size_t v = 0; v < found.size(); ++v) {
        const double z = std::fabs(axis.values[v] - 1.0);
        EXPECT_NEAR(found[v], 50.0 * (1.0 + z + z * z / 3.0) * std::exp(-z), 1e-12) << v;
    }
}

TEST(AxisSums, AddsTheTrend)
{
    AxisSums::Axis axis = axisOf(scattered(2.0, 30), around(2.0, 77));
    for (std::size_t v = 0; v < axis.values.size(); ++v) {
        axis.offsets[v] = std::sin(static_cast<double>(v));
        axis.slopes[v] = std::cos(static_cast<double>(v));
    }
    const std::vector<AxisSums::Trend> trends = {{5.0, 0.0}, {0.0, -3.0}, {1.0, 2.0}};
    const std::vector<Weights> rows(3, mixed(30));

    const auto found = evaluated(axis, rows, trends);

    for (std::size_t i = 0; i < 3; ++i) {
        const Reference reference(axis, rows[i], trends[i]);
        for (std::size_t v = 0; v < axis.values.size(); ++v) {
            EXPECT_NEAR(found[i][v], static_cast<double>(reference.values[v]), 1e-13);
        }
    }
}

TEST(AxisSums, GivesTheSameBitsWithOtherRowsAndPanels)
{
    const AxisSums::Axis axis = axisOf(scattered(5.0, 200), around(5.0, 700));
    std::vector<Weights> rows;
    for (std::uint64_t seed = 1; seed <= 19; ++seed) {
        rows.push_back(UniformNumbers(seed).next(200));
    }
    const std::vector<AxisSums::Trend> trends(19, {1.0, 0.0});

    const auto together = evaluated(axis, rows, trends);
    const auto inParts = evaluated(axis, rows, trends, 3);

    EXPECT_EQ(together, inParts);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(together[i], evaluated(axis, {rows[i]}, {trends[i]})[0]) << i;
    }
}

TEST(AxisSums, AreNaNInTheRowOfATrendThatIsNaNOnly)
{
    const double notANumber = std::numeric_limits<double>::quiet_NaN();
    const AxisSums::Axis axis = axisOf(scattered(5.0, 20), around(5.0, 30));

    const auto found = evaluated(axis, {mixed(20), mixed(20), mixed(20)},
                                 {{0.0, 0.0}, {notANumber, 0.0}, {0.0, 0.0}});

    for (std::size_t v = 0; v < 30; ++v) {
        EXPECT_TRUE(std::isnan(found[1][v]));
        EXPECT_EQ(found[0][v], found[2][v]);
        EXPECT_TRUE(std::isfinite(found[0][v]));
    }
}
