#include <mirel_fitting/KrigingReport.h>

#include <algorithm>
#include <cmath>

int KrigingReport::LeftOutCase::digits(int fewest) const
{
    constexpr int digitsOfDifference = 3;
    constexpr int maxDigits = 17; // these determine a double

    const double size = std::max(std::fabs(output), std::fabs(predicted));
    const double difference = std::fabs(output - predicted);
    if (!(difference > 0.0) || !std::isfinite(size)) {
        return fewest;
    }
    const double commonDigits = std::ceil(std::log10(size) - std::log10(difference));
    return std::clamp(digitsOfDifference + static_cast<int>(commonDigits), fewest, maxDigits);
}

std::string KrigingReport::criterionText() const
{
    switch (criterion) {
    case Criterion::RestrictedLikelihood:
        return "restricted likelihood";
    case Criterion::PenalisedRestrictedLikelihood:
        return "restricted likelihood, penalised lengths";
    default:
        return "none";
    }
}

std::string KrigingReport::boundText(Bound bound)
{
    switch (bound) {
    case Bound::Lower:
        return " (at its lower bound)";
    case Bound::Upper:
        return " (at its upper bound)";
    default:
        return "";
    }
}

std::string KrigingReport::lengthBoundText(std::size_t input) const
{
    const Bound bound = input < lengthBounds.size() ? lengthBounds[input] : Bound::None;
    if (bound != Bound::Upper) {
        return boundText(bound);
    }
    return hasNoInfluence(input) ? " (no influence)" : " (no influence beyond the trend)";
}
