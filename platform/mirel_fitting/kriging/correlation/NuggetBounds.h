#pragma once

#include <mirel_fitting/SurrogateModelInterface.h>

/**
 * Nuggets, relative to the process variance, with which correlation matrices are factorised. One
 * that cannot be factorised is tried again with a larger nugget.
 */
struct NuggetBounds
{
    /** Keeps the matrix of some thousand cases positive definite in double precision. */
    static constexpr double sound = 1e-12;

    /** From one try to the next: some ten tries from the smallest nugget to the largest. */
    static constexpr double raise = 10.0;

    /** Lets any correlation matrix be factorised: it is positive semidefinite, so that no
     * eigenvalue is then below 1. */
    static constexpr double maxRaised = 1.0;

    /**
     * The first of the nuggets `nugget`, raise * nugget, ... with which `isFactorised` is true.
     * @throw SurrogateModelInterface::Error if none up to maxRaised is one.
     */
    template <class IsFactorised>
    static double raisedUntil(double nugget, const IsFactorised& isFactorised)
    {
        while (!isFactorised(nugget)) {
            if (nugget > maxRaised) {
                throw SurrogateModelInterface::Error(
                    "The correlation matrix of the cases cannot be factorised.");
            }
            nugget *= raise;
        }
        return nugget;
    }
};
