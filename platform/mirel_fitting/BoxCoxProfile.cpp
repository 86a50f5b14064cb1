#include <mirel_fitting/BoxCoxProfile.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <utility>

namespace {

/** Half the 95 % point of chi-squared with one degree of freedom. */
constexpr double dropOfLimits = 1.920729410347062;

constexpr int steps = 80;                // of a grid of powers
constexpr std::size_t outputsAtOnce = 9; // held in memory, and fitted by one factorisation
constexpr int maxRefinements = 3;
/** An interval of fewer steps needs a finer grid. */
constexpr double minSteps = 8.0;

struct Grid
{
    double first;
    double step;
    std::vector<double> likelihoods;

    double power(std::size_t k) const { return first + static_cast<double>(k) * step; }
};

std::vector<double> raised(const std::vector<double>& logarithms, double mean, double power)
{
    std::vector<double> values(logarithms.size());
    std::transform(logarithms.begin(), logarithms.end(), values.begin(), [&](double logarithm) {
        const double z = logarithm - mean;
        return std::exp(mean) * (power == 0.0 ? z : std::expm1(power * z) / power);
    });
    return values;
}

Grid likelihoodsOver(double from, double to, const std::vector<double>& logarithms, double mean,
                     const BoxCoxProfile::Likelihood& likelihood)
{
    Grid grid{from, (to - from) / steps, {}};
    std::vector<std::vector<double>> outputs;
    for (std::size_t k = 0; k <= steps; ++k) {
        // 0 is one of the powers, but for rounding.
        const double power =
            std::fabs(grid.power(k)) < 0.5 * grid.step * 1e-6 ? 0.0 : grid.power(k);
        outputs.push_back(raised(logarithms, mean, power));
        if (outputs.size() == outputsAtOnce || k == steps) {
            const std::vector<double> found = likelihood(outputs);
            grid.likelihoods.insert(grid.likelihoods.end(), found.begin(), found.end());
            outputs.clear();
        }
    }
    return grid;
}

/** Where the likelihood falls to a level, from position k on towards `direction`. */
double crossing(const Grid& grid, std::size_t k, int direction, double level)
{
    const auto& values = grid.likelihoods;
    for (;;) {
        if (direction < 0 ? k == 0 : k + 1 == values.size()) {
            return grid.power(k);
        }
        const std::size_t next = direction < 0 ? k - 1 : k + 1;
        if (!(values[next] >= level)) {
            const double share = std::isfinite(values[next]) && std::isfinite(values[k])
                                     ? (values[k] - level) / (values[k] - values[next])
                                     : 0.0;
            return grid.power(k) + std::max(share, 0.0) * (grid.power(next) - grid.power(k));
        }
        k = next;
    }
}

void find(const Grid& grid, BoxCoxProfile& profile)
{
    const std::vector<double>& values = grid.likelihoods;
    // NaN, of powers that cannot be fitted, is not the largest.
    const auto best = static_cast<std::size_t>(
        std::max_element(values.begin(), values.end(),
                         [](double left, double right) {
                             return left < right || (std::isnan(left) && !std::isnan(right));
                         }) -
        values.begin());
    profile.power = grid.power(best);
    double largest = values[best];
    if (best > 0 && best + 1 < values.size()) {
        // The vertex of the parabola through three points.
        const double slope = values[best + 1] - values[best - 1];
        const double curvature = values[best - 1] - 2.0 * values[best] + values[best + 1];
        if (std::isfinite(slope) && curvature < 0.0) {
            profile.power -= 0.5 * grid.step * slope / curvature;
            largest -= slope * slope / (8.0 * curvature);
        }
    }
    profile.lower = crossing(grid, best, -1, largest - dropOfLimits);
    profile.upper = crossing(grid, best, 1, largest - dropOfLimits);
}

void chooseCustomary(BoxCoxProfile& profile)
{
    using Power = std::pair<double, OutputTransform>;
    const std::vector<Power> customary = {{1.0, OutputTransform::None},
                                          {0.5, OutputTransform::SquareRoot},
                                          {0.0, OutputTransform::Logarithm}};
    const auto isBetween = [&](const Power& power) {
        return power.first >= profile.lower && power.first <= profile.upper;
    };
    const auto isNearer = [&](const Power& left, const Power& right) {
        return std::fabs(left.first - profile.power) < std::fabs(right.first - profile.power);
    };
    std::vector<Power> candidates;
    std::copy_if(customary.begin(), customary.end(), std::back_inserter(candidates), isBetween);
    profile.isBetweenLimits = !candidates.empty();
    if (candidates.empty()) {
        candidates = customary;
    } else if (isBetween(customary.front())) {
        candidates = {customary.front()};
    }
    profile.transform = std::min_element(candidates.begin(), candidates.end(), isNearer)->second;
}

} // namespace

BoxCoxProfile BoxCoxProfile::of(const std::vector<double>& output, const Likelihood& likelihood)
{
    std::vector<double> logarithms(output.size());
    double mean = 0.0;
    for (std::size_t i = 0; i < output.size(); ++i) {
        logarithms[i] = std::log(output[i]);
        mean += logarithms[i] / static_cast<double>(output.size());
    }
    BoxCoxProfile profile;
    double from = -largestPower;
    double to = largestPower;
    for (int refinement = 0; refinement <= maxRefinements; ++refinement) {
        const Grid grid = likelihoodsOver(from, to, logarithms, mean, likelihood);
        find(grid, profile);
        if (profile.upper - profile.lower >= minSteps * grid.step) {
            break;
        }
        const double width = minSteps * grid.step;
        from = std::max(profile.power - width, -largestPower);
        to = std::min(profile.power + width, largestPower);
    }
    chooseCustomary(profile);
    return profile;
}
