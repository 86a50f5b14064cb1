#include <mirel_fitting/responsesurface/StationaryPointFinder.h>

#include <mirel_fitting/machine/SingleThreadedBlas.h>
#include <mirel_fitting/polynomial/PolynomialUnits.h>
#include <mirel_fitting/responsesurface/RidgeAnalysis.h>

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
    const QuadraticBasis& basis = fit.basis();
    for (std::size_t input = 0; basis.order() > 0 && input < basis.inputs(); ++input) {
        if (fit.isKept(1 + input)) {
            inputs.push_back(input);
        }
    }
    if (hasSecondOrderTerms()) {
        decompose();
    } else if (!inputs.empty()) {
        takeGradientForDirection();
    }
    findSlopes();
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
    for (std::size_t k = 0; k < inputs.size(); ++k) {
        position[inputs[k]] = k;
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
    const SingleThreadedBlas singleThreaded;
    eigenvalues.resize(size);
    LAPACKE_dsyev(LAPACK_COL_MAJOR, 'V', 'U', static_cast<lapack_int>(size), directions.data(),
                  static_cast<lapack_int>(size), eigenvalues.data());
    for (std::size_t k = 0; k < size; ++k) {
        double* const direction = &directions[k * size];
        // Components that are equal up to rounding leave the sign to the first of them.
        constexpr double rounding = 1e-9;
        double largest = 0.0;
        for (std::size_t i = 0; i < size; ++i) {
            if (std::fabs(direction[i]) > std::fabs(largest) * (1.0 + rounding)) {
                largest = direction[i];
            }
        }
        for (std::size_t i = 0; i < size; ++i) {
            direction[i] = largest < 0.0 ? -direction[i] : direction[i];
        }
    }
}

/** Along all directions but that of its gradient a linear polynomial is constant. */
void StationaryPointFinder::takeGradientForDirection()
{
    double squares = 0.0;
    for (const std::size_t input : inputs) {
        squares += coefficients[1 + input] * coefficients[1 + input];
    }
    for (const std::size_t input : inputs) {
        directions.push_back(squares > 0.0 ? coefficients[1 + input] / std::sqrt(squares) : 0.0);
    }
    eigenvalues.assign(1, 0.0);
}

void StationaryPointFinder::findSlopes()
{
    double largest = 0.0;
    for (std::size_t k = 0; k < eigenvalues.size(); ++k) {
        double slope = 0.0;
        for (std::size_t i = 0; i < inputs.size(); ++i) {
            slope += directions[k * inputs.size() + i] * coefficients[1 + inputs[i]];
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
    std::vector<double> canonical(size, 0.0);
    for (std::size_t k = 0; k < size; ++k) {
        if (!isFlat(k)) {
            canonical[k] = -slopes[k] / (2.0 * eigenvalues[k]);
        } else if (std::fabs(slopes[k]) > rounding) {
            return std::nullopt;
        } else {
            point.curvatures[k] = 0.0;
        }
    }

    const std::vector<double> coded = atCoordinates(canonical);
    point.isInsideData = std::all_of(coded.begin(), coded.end(), [](double coordinate) {
        return std::fabs(coordinate) <= largestInside;
    });
    point.coordinates = inUnits(coded);
    point.value = output.scale.centre() + valueAt(coded);
    return point;
}

/** The coded inputs at coordinates along the directions; 0 of inputs that there are not. */
std::vector<double> StationaryPointFinder::atCoordinates(const std::vector<double>& canonical) const
{
    std::vector<double> coded(fit.basis().inputs(), 0.0);
    for (std::size_t k = 0; k < canonical.size(); ++k) {
        for (std::size_t i = 0; i < inputs.size(); ++i) {
            coded[inputs[i]] += canonical[k] * directions[k * inputs.size() + i];
        }
    }
    return coded;
}

std::vector<double> StationaryPointFinder::inUnits(const std::vector<double>& coded) const
{
    std::vector<double> coordinates(coded.size(), CoefficientStatistics::none);
    for (const std::size_t input : inputs) {
        const ColumnScale& scale = fit.inputScales()[input];
        coordinates[input] = scale.centre() + coded[input] * scale.halfRange();
    }
    return coordinates;
}

std::vector<CanonicalDirection> StationaryPointFinder::canonicalDirections() const
{
    std::vector<CanonicalDirection> result;
    for (std::size_t k = 0; k < eigenvalues.size() && isCurved(); ++k) {
        std::vector<double> along(k + 1, 0.0);
        along[k] = 1.0;
        result.push_back({isFlat(k) ? 0.0 : eigenvalues[k], atCoordinates(along)});
    }
    return result;
}

std::vector<RidgePoint> StationaryPointFinder::ridge(bool isAscending, std::size_t steps) const
{
    const double sign = isAscending ? 1.0 : -1.0;
    std::vector<double> curvatures;
    std::vector<double> gradient;
    for (std::size_t k = 0; k < eigenvalues.size(); ++k) {
        curvatures.push_back(isFlat(k) ? 0.0 : sign * eigenvalues[k]);
        gradient.push_back(std::fabs(slopes[k]) > rounding ? sign * slopes[k] : 0.0);
    }
    const auto isZero = [](double value) { return value == 0.0; };
    std::vector<RidgePoint> points;
    if (std::all_of(curvatures.begin(), curvatures.end(), isZero) &&
        std::all_of(gradient.begin(), gradient.end(), isZero)) {
        return points;
    }
    const RidgeAnalysis analysis(std::move(curvatures), std::move(gradient));
    for (std::size_t step = 0; step <= steps; ++step) {
        RidgePoint point;
        point.distance = static_cast<double>(step) / static_cast<double>(steps);
        const std::vector<double> coded = atCoordinates(analysis.largest(point.distance));
        point.coordinates = inUnits(coded);
        point.value = output.scale.centre() + valueAt(coded);
        points.push_back(std::move(point));
    }
    return points;
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
        for (const std::size_t input : basis.terms()[term].inputs()) {
            value *= coded[input];
        }
        sum += value;
    }
    return sum;
}
