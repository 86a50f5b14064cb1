#include "session/comparison/ComparisonVerdict.h"

#include "session/comparison/OutputComparison.h"
#include "session/text/DecimalText.h"
#include "session/text/QuotedText.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace {
/** Of the test of the errors: below the first it is clear which model is better, below the second
 *  the comparison leans to one. docs/numerics.md has the shares that proved right. */
constexpr double clearProbability = 0.05;
constexpr double leaningProbability = 0.3;

/** A larger RMSE by less than this factor makes no practical difference. */
constexpr double practicalRatio = 1.02;

/** A fit to all cases whose leave-one-out RMSE is larger than that of the folds by this factor
 *  contradicts them. */
constexpr double contradiction = 1.5;

const std::string surfaceName = "the response surface";
const std::string krigingName = "Kriging";

bool areBothExact(const OutputComparison& comparison)
{
    // 1 - Q2 is the mean squared error in units of the variance.
    const double negligible = OutputComparison::negligibleError * OutputComparison::negligibleError;
    return 1.0 - comparison.responseSurface.q2 < negligible &&
           1.0 - comparison.kriging.q2 < negligible;
}

bool isPracticallyEqual(const OutputComparison& comparison)
{
    const auto [least, greatest] =
        std::minmax(comparison.responseSurface.rmse, comparison.kriging.rmse);
    return greatest < practicalRatio * least;
}

/** Whether the test of the errors supports the model whose RMSE is the smaller one. */
bool isSupported(const OutputComparison& comparison, double probability)
{
    const bool isKriging = comparison.kriging.rmse < comparison.responseSurface.rmse;
    return comparison.errors.p < probability && (comparison.errors.logRatio > 0.0) == isKriging;
}

/** @param isClear set for a verdict for one model. */
OutputComparison::Verdict verdictOf(const OutputComparison& comparison, bool& isClear)
{
    isClear = false;
    const bool hasResponseSurface = comparison.responseSurface.q2 > 0.0;
    const bool hasKriging = comparison.kriging.q2 > 0.0;
    if (!hasResponseSurface && !hasKriging) {
        return OutputComparison::Neither;
    }
    if (comparison.kriging.cases == 0 || comparison.responseSurface.cases == 0) {
        isClear = true;
        return comparison.kriging.cases == 0 ? OutputComparison::ResponseSurface
                                             : OutputComparison::Kriging;
    }
    if (std::isnan(comparison.errors.p) || areBothExact(comparison) ||
        isPracticallyEqual(comparison)) {
        return OutputComparison::Either;
    }
    isClear = isSupported(comparison, clearProbability);
    if (!isClear && hasResponseSurface && hasKriging &&
        !isSupported(comparison, leaningProbability)) {
        return OutputComparison::Either;
    }
    return comparison.kriging.rmse < comparison.responseSurface.rmse
               ? OutputComparison::Kriging
               : OutputComparison::ResponseSurface;
}

std::string neitherSentence(const OutputComparison& comparison)
{
    const CrossValidationMetrics& responseSurface = comparison.responseSurface;
    const CrossValidationMetrics& kriging = comparison.kriging;
    const std::string begin = "Use neither model for " + quotedText(comparison.name) + ": ";
    if (responseSurface.cases == 0 && kriging.cases == 0) {
        return begin + "neither can be fitted in any fold.";
    }
    const std::string toTheMean = " than the mean of the cases does";
    if (responseSurface.cases == 0 || kriging.cases == 0) {
        const bool isKriging = kriging.cases > 0;
        const std::string fitted = isKriging ? krigingName : surfaceName;
        const std::string failed = isKriging ? surfaceName : krigingName;
        const double q2 = isKriging ? kriging.q2 : responseSurface.q2;
        return begin + failed + " can be fitted in no fold, and " + fitted +
               " predicts cases left out no better" + toTheMean + " (Q2 " + shownFigure(q2) + ").";
    }
    if (std::isnan(responseSurface.q2)) {
        return begin + "it is the same in all cases, so that there is nothing to predict.";
    }
    return begin + "neither predicts cases left out better" + toTheMean + " (Q2 " +
           shownFigure(responseSurface.q2) + " and " + shownFigure(kriging.q2) + ").";
}

/** "nearer in 10 of 11 left-out cases". */
std::string nearerText(const OutputComparison& comparison, bool isKriging)
{
    const std::size_t nearer =
        isKriging ? comparison.errors.krigingNearer : comparison.errors.responseSurfaceNearer;
    return "nearer in " + std::to_string(nearer) + " of " +
           std::to_string(comparison.kriging.cases) + " left-out cases";
}

std::string testText(const OutputComparison& comparison)
{
    return "t test over " + std::to_string(comparison.errors.folds) +
           " folds: " + probabilityText(comparison.errors.p);
}

std::string eitherSentence(const OutputComparison& comparison)
{
    const std::string name = quotedText(comparison.name);
    if (std::isnan(comparison.errors.p)) {
        return "The models of " + name +
               " cannot be compared: both predict left-out cases in less than two folds.";
    }
    const std::string begin = "Use either model for " + name + ", there is no ";
    const std::string equal = begin + "difference that matters";
    if (areBothExact(comparison)) {
        return equal +
               ": both predict left-out cases to less than a millionth of its standard deviation.";
    }
    const std::string figures =
        ": the cross-validated RMSE is " + shownFigure(comparison.responseSurface.rmse) +
        " of the response surface and " + shownFigure(comparison.kriging.rmse) + " of Kriging";
    if (isPracticallyEqual(comparison)) {
        return equal + figures + ", less than 2 % apart.";
    }
    return begin + "clear difference" + figures + ", which is " + nearerText(comparison, true) +
           " (" + testText(comparison) + ").";
}

std::string sentenceOf(const OutputComparison& comparison)
{
    if (comparison.verdict == OutputComparison::Neither) {
        return neitherSentence(comparison);
    }
    if (comparison.verdict == OutputComparison::Either) {
        return eitherSentence(comparison);
    }
    const bool isKriging = comparison.verdict == OutputComparison::Kriging;
    const CrossValidationMetrics& better =
        isKriging ? comparison.kriging : comparison.responseSurface;
    const CrossValidationMetrics& other =
        isKriging ? comparison.responseSurface : comparison.kriging;
    const std::string& betterName = isKriging ? krigingName : surfaceName;
    const std::string& otherName = isKriging ? surfaceName : krigingName;
    const std::string begin =
        (comparison.isClear ? "Use " + betterName : "The comparison leans to " + betterName) +
        " for " + quotedText(comparison.name) + ": ";
    if (other.cases == 0) {
        return begin + otherName + " can be fitted in no fold.";
    }
    std::string sentence = begin + "its cross-validated RMSE is " + shownFigure(better.rmse) +
                           " against " + shownFigure(other.rmse) + " of " + otherName;
    if (!(other.q2 > 0.0)) {
        sentence += ", which is no better than the mean of the cases";
    }
    return sentence + ", and it is " + nearerText(comparison, isKriging) +
           (comparison.isClear ? "" : ", but that may be chance") + " (" + testText(comparison) +
           ").";
}

void remarkContradiction(CrossValidationMetrics& metrics)
{
    // Below the negligible both figures are rounding.
    const double variance = metrics.rmse * metrics.rmse / (1.0 - metrics.q2);
    const double negligible = OutputComparison::negligibleError * std::sqrt(variance);
    if (metrics.looRmse > contradiction * metrics.rmse && metrics.looRmse > negligible) {
        metrics.remarks.push_back("The fit to all cases contradicts the folds: its leave-one-out "
                                  "RMSE is " +
                                  shownFigure(metrics.looRmse) + " against a cross-validated of " +
                                  shownFigure(metrics.rmse) +
                                  ", so that it may predict worse than this comparison says.");
    }
}
} // namespace

void judge(OutputComparison& comparison)
{
    remarkContradiction(comparison.responseSurface);
    remarkContradiction(comparison.kriging);
    comparison.verdict = verdictOf(comparison, comparison.isClear);
    comparison.recommendation = sentenceOf(comparison);
}
