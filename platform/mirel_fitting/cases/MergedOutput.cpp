#include <mirel_fitting/cases/MergedOutput.h>

#include <mirel_fitting/FitProgress.h>

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
    constexpr std::size_t pointsPerReport = 65536; // some milliseconds

    std::vector<double> values; // of the rows at a point, ascending
    const auto gather = [&](std::size_t point) {
        if (point % pointsPerReport == 0) {
            FitProgress::advance();
        }
        values.clear();
        for (const std::size_t row : cases.rowsAt(point)) {
            values.push_back(output[row]);
        }
        std::sort(values.begin(), values.end());
    };
    for (std::size_t point = 0; point < cases.pointCount(); ++point) {
        gather(point);
        const std::size_t distinct = countDistinct(values);
        copies += values.size() - distinct;
        conflicts += distinct > 1 ? 1 : 0;
    }
    for (std::size_t point = 0; point < cases.pointCount(); ++point) {
        gather(point);
        if (conflicts == 0) {
            values.resize(1);
        }
        add(values);
    }
}

void MergedOutput::add(const std::vector<double>& ascending)
{
    const auto count = static_cast<double>(ascending.size());
    double mean = ascending.front();
    double squares = 0.0;
    // The computed mean of equal values would be rounded, which would look like noise.
    if (ascending.front() != ascending.back()) {
        mean = 0.0;
        for (const double value : ascending) {
            mean += value / count;
        }
        for (const double value : ascending) {
            squares += (value - mean) * (value - mean);
        }
    }
    means.push_back(mean);
    replicates.push_back(count);
    withinSquares.push_back(squares);
}
