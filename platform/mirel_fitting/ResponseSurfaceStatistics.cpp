#include <mirel_fitting/ResponseSurfaceStatistics.h>

#include <algorithm>
#include <cmath>

std::vector<std::size_t> ResponseSurfaceStatistics::suspectedOutliers() const
{
    std::vector<std::size_t> outliers;
    const auto size = [&](std::size_t k) { return std::fabs(cases[k].externallyStudentised); };
    for (std::size_t k = 0; k < cases.size(); ++k) {
        if (size(k) > outlierLimit) {
            outliers.push_back(k);
        }
    }
    std::stable_sort(outliers.begin(), outliers.end(),
                     [&](std::size_t left, std::size_t right) { return size(left) > size(right); });
    return outliers;
}

const char* natureName(StationaryPoint::Nature nature)
{
    switch (nature) {
    case StationaryPoint::Nature::Minimum:
        return "minimum";
    case StationaryPoint::Nature::Maximum:
        return "maximum";
    case StationaryPoint::Nature::Saddle:
        return "saddle";
    default:
        return "ridge";
    }
}
