#include <mirel_fitting/kriging/search/KrigingSearchVariables.h>

#include <mirel_fitting/kriging/search/KrigingObjective.h>

#include <algorithm>
#include <cmath>
#include <random>

namespace {

constexpr double largestNugget = 100.0;
constexpr double nuggetUnit = KrigingObjective::nuggetUnit;
constexpr double near = 0.01; // to a bound: at it

} // namespace

KrigingSearchVariables::KrigingSearchVariables(const KrigingData& data,
                                               const KrigingSearch::Settings& settings)
    : lengths(settings.fixedLengths.empty() ? data.inputs : 0), hasNugget(!settings.isNuggetFixed)
{
    // Cases half of this apart along an axis are correlated by a third: less cannot be told
    // from no correlation at all.
    const double spacing = std::pow(static_cast<double>(data.cases),
                                    -1.0 / static_cast<double>(std::max<std::size_t>(lengths, 1)));
    const double shortest = std::min(KrigingSearch::smallestLength(), 0.5 * spacing);
    lower.assign(lengths, std::log(shortest));
    upper.assign(lengths, std::log(KrigingSearch::largestLength()));
    if (hasNugget) {
        const double largest = std::max(largestNugget, 10.0 * settings.smallestNugget);
        lower.push_back(std::log(settings.smallestNugget) / nuggetUnit);
        upper.push_back(std::log(largest) / nuggetUnit);
    }
}

std::vector<double> KrigingSearchVariables::at(const KrigingParameters& parameters) const
{
    std::vector<double> result;
    for (std::size_t k = 0; k < lengths; ++k) {
        result.push_back(std::log(parameters.lengths[k]));
    }
    if (hasNugget) {
        result.push_back(std::log(parameters.nugget) / nuggetUnit);
    }
    return result;
}

std::vector<double> KrigingSearchVariables::uniform(double length, double nugget) const
{
    std::vector<double> start(lengths, std::log(length));
    if (hasNugget) {
        start.push_back(std::log(nugget) / nuggetUnit);
    }
    return start;
}

std::vector<std::vector<double>> KrigingSearchVariables::commonStarts(double initialLength) const
{
    std::vector<std::vector<double>> result = {uniform(initialLength, smoothNugget)};
    if (hasNugget) {
        result.push_back(uniform(initialLength, noisyNugget));
    }
    if (lengths > 0) {
        result.push_back(uniform(4.0 * initialLength, smoothNugget));
    }
    return result;
}

std::vector<std::vector<double>> KrigingSearchVariables::scatteredStarts() const
{
    constexpr int scattered = 12;
    constexpr std::uint64_t seed = 20180;
    std::mt19937_64 generator(seed);
    std::vector<std::vector<double>> result;
    for (int start = 0; start < scattered; ++start) {
        std::vector<double> point = uniform(1.0, start % 2 == 0 ? smoothNugget : noisyNugget);
        for (std::size_t k = 0; k < lengths; ++k) {
            const double share = static_cast<double>(generator() >> 11) * 0x1.0p-53;
            point[k] = std::log(10.0) * (1.7 * share - 0.7);
        }
        result.push_back(point);
    }
    return result;
}

void KrigingSearchVariables::recall(std::vector<double>& point) const
{
    for (std::size_t k = 0; k < lengths; ++k) {
        point[k] = std::min(point[k], std::log(faint));
    }
}

void KrigingSearchVariables::limitRises(BoundedSearch& search) const
{
    constexpr double most = 1.0; // in its unit: a factor of 20

    if (hasNugget) {
        search.limitRise(size() - 1, most);
    }
}

bool KrigingSearchVariables::areClose(const std::vector<double>& a,
                                      const std::vector<double>& b) const
{
    // Inputs with hardly any influence, and nuggets that stand for nothing, move freely.
    const double longLength = std::log(10.0);
    const double slightNugget = std::log(1e-8) / nuggetUnit;
    constexpr double apart = 0.5;
    for (std::size_t k = 0; k < size(); ++k) {
        const bool isFree =
            k < lengths ? std::min(a[k], b[k]) > longLength : std::max(a[k], b[k]) < slightNugget;
        if (!isFree && std::fabs(a[k] - b[k]) > apart) {
            return false;
        }
    }
    return true;
}

bool KrigingSearchVariables::isNuggetLargest(const std::vector<double>& point) const
{
    return hasNugget && point.back() > upper.back() - near;
}

std::vector<KrigingReport::Bound>
KrigingSearchVariables::boundsOf(const std::vector<double>& point) const
{
    std::vector<KrigingReport::Bound> result;
    for (std::size_t k = 0; k < lengths; ++k) {
        using Bound = KrigingReport::Bound;
        result.push_back(point[k] > upper[k] - near   ? Bound::Upper
                         : point[k] < lower[k] + near ? Bound::Lower
                                                      : Bound::None);
    }
    return result;
}
