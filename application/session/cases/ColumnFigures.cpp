#include "session/cases/ColumnFigures.h"

#include "session/text/DecimalText.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <string_view>

namespace {
/** Half of the sum of two numbers that may be as large as a double can be. */
double mean(double low, double high)
{
    return low / 2.0 + high / 2.0;
}

template <typename Value>
void countDistinct(const std::vector<Value>& values, ColumnFigures& figures)
{
    figures.count = values.size();
    figures.distinct = distinctValues(values, ColumnFigures::maxDistinct + 1);
    figures.hasMoreDistinct = figures.distinct > ColumnFigures::maxDistinct;
    figures.distinct -= figures.hasMoreDistinct ? 1 : 0;
}
} // namespace

double medianOf(std::vector<double> numbers)
{
    const auto middle = numbers.begin() + static_cast<std::ptrdiff_t>(numbers.size() / 2);
    std::nth_element(numbers.begin(), middle, numbers.end());
    if (numbers.size() % 2 == 1) {
        return *middle;
    }
    const double median = mean(*std::max_element(numbers.begin(), middle), *middle);
    return nearbyDecimal(median, median);
}

ColumnFigures ColumnFigures::of(const std::vector<double>& numbers)
{
    ColumnFigures figures;
    std::vector<double> finite;
    finite.reserve(numbers.size());
    for (const double number : numbers) {
        figures.missing += std::isnan(number) ? 1 : 0;
        if (std::isfinite(number)) {
            finite.push_back(number);
        }
    }
    countDistinct(finite, figures);
    if (!finite.empty()) {
        const auto [least, greatest] = std::minmax_element(finite.begin(), finite.end());
        figures.minimum = *least;
        figures.maximum = *greatest;
        figures.median = medianOf(finite);
    }
    return figures;
}

ColumnFigures ColumnFigures::of(const std::vector<std::string>& texts)
{
    ColumnFigures figures;
    std::vector<std::string_view> filled;
    std::copy_if(texts.begin(), texts.end(), std::back_inserter(filled),
                 [](const std::string& text) { return !text.empty(); });
    countDistinct(filled, figures);
    figures.missing = texts.size() - filled.size();
    return figures;
}
