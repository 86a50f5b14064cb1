#pragma once

#include <mirel_fitting/Export.h>

#include <cstddef>
#include <limits>
#include <optional>
#include <string>
#include <vector>

/**
 * One term of a fitted polynomial and how well the cases determine it. All figures are NaN for a
 * term that is not kept, but for the estimate, which is 0 then; all
 * but the estimate and the variance inflation is NaN without residual degrees of freedom.
 */
struct CoefficientStatistics
{
    static constexpr double none = std::numeric_limits<double>::quiet_NaN(); ///< does not exist

    std::string term; ///< "1", "V1", "V1^2", "V1 V2", ...
    /** The same as positions of inputs, which are multiplied: {}, {0}, {0, 0}, {0, 1}, ... */
    std::vector<std::size_t> factors;
    double estimate = 0.0;       ///< in the unit of the output per that of the factors
    double standardError = none; ///< of the estimate
    double t = none;             ///< estimate / standardError
    double p = none;             ///< of a |t| as large or larger if the coefficient is 0
    double lower = none;         ///< confidence limits
    double upper = none;         ///< likewise
    /** Variance inflation factor: 1 / (1 - R^2), R^2 that of the term's column regressed on the
     *  others. NaN for the constant. */
    double varianceInflation = none;
    bool isKept = true; ///< false: dropped, since the cases cannot separate it or it was not needed
};

/** A line of an analysis of variance; NaN where a figure does not exist. */
struct AnovaRow
{
    static constexpr double none = std::numeric_limits<double>::quiet_NaN(); ///< does not exist

    std::string source; ///< such as "Linear": ResponseSurfaceStatistics::anova has the list
    std::size_t degreesOfFreedom = 0; ///< with 0, no other figure exists
    double sumOfSquares = none;       ///< weighted, in the squared unit of the output
    double meanSquare = none;         ///< sumOfSquares / degreesOfFreedom
    double f = none; ///< against the residual's mean square; of the lack of fit: the pure error's
    double p = none; ///< of an F as large or larger if the source has no effect
};

/** Where the derivatives of a full quadratic polynomial are 0. */
struct StationaryPoint
{
    /** By the signs of the curvatures. */
    enum class Nature
    {
        Minimum, ///< all positive
        Maximum, ///< all negative
        Saddle,  ///< of both signs
        Ridge    ///< without curvature along some direction: one of many stationary points
    };

    /** One per input, in its unit; NaN for an input that the polynomial does not have, which may be
     *  anywhere. */
    std::vector<double> coordinates;
    double value = 0.0;             ///< of the polynomial there
    Nature nature = Nature::Saddle; ///< also of a point outside the data
    bool isInsideData = false;      ///< inside the ranges of the inputs over the cases
    /** Eigenvalues of the matrix of second-order coefficients in coded inputs, ascending: the
     *  output changes by one of them, times the squared distance, along its direction. */
    std::vector<double> curvatures;
};

/** The leverage of a case: the derivative of its prediction by its own output, from 0 to 1. */
struct CaseLeverage
{
    std::size_t row = 0;   ///< as given to the model, the first is 0
    double leverage = 0.0; ///< 1: the fit passes through the case whatever its output
};

/** What a block of cases adds to the output. */
struct BlockEffect
{
    std::size_t block = 0; ///< its number in CaseDesign
    double effect = 0.0;   ///< in the unit of the output, over the mean of all blocks
    std::string name = {}; ///< what the program that numbers the blocks calls it
};

/** The test of one term given all others: what leaving it out adds to the residual. */
struct PartialTest
{
    std::vector<std::size_t> factors; ///< of the term, as in CoefficientStatistics
    AnovaRow row;                     ///< its source is the term: "V1", "V1 V2", ...
};

/**
 * How a case stands to the fit. NaN where a figure does not exist: of a case of leverage 1, without
 * residual degrees of freedom, and where the residuals are no more than rounding.
 * Cook, Weisberg: Residuals and Influence in Regression, Chapman and Hall 1982, ch. 2 and 3.
 */
struct CaseDiagnostics
{
    static constexpr double none = std::numeric_limits<double>::quiet_NaN(); ///< does not exist

    std::size_t row = 0;   ///< as given to the model, the first is 0
    double output = 0.0;   ///< as given
    double residual = 0.0; ///< output minus fitted value, in the output's unit, not weighted
    double leverage = 0.0; ///< as in CaseLeverage
    double internallyStudentised = none; ///< residual / (s sqrt((1 - leverage) / weight))
    /** The same with the s of the fit without the case; Student's t with one degree of freedom less
     *  than the residual has. */
    double externallyStudentised = none;
    /** Cook's distance: by how much all predictions change without the case, squared and summed,
     *  over terms times s^2. */
    double cooksDistance = none;
};

/** A direction of the canonical analysis, in which the polynomial has no interaction with others.
 */
struct CanonicalDirection
{
    /** The eigenvalue: the output changes by it, times the squared distance, along the direction.
     */
    double curvature = 0.0;
    /** A unit vector in inputs coded to [-1, 1], one component per input, the largest positive; 0
     *  for an input that the polynomial does not have. */
    std::vector<double> components;
};

/** The point of the largest, or smallest, value among those at a distance from the middle of the
 *  ranges, in inputs coded to [-1, 1]. */
struct RidgePoint
{
    double distance = 0.0; ///< in coded inputs
    /** One per input, in its unit; NaN for an input that the polynomial does not have. */
    std::vector<double> coordinates;
    double value = 0.0;                                              ///< of the polynomial there
    double standardError = std::numeric_limits<double>::quiet_NaN(); ///< of the mean there
};

/** "minimum", "maximum", "saddle" or "ridge", as texts and documents call it. */
MIREL_FITTING_EXPORT const char* natureName(StationaryPoint::Nature nature);

/** Which values of the inputs are -1 and 1 in coded coefficients. */
enum class InputCoding
{
    Axial, ///< the ends of each input's range, as the axial points of a central composite design
    /** The second and the fourth of an input's five levels, as the factorial points of such a
     *  design, where the levels are symmetric about the middle; otherwise as Axial. Levels count as
     *  equal, and as symmetric, up to 1e-6 of half the range. */
    Factorial
};

/** What a response surface's fit of one output says about itself. */
struct MIREL_FITTING_EXPORT ResponseSurfaceStatistics
{
    static constexpr double none = std::numeric_limits<double>::quiet_NaN(); ///< does not exist

    /** In the units of output and inputs, every term in the order of the equation. */
    std::vector<CoefficientStatistics> coefficients;
    /** The same for inputs coded as `coding` says, with 0 in the middle of their ranges: comparable
     *  with each other, in the unit of the output. */
    std::vector<CoefficientStatistics> codedCoefficients;
    InputCoding coding = InputCoding::Axial; ///< as asked for
    /** Of InputCoding::Factorial: positions of the inputs that have factorial points, ascending. */
    std::vector<std::size_t> factorialInputs;
    /**
     * "Model", then "Blocks", "Linear", "Interaction" and "Square" as far as the fit has them,
     * "Residual", then "Lack of fit" and "Pure error" if cases repeat the inputs of others without
     * being copies of them (repeatsAreCopies), "Total" about the mean. Blocks and the kinds of
     * terms are entered in the order given (sequential, type I): each one's sum of squares is what
     * it takes off the residual of those before it, and they sum up to the model's. Sums are
     * weighted; repeats are those within a block.
     */
    std::vector<AnovaRow> anova;
    /** Cases repeat the inputs of others, and all of these have the same output too: copies of a
     *  row or a computation, which measure no noise, so that the lack of fit cannot be tested. */
    bool repeatsAreCopies = false;
    /** Of the blocks together, where there are any, with no factors and the source "Blocks"; then
     * of each coded term but the constant, in the order of the equation: sums of squares of type
     *  III. Those of linear terms depend on where the inputs are 0: here in the middle of their
     *  ranges. */
    std::vector<PartialTest> partialTests;

    /** One per block, ascending by its number, in the output's unit: they sum to 0. The polynomial
     * is that of a block of average effect. Empty without blocks. */
    std::vector<BlockEffect> blockEffects;

    double r2 = none;          ///< 1 - residual / total sum of squares
    double adjustedR2 = none;  ///< 1 - residual / total mean square
    double predictedR2 = none; ///< 1 - PRESS / total
    double press = none;       ///< sum of squared leave-one-out residuals
    double rmse = none;        ///< sqrt(residual sum of squares / residual degrees of freedom)
    /**
     * n ln(SSE / n) + n (ln(2 pi) + 1) + 2 k + 2 k (k + 1) / (n - k - 1), k the terms and one more
     * for the variance. Hurvich, Tsai: Regression and time series model selection in small samples,
     * Biometrika 76 (1989). NaN for n - 1 <= k, and where the residuals are no more than rounding.
     */
    double aicc = none;
    std::size_t residualDegreesOfFreedom =
        0; ///< cases minus coefficients, block effects among them
    /** One per case. Empty for more than 100 000 cases. */
    std::vector<double> leverages;
    double meanLeverage = none; ///< terms / cases
    /** At most five, the largest first; equal ones in the order of their rows. Of more than 100 000
     *  cases a stratified sample of 100 000 is considered, one at random of each stratum of rows.
     */
    std::vector<CaseLeverage> largestLeverages;
    /** One per case; of more than 100 000 cases, one for each of a stratified sample. Ascending
     *  rows. */
    std::vector<CaseDiagnostics> cases;
    /** A case whose externally studentised residual is larger in magnitude is suspected to be an
     *  outlier: the largest of as many as there are cases exceeds it with a probability of at most
     *  5 % (Bonferroni). NaN where there are no such residuals. */
    double outlierLimit = none;
    /** Positions in `cases` of the suspected outliers, the largest residual first. */
    std::vector<std::size_t> suspectedOutliers() const;

    /** Whether the second-order terms are more than rounding. */
    bool isCurved = false;
    /** None if the polynomial is not curved, if it rises along a direction in which it is not
     *  curved, or if a second-order term was dropped since it depends on others of second order in
     *  all cases: these do not show which of them is curved. */
    std::optional<StationaryPoint> stationaryPoint;
    /** By ascending curvature; empty if the polynomial is not curved, or has such a dropped term.
     */
    std::vector<CanonicalDirection> canonicalDirections;
    /** Ridge analysis: the paths of the largest and of the smallest values, by distances from 0 to
     *  1, all within the ranges of the cases. Of a linear polynomial these are the lines of
     *  steepest ascent and descent. Empty for a constant, and with such a dropped term.
     *  Draper: Ridge analysis of response surfaces, Technometrics 5 (1963). */
    std::vector<RidgePoint> ascent;
    std::vector<RidgePoint> descent;       ///< of the smallest values, at the same distances
    std::vector<std::string> droppedTerms; ///< all that are not kept
};
