#include "session/model/ComparisonVerdict.h"

#include "session/model/OutputComparison.h"
#include "session/text/NumberText.h"
#include "session/text/QuotedText.h"

#include <boost/math/distributions/students_t.hpp>

#include <cmath>
#include <string>

namespace {
/** In standard deviations of the output: smaller errors make no practical difference. */
constexpr double negligibleError = 1e-6;

/** Quantile of Student's t, for a two-sided test at 5 %. */
constexpr double confidence = 0.975;

bool isSignificant(const OutputComparison& comparison)
{
    if (std::isnan(comparison.difference)) {
        return false;
    }
    const boost::math::students_t distribution(
        static_cast<double>(comparison.responseSurface.cases) - 1.0);
    return std::abs(comparison.difference) >
           boost::math::quantile(distribution, confidence) * comparison.differenceError;
}

std::string rounded(double number)
{
    constexpr int digits = 4;
    return shownNumber(number, digits);
}

OutputComparison::Verdict verdictOf(const OutputComparison& comparison)
{
    const bool hasResponseSurface = comparison.responseSurface.q2 > 0.0;
    const bool hasKriging = comparison.kriging.q2 > 0.0;
    if (!hasResponseSurface && !hasKriging) {
        return OutputComparison::Neither;
    }
    if (comparison.kriging.cases == 0) {
        return OutputComparison::ResponseSurface;
    }
    if (comparison.responseSurface.cases == 0) {
        return OutputComparison::Kriging;
    }
    // 1 - Q2 is the mean squared error in units of the variance.
    const double negligible = negligibleError * negligibleError;
    const bool areBothExact = 1.0 - comparison.responseSurface.q2 < negligible &&
                              1.0 - comparison.kriging.q2 < negligible;
    if (areBothExact || !isSignificant(comparison)) {
        return OutputComparison::Either;
    }
    return comparison.difference > 0.0 ? OutputComparison::Kriging
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
    if (responseSurface.cases == 0) {
        return begin +
               "the response surface can be fitted in no fold, and Kriging predicts cases "
               "left out no better" +
               toTheMean + " (Q2 " + rounded(kriging.q2) + ").";
    }
    if (kriging.cases == 0) {
        return begin +
               "Kriging can be fitted in no fold, and the response surface predicts cases "
               "left out no better" +
               toTheMean + " (Q2 " + rounded(responseSurface.q2) + ").";
    }
    if (std::isnan(responseSurface.q2)) {
        return begin + "it is the same in all cases, so that there is nothing to predict.";
    }
    return begin + "neither predicts cases left out better" + toTheMean + " (Q2 " +
           rounded(responseSurface.q2) + " and " + rounded(kriging.q2) + ").";
}

std::string eitherSentence(const OutputComparison& comparison)
{
    if (std::isnan(comparison.difference)) {
        return "The models of " + quotedText(comparison.name) +
               " cannot be compared: less than two cases left out are predicted by both.";
    }
    const CrossValidationMetrics& responseSurface = comparison.responseSurface;
    const CrossValidationMetrics& kriging = comparison.kriging;
    const std::string begin =
        "There is no clear difference between the models of " + quotedText(comparison.name) + ": ";
    if (isSignificant(comparison)) {
        return begin + "both predict cases left out to less than a millionth of its standard "
                       "deviation.";
    }
    std::string end = ".";
    if (!(responseSurface.q2 > 0.0)) {
        end = ", but only Kriging predicts cases left out better than their mean.";
    } else if (!(kriging.q2 > 0.0)) {
        end = ", but only the response surface predicts cases left out better than their mean.";
    }
    return begin + "the RMSE is " + rounded(responseSurface.rmse) + " and " +
           rounded(kriging.rmse) +
           ", and their squared errors differ by less than the noise of the cases" + end;
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
    const std::string otherName = isKriging ? "the response surface" : "Kriging";
    const std::string begin = std::string("Use ") +
                              (isKriging ? "Kriging" : "the response surface") + " for " +
                              quotedText(comparison.name) + ": ";
    if (other.cases == 0) {
        return begin + otherName + " can be fitted in no fold.";
    }
    const std::string figures = "its RMSE for cases left out is " + rounded(better.rmse) +
                                " against " + rounded(other.rmse) + " of " + otherName;
    if (comparison.differenceError == 0.0) {
        return begin + figures + ", and the squared errors differ alike in all cases.";
    }
    const double errors = std::abs(comparison.difference) / comparison.differenceError;
    return begin + figures + ", and the squared errors differ by " + rounded(errors) +
           " times the standard error of their difference.";
}
} // namespace

void judge(OutputComparison& comparison)
{
    comparison.verdict = verdictOf(comparison);
    comparison.recommendation = sentenceOf(comparison);
}
