#include <mirel_fitting/MergedOutput.h>

#include <algorithm>

namespace {

/** @param ascending is not empty. */
std::size_t countDistinct(const std::vector<double>& ascending)
{
    std::size_t count = 1;
    for (std::size_t i = 1; i < ascending.size(); ++i) {
        count += ascending[i] != ascending[i - 1] ? 1 : 0;
    }
    return count;
}

} // namespace

MergedOutput::MergedOutput(const KrigingCases& cases, const std::vector<double>& output)
{
    std::vector<std::vector<double>> valuesAt(cases.pointCount());
    for (std::size_t point = 0; point < valuesAt.size(); ++point) {
        std::vector<double>& values = valuesAt[point];
        for (const std::size_t row : cases.rowsAt(point)) {
            values.push_back(output[row]);
        }
        std::sort(values.begin(), values.end());
        const std::size_t distinct = countDistinct(values);
        copies += values.size() - distinct;
        conflicts += distinct > 1 ? 1 : 0;
    }

    for (std::vector<double>& values : valuesAt) {
        if (conflicts == 0) {
            values.resize(1);
        }
        const auto count = static_cast<double>(values.size());
        double mean = values.front();
        double squares = 0.0;
        // Of equal values the sum would round the mean, and its rounding pass for scatter.
        if (values.front() != values.back()) {
            mean = 0.0;
            for (const double value : values) {
                mean += value / count;
            }
            for (const double value : values) {
                squares += (value - mean) * (value - mean);
            }
        }
        means.push_back(mean);
        rows.push_back(count);
        scatter.push_back(squares);
    }
}
