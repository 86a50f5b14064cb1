#pragma once

#include <mirel_fitting/FitMetrics.h>
#include <mirel_fitting/LeaveOneOutPrediction.h>
#include <mirel_fitting/ResponseSurfaceStatistics.h>
#include <mirel_fitting/polynomial/PolynomialFit.h>
#include <mirel_fitting/polynomial/PolynomialUnits.h>

#include <cstddef>
#include <vector>

/**
 * Statistics of a fitted polynomial: coefficients with their errors, analysis of variance, AICc,
 * leverages. All follows from the triangular factor R of the design and a few sums, so that the
 * cost does not depend on the number of cases. Squares are weighted, and the effects of blocks are
 * terms like others, but for the coefficients and tests of single terms.
 * Myers, Montgomery, Anderson-Cook: Response Surface Methodology, 4th ed., Wiley 2016, ch. 2 and 6.
 */
class ResponseSurfaceAnalysis
{
public:
    /** The error among cases with the same inputs. */
    struct PureError
    {
        std::size_t degreesOfFreedom = 0;
        double squares = 0.0; ///< of the scaled output

        /** Whether all cases with the same inputs have the same output too. */
        bool isOfCopies() const { return degreesOfFreedom > 0 && squares == 0.0; }
    };

    /** @param fit is borrowed; it must outlive this object. `output` is a position in outputs(). */
    ResponseSurfaceAnalysis(const PolynomialFit& fit, std::size_t output,
                            const PureError& pureError);

    FitMetrics metrics() const;

    /** One for each case, or for each sampled one; rows ascending. */
    std::vector<LeaveOneOutPrediction> leaveOneOutPredictions() const;

    /** The inputs that coefficients belong to. */
    enum class Inputs
    {
        Raw,
        Coded ///< to [-1, 1]
    };
    /** One per term of the basis. */
    std::vector<CoefficientStatistics> coefficients(Inputs inputs, double level) const;

    std::vector<AnovaRow> anova() const;

    /** The blocks together if there are any, then one per kept term of the basis but the constant,
     *  for coded inputs. */
    std::vector<PartialTest> partialTests() const;

    /** One per block, in the output's unit; they sum to 0. */
    std::vector<double> blockEffects() const;

    /** One for each case, or for each sampled one; rows ascending. */
    std::vector<CaseDiagnostics> caseDiagnostics() const;

    /** As ResponseSurfaceStatistics says. */
    double outlierLimit() const;

    /** Whether the residuals are no more than rounding. */
    bool isExact() const;

    /** NaN where the cases are too few, or the fit is exact. */
    double aicc() const;

    /** For `terms` coefficients and the variance, as ResponseSurfaceStatistics says; infinite, not
     *  NaN, where the cases are too few. @param squares residual sum of squares. */
    static double aicc(double squares, std::size_t cases, std::size_t terms);

    /** The largest leverages of all cases, or of the sampled ones. */
    std::vector<CaseLeverage> largestLeverages() const;

private:
    using Vector = std::vector<double>; // one number per term of the basis

    double residualSquares() const;
    double deviation() const;
    Vector coefficientsOf(Inputs inputs, const Vector& scaled) const;
    Vector coefficientVariances(Inputs inputs) const;
    double varianceInflation(Inputs inputs, std::size_t term, double variance) const;
    AnovaRow tested(AnovaRow effect, const AnovaRow& error) const;
    double squaresAboutMean(const Vector& combination) const;
    std::vector<double> sequentialSquares(bool areBlocksLast = false) const;

    const PolynomialFit& fit;
    const PolynomialFit::Output& output;
    PolynomialUnits units;
    PureError pureError;
};
