#include "session/cases/ColumnFigures.h"

#include "session/text/DecimalText.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <unordered_set>

namespace {
/** Half of the sum of two numbers that may be as large as a double can be. */
double mean(double low, double high)
{
    return low / 2.0 + high / 2.0;
}

/** Counts values until there are too many. */
template <typename Value>
class DistinctCounter
{
public:
    explicit DistinctCounter(ColumnFigures& result) : figures(result) {}

    void add(const Value& value)
    {
        if (figures.hasMoreDistinct) {
            return;
        }
        seen.insert(value);
        figures.hasMoreDistinct = seen.size() > ColumnFigures::maxDistinct;
        figures.distinct = std::min(seen.size(), ColumnFigures::maxDistinct);
    }

private:
    ColumnFigures& figures;
    std::unordered_set<Value> seen;
};
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
    DistinctCounter<double> distinct(figures);
    std::vector<double> finite;
    finite.reserve(numbers.size());
    for (const double number : numbers) {
        figures.missing += std::isnan(number) ? 1 : 0;
        if (std::isfinite(number)) {
            finite.push_back(number);
            distinct.add(number);
        }
    }
    figures.count = finite.size();
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
    DistinctCounter<std::string_view> distinct(figures);
    for (const std::string& text : texts) {
        if (text.empty()) {
            ++figures.missing;
        } else {
            ++figures.count;
            distinct.add(text);
        }
    }
    return figures;
}
