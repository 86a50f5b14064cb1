#include <mirel_fitting/kriging/report/OutputScale.h>

#include <mirel_fitting/FitProgress.h>

#include <algorithm>
#include <cmath>

namespace {

/** Sums are formed in ascending order, so that no bit depends on the order of the cases. */
std::vector<double> ascending(std::vector<double> values)
{
    FitProgress::advance();
    std::sort(values.begin(), values.end());
    return values;
}

} // namespace

OutputScale OutputScale::of(const std::vector<double>& output)
{
    const auto [smallest, largest] = std::minmax_element(output.begin(), output.end());
    // Halved first: the difference of the two largest numbers overflows.
    const double halfRange = 0.5 * *largest - 0.5 * *smallest;
    if (!(halfRange > 0.0)) {
        return {*smallest, 1.0};
    }
    const double centre = *smallest + halfRange;
    const std::vector<double> sorted = ascending(output);
    const auto n = static_cast<double>(output.size());
    double sum = 0.0;
    for (const double y : sorted) {
        sum += (y - centre) / halfRange;
    }
    const double mean = sum / n;
    double squares = 0.0;
    for (const double y : sorted) {
        const double deviation = (y - centre) / halfRange - mean;
        squares += deviation * deviation;
    }
    return {centre + mean * halfRange, halfRange * std::sqrt(squares / n)};
}

std::vector<double> OutputScale::standardise(const std::vector<double>& output) const
{
    std::vector<double> result;
    result.reserve(output.size());
    for (const double y : output) {
        result.push_back((y - offset) / scale);
    }
    return result;
}

double OutputScale::sumOfSquares(const std::vector<double>& output) const
{
    double squares = 0.0;
    for (const double y : ascending(output)) {
        const double deviation = (y - offset) / scale;
        squares += deviation * deviation;
    }
    return squares;
}
