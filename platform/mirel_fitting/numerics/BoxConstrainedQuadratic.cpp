#include <mirel_fitting/numerics/BoxConstrainedQuadratic.h>

#include <mirel_fitting/FitProgress.h>
#include <mirel_fitting/machine/SingleThreadedBlas.h>
#include <mirel_fitting/numerics/Picked.h>

#include <lapacke.h>

#include <algorithm>
#include <cmath>

BoxConstrainedQuadratic::BoxConstrainedQuadratic(const std::vector<double>& hessian,
                                                 const std::vector<double>& slope)
    : hessian(hessian), slope(slope), size(slope.size()), areMany(size > maxFewVariables)
{}

std::vector<double> BoxConstrainedQuadratic::maximum(const std::vector<double>& lowest,
                                                     const std::vector<double>& highest) const
{
    const SingleThreadedBlas singleThreaded;
    constexpr double multiplications = 1e8; // some hundredths of a second
    constexpr int firstSweeps = 20;         // 20 m^2 multiplications; one factor takes m^3 / 6
    std::vector<double> start(size, 0.0);
    sweep(lowest, highest, areMany ? firstSweeps : 0, start);
    std::vector<double> point = start;
    if (!guess(lowest, highest, point)) {
        const auto m = static_cast<double>(size);
        point = start;
        sweep(lowest, highest, static_cast<int>(multiplications / (m * m)), point);
    }
    return point;
}

/** Coordinate ascent: maximises the model in one variable at a time, until that changes next to
 *  nothing. */
void BoxConstrainedQuadratic::sweep(const std::vector<double>& lowest,
                                    const std::vector<double>& highest, int sweeps,
                                    std::vector<double>& point) const
{
    constexpr double negligible = 1e-14; // change of a variable, relative to it

    std::vector<double> rest = slopeAt(point);
    bool changes = true;
    for (int k = 0; k < sweeps && changes; ++k) {
        changes = false;
        for (std::size_t i = 0; i < size; ++i) {
            const double* column = hessian.data() + i * size;
            if (!(column[i] > 0.0)) {
                continue; // not positive because of rounding
            }
            const double before = point[i];
            point[i] = std::min(std::max(before + rest[i] / column[i], lowest[i]), highest[i]);
            const double change = point[i] - before;
            changes = changes || std::fabs(change) > negligible * std::fabs(point[i]);
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
                                    const std::vector<double>& highest,
                                    std::vector<double>& point) const
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
        std::vector<double> solution = picked(rest, unknowns);
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
 *  is not positive definite because of rounding. */
bool BoxConstrainedQuadratic::solve(const std::vector<std::size_t>& unknowns,
                                    std::vector<double>& right) const
{
    if (unknowns.empty()) {
        return true;
    }
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
