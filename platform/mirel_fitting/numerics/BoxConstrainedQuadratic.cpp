#include <mirel_fitting/numerics/BoxConstrainedQuadratic.h>

#include <mirel_fitting/FitProgress.h>
#include <mirel_fitting/machine/SingleThreadedBlas.h>

#include <lapacke.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace {

double largestMagnitude(const std::vector<double>& values)
{
    double largest = 0.0;
    for (const double value : values) {
        largest = std::max(largest, std::fabs(value));
    }
    return largest;
}

} // namespace

BoxConstrainedQuadratic::BoxConstrainedQuadratic(const std::vector<double>& hessian,
                                                 const std::vector<double>& slope)
    : hessian(hessian), slope(slope), size(slope.size()), areMany(size > maxFewVariables),
      factorsLeft(0)
{}

std::size_t BoxConstrainedQuadratic::maxFactors(std::size_t variables)
{
    constexpr double multiplications = 1e8; // some hundredths of a second
    constexpr double fewest = 8.0;          // coordinate ascent has placed most variables by then
    if (variables <= maxFewVariables) {
        return std::numeric_limits<std::size_t>::max();
    }
    const auto m = static_cast<double>(variables);
    return static_cast<std::size_t>(std::max(fewest, multiplications / (m * m * m / 6.0)));
}

std::vector<double> BoxConstrainedQuadratic::maximum(const std::vector<double>& lowest,
                                                     const std::vector<double>& highest)
{
    const SingleThreadedBlas singleThreaded;
    factorsLeft = maxFactors(size);
    std::vector<double> start(size, 0.0);
    if (areMany) {
        sweep(lowest, highest, start);
    }
    std::vector<double> point = start;
    if (guess(lowest, highest, point)) {
        return point;
    }
    climb(lowest, highest, start);
    return start;
}

/** Coordinate ascent: maximises the model in one variable at a time. */
void BoxConstrainedQuadratic::sweep(const std::vector<double>& lowest,
                                    const std::vector<double>& highest,
                                    std::vector<double>& point) const
{
    constexpr int sweeps = 20; // 20 m^2 multiplications; one factor takes m^3 / 6

    std::vector<double> rest = slopeAt(point);
    for (int k = 0; k < sweeps; ++k) {
        for (std::size_t i = 0; i < size; ++i) {
            const double* column = hessian.data() + i * size;
            if (!(column[i] > 0.0)) {
                continue; // not positive because of rounding
            }
            const double before = point[i];
            point[i] = std::min(std::max(before + rest[i] / column[i], lowest[i]), highest[i]);
            const double change = point[i] - before;
            for (std::size_t j = 0; j < size && change != 0.0; ++j) {
                rest[j] -= change * column[j];
            }
        }
    }
}

/** The primal-dual active-set method.
 *  @param point in: its bounds are the first guess.
 *  @return whether the guess has converged: then the point is the maximum. */
bool BoxConstrainedQuadratic::guess(const std::vector<double>& lowest,
                                    const std::vector<double>& highest, std::vector<double>& point)
{
    const int maxRounds = areMany ? 5 : 10; // nearly always enough
    enum class Place
    {
        Lowest,
        Inside,
        Highest
    };

    std::vector<Place> places(size, Place::Inside);
    for (std::size_t i = 0; i < size && areMany; ++i) {
        places[i] = point[i] >= highest[i]  ? Place::Highest
                    : point[i] <= lowest[i] ? Place::Lowest
                                            : Place::Inside;
    }
    for (int round = 0; round < maxRounds; ++round) {
        point.assign(size, 0.0);
        std::vector<std::size_t> unknowns;
        for (std::size_t i = 0; i < size; ++i) {
            if (places[i] == Place::Inside) {
                unknowns.push_back(i);
            } else {
                point[i] = places[i] == Place::Lowest ? lowest[i] : highest[i];
            }
        }
        std::vector<double> rest = slopeAt(point);
        std::vector<double> solution;
        solution.reserve(unknowns.size());
        for (const std::size_t i : unknowns) {
            solution.push_back(rest[i]);
        }
        if (!solve(unknowns, solution)) {
            return false;
        }
        for (std::size_t a = 0; a < unknowns.size(); ++a) {
            point[unknowns[a]] = solution[a];
        }

        rest = slopeAt(point);
        bool isSettled = true;
        for (std::size_t i = 0; i < size; ++i) {
            Place place = Place::Inside;
            if (places[i] == Place::Inside) {
                place = point[i] > highest[i]  ? Place::Highest
                        : point[i] < lowest[i] ? Place::Lowest
                                               : Place::Inside;
            } else if (places[i] == Place::Highest ? rest[i] >= 0.0 : rest[i] <= 0.0) {
                place = places[i];
            }
            isSettled = isSettled && place == places[i];
            places[i] = place;
        }
        if (isSettled) {
            return true;
        }
    }
    return false;
}

void BoxConstrainedQuadratic::climb(const std::vector<double>& lowest,
                                    const std::vector<double>& highest, std::vector<double>& point)
{
    constexpr double negligibleSlope = 1e-10; // relative to the largest slope at the origin

    const auto bound = [&](std::size_t i, double direction) {
        return direction < 0.0 ? lowest[i] : highest[i];
    };

    const std::size_t maxRounds = 5 * size + 5;
    for (std::size_t round = 0; round < maxRounds && factorsLeft > 0; ++round) {
        const std::vector<double> rest = slopeAt(point);
        std::vector<std::size_t> unknowns;
        double steepest = 0.0;
        for (std::size_t i = 0; i < size; ++i) {
            const bool isStopped = (point[i] <= lowest[i] && rest[i] <= 0.0) ||
                                   (point[i] >= highest[i] && rest[i] >= 0.0);
            if (!isStopped) {
                unknowns.push_back(i);
                steepest = std::max(steepest, std::fabs(rest[i]));
            }
        }
        if (steepest <= negligibleSlope * largestMagnitude(slope)) {
            break;
        }
        const std::vector<double> direction = newtonStep(rest, unknowns, point, lowest, highest);

        double length = 1.0;
        std::size_t stopping = size;
        for (std::size_t i = 0; i < size; ++i) {
            const double room = bound(i, direction[i]) - point[i];
            if (std::fabs(direction[i]) * length > std::fabs(room)) {
                length = std::fabs(room) / std::fabs(direction[i]);
                stopping = i;
            }
        }
        for (std::size_t i = 0; i < size; ++i) {
            point[i] = std::min(std::max(point[i] + length * direction[i], lowest[i]), highest[i]);
        }
        if (stopping < size) {
            point[stopping] = bound(stopping, direction[stopping]);
        }
    }
}

/** The Newton step in the unknowns, without those that it would move out of the box. */
std::vector<double> BoxConstrainedQuadratic::newtonStep(const std::vector<double>& rest,
                                                        std::vector<std::size_t> unknowns,
                                                        const std::vector<double>& point,
                                                        const std::vector<double>& lowest,
                                                        const std::vector<double>& highest)
{
    std::vector<double> direction(size, 0.0);
    while (!unknowns.empty()) {
        const std::size_t m = unknowns.size();
        std::vector<double> right(m);
        for (std::size_t a = 0; a < m; ++a) {
            right[a] = rest[unknowns[a]];
        }
        if (!solve(unknowns, right)) {
            // Not positive definite because of rounding, or no factors left: steepest ascent.
            for (std::size_t a = 0; a < m; ++a) {
                right[a] = rest[unknowns[a]] / std::max(largestMagnitude(slope), 1e-300);
            }
        }
        std::vector<std::size_t> inside;
        for (std::size_t a = 0; a < m; ++a) {
            const std::size_t i = unknowns[a];
            if (!(point[i] <= lowest[i] && right[a] < 0.0) &&
                !(point[i] >= highest[i] && right[a] > 0.0)) {
                inside.push_back(i);
            }
        }
        if (inside.size() == m) {
            for (std::size_t a = 0; a < m; ++a) {
                direction[unknowns[a]] = right[a];
            }
            break;
        }
        unknowns = inside;
    }
    return direction;
}

/** g - H x */
std::vector<double> BoxConstrainedQuadratic::slopeAt(const std::vector<double>& point) const
{
    std::vector<double> result = slope;
    for (std::size_t k = 0; k < size; ++k) {
        // The matrix is symmetric: its rows are its columns.
        const double* column = hessian.data() + k * size;
        for (std::size_t i = 0; i < size && point[k] != 0.0; ++i) {
            result[i] -= column[i] * point[k];
        }
    }
    return result;
}

/** Solves for the unknowns, the other variables fixed. False, with `right` unchanged, if the matrix
 *  is not positive definite because of rounding, or no factors are left. */
bool BoxConstrainedQuadratic::solve(const std::vector<std::size_t>& unknowns,
                                    std::vector<double>& right)
{
    if (unknowns.empty()) {
        return true;
    }
    if (factorsLeft == 0) {
        return false;
    }
    --factorsLeft;
    if (areMany) {
        FitProgress::advance();
    }
    const std::size_t order = unknowns.size();
    std::vector<double> matrix(order * order); // lower triangle by columns
    for (std::size_t a = 0; a < order; ++a) {
        const double* column = hessian.data() + unknowns[a] * size;
        for (std::size_t b = a; b < order; ++b) {
            matrix[a * order + b] = column[unknowns[b]];
        }
    }
    const auto n = static_cast<lapack_int>(order);
    return LAPACKE_dposv_work(LAPACK_COL_MAJOR, 'L', n, 1, matrix.data(), n, right.data(), n) == 0;
}
