#pragma once

/**
 * The weak prior of a correlation length: ln(length / range) is normal about
 * SearchPolicy::priorLength, or SearchPolicy::priorSpacings spacings of the cases where that is
 * less, with a small deviation below and a large one above it. With few cases the likelihood is
 * often greatest at lengths below their spacing, where the model is the trend with a spike at each
 * case. Long lengths are left nearly free: an input may have no influence. Gu, Wang, Berger: Robust
 * Gaussian stochastic process emulation, Ann. Stat. 46 (2018).
 */
class LengthPrior
{
public:
    /** @param spacing of the cases along an axis, on average, in ranges. */
    explicit LengthPrior(double spacing);

    /** The logarithm of the density over its maximum. @param logLength of the length in ranges. */
    double value(double logLength) const;
    double slope(double logLength) const;
    /** Minus the second derivative. */
    double curvature(double logLength) const;
    /** The logarithm of the length where the density is greatest. */
    double mode() const { return centre; }

private:
    double centre; // of the logarithm
};
