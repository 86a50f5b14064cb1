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

    /** At the point of the last value, which was finite; called at most once per value. */
    virtual void gradient(std::vector<double>& result) = 0;
};

/**
 * Maximises a function of a few variables within bounds by a quasi-Newton method: the step goes to
 * the maximum of a quadratic model inside the bounds and a trust box, is shortened until the
 * function rises, and the curvature is updated by damped BFGS. Nocedal, Wright: Numerical
 * Optimization, 2nd ed., Springer 2006, sections 3.5, 16.5 and 18.3.
 *
 * It can be advanced in portions, so that several searches can compete.
 */
class BoundedSearch
{
public:
    /** Starts at `start`, moved into the bounds. The objective is borrowed for life. */
    BoundedSearch(BoundedObjective& objective, std::vector<double> lower, std::vector<double> upper,
                  std::vector<double> start);

    /** Whether the function has a value at the start. */
    bool isFeasible() const;

    /** Replaces the curvature that the first step assumes: minus the Hessian, positive definite. */
    void setCurvature(std::vector<double> matrix);

    /**
     * At most so many steps; stops earlier when the gain that the quadratic model still expects is
     * below `smallestGain`, or no step raises the function any more.
     */
    void advance(int steps, double smallestGain);

    bool isDone() const;
    double value() const;
    const std::vector<double>& point() const;
    const std::vector<double>& curvature() const;

private:
    void proposeStep();
    std::vector<double> towardsMaximum(const std::vector<double>& slope,
                                       std::vector<std::size_t> unknowns,
                                       const std::vector<double>& lowest,
                                       const std::vector<double>& highest) const;
    bool tryStep(int mostTries);
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
    bool isModelTrusted = true;
    bool hasCurvature = false;
    bool done = false;
};
