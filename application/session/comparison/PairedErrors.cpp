#include "session/comparison/PairedErrors.h"

#include <boost/math/distributions/students_t.hpp>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>

namespace {
/** The sums of squared errors in one fold. */
struct FoldErrors
{
    double responseSurface = 0.0;
    double kriging = 0.0;
    double cases = 0.0;

    double logRatio(double negligible) const
    {
        // Without the smallest double, errors of exactly 0 would have no logarithm.
        const double least = std::max(negligible, std::numeric_limits<double>::min());
        return std::log(std::max(std::sqrt(responseSurface / cases), least) /
                        std::max(std::sqrt(kriging / cases), least));
    }
};

double twoSided(double mean, double standardError, double degreesOfFreedom)
{
    if (standardError == 0.0) {
        return mean == 0.0 ? 1.0 : 0.0;
    }
    const boost::math::students_t distribution(degreesOfFreedom);
    return 2.0 *
           boost::math::cdf(boost::math::complement(distribution, std::abs(mean / standardError)));
}
} // namespace

PairedErrors PairedErrors::of(const std::vector<Case>& cases, std::size_t folds, double negligible)
{
    PairedErrors errors;
    std::map<std::size_t, FoldErrors> byFold;
    for (const Case& one : cases) {
        FoldErrors& fold = byFold[one.fold];
        fold.responseSurface += one.responseSurface * one.responseSurface;
        fold.kriging += one.kriging * one.kriging;
        fold.cases += 1.0;
        errors.responseSurfaceNearer += one.responseSurface < one.kriging ? 1 : 0;
        errors.krigingNearer += one.kriging < one.responseSurface ? 1 : 0;
    }
    errors.folds = byFold.size();
    if (errors.folds < 2) {
        return errors;
    }

    const auto count = static_cast<double>(errors.folds);
    std::vector<double> ratios;
    double mean = 0.0;
    for (const auto& [fold, one] : byFold) {
        ratios.push_back(one.logRatio(negligible));
        mean += ratios.back() / count;
    }
    double squares = 0.0;
    for (const double ratio : ratios) {
        squares += (ratio - mean) * (ratio - mean);
    }
    if (!std::isfinite(squares)) {
        return errors;
    }
    const double testPerTraining = 1.0 / static_cast<double>(folds - 1);
    errors.logRatio = mean;
    errors.standardError = std::sqrt(squares / (count - 1.0) * (1.0 / count + testPerTraining));
    errors.p = twoSided(mean, errors.standardError, count - 1.0);
    return errors;
}
