#pragma once

/**
 * What every factorisation of a correlation matrix does about its nugget, relative to the process
 * variance. A matrix that cannot be factorised gets ever larger nuggets.
 */
struct NuggetBounds
{
    /** Less is lost in the rounding of the ones on the diagonal of some thousand cases. */
    static constexpr double sound = 1e-12;

    /** From one try to the next: some ten tries from the smallest nugget to the largest. */
    static constexpr double raise = 10.0;

    /** Lets any correlation matrix be factorised: it is positive semidefinite, so that no eigenvalue
     *  is then below 1. */
    static constexpr double maxRaised = 1.0;
};
