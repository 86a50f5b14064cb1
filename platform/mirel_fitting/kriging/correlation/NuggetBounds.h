#pragma once

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
};
