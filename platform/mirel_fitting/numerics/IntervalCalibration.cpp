#include <mirel_fitting/numerics/IntervalCalibration.h>

#include <mirel_fitting/numerics/Distributions.h>

#include <boost/math/distributions/binomial.hpp>

#include <algorithm>
#include <cmath>

IntervalCalibration::IntervalCalibration(double degreesOfFreedom,
                                         const std::vector<double>& standardised, Basis basis)
    : degreesOfFreedom(degreesOfFreedom), basis(basis)
{
    for (const double residual : standardised) {
        if (!std::isnan(residual)) {
            magnitudes.push_back(std::fabs(residual));
        }
    }
    std::sort(magnitudes.begin(), magnitudes.end());
    finite = static_cast<std::size_t>(
        std::find_if(magnitudes.begin(), magnitudes.end(),
                     [](double magnitude) { return std::isinf(magnitude); }) -
        magnitudes.begin());
    if (finite < minCases) {
        widening = basis == Basis::Refits ? wideningByChance() : 1.0;
        this->basis = widening > 1.0 ? basis : Basis::Distribution;
    }
}

double IntervalCalibration::wideningByChance() const
{
    constexpr double level = 0.95;
    constexpr double chance = 0.05;

    const std::size_t count = magnitudes.size();
    if (finite < minRefits) {
        return 1.0;
    }
    const boost::math::binomial outside(static_cast<double>(count), 1.0 - level);
    std::size_t tooMany = 1;
    while (boost::math::cdf(boost::math::complement(outside, static_cast<double>(tooMany) - 1.0)) >
           chance) {
        ++tooMany;
    }
    const double limit = magnitudes[std::min(count - tooMany, finite - 1)];
    return std::max(1.0, limit / studentQuantile(level));
}

double IntervalCalibration::quantile(double level) const
{
    // With fewer magnitudes beyond it, a quantile is mostly chance. With at least five the 99 %
    // intervals of a few hundred cases with heavy tails hold 1 % fewer cases.
    constexpr std::size_t minBeyond = 3;

    const double student = studentQuantile(level);
    if (finite < minCases) {
        return student * widening;
    }
    if (basis == Basis::Distribution) {
        return student;
    }
    const std::size_t infinite = magnitudes.size() - finite;
    const std::size_t beyond = std::max(minBeyond, infinite + 1);
    const double lastLevel =
        1.0 - static_cast<double>(beyond) / (static_cast<double>(magnitudes.size()) + 1.0);
    if (level <= lastLevel) {
        return empiricalQuantile(level);
    }
    return student * (empiricalQuantile(lastLevel) / studentQuantile(lastLevel));
}

double IntervalCalibration::studentQuantile(double level) const
{
    return Distributions::studentQuantile(level, degreesOfFreedom);
}

/** Linear between the magnitudes, and from 0 to the smallest one. */
double IntervalCalibration::empiricalQuantile(double level) const
{
    const double position = level * (static_cast<double>(magnitudes.size()) + 1.0);
    const auto above = std::min(static_cast<std::size_t>(position), finite - 1);
    const double lower = above == 0 ? 0.0 : magnitudes[above - 1];
    return lower + (position - static_cast<double>(above)) * (magnitudes[above] - lower);
}

CalibrationReport IntervalCalibration::report() const
{
    constexpr double level = 0.95;

    CalibrationReport report;
    report.basis = basis;
    report.factor = quantile(level) / studentQuantile(level);
    report.addCoverage(magnitudes,
                       [this](double ofInterval) { return studentQuantile(ofInterval); });
    return report;
}
