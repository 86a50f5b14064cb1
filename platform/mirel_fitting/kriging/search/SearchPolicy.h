#pragma once

#include <mirel_fitting/kriging/correlation/NuggetBounds.h>
#include <mirel_fitting/numerics/BoundedSearch.h>

#include <cstddef>

/**
 * Every tuned number of the search for correlation lengths and nugget. Lengths are in ranges of the
 * inputs, nuggets relative to the process variance, gains and gaps in log-likelihood. "Ablation"
 * is the experiment of docs/numerics.md: what a fit loses without the number.
 */
struct SearchPolicy
{
    // Bounds.

    /** In most designs shorter ones fit like independent cases. */
    double shortestLength = 0.01;
    /** Many cases of few inputs show shorter ones: cases this share of their spacing apart are
     *  correlated by a third. */
    double shortestSpacing = 0.5;
    /** Longer ones change predictions by less than a thousandth of the output's deviation. */
    double longestLength = 300.0;
    /** The lower bound where none is asked for. */
    double soundNugget = NuggetBounds::sound;
    /** 99 % of the variance. */
    double largestNugget = 100.0;
    /** The logarithm of the nugget is searched in steps of e^3 = 20 where those of the lengths
     *  take one of e: it has farther to go. */
    double nuggetUnit = 3.0;
    /** Parameters this near a bound, in logarithms, are reported to be at it. */
    double boundTolerance = 0.01;

    // Starts: one for smooth and one for noisy data; if they do not converge to the same optimum,
    // random ones. A third standard start at four times the length cost 10 to 28 % of the work and
    // gained nothing in the ablation; without the noisy one Hartmann's function loses 0.6 %.

    double smoothNugget = 1e-6;
    double noisyNugget = 0.05;
    std::size_t randomStarts = 12;
    double shortestStart = 0.2;
    /** Some start where an input has hardly any influence: from shorter ones no slope leads there.
     */
    double longestStart = 30.0;
    /** With so few cases a search takes less than a millisecond, and every random start is followed
     *  to its optimum: of 41 tables of 9 to 50 cases a race of two starts ends more than 0.2 below
     *  the best optimum in three. */
    std::size_t followedCases = 40;
    /** With more, the likeliest two of the random starts take three steps and the better one goes
     * on: searches that end low mostly are low soon. */
    std::size_t racing = 2;
    int racingSteps = 3;
    /** Far more than any search has needed (40). */
    int maxSteps = 100;
    BoundedSearch::StepRule stepRule;

    // Ladder of subsets: the starts compete on few cases.

    /** With 50 three of 218 fits lose more than 0.5 and up to 100; 200 take 2.5 times the work. */
    std::size_t firstSubset = 100;
    /** Cases per parameter in the first subset, with many inputs. */
    std::size_t firstSubsetPerParameter = 3;
    /** From subset to subset; 4 costs the same. The next optimum is then a few steps away. */
    double subsetGrowth = 2.5;
    /** The best optimum and the second, which the report wants to know. */
    std::size_t keptOptima = 2;

    // Whether two optima are the same model.

    /** In logarithms: a factor of 1.65. */
    double sameLogarithm = 0.5;
    /** Longer ones have hardly any influence and move freely; so do smaller nuggets. Without the
     *  latter the work grows by 3 %. */
    double indifferentLength = 10.0;
    double indifferentNugget = 1e-8;
    /** Values within 2 of each other are ends of one flat ridge if the likelihood dips by less than
     *  0.25 half-way between them. */
    double ridgeGap = 2.0;
    double ridgeDip = 0.25;

    // Inputs without influence. The likelihood has a maximum at infinity, from which no slope leads
    // back: without the first number a wing weight fit of 200 cases loses 3.8, without looking at
    // the upper bound four of 218 fits lose up to 2.7 and borehole 3 % of its error.

    /** Longer ones are brought back to this before more cases are taken. */
    double recalledLength = 20.0;
    /** At the end so many of the longer ones are tried at the upper bound. */
    std::size_t triedLengths = 20;

    // Nugget.

    /** A gain below this is no evidence for a nugget. */
    double indifferentGain = 0.1;
    /** The 1 % point of half a chi-squared distribution, required of a noise variance (relative to
     *  the output's) below the next number, so that smooth data are met at the cases. Costs 1.5 in
     *  nine of 218 fits. Self, Liang, J. Am. Stat. Assoc. 82 (1987). */
    double significantGain = 2.7;
    double slightNoise = 1e-4;
    /** With all lengths at their lower bound the likelihood hardly separates spikes at the cases
     * from noise, and between the cases both predict the same: with more than 20 cases noise is
     *  preferred if it costs no more. */
    double spikesGain = 0.4;
    std::size_t spikesCases = 20;
    /** A subset's estimate below this may be too much for all cases: the least nugget is tried. */
    double smoothSubsetNugget = 1e-6;

    // Order of the trend.

    /** With fewer cases per term the order is chosen. */
    std::size_t casesPerTerm = 20;
    /** What a higher order has to gain; without it the tables lose 2 %. */
    double trendGain = 1.0;
};
