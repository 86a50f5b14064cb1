#pragma once

#include <cstddef>
#include <vector>

/** A smooth function to be maximised; its gradient is cheaper after its value. */
class BoundedObjective
{
public:
    virtual ~BoundedObjective() = default;

    /** Minus infinity where the function has no value. */
    virtual double value(const std::vector<double>& point) = 0;

    /**
     * A positive semidefinite estimate of minus the Hessian, by rows, at the point of the last
     * value, which was finite. @return false if there is none.
     */
    virtual bool curvature(std::vector<double>& /*result*/) { return false; }

    /** At the point of the last value, which was finite; called at most once per value. */
    virtual void gradient(std::vector<double>& result) = 0;
};

/**
 * Maximises a function of a few variables within bounds by a quasi-Newton method: the step goes to
 * the maximum of a quadratic model inside the bounds and a trust box; where the function does not
 * rise by it, the box shrinks and the model learns how much the function bends, where it rises as
 * expected, the box grows. The curvature is the objective's estimate, corrected along the last step
 * by damped BFGS; without an estimate it is built up by these corrections alone. Nocedal, Wright:
 * Numerical Optimization, 2nd ed., Springer 2006, sections 4.1, 16.5 and 18.3.
 *
 * It can be advanced in portions, so that several searches can compete.
 */
class BoundedSearch
{
public:
    /** Starts at `start`, moved into the bounds. The objective is borrowed for life. */
    BoundedSearch(BoundedObjective& objective, std::vector<double> lower, std::vector<double> upper,
                  std::vector<double> start);

    /** From now on a step raises this variable by no more. */
    void limitRise(std::size_t variable, double largest) { largestRises[variable] = largest; }

    /** Whether the function has a value at the start. */
    bool isFeasible() const;

    /**
     * At most so many steps; stops earlier when the gain that the quadratic model still expects is
     * below `smallestGain`, or steps do not raise the function by that any more.
     */
    void advance(int steps, double smallestGain);

    /** The same for the last time, where steps are dear: the slope where they end is not asked for,
     *  and the last step is shortened twice at most. */
    void finish(int steps, double smallestGain);

    /** Goes on where it ended, if there is more to gain than was asked for. */
    void resume();

    bool isDone() const;
    double value() const;
    const std::vector<double>& point() const;

private:
    void proposeStep();
    bool learn();
    void advance(int steps, double smallestGain, bool isLastTime);
    bool tryStep(int mostTries, bool isLast);
    void updateCurvature(const std::vector<double>& step, const std::vector<double>& oldGradient);
    void bend(double curvature);
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
    std::vector<double> largestRises; // of one step
    int stalls = 0;                   // steps in a row that gained next to nothing
    bool isStepLimited = false;
    bool isModelTrusted = true;
    bool hasCurvature = false;
    bool done = false;
};
