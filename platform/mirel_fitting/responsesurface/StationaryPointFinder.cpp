#include <mirel_fitting/responsesurface/StationaryPointFinder.h>

#include <mirel_fitting/polynomial/PolynomialUnits.h>

#include <lapacke.h>

#include <algorithm>
#include <cmath>

namespace {

// Below either, an eigenvalue or slope is rounding.
constexpr double negligibleOfLargest = 1e-10; // of the largest eigenvalue or slope
constexpr double negligibleOfOutput = 1e-12;  // of half the output's range

/** A coordinate at the end of its range is 1 up to rounding. */
constexpr double largestInside = 1.0 + 1e-12;

} // namespace

StationaryPointFinder::StationaryPointFinder(const PolynomialFit& fit, std::size_t output)
    : fit(fit), output(fit.outputs()[output]),
      coefficients(
          PolynomialUnits(fit.basis(), fit.inputScales()).coded(fit.outputs()[output].coefficients))
{
    if (hasSecondOrderTerms()) {
        decompose();
    }
}

bool StationaryPointFinder::hasSecondOrderTerms() const
{
    const QuadraticBasis& basis = fit.basis();
    for (std::size_t term = 1 + basis.inputs(); basis.order() == 2 && term < basis.size(); ++term) {
        if (fit.isKept(term)) {
            return true;
        }
    }
    return false;
}

/** Diagonalises B, which has half the coefficient of a product in both of its places. */
void StationaryPointFinder::decompose()
{
    const QuadraticBasis& basis = fit.basis();
    std::vector<std::size_t> position(basis.inputs(), 0);
    for (std::size_t input = 0; input < basis.inputs(); ++input) {
        if (fit.isKept(1 + input)) {
            position[input] = inputs.size();
            inputs.push_back(input);
        }
    }
    const std::size_t size = inputs.size();
    directions.assign(size * size, 0.0);
    for (std::size_t term = 1 + basis.inputs(); term < basis.size(); ++term) {
        if (fit.isKept(term)) {
            const std::size_t i = position[basis.terms()[term].first];
            const std::size_t j = position[basis.terms()[term].second];
            directions[i * size + j] += coefficients[term] / 2.0;
            directions[j * size + i] += coefficients[term] / 2.0;
        }
    }
    eigenvalues.resize(size);
    LAPACKE_dsyev(LAPACK_COL_MAJOR, 'V', 'U', static_cast<lapack_int>(size), directions.data(),
                  static_cast<lapack_int>(size), eigenvalues.data());

    double largest = 0.0;
    for (std::size_t k = 0; k < size; ++k) {
        double slope = 0.0;
        for (std::size_t i = 0; i < size; ++i) {
            slope += directions[k * size + i] * coefficients[1 + inputs[i]];
        }
        slopes.push_back(slope);
        largest = std::max({largest, std::fabs(slope), std::fabs(eigenvalues[k])});
    }
    rounding =
        std::max(negligibleOfLargest * largest, negligibleOfOutput * output.scale.halfRange());
}

bool StationaryPointFinder::isFlat(std::size_t k) const
{
    return std::fabs(eigenvalues[k]) <= rounding;
}

bool StationaryPointFinder::isCurved() const
{
    // The eigenvalues ascend: the largest magnitude is that of the first or the last.
    return !eigenvalues.empty() && !(isFlat(0) && isFlat(eigenvalues.size() - 1));
}

std::optional<StationaryPoint> StationaryPointFinder::find() const
{
    if (!isCurved()) {
        return std::nullopt;
    }
    const std::size_t size = inputs.size();
    StationaryPoint point;
    point.curvatures = eigenvalues;
    point.nature = nature();
    std::vector<double> coded(fit.basis().inputs(), 0.0);
    for (std::size_t k = 0; k < size; ++k) {
        if (!isFlat(k)) {
            const double distance = -slopes[k] / (2.0 * eigenvalues[k]);
            for (std::size_t i = 0; i < size; ++i) {
                coded[inputs[i]] += distance * directions[k * size + i];
            }
        } else if (std::fabs(slopes[k]) > rounding) {
            return std::nullopt;
        } else {
            point.curvatures[k] = 0.0;
        }
    }

    point.isInsideData = true;
    point.coordinates.assign(fit.basis().inputs(), CoefficientStatistics::none);
    for (const std::size_t input : inputs) {
        const ColumnScale& scale = fit.inputScales()[input];
        point.coordinates[input] = scale.centre() + coded[input] * scale.halfRange();
        point.isInsideData = point.isInsideData && std::fabs(coded[input]) <= largestInside;
    }
    point.value = output.scale.centre() + valueAt(coded);
    return point;
}

StationaryPoint::Nature StationaryPointFinder::nature() const
{
    using Nature = StationaryPoint::Nature;
    for (std::size_t k = 0; k < eigenvalues.size(); ++k) {
        if (isFlat(k)) {
            return Nature::Ridge;
        }
    }
    return eigenvalues.front() > 0.0  ? Nature::Minimum
           : eigenvalues.back() < 0.0 ? Nature::Maximum
                                      : Nature::Saddle;
}

/** The polynomial about the middle of the output's range. */
double StationaryPointFinder::valueAt(const std::vector<double>& coded) const
{
    const QuadraticBasis& basis = fit.basis();
    double sum = 0.0;
    for (std::size_t term = 0; term < basis.size(); ++term) {
        double value = coefficients[term];
        for (const std::size_t input : {basis.terms()[term].first, basis.terms()[term].second}) {
            value *= input == QuadraticBasis::noInput ? 1.0 : coded[input];
        }
        sum += value;
    }
    return sum;
}
