#pragma once

#include <cstddef>
#include <vector>

/**
 * A smooth function to be maximised. Curvature and gradient are those at the point that value() was
 * called for last, where the function was finite; BoundedSearch calls each of them once, in this
 * order, after value(). That call may repeat a point, since other searches of the same function may
 * have come between: an objective whose value is expensive keeps the last one.
 */
class BoundedObjective
{
public:
    virtual ~BoundedObjective() = default;

    /** Minus infinity where the function has no value. */
    virtual double value(const std::vector<double>& point) = 0;

    /** A positive semidefinite estimate of minus the Hessian, by rows. */
    virtual void curvature(std::vector<double>& result) = 0;

    virtual void gradient(std::vector<double>& result) = 0;
};

/**
 * Maximises a function of a few variables within bounds by a trust-region quasi-Newton method: each
 * step goes to the maximum of a quadratic model inside the bounds and a trust box, which shrinks
 * where the function does not rise and grows where it rises as expected. The model's curvature is
 * the objective's estimate, with a damped BFGS update along the last step. Nocedal, Wright:
 * Numerical Optimization, 2nd ed., Springer 2006, sections 4.1, 16.5 and 18.3.
 *
 * It can be advanced a few steps at a time, so that several searches can race.
 */
class BoundedSearch
{
public:
    /** Done at once where the function has no value at the start.
     *  @param objective is borrowed for life. @param start is moved into the bounds. */
    BoundedSearch(BoundedObjective& objective, std::vector<double> lower, std::vector<double> upper,
                  std::vector<double> start);

    /** At most `steps` steps. Converged when the gain that the quadratic model expects is below
     *  `smallestGain`, or no step gains anything. Gradients are taken before steps, none after the
     *  last. */
    void advance(int steps, double smallestGain);

    /** advance() for the last time, which tries the last step three times at most. */
    void finish(int steps, double smallestGain);

    bool isDone() const { return done; }
    double value() const { return currentValue; }
    const std::vector<double>& point() const { return current; }

private:
    void proposeStep();
    void updateModel();
    void takeDerivatives();
    void advance(int steps, double smallestGain, int maxTriesOfLast);
    bool tryStep(int triesAllowed);
    void adaptRadius(double share, bool isFirstTry);
    void updateCurvature(const std::vector<double>& step, const std::vector<double>& oldGradient);
    double expectedGain() const;

    BoundedObjective& objective;
    std::size_t size;
    std::vector<double> lower;
    std::vector<double> upper;
    std::vector<double> current;
    double currentValue;
    std::vector<double> gradient;
    std::vector<double> hessian; // of minus the function, by rows
    std::vector<double> step;
    double trustRadius;
    bool isStepLimited = false;
    bool isModelCurrent = false;
    bool done = false;
};
