#pragma once

#include <mirel_fitting/CalibrationReport.h>

#include <cstddef>
#include <vector>

/**
 * Half the width of prediction intervals in standard errors: quantiles of |residual / its standard
 * deviation| of cases that were left out and predicted, where there are enough of them, those of
 * Student's t otherwise. The k-th smallest of n such magnitudes stands for the level k / (n + 1),
 * the probability that one more of the same distribution is not larger, whatever that distribution
 * is (Vovk, Gammerman, Shafer: Algorithmic Learning in a Random World, Springer 2005). Bachoc:
 * Cross validation and maximum likelihood estimations of hyper-parameters of Gaussian processes
 * with model misspecification, Comput. Stat. Data Anal. 66 (2013).
 */
class IntervalCalibration
{
public:
    using Basis = CalibrationReport::Basis;

    /** With fewer left-out cases the quantile of 80 % would lie among the eight largest: Student's
     *  t is used; after refits times the least factor with which 95 % intervals leave out no more
     *  cases than chance does with a probability above 5 %. */
    static constexpr std::size_t minCases = 40;

    /** Of a factorial of nine runs, refits predict each corner from far away. */
    static constexpr std::size_t minRefits = 10;

    /** Replicates are left out together by refits. At fewer different points than this, each is
     * predicted from far away by what is left: with eight concentrations of an assay (R's DNase)
     * the 95 % intervals of a response surface would become 7.6 times as wide. Student's t then. */
    static constexpr std::size_t minPoints = 15;

    /**
     * @param degreesOfFreedom positive.
     * @param standardised     residuals over their standard deviations, of cases that were left
     *                         out. NaN does not count; an infinite one, over a standard
     *                         deviation of 0, lies outside of every interval.
     * @param basis            how these were left out.
     */
    IntervalCalibration(double degreesOfFreedom, const std::vector<double>& standardised,
                        Basis basis = Basis::LeaveOneOut);

    /** Increases with the level. @param level between 0 and 1. */
    double quantile(double level) const;

    /** As if nothing was left out: increases with the level, too. */
    double studentQuantile(double level) const;

    CalibrationReport report() const;

private:
    double empiricalQuantile(double level) const;
    double wideningByChance() const;

    double degreesOfFreedom;
    std::vector<double> magnitudes; // ascending
    std::size_t finite;             // of them
    Basis basis;
    double widening = 1.0; // of few cases
};
