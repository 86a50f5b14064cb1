#include <mirel_fitting/KrigingReport.h>

#include <algorithm>
#include <cmath>

int KrigingReport::LeftOutCase::digits(int fewest) const
{
    constexpr int ofTheDifference = 3;
    constexpr int all = 17; // more tell nothing about a double

    const double size = std::max(std::fabs(output), std::fabs(predicted));
    const double difference = std::fabs(output - predicted);
    if (!(difference > 0.0) || !std::isfinite(size)) {
        return fewest;
    }
    const double hidden = std::ceil(std::log10(size) - std::log10(difference));
    return std::clamp(ofTheDifference + static_cast<int>(hidden), fewest, all);
}
