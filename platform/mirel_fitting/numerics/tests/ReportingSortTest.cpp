#include <mirel_fitting/numerics/ReportingSort.h>

#include "KrigingTestSupport.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

std::vector<double> sorted(std::vector<double> values, const std::function<void()>& report)
{
    sortReporting(values.begin(), values.end(), std::less<>(), report);
    return values;
}

} // namespace

TEST(ReportingSort, SortsAnyNumberOfElements)
{
    for (const std::size_t count : {0, 1, 2, 32767, 32768, 32769, 100000, 200001}) {
        const std::vector<double> values = UniformNumbers(count).next(count);
        std::vector<double> expected = values;
        std::sort(expected.begin(), expected.end());

        EXPECT_EQ(sorted(values, nullptr), expected) << count;
    }
}

TEST(ReportingSort, ReportsBetweenItsParts)
{
    std::size_t reports = 0;

    sorted(UniformNumbers(1).next(8 * 32768), [&] { ++reports; });

    // Eight parts, then four, two and one pair of them to merge.
    EXPECT_EQ(reports, 15u);
}

TEST(ReportingSort, EndsWhenTheReportThrows)
{
    int reports = 0;
    const auto stop = [&] {
        if (++reports == 3) {
            throw std::runtime_error("enough");
        }
    };

    EXPECT_THROW(sorted(UniformNumbers(1).next(200000), stop), std::runtime_error);
    EXPECT_EQ(reports, 3);
}
