#pragma once

#include <mirel_fitting/cases/KrigingData.h>
#include <mirel_fitting/kriging/correlation/MaternCorrelation.h>
#include <mirel_fitting/machine/AlignedBuffer.h>
#include <mirel_fitting/numerics/BlockedCholesky.h>
#include <mirel_fitting/numerics/OrthonormalColumns.h>

#include <cstddef>
#include <limits>
#include <memory>
#include <vector>

/**
 * The linear equations of universal Kriging at given correlation lengths and nugget: R = C + nugget
 * I is factorised, R = L L', and the trend's coefficients are their generalised least-squares
 * estimate, from L^-1 F = Q T with the trend's terms F.
 *
 * Replicates, rows with the same inputs, are one case without loss: nugget / replicates stands on
 * its diagonal. Two n x n matrices are held. All use the threads of threadCount(), whose number
 * does not change a bit, and call FitProgress::advance() with their multiplications at least every
 * tenth of a second; an exception thrown there passes through.
 */
class KrigingEquations
{
public:
    /** @param data is shared and must not change. */
    explicit KrigingEquations(std::shared_ptr<const KrigingData> data);

    /**
     * n^3 / 6 multiplications.
     * @param lengths one per input, in units of the scaled coordinates; may be infinite.
     * @return false where R cannot be factorised in double precision.
     */
    bool solve(const std::vector<double>& lengths, double nugget);

    // The following describe the last solve(), which must have succeeded.

    double nugget() const { return diagonalNugget; }
    /** Of R, whose order is the number of cases. */
    double logDeterminant() const { return logDeterminantOfR; }
    /** Of F' R^-1 F. */
    double logTrendDeterminant() const;
    /** r' R^-1 r, r the residual of the trend. */
    double squares() const { return weightedSquares; }
    /** Of the trend terms. */
    const std::vector<double>& coefficients() const { return beta; }
    /** Standard errors of coefficients(), relative to the process deviation. */
    std::vector<double> coefficientErrors() const;
    /** R^-1 (y - trend): the prediction is the trend plus the correlations times these. */
    const std::vector<double>& weights() const { return refinedAlpha; }
    /** The weights with the nugget, also after refineWithoutNugget(). */
    const std::vector<double>& smoothingWeights() const { return alpha; }

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

    /** Whether most cases lie farther from all others than a correlation length: by their largest
     *  correlation with another case, compared with that of one length along one input. */
    bool areCasesFarApart() const;

    /** One per case; NaN where the other cases do not determine the trend. */
    struct LeftOut
    {
        std::vector<double> residuals; ///< outputs minus predictions by all other cases
        std::vector<double> variances; ///< of these, relative to the process variance
    };
    /**
     * With the same lengths, nugget and variance and the trend estimated anew: Dubrule, Cross
     * validation of kriging in a unique neighborhood, Math. Geology 15 (1983).
     * @param isNoise whether the cases have the nugget as noise: if not, it only stabilises the
     *                factorisation, and the variances are less by what it contributes.
     */
    LeftOut leaveOneOut(bool isNoise);

    // For derivatives.

    const MaternCorrelation& correlation() const { return matern; }
    /** The lower triangle of C. */
    const double* correlations() const { return correlationMatrix.data(); }
    BlockedCholesky& factor() { return cholesky; }
    /** Whitens `count` columns by L^-1, then projects out the trend. */
    void whitenAndProject(std::vector<double>& columns, std::size_t count) const;
    /** G = L^-T Q by columns: P = R^-1 - G G' is the inverse with the trend projected out. */
    std::vector<double> trendInInverse() const;
    /** Turns elements of R^-1 into those of P: columns from `first` on, rows from `first` to the
     *  last. @param trend trendInInverse() of `rows` rows. */
    static void projectTrendOut(const std::vector<double>& trend, std::size_t rows,
                                std::size_t first, std::size_t columns, double* block,
                                std::size_t stride);

    /** The rounding of 1 minus what the cases explain of a variance: a smaller one counts as it. */
    static constexpr double smallestVariance = 100.0 * std::numeric_limits<double>::epsilon();

private:
    bool factorise();
    bool estimateTrend();
    double solveLeastSquares(std::vector<double>& right, std::vector<double>& coefficients) const;
    void subtractCorrelated(std::vector<double>& outputs) const;
    double normOfInverse() const;

    std::shared_ptr<const KrigingData> data;
    std::size_t n;
    std::size_t p;
    MaternCorrelation matern;
    AlignedBuffer correlationMatrix;
    BlockedCholesky cholesky;

    double diagonalNugget = 0.0;
    double logDeterminantOfR = 0.0;
    double weightedSquares = 0.0;
    OrthonormalColumns whitenedTrend;
    std::vector<double> beta;
    std::vector<double> alpha;
    std::vector<double> refinedAlpha;
};
