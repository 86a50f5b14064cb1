#include <mirel_fitting/numerics/BoundedSearch.h>

#include <mirel_fitting/numerics/BoxConstrainedQuadratic.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <utility>

namespace {

// Radii of the trust box, in units of the variables.

/** In logarithms of lengths a factor of e: a longer first step of a likelihood often lands where
 *  all cases are uncorrelated and the function is flat. */
constexpr double firstRadius = 1.0;
/** A factor of e^4 = 55 in a length, two fifths of the way between its bounds. */
constexpr double largestRadius = 4.0;
constexpr double smallestRadius = 0.1; // after a successful step

/** Number of times that the box shrinks before a step is given up: halved so often, it is smaller
 *  than any gain that counts. */
constexpr int maxTries = 12;
constexpr int maxTriesOfFinish = 3; // of its last step

double dot(const std::vector<double>& a, const std::vector<double>& b)
{
    return std::inner_product(a.begin(), a.end(), b.begin(), 0.0);
}

double largestMagnitude(const std::vector<double>& values)
{
    double largest = 0.0;
    for (const double value : values) {
        largest = std::max(largest, std::fabs(value));
    }
    return largest;
}

std::vector<double> multiply(const std::vector<double>& matrix, const std::vector<double>& vector)
{
    const std::size_t m = vector.size();
    std::vector<double> result(m, 0.0);
    for (std::size_t i = 0; i < m; ++i) {
        for (std::size_t j = 0; j < m; ++j) {
            result[i] += matrix[i * m + j] * vector[j];
        }
    }
    return result;
}

/** The length of the next step after one that failed, as a fraction of it: the vertex of the
 * parabola through value and slope at its start and the value at its end, if that is finite; kept
 * between a tenth and a half as in Nocedal, Wright, section 3.5. */
double shorterShare(double slope, double gained)
{
    constexpr double withoutValue = 0.25;
    constexpr double shortest = 0.1;
    constexpr double longest = 0.5;

    const double vertex = std::isfinite(gained) ? 0.5 * slope / (slope - gained) : withoutValue;
    return std::min(std::max(vertex, shortest), longest);
}

} // namespace

BoundedSearch::BoundedSearch(BoundedObjective& objective, std::vector<double> lower,
                             std::vector<double> upper, std::vector<double> start)
    : objective(objective), size(start.size()), lower(std::move(lower)), upper(std::move(upper)),
      current(std::move(start)), currentValue(0.0), trustRadius(firstRadius)
{
    for (std::size_t i = 0; i < size; ++i) {
        current[i] = std::min(std::max(current[i], this->lower[i]), this->upper[i]);
    }
    currentValue = objective.value(current);
    done = !std::isfinite(currentValue);
}

void BoundedSearch::advance(int steps, double smallestGain)
{
    advance(steps, smallestGain, maxTries);
}

void BoundedSearch::finish(int steps, double smallestGain)
{
    advance(steps, smallestGain, maxTriesOfFinish);
    done = true;
}

void BoundedSearch::advance(int steps, double smallestGain, int maxTriesOfLast)
{
    for (int k = 0; k < steps && !done; ++k) {
        updateModel();
        proposeStep();
        if (expectedGain() < smallestGain || !tryStep(k + 1 == steps ? maxTriesOfLast : maxTries)) {
            done = true;
        }
    }
}

double BoundedSearch::expectedGain() const
{
    return dot(gradient, step) - 0.5 * dot(step, multiply(hessian, step));
}

/** The maximum of the quadratic model inside the bounds and the trust box. */
void BoundedSearch::proposeStep()
{
    std::vector<double> lowest(size);
    std::vector<double> highest(size);
    for (std::size_t i = 0; i < size; ++i) {
        lowest[i] = std::max(lower[i] - current[i], -trustRadius);
        highest[i] = std::min(upper[i] - current[i], trustRadius);
    }
    step = BoxConstrainedQuadratic(hessian, gradient).maximum(lowest, highest);

    isStepLimited = false;
    for (std::size_t i = 0; i < size; ++i) {
        isStepLimited = isStepLimited || std::fabs(step[i]) >= trustRadius;
    }
}

/** The quadratic model at the current point, if the last one was made elsewhere. Other searches may
 *  have evaluated the objective in the meantime. */
void BoundedSearch::updateModel()
{
    if (isModelCurrent) {
        return;
    }
    isModelCurrent = true;
    objective.value(current);
    const std::vector<double> oldGradient = gradient;
    takeDerivatives();
    if (!oldGradient.empty()) {
        updateCurvature(step, oldGradient);
    }
}

void BoundedSearch::takeDerivatives()
{
    // Added to the diagonal to make the matrix definite: relative to each element, which keeps the
    // scales of the variables, and relative to the largest, for variables without curvature; the
    // trust box limits how far those move.
    constexpr double relativeRidge = 1e-6;
    constexpr double ridgeOfLargest = 1e-30;

    objective.curvature(hessian);
    objective.gradient(gradient);
    double largest = std::numeric_limits<double>::min();
    for (std::size_t i = 0; i < size; ++i) {
        largest = std::max(largest, hessian[i * size + i]);
    }
    for (std::size_t i = 0; i < size; ++i) {
        hessian[i * size + i] += relativeRidge * hessian[i * size + i] + ridgeOfLargest * largest;
    }
}

/**
 * Takes the step if it raises the function enough, else a shorter one in a smaller trust box.
 * @return whether the function has risen.
 */
bool BoundedSearch::tryStep(int triesAllowed)
{
    constexpr double sufficientShare = 1e-4; // of the rise that the slope promises (Armijo)

    const std::vector<double> start = current;
    const double before = currentValue;
    for (int tries = 0; tries < triesAllowed; ++tries) {
        const double slope = dot(gradient, step);
        if (!(slope > 0.0)) {
            break;
        }
        for (std::size_t i = 0; i < size; ++i) {
            current[i] = std::min(std::max(start[i] + step[i], lower[i]), upper[i]);
        }
        const double reached = objective.value(current);
        const double gained = reached - before;
        if (gained >= sufficientShare * slope) {
            currentValue = reached;
            adaptRadius(gained / expectedGain(), tries == 0);
            isModelCurrent = false;
            return true;
        }
        trustRadius = shorterShare(slope, gained) * largestMagnitude(step);
        proposeStep();
    }
    current = start;
    currentValue = before;
    return false;
}

/** After a successful step; the rule and its limits are those of Nocedal, Wright, algorithm 4.1.
 *  @param share gain over expected gain. */
void BoundedSearch::adaptRadius(double share, bool isFirstTry)
{
    constexpr double good = 0.75;
    constexpr double poor = 0.25;

    if (share < poor) {
        trustRadius = std::max(0.5 * largestMagnitude(step), smallestRadius);
    } else if (share > good && isStepLimited && isFirstTry) {
        trustRadius = std::min(2.0 * trustRadius, largestRadius);
    }
}

/** A damped BFGS update of the objective's estimate. */
void BoundedSearch::updateCurvature(const std::vector<double>& taken,
                                    const std::vector<double>& oldGradient)
{
    std::vector<double> change(size); // of the gradient of minus the function
    for (std::size_t i = 0; i < size; ++i) {
        change[i] = oldGradient[i] - gradient[i];
    }
    const double along = dot(taken, change);
    const std::vector<double> image = multiply(hessian, taken);
    const double quadratic = dot(taken, image);
    if (!(quadratic > 0.0)) {
        return;
    }
    // Powell's damping keeps the matrix positive definite where the function is not concave.
    double share = 1.0;
    if (along < 0.2 * quadratic) {
        share = 0.8 * quadratic / (quadratic - along);
    }
    std::vector<double> damped(size);
    for (std::size_t i = 0; i < size; ++i) {
        damped[i] = share * change[i] + (1.0 - share) * image[i];
    }
    const double dampedAlong = dot(taken, damped);
    for (std::size_t i = 0; i < size; ++i) {
        for (std::size_t j = 0; j < size; ++j) {
            hessian[i * size + j] +=
                damped[i] * damped[j] / dampedAlong - image[i] * image[j] / quadratic;
        }
    }
}
