#pragma once

#include <mirel_fitting/cases/KrigingData.h>
#include <mirel_fitting/kriging/likelihood/KrigingEquations.h>

#include <memory>
#include <vector>

/**
 * Restricted likelihood of universal Kriging as a function of the correlation lengths and the
 * nugget: that of n - p contrasts of the outputs which do not depend on the trend, n the number of
 * rows (cases of the table), p of trend terms. The trend then takes no variance away from the
 * process, as it does in the likelihood of the rows. Patterson, Thompson: Recovery of inter-block
 * information when block sizes are unequal, Biometrika 58 (1971).
 *
 * Covariance of the rows: s2 R, R = C + nugget I, C the correlation of their inputs, F the terms of
 * the trend. s2 = r' R^-1 r / (n - p) with the residual r of the trend is profiled out:
 *
 *   ln L = -((n - p) (ln(2 pi s2) + 1) + ln det R + ln det(F' R^-1 F) - ln det(F' F)) / 2.
 *
 * The last term makes the contrasts orthonormal, so that ln L does not depend on the units of the
 * terms. Harville: Bayesian inference for variance components using only error contrasts,
 * Biometrika 61 (1974).
 *
 * Replicates, rows with the same inputs, are one case without loss: R is then never larger than the
 * number of distinct cases, with nugget / replicates on its diagonal; the sum of squares of the
 * replicates about their mean enters s2. Binois, Gramacy, Ludkovski: Practical heteroscedastic
 * Gaussian process modeling for large simulation experiments, J. Comput. Graph. Stat. 27 (2018).
 *
 * An evaluation costs n^3 / 6 multiplications, its gradient n^3 / 3 more, for any number of
 * inputs. Threads and progress are those of KrigingEquations.
 */
class KrigingLikelihood
{
public:
    /** @param data is shared and must not change; more rows than trend terms, which are linearly
     *              independent. */
    explicit KrigingLikelihood(std::shared_ptr<const KrigingData> data);

    /**
     * @param lengths one per input, in units of the scaled coordinates; may be infinite.
     * @return ln L in the units of the standardised output; minus infinity where R cannot be
     *         factorised in double precision.
     */
    double evaluate(const std::vector<double>& lengths, double nugget);

    /**
     * Derivatives of the last evaluation, which must have been finite, by the logarithms of the
     * lengths and, last, of the nugget: for a parameter t
     *
     *   d ln L / dt = (a' (dR/dt) a / s2 - tr(P dR/dt)) / 2
     *
     * with a = R^-1 r and P = R^-1 - G G', the inverse with the trend projected out
     * (KrigingEquations::trendInInverse()). By a length the diagonal of dR/dt is 0: the half of the
     * symmetric sum is that over i > j. By the nugget dR/dt is diagonal.
     */
    void gradient(std::vector<double>& result);

    /**
     * The average information at the last evaluation, which must have been finite: the mean of the
     * observed and the expected Hessian of -ln L by the logarithms of the lengths and the nugget,
     * without the terms whose expectation is zero. Positive semidefinite, by rows; costs O(n^2) for
     * each input. Gilmour, Thompson, Cullis: Average information REML, Biometrics 51 (1995).
     */
    void averageInformation(std::vector<double>& result);

    /** Of the last evaluation, which must have been finite. */
    double processVariance() const { return variance; }

    /** Those of the last evaluation, which must have been finite. */
    KrigingEquations& equations() { return equationsOfCases; }
    const KrigingEquations& equations() const { return equationsOfCases; }

private:
    /** Sums over the columns of P, the inverse with the trend projected out, block by block. */
    struct Derivatives
    {
        std::vector<double> sums;     // one per input
        std::vector<double> products; // of the derivatives of R with alpha, a column per input
        std::vector<double> diagonal; // of P
    };
    class DerivativeVisitor;

    double logLikelihood() const;
    void differentiate();
    std::vector<double> derivativesTimesAlpha();
    double weightedWithinSquares() const;

    std::shared_ptr<const KrigingData> data;
    KrigingEquations equationsOfCases;
    double rowCount = 0.0;
    double logReplicates = 0.0;
    double withinSquares = 0.0;
    double logDeterminantOfTerms; // of F' F
    double degreesOfFreedom = 0.0;
    double variance = 0.0;
    bool isDifferentiated = false;
    Derivatives derivatives;
};
