#pragma once

#include <mirel_fitting/cases/ColumnScale.h>
#include <mirel_fitting/cases/WeightedBlocks.h>
#include <mirel_fitting/polynomial/QuadraticBasis.h>

#include <cstddef>
#include <memory>
#include <vector>

struct FitColumns;
struct FitResiduals;

/**
 * A polynomial, and the effects of blocks of cases if there are any, fitted by weighted least
 * squares to several outputs at once, in three passes over the
 * columns: ranges, factorisation, residuals. O(n p^2) time for n cases and p terms, memory of a
 * few blocks and p^2 numbers per thread. Uses the threads that setThreadCount() allows; the result
 * does not depend on their number.
 *
 * Many cases with clearly separable terms are fitted by NormalEquations, refined by the residuals
 * to the digits of an orthogonal factorisation. All others are fitted by such a factorisation
 * (BlockedLeastSquares), which also decides which terms the cases can separate.
 */
class PolynomialFit
{
public:
    /** The fit of one output. Sums of squares are those of the scaled output, weighted. */
    struct Output
    {
        ColumnScale scale;
        /** One per term of the basis, for scaled inputs, in the output's units about
         *  scale.centre(); 0 for a dropped term. Then the effects of all blocks but the last. */
        std::vector<double> coefficients;
        double totalSquares = 0.0; ///< about the mean
        double residualSquares = 0.0;
        double press = 0.0; ///< sum of the squared deleted residuals (of fits without the case)
        /** Of each sampled case: the output y as given, and the residual y - yhat in units of
         *  `scale`, times the root of the case's weight. */
        std::vector<double> values;
        std::vector<double> residuals;
    };

    /** The largest number of cases whose residuals and leverages are kept; of more cases, a sample
     *  of this size, whose memory is small beside the data. */
    static constexpr std::size_t maxSampled = 100000;

    /** A term that equals a linear combination of kept terms at all cases. */
    struct Dependence
    {
        std::size_t term;
        /** A coefficient per term of the basis, for scaled inputs, then one per column of the
         *  blocks. */
        std::vector<double> combination;

        /** Smaller coefficients are rounding errors. */
        static constexpr double rounding = 1e-7;
        bool involvesBlocks(const QuadraticBasis& basis) const;
    };

    /**
     * @param independents one array of `cases` finite values per input of the basis, borrowed for
     *                     the call.
     * @param dependents   one array of `cases` finite values per output, borrowed for the call.
     * @param cases        at least as many as there are wanted terms.
     * @param isWanted     one per term of the basis: false leaves it out from the start. The
     *                     constant is wanted, and linear terms of the inputs of wanted ones. Empty:
     *                     all are.
     * @param given        weights and blocks of the cases; null: equal weights and no blocks.
     * @throw SurrogateModelInterface::Error if a FitProgress cancels.
     */
    PolynomialFit(const QuadraticBasis& basis, const std::vector<double*>& independents,
                  const std::vector<double*>& dependents, std::size_t cases,
                  const std::vector<char>& isWanted = {},
                  std::shared_ptr<const WeightedBlocks> given = nullptr);

    const QuadraticBasis& basis() const { return polynomial; }
    std::size_t cases() const { return caseCount; }
    const WeightedBlocks& weightedBlocks() const { return *weighting; }
    const std::shared_ptr<const WeightedBlocks>& sharedWeightedBlocks() const { return weighting; }
    const std::vector<ColumnScale>& inputScales() const { return scales; }
    const std::vector<Output>& outputs() const { return fits; }

    /** Whether the cases can separate the term from those before it in the order constant, linear,
     *  squares, products. The constant is always kept. */
    bool isKept(std::size_t term) const { return keptFlags[term] != 0; }

    /** Whether the term was wanted in the first place. */
    bool isWanted(std::size_t term) const { return wanted.empty() || wanted[term] != 0; }

    /** The terms that the cases cannot separate, without those of an input that is dropped or
     *  constant; at most BlockedLeastSquares::maxDependences. */
    const std::vector<Dependence>& dependences() const { return dependentTerms; }

    std::size_t keptCount() const { return keptTerms.size(); }

    /** Terms of the basis and columns of the blocks, which are numbered after them. */
    std::size_t columns() const { return polynomial.size() + weighting->columns(); }
    bool isOfBlocks(std::size_t term) const { return term >= polynomial.size(); }

    /** The kept terms in the order of the factor: the constant, the columns of the blocks, others.
     */
    std::size_t keptTerm(std::size_t k) const { return keptTerms[k]; }

    /** The kept terms at the cases, for scaled inputs and times the roots of weights, are an
     * orthonormal matrix times this upper triangular one. */
    double factorElement(std::size_t row, std::size_t column) const
    {
        return factor[column * keptTerms.size() + row];
    }

    /** Residual degrees of freedom, n - p. */
    std::size_t degreesOfFreedom() const { return caseCount - keptTerms.size(); }

    /** False if a case has leverage 1: the polynomial passes through it whatever its value, and
     *  without it the terms cannot be fitted. */
    bool isPressAvailable() const { return pressAvailable; }

    /** The cases whose single residuals and leverages are kept, ascending: all, or a random one of
     *  each of `maxSampled` intervals of equal length. */
    std::size_t sampledCount() const { return leverageOfSample.size(); }
    std::size_t sampledRow(std::size_t k) const { return sample.empty() ? k : sample[k]; }

    double rootOfSampledWeight(std::size_t k) const
    {
        return weighting->rootOfWeight(sampledRow(k));
    }

    /** One per sampled case: d yhat / d y, from 0 to 1. */
    const std::vector<double>& leverages() const { return leverageOfSample; }

    /** The largest variance of the prediction at a case, as variances() has it, of all cases and
     *  not only of sampled ones: the largest leverage where weights are equal. */
    double largestVariance() const { return varianceOfFarthest; }

    /** Whether this leverage is 1 up to rounding. */
    static bool isDeterminedAlone(double leverage);

    /**
     * The variances x'(X'X)^-1 x of the prediction at other points, for residuals of variance 1,
     * in a block of average effect.
     * @param inputs one array of `count` values per input, not scaled; borrowed for the call.
     */
    void variances(const std::vector<double*>& inputs, std::size_t count, double* result) const;

    /** Column k of R^-1, one entry per column of columns(). The squares of these columns sum to the
     *  variances of the coefficients, for residuals of variance 1. */
    std::vector<double> coefficientDirection(std::size_t k) const;

private:
    bool solveNormalEquations(const FitColumns& columns, double& progress);
    void solveByRotations(const FitColumns& columns, double progress);
    void keep(std::vector<std::size_t> terms, std::vector<double> newFactor);
    FitResiduals computeResiduals(const FitColumns& columns,
                                  const std::vector<double>& scaledCoefficients,
                                  double progressFrom, double progressTo) const;
    void store(const std::vector<double>& scaledCoefficients, FitResiduals residuals);
    void chooseSample(const std::vector<double*>& dependents);

    QuadraticBasis polynomial;
    std::shared_ptr<const WeightedBlocks> weighting;
    std::size_t caseCount;
    std::vector<ColumnScale> scales;
    std::vector<Output> fits;
    std::vector<char> wanted;           // empty: all terms
    std::vector<std::size_t> keptTerms; // in the order of the factor
    std::vector<char> keptFlags;        // per term of the basis
    std::vector<double> factor;         // R, upper triangular
    std::vector<double> inverseFactor;  // R^-1
    std::vector<Dependence> dependentTerms;
    bool pressAvailable = true;
    double varianceOfFarthest = 0.0;
    std::vector<std::size_t> sample; // empty: all cases
    std::vector<double> leverageOfSample;
};
