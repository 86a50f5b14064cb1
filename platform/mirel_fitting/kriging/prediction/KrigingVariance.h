#pragma once

#include <mirel_fitting/kriging/prediction/FittedKriging.h>
#include <mirel_fitting/machine/AlignedBuffer.h>
#include <mirel_fitting/numerics/BlockedCholesky.h>
#include <mirel_fitting/numerics/OrthonormalColumns.h>

#include <cstddef>
#include <memory>
#include <vector>

/**
 * The variance of universal Kriging's mean at a point, relative to the process variance:
 *
 *   1 - r' R^-1 r + u' (F' R^-1 F)^-1 u,   u = f - F' R^-1 r,
 *
 * r the correlations of the point with the cases, f its trend terms, F those of the cases, R the
 * correlation matrix with the nugget on its diagonal. The last term is what estimating the trend
 * costs. Cressie: Statistics for Spatial Data, revised ed., Wiley 1993, section 3.4. Without
 * correlation it is that of a regression: R the identity and the first two terms 0.
 *
 * Where the nugget d only keeps the factorisation sound, the cases have no noise. With the weights
 * w that the cases have in the mean, the variance is then less by d w'w: what is left is the error
 * variance of this very mean, and positive however small it is beside d.
 *
 * Holds the factor of R, n x n numbers for n cases.
 */
class KrigingVariance
{
public:
    /** @throw SurrogateModelInterface::Error if R cannot be factorised. */
    explicit KrigingVariance(const FittedKriging& model);

    /** Variance of a new case about the mean there, relative to the process variance. */
    double noise() const;

    /** The buffers of one thread. */
    class Workspace
    {
    public:
        Workspace(const KrigingVariance& variance, std::size_t maxPoints);

    private:
        friend class KrigingVariance;
        AlignedBuffer correlations;
        std::vector<double> trend;
        std::vector<char> isAtCase; // one per point
    };

    /** Positive, not below the rounding of the difference from 1; 0 at a case that the model
     *  interpolates.
     *  @param points coordinates, one array per input that varies. */
    void evaluate(const std::vector<const double*>& points, std::size_t count, Workspace& workspace,
                  double* result) const;

private:
    void factorise();
    void explain(std::size_t count, Workspace& workspace, double* result) const;
    void subtractNugget(std::size_t count, Workspace& workspace, double* result) const;

    FittedKriging model;
    std::size_t cases;
    std::size_t terms;
    std::unique_ptr<BlockedCholesky> factor; // L of R = L L'; null without correlation
    OrthonormalColumns basis;                // L^-1 F = Q T
};
