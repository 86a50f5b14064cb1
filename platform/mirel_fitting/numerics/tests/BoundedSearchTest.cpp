#include <mirel_fitting/numerics/BoundedSearch.h>

#include "RecordedWork.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

using Vector = std::vector<double>;

class Objective : public BoundedObjective
{
public:
    Objective(std::function<double(const Vector&)> function,
              std::function<Vector(const Vector&)> slope,
              std::function<Vector(const Vector&)> estimate)
        : function(std::move(function)), slope(std::move(slope)), estimate(std::move(estimate))
    {}

    double value(const Vector& point) override
    {
        values += point != last; // what it keeps costs nothing
        last = point;
        return function(point);
    }
    void gradient(Vector& result) override
    {
        ++gradients;
        result = slope(last);
    }

    void curvature(Vector& result) override { result = estimate(last); }

    std::function<double(const Vector&)> function;
    std::function<Vector(const Vector&)> slope;
    std::function<Vector(const Vector&)> estimate; // of minus the Hessian
    Vector last;
    int values = 0;
    int gradients = 0;
};

std::function<Vector(const Vector&)> always(Vector hessian)
{
    return [hessian = std::move(hessian)](const Vector&) { return hessian; };
}

/** Minus the banana of Rosenbrock, Comput. J. 3 (1960): its maximum 0 is at (1, 1). The estimate is
 *  that of Gauss and Newton. */
Objective rosenbrock()
{
    return Objective(
        [](const Vector& x) {
            const double a = x[1] - x[0] * x[0];
            return -100.0 * a * a - (1.0 - x[0]) * (1.0 - x[0]);
        },
        [](const Vector& x) {
            const double a = x[1] - x[0] * x[0];
            return Vector{400.0 * a * x[0] + 2.0 * (1.0 - x[0]), -200.0 * a};
        },
        [](const Vector& x) {
            return Vector{800.0 * x[0] * x[0] + 2.0, -400.0 * x[0], -400.0 * x[0], 200.0};
        });
}

/** -(x - 3)^2 - 10 (y + 1)^2 - x y, no value beyond x = `end`. */
Objective bowl(double end = infinity)
{
    return Objective(
        [end](const Vector& x) {
            return x[0] > end ? -infinity
                              : -(x[0] - 3.0) * (x[0] - 3.0) - 10.0 * (x[1] + 1.0) * (x[1] + 1.0) -
                                    x[0] * x[1];
        },
        [](const Vector& x) {
            return Vector{-2.0 * (x[0] - 3.0) - x[1], -20.0 * (x[1] + 1.0) - x[0]};
        },
        always({2.0, 1.0, 1.0, 20.0}));
}

/** -x^2 + 1e-9 y: the second variable is next to flat, but not level. */
Objective nearlyFlat()
{
    return Objective([](const Vector& x) { return -x[0] * x[0] + 1e-9 * x[1]; },
                     [](const Vector& x) {
                         return Vector{-2.0 * x[0], 1e-9};
                     },
                     always({2.0, 0.0, 0.0, 1e-20}));
}

} // namespace

TEST(BoundedSearch, FindsTheMaximumOfACurvedValley)
{
    Objective objective = rosenbrock();
    BoundedSearch search(objective, {-5.0, -5.0}, {5.0, 5.0}, {-1.2, 1.0});

    search.advance(200, 1e-12);

    EXPECT_TRUE(search.isDone());
    EXPECT_NEAR(search.point()[0], 1.0, 1e-5);
    EXPECT_NEAR(search.point()[1], 1.0, 1e-5);
    EXPECT_LT(objective.values, 100);
}

TEST(BoundedSearch, StopsAtBoundsOrWhereTheSlopeVanishes)
{
    struct
    {
        Vector lower;
        Vector upper;
        Vector start;
        Vector end;
    } const rows[] = {{{-2.0, -0.5}, {2.0, 4.0}, {0.0, 3.0}, {2.0, -0.5}},
                      // Where both derivatives vanish: 2 (x - 3) + y = 0, 20 (y + 1) + x = 0.
                      {{-10.0, -10.0}, {10.0, 10.0}, {-10.0, 10.0}, {140.0 / 39.0, -46.0 / 39.0}}};
    for (const auto& row : rows) {
        Objective objective = bowl();
        BoundedSearch search(objective, row.lower, row.upper, row.start);

        search.advance(100, 1e-12);

        EXPECT_NEAR(search.point()[0], row.end[0], row.end[0] == 2.0 ? 0.0 : 1e-5);
        EXPECT_NEAR(search.point()[1], row.end[1], row.end[0] == 2.0 ? 0.0 : 1e-5);
    }
}

TEST(BoundedSearch, MovesTheStartIntoTheBounds)
{
    Objective objective = bowl();

    const BoundedSearch search(objective, {0.0, 0.0}, {1.0, 1.0}, {-7.0, 7.0});

    EXPECT_EQ(search.point(), (Vector{0.0, 1.0}));
}

TEST(BoundedSearch, StopsBeforePointsWhereTheFunctionHasNoValue)
{
    Objective objective = bowl(1.5);
    BoundedSearch search(objective, {-10.0, -10.0}, {10.0, 10.0}, {-5.0, 5.0});

    search.advance(100, 1e-12);

    EXPECT_TRUE(search.isDone());
    EXPECT_LE(search.point()[0], 1.5);
    EXPECT_GT(search.value(), -5.0);

    Objective infeasible = bowl(1.5);
    BoundedSearch stuck(infeasible, {-10.0, -10.0}, {10.0, 10.0}, {5.0, 5.0});

    stuck.advance(100, 1e-12);

    EXPECT_EQ(stuck.value(), -std::numeric_limits<double>::infinity());
    EXPECT_TRUE(stuck.isDone());
    EXPECT_EQ(infeasible.values, 1);
    EXPECT_EQ(infeasible.gradients, 0);
}

TEST(BoundedSearch, AdvancesInPortions)
{
    Objective whole = rosenbrock();
    Objective parts = rosenbrock();
    BoundedSearch once(whole, {-5.0, -5.0}, {5.0, 5.0}, {-1.2, 1.0});
    BoundedSearch often(parts, {-5.0, -5.0}, {5.0, 5.0}, {-1.2, 1.0});

    once.advance(10, 0.0);
    for (int k = 0; k < 10; ++k) {
        often.advance(1, 0.0);
    }

    EXPECT_EQ(once.point(), often.point());
    EXPECT_EQ(once.value(), often.value());
}

TEST(BoundedSearch, NeedsFewStepsWhenTheCurvatureIsExact)
{
    Objective objective = bowl();
    BoundedSearch search(objective, {-10.0, -10.0}, {10.0, 10.0}, {3.0, -1.0});

    search.advance(100, 1e-9);

    // A millionth is added to the curvature.
    EXPECT_NEAR(search.point()[0], 140.0 / 39.0, 3e-6);
    EXPECT_LE(objective.values, 3);
}

TEST(BoundedSearch, MovesFarWhereTheCurvatureIsNearlyZero)
{
    // Steps grow to what the trust box allows.
    Objective objective = nearlyFlat();
    BoundedSearch search(objective, {-10.0, -10.0}, {10.0, 10.0}, {3.0, -5.0});

    search.advance(100, 0.0);

    EXPECT_NEAR(search.point()[0], 0.0, 1e-6);
    EXPECT_EQ(search.point()[1], 10.0);
}

TEST(BoundedSearch, StopsWhenStepsGainNextToNothing)
{
    // The slope promises a gain that never comes.
    Objective objective([](const Vector& x) { return 1e-6 * x[0]; },
                        [](const Vector&) { return Vector{1.0}; }, always({1.0}));
    BoundedSearch search(objective, {-1e9}, {1e9}, {0.0});

    search.advance(100, 1e-2);

    EXPECT_TRUE(search.isDone());
    EXPECT_LT(objective.gradients, 10);
}

TEST(BoundedSearch, TakesGradientsOnlyOfSearchesThatGoOn)
{
    Objective objective = rosenbrock();
    Objective last = rosenbrock();
    BoundedSearch search(objective, {-2.0, -2.0}, {2.0, 2.0}, {-1.2, 1.0});
    BoundedSearch finished(last, {-2.0, -2.0}, {2.0, 2.0}, {-1.2, 1.0});
    const double before = finished.value();
    EXPECT_EQ(objective.gradients, 0);

    search.advance(2, 1e-9);
    finished.finish(2, 1e-9);

    EXPECT_EQ(objective.gradients, 2);
    EXPECT_EQ(last.gradients, 2) << "none after the last step";
    EXPECT_TRUE(finished.isDone());
    EXPECT_GT(finished.value(), before);
    EXPECT_EQ(finished.value(), last.function(finished.point()));
}

TEST(BoundedSearch, RacesOthersOfTheSameObjective)
{
    Objective objective = rosenbrock();
    Objective own = rosenbrock();
    BoundedSearch search(objective, {-5.0, -5.0}, {5.0, 5.0}, {-1.2, 1.0});
    BoundedSearch other(objective, {-5.0, -5.0}, {5.0, 5.0}, {2.0, -1.0});
    BoundedSearch alone(own, {-5.0, -5.0}, {5.0, 5.0}, {-1.2, 1.0});

    for (int k = 0; k < 10; ++k) {
        search.advance(1, 0.0);
        other.advance(1, 0.0);
    }
    alone.advance(10, 0.0);

    EXPECT_EQ(search.point(), alone.point());
}

TEST(BoundedSearch, ShortensTheLastStepTwiceAtMost)
{
    // The slope promises a rise that never comes.
    Objective objective([](const Vector& x) { return x[0] == 0.0 ? 0.0 : -1.0; },
                        [](const Vector&) { return Vector{1.0}; }, always({1.0}));
    BoundedSearch search(objective, {-2.0}, {2.0}, {0.0});

    search.finish(1, 1e-9);

    EXPECT_EQ(search.point(), Vector{0.0});
    EXPECT_EQ(objective.values, 1 + 3);
}

TEST(BoundedSearch, EndsWhereTheExpectedGainOfALongStepIsNegligible)
{
    Objective objective = nearlyFlat();
    BoundedSearch search(objective, {-9.0, -9.0}, {9.0, 9.0}, {0.5, 0.0});

    search.advance(100, 1e-4);

    EXPECT_NEAR(search.point()[0], 0.0, 1e-6);
    EXPECT_LE(objective.values, 2);
}

TEST(BoundedSearch, ReportsBetweenTheFactorsOfManyVariables)
{
    const auto bowl = [](const Vector& x) {
        double value = 0.0;
        for (const double each : x) {
            value -= each * each;
        }
        return value;
    };
    const auto slope = [](const Vector& x) {
        Vector result;
        for (const double each : x) {
            result.push_back(-2.0 * each);
        }
        return result;
    };
    Vector identity(100 * 100, 0.0);
    for (std::size_t k = 0; k < 100; ++k) {
        identity[k * 101] = 1.0;
    }
    Objective objective(bowl, slope, always(identity));

    const RecordedWork recorded;
    BoundedSearch search(objective, Vector(100, -1.0), Vector(100, 1.0), Vector(100, 0.5));
    search.advance(3, 1e-9);

    EXPECT_GT(recorded.reports(), 0);
}
