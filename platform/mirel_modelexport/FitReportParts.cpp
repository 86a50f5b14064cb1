#include <mirel_modelexport/FitReportParts.h>

#include <mirel_fitting/ResponseSurfaceStatistics.h>

#include <algorithm>
#include <cmath>

std::string FitReportParts::termName(const std::vector<std::size_t>& factors,
                                     const std::vector<std::string>& inputs)
{
    if (factors.empty()) {
        return "intercept";
    }
    const std::string& first = inputs.at(factors.front());
    if (factors.size() == 1) {
        return first;
    }
    return factors[0] == factors[1] ? first + "^2" : first + " * " + inputs.at(factors[1]);
}

std::vector<std::size_t>
FitReportParts::largestResiduals(const ResponseSurfaceStatistics& statistics)
{
    constexpr std::size_t maxShown = 5;
    // Residuals that differ by less count as equal: rounding must not decide their order.
    constexpr double step = 1e-9;
    const auto size = [&](std::size_t k) {
        return std::round(std::abs(statistics.cases[k].externallyStudentised) / step);
    };
    std::vector<std::size_t> order;
    for (std::size_t k = 0; k < statistics.cases.size(); ++k) {
        if (!std::isnan(size(k))) {
            order.push_back(k);
        }
    }
    const auto end = order.begin() + static_cast<std::ptrdiff_t>(std::min(maxShown, order.size()));
    std::partial_sort(order.begin(), end, order.end(), [&](std::size_t left, std::size_t right) {
        return size(left) > size(right) || (size(left) == size(right) && left < right);
    });
    order.erase(end, order.end());
    return order;
}

std::string FitReportParts::lackOfFitNote(const ResponseSurfaceStatistics& statistics)
{
    return statistics.repeatsAreCopies ? "Lack of fit: not available, the repeats are exact copies."
                                       : "";
}

std::string FitReportParts::canonicalNote(const ResponseSurfaceStatistics& statistics)
{
    const bool isWithheld = statistics.isCurved && !statistics.stationaryPoint &&
                            statistics.canonicalDirections.empty();
    return isWithheld ? "There is no stationary point, canonical analysis or ridge analysis: the "
                        "cases cannot separate the second-order terms from each other."
                      : "";
}
