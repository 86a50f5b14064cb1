#pragma once

#include <array>
#include <cstddef>
#include <limits>

/**
 * The tuned numbers of the search for correlation lengths and nugget with one correlation matrix.
 * Lengths are in ranges of the inputs, nuggets relative to the process variance, gains and gaps in
 * log-likelihood. The table "Ablation" of docs/numerics.md shows what a fit loses without a
 * mechanism. Other numbers of a fit: NuggetBounds, KrigingSizes, BoundedSearch.cpp; of a
 * layer of neighbours those in NeighbourLayer.cpp, of intervals IntervalCalibration and
 * KrigingIntervals.cpp.
 */
namespace SearchPolicy {

// Bounds.

/** In most designs shorter ones fit like independent cases. */
constexpr double shortestLength = 0.01;
/** Many cases of few inputs show shorter ones: cases this share of their spacing apart are
 *  correlated by a third. */
constexpr double shortestSpacing = 0.5;
/** Longer ones change predictions by less than a thousandth of the output's deviation. */
constexpr double longestLength = 300.0;
/** 99 % of the variance. */
constexpr double largestNugget = 100.0;
/** The logarithm of the nugget is searched in steps of e^3 = 20 where those of the lengths
 *  take one of e: it has farther to go. */
constexpr double nuggetUnit = 3.0;
/** Parameters this near a bound, in search variables (1 % of a length, 3 % of a nugget), are
 *  reported to be at it. */
constexpr double boundTolerance = 0.01;

// Prior of the lengths, see LengthPrior. The deviations are those of the length's logarithm.

/** The output of most tables bends once or twice over the range of an input. */
constexpr double priorLength = 2.0;
/** The prior is greatest at so many mean spacings of the cases where that is less: many cases
 *  of one input show changes over short parts of its range. With 8 the noise of 30 to 80 cases
 *  of two inputs is followed more (errors grow by 1 to 9 %), small designs do not change. */
constexpr double priorSpacings = 16.0;
/** A fifth of the range costs 5.4, a twentieth 14: few cases show no such detail, many outweigh
 *  it. */
constexpr double priorDeviationBelow = 0.7;
/** A length of 300 ranges, no influence, costs 2.0. A smaller deviation would give inputs an
 *  influence that the cases do not show. */
constexpr double priorDeviationAbove = 2.5;

// Starts.

struct Start
{
    double length; ///< of every input, as a multiple of the initial length
    double nugget;
    /** No longer than so many mean spacings of the cases. */
    double spacings = std::numeric_limits<double>::infinity();
};
/** For noisy and smooth data, slow and fast changes. With all cases the first alone leads to
 *  the best optimum known of nine tables in ten. The one for fast changes is a matter of the
 *  spacing: from a fifth of the range no slope leads to the many waves that hundreds of cases
 *  of one input can show. */
constexpr std::array<Start, 6> starts = {
    {{1.0, 1e-2}, {4.0, 1e-4}, {1.0, 1e-4}, {2.0, 1e-6}, {0.4, 1e-3, 4.0}, {4.0, 0.1}}};
/** So many steps are taken from each start, then the likeliest searches go on: those that end
 *  low mostly are low soon. */
constexpr int racingSteps = 2;
constexpr std::size_t racing = 2;
/** An input whose values each occur so often on average has few levels. A subset then lacks
 *  most combinations of levels, and its best optimum may be that all is noise: the starts
 *  compete on all cases, too. 171 in log-likelihood are lost without, of 1200 cases. */
constexpr std::size_t casesPerLevel = 4;
/** Beyond so many cases only the first start competes there: each takes seconds. */
constexpr std::size_t raceCases = 2000;
/** From the best optimum without one input each, so many of the likeliest searches go on. With
 *  one a table in 141 ends 9.3 lower, with two one in 165 by 7.8; eight gain nothing. */
constexpr std::size_t followedAlternatives = 4;
/** Of no more cases and inputs than these, where a fit takes some milliseconds, the search also
 *  starts from points spread over lengths and nuggets, to find the second optimum. */
constexpr std::size_t maxCasesForSecond = 200;
constexpr std::size_t maxInputsForSecond = 10;
/** Twelve find all nine second optima of 180 tables of 40 to 200 cases. The fewer the cases,
 *  the more optima there are: of up to `casesOfManyOptima` more are needed, so many for each
 *  length and the nugget. */
constexpr std::size_t spreadStarts = 12;
constexpr std::size_t casesOfManyOptima = 40;
constexpr std::size_t spreadStartsPerVariable = 8;
/** Their lengths, as multiples of the one where the prior is greatest. */
constexpr double shortestSpread = 0.3;
constexpr double longestSpread = 3.0;
/** Every other one has the least nugget, as models without noise have optima of their own, to
 *  which no slope leads; the others have these. */
constexpr double leastSpreadNugget = 1e-4;
constexpr double largestSpreadNugget = 0.1;
/** Far more than any search has needed (40). */
constexpr int maxSteps = 100;

// Ladder of subsets: the starts compete on few cases.

/** The best optimum of a few cases need not be that of all: of 141 tables with few levels and
 *  small designs 10 end lower by more than 0.5 with 100 cases here, and 4 with 400. */
constexpr std::size_t firstSubset = 400;
/** Cases per parameter in the first subset, with many inputs. */
constexpr std::size_t firstSubsetPerParameter = 3;
/** From subset to subset; 4 costs the same. The next optimum is then a few steps away. */
constexpr double subsetGrowth = 2.5;
/** The best optimum and the second, which is reported. */
constexpr std::size_t keptOptima = 2;

// Whether two optima are the same model.

/** In search variables: a factor of 1.65 of a length, of 4.5 of a nugget. */
constexpr double sameLogarithm = 0.5;
/** Longer ones have hardly any influence and move freely; so do smaller nuggets. Without the
 *  latter the work grows by 3 %. */
constexpr double indifferentLength = 10.0;
constexpr double indifferentNugget = 1e-8;
/** Values within 2 of each other are ends of one flat ridge if the likelihood dips by less than
 *  0.25 half-way between them. */
constexpr double ridgeGap = 2.0;
constexpr double ridgeDip = 0.25;

// Inputs without influence.

/** Longer ones are brought back to this before more cases are taken, since few cases may hide
 *  an influence and the slope that leads back is small. Where the likelihood at the upper bound
 *  is the same, a longer one is reported to have no influence. */
constexpr double recalledLength = 20.0;
/** Of so many of the longest ones that is tried; so many of the shortest ones are left out,
 *  each alone, for starts without an input. */
constexpr std::size_t triedLengths = 20;

// Nugget.

/** A gain below this is no evidence for a nugget. */
constexpr double indifferentGain = 0.1;
/** The 1 % point of half a chi-squared distribution, required of a noise variance (relative to
 *  the output's) below the next number, so that models of smooth data interpolate. Costs 1.5 in
 *  nine of 218 fits. Self, Liang, J. Am. Stat. Assoc. 82 (1987). */
constexpr double significantGain = 2.7;
constexpr double slightNoise = 1e-4;
/** With fewer it is required of any noise: a curve through four cases and a constant with noise
 *  are about as likely. The error of 4 to 9 cases is then 0.91 to 0.99 times as large without
 *  noise and 0.96 to 1.05 with noise of 10 to 30 % of the deviation; 12 cases lose 22 %. */
constexpr std::size_t casesThatShowNoise = 10;
/** A subset's estimate below this may be too much for all cases: the least nugget is tried. */
constexpr double smoothSubsetNugget = 1e-6;

// Order of the trend.

/** With fewer cases per term the trend of a smooth output is constant: the terms would take
 *  away from the few cases what the correlations predict better. */
constexpr std::size_t casesPerTerm = 15;
/** With fewer the order is lowered also where there is noise, which the terms would follow: of
 *  24 cars with 10 inputs a linear trend has up to 7 times the error of a constant one at
 *  others. With 3 five inputs of 17 cases lose 10 to 27 %. */
constexpr double minCasesPerTerm = 2.5;

} // namespace SearchPolicy
