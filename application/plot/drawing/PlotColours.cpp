#include "plot/drawing/PlotColours.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {
constexpr std::array<QRgb, 10> viridisColours = {0x440154, 0x482878, 0x3E4989, 0x31688E, 0x26828E,
                                                 0x1F9E89, 0x35B779, 0x6ECE58, 0xB5DE2B, 0xFDE725};
} // namespace

QColor PlotColours::viridis(double fraction)
{
    constexpr std::size_t steps = viridisColours.size() - 1;
    const double place = std::clamp(fraction, 0.0, 1.0) * static_cast<double>(steps);
    const std::size_t below = std::min(static_cast<std::size_t>(place), steps - 1);
    const double weight = place - static_cast<double>(below);
    const QColor low(viridisColours[below]);
    const QColor high(viridisColours[below + 1]);
    const auto mixed = [weight](int from, int to) {
        return static_cast<int>(std::lround(from + weight * (to - from)));
    };
    return {mixed(low.red(), high.red()), mixed(low.green(), high.green()),
            mixed(low.blue(), high.blue())};
}

QColor PlotColours::readableOn(const QColor& background)
{
    // Weights of perceived lightness, ITU-R BT.601.
    const double lightness =
        0.299 * background.redF() + 0.587 * background.greenF() + 0.114 * background.blueF();
    return lightness > 0.5 ? Qt::black : Qt::white;
}
