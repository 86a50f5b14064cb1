#pragma once

#include <mirel_fitting/cases/KrigingData.h>

#include <cstddef>
#include <memory>
#include <vector>

/**
 * Profile likelihood of universal Kriging as a function of the correlation lengths and the nugget.
 *
 * Covariance of the rows: s2 R, R = C + nugget I, C the correlation of their inputs. The trend
 * coefficients are their generalised least-squares estimate, s2 = r' R^-1 r / n with the residual
 * r of the trend; both are profiled out:
 *
 *   ln L = -(n ln(2 pi s2) + ln det R + n) / 2,   n the number of rows.
 *
 * Replicates, rows with the same inputs, are one case without loss: R is then never larger than the
 * number of distinct cases, with nugget / replicates on its diagonal; the sum of squares of the
 * replicates about their mean enters s2. Binois, Gramacy, Ludkovski: Practical heteroscedastic
 * Gaussian process modeling for large simulation experiments, J. Comput. Graph. Stat. 27 (2018).
 *
 * An evaluation costs n^3 / 6 multiplications, its gradient n^3 / 3 more, for any number of
 * inputs. Two n x n matrices are held. Both use the threads of threadCount(), whose number does not
 * change a bit, and call FitProgress::advance() with their multiplications at least every tenth of
 * a second; an exception thrown there ends the evaluation and passes through.
 */
class KrigingLikelihood
{
public:
    /** @param data is shared and must not change. */
    explicit KrigingLikelihood(std::shared_ptr<const KrigingData> data);
    ~KrigingLikelihood();

    /**
     * @param lengths one per input, in units of the scaled coordinates; may be infinite.
     * @return ln L in the units of the standardised output; minus infinity where R cannot be
     *         factorised in double precision.
     */
    double evaluate(const std::vector<double>& lengths, double nugget);

    /**
     * Derivatives of the last evaluation, which must have been finite, by the logarithms of the
     * lengths and, last, of the nugget.
     */
    void gradient(std::vector<double>& result);

    /**
     * The average information at the last evaluation, which must have been finite: the mean of the
     * observed and the expected Hessian of -ln L by the logarithms of the lengths and the nugget,
     * without the terms whose expectation is zero. Positive semidefinite, by rows; costs O(n^2) for
     * each input. Gilmour, Thompson, Cullis: Average information REML, Biometrics 51 (1995).
     */
    void averageInformation(std::vector<double>& result);

    // The following describe the last evaluation, which must have been finite.

    double processVariance() const;
    /** Of the trend terms. */
    const std::vector<double>& coefficients() const;
    /** R^-1 (y - trend): the prediction is the trend plus the correlations times these. */
    const std::vector<double>& weights() const;

    /**
     * Coefficients and weights as they would be without nugget, as far as double precision allows:
     * for a nugget that only keeps the factorisation sound, so that the model interpolates the
     * cases. By iterative refinement, of which each round reduces the nugget's smoothing. Riley:
     * Solving systems of linear equations with a positive definite, symmetric, but possibly
     * ill-conditioned matrix, Math. Tables Aids Comput. 9 (1955).
     */
    void refineWithoutNugget();

    /** Outputs minus predictions by coefficients() and weights(). */
    std::vector<double> residuals() const;

    /** The 1-norm of R times an estimate of that of its inverse: a bound on the relative error of
     *  the weights, as a multiple of that of the outputs. Higham: FORTRAN codes for estimating the
     *  one-norm of a real or complex matrix, ACM Trans. Math. Softw. 14 (1988). */
    double conditionEstimate() const;

    /**
     * Outputs minus predictions by all other cases, with the same lengths, nugget and variance and
     * the trend estimated anew: Dubrule, Cross validation of kriging in a unique
     * neighborhood, Math. Geology 15 (1983). NaN where the others do not determine the trend.
     * @param variances if not null, receives those of the residuals, relative to the process
     *                  variance.
     */
    std::vector<double> leaveOneOutResiduals(std::vector<double>* variances = nullptr);

private:
    class Impl;
    std::unique_ptr<Impl> impl;
};
