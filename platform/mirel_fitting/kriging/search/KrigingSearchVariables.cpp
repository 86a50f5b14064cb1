#include <mirel_fitting/kriging/search/KrigingSearchVariables.h>

#include <mirel_fitting/kriging/search/LengthPrior.h>
#include <mirel_fitting/kriging/search/SearchPolicy.h>

#include <algorithm>
#include <cmath>

namespace policy = SearchPolicy;

KrigingSearchVariables::KrigingSearchVariables(const KrigingData& data,
                                               const KrigingSearchSettings& settings)
    : settings(settings), inputs(data.inputs),
      lengths(settings.fixedLengths.empty() ? data.inputs : 0),
      isNuggetSearched(!settings.isNuggetFixed)
{
    meanSpacing = std::pow(static_cast<double>(data.cases),
                           -1.0 / static_cast<double>(std::max<std::size_t>(lengths, 1)));
    const double shortest = std::min(policy::shortestLength, policy::shortestSpacing * meanSpacing);
    lowest.assign(lengths, std::log(shortest));
    highest.assign(lengths, std::log(policy::longestLength));
    if (isNuggetSearched) {
        const double least = settings.leastNugget();
        lowest.push_back(std::log(least) / policy::nuggetUnit);
        highest.push_back(std::log(std::max(policy::largestNugget, 10.0 * least)) /
                          policy::nuggetUnit);
    }
}

std::vector<double> KrigingSearchVariables::at(const KrigingParameters& parameters) const
{
    std::vector<double> result;
    for (std::size_t k = 0; k < lengths; ++k) {
        result.push_back(std::log(parameters.lengths[k]));
    }
    if (isNuggetSearched) {
        result.push_back(std::log(parameters.nugget) / policy::nuggetUnit);
    }
    return result;
}

KrigingParameters KrigingSearchVariables::parameters(const std::vector<double>& point) const
{
    KrigingParameters result;
    result.lengths = settings.fixedLengths;
    for (std::size_t k = 0; k < lengths; ++k) {
        result.lengths.push_back(std::exp(point[k]));
    }
    const bool isLeast = !isNuggetSearched || point.back() <= lowest.back();
    result.nugget = isLeast ? settings.leastNugget() : std::exp(policy::nuggetUnit * point.back());
    return result;
}

std::vector<double> KrigingSearchVariables::uniform(double length, double nugget) const
{
    return at({std::vector<double>(inputs, length), nugget});
}

std::vector<std::vector<double>> KrigingSearchVariables::starts() const
{
    std::vector<std::vector<double>> result;
    for (const SearchPolicy::Start& start : policy::starts) {
        const double length =
            std::min(start.length * settings.initialLength, start.spacings * meanSpacing);
        result.push_back(uniform(length, start.nugget));
    }
    return result;
}

std::vector<std::vector<double>> KrigingSearchVariables::spreadStarts(std::size_t count) const
{
    const double likeliestLength = std::exp(LengthPrior(meanSpacing).mode());
    double root = 2.0;
    for (int k = 0; k < 50;
         ++k) { // fixed-point iteration: each step leaves less than a third of the error
        root = std::pow(1.0 + root, 1.0 / static_cast<double>(size() + 1));
    }
    const auto between = [](double least, double largest, double share) {
        return least * std::pow(largest / least, share);
    };
    std::vector<std::vector<double>> result;
    for (std::size_t i = 1; i <= count; ++i) {
        KrigingParameters parameters;
        double step = 1.0;
        const auto next = [&] {
            step /= root;
            const double place = 0.5 + static_cast<double>(i) * step;
            return place - std::floor(place);
        };
        for (std::size_t k = 0; k < lengths; ++k) {
            parameters.lengths.push_back(
                likeliestLength * between(policy::shortestSpread, policy::longestSpread, next()));
        }
        parameters.nugget =
            i % 2 == 1 ? settings.leastNugget()
                       : between(policy::leastSpreadNugget, policy::largestSpreadNugget, next());
        result.push_back(at(parameters));
    }
    return result;
}

void KrigingSearchVariables::limitLengths(std::vector<double>& point) const
{
    for (std::size_t k = 0; k < lengths; ++k) {
        point[k] = std::min(point[k], std::log(policy::recalledLength));
    }
}

bool KrigingSearchVariables::areClose(const std::vector<double>& a,
                                      const std::vector<double>& b) const
{
    const double indifferentLength = std::log(policy::indifferentLength);
    const double indifferentNugget = std::log(policy::indifferentNugget) / policy::nuggetUnit;
    for (std::size_t k = 0; k < size(); ++k) {
        const bool isIndifferent = k < lengths ? std::min(a[k], b[k]) > indifferentLength
                                               : std::max(a[k], b[k]) < indifferentNugget;
        if (!isIndifferent && std::fabs(a[k] - b[k]) > policy::sameLogarithm) {
            return false;
        }
    }
    return true;
}

bool KrigingSearchVariables::isNuggetLargest(const std::vector<double>& point) const
{
    return isNuggetSearched && point.back() > highest.back() - policy::boundTolerance;
}

std::vector<KrigingReport::Bound>
KrigingSearchVariables::boundsOf(const std::vector<double>& point) const
{
    using Bound = KrigingReport::Bound;

    const double tolerance = policy::boundTolerance;
    std::vector<Bound> result;
    for (std::size_t k = 0; k < lengths; ++k) {
        result.push_back(point[k] > highest[k] - tolerance  ? Bound::Upper
                         : point[k] < lowest[k] + tolerance ? Bound::Lower
                                                            : Bound::None);
    }
    return result;
}
