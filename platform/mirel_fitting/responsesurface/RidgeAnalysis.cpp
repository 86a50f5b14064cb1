#include <mirel_fitting/responsesurface/RidgeAnalysis.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <utility>

RidgeAnalysis::RidgeAnalysis(std::vector<double> eigenvalues, std::vector<double> slopes)
    : eigenvalues(std::move(eigenvalues)), slopes(std::move(slopes)),
      top(static_cast<std::size_t>(
          std::max_element(this->eigenvalues.begin(), this->eigenvalues.end()) -
          this->eigenvalues.begin()))
{}

/** @param gap the multiplier minus the largest eigenvalue, 0 or more. */
std::vector<double> RidgeAnalysis::pointAt(double gap) const
{
    std::vector<double> point(slopes.size(), 0.0);
    for (std::size_t k = 0; k < slopes.size(); ++k) {
        // Without a slope the polynomial is symmetric along this direction: infinity times 0.
        if (slopes[k] != 0.0) {
            point[k] = slopes[k] / (2.0 * (gap + (eigenvalues[top] - eigenvalues[k])));
        }
    }
    return point;
}

double RidgeAnalysis::lengthAt(double gap) const
{
    const std::vector<double> point = pointAt(gap);
    return std::sqrt(std::inner_product(point.begin(), point.end(), point.begin(), 0.0));
}

std::vector<double> RidgeAnalysis::largest(double length) const
{
    if (length <= 0.0) {
        return std::vector<double>(slopes.size(), 0.0);
    }
    if (lengthAt(0.0) < length) {
        std::vector<double> point = pointAt(0.0);
        const double reached = lengthAt(0.0);
        point[top] += std::sqrt(length * length - reached * reached);
        return point;
    }
    const double squares = std::inner_product(slopes.begin(), slopes.end(), slopes.begin(), 0.0);
    // No term has a larger denominator at the gap where all of them together have the length.
    double low = 0.0;
    double high = std::sqrt(squares) / (2.0 * length);
    for (;;) {
        const double middle = low + (high - low) / 2.0;
        if (middle <= low || middle >= high) {
            return pointAt(high);
        }
        (lengthAt(middle) > length ? low : high) = middle;
    }
}
