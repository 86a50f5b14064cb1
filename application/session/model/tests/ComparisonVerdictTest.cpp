#include <session/model/ComparisonVerdict.h>

#include <session/model/ModelComparison.h>

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace {
/** Of an output of variance 1. */
CrossValidationMetrics figures(double rmse)
{
    CrossValidationMetrics figures;
    figures.cases = 20;
    figures.rmse = rmse;
    figures.q2 = 1.0 - rmse * rmse;
    return figures;
}

/** @param difference of squared errors, in units of its standard error. */
OutputComparison judged(CrossValidationMetrics responseSurface, CrossValidationMetrics kriging,
                        double difference)
{
    OutputComparison comparison;
    comparison.name = "Stress";
    comparison.responseSurface = std::move(responseSurface);
    comparison.kriging = std::move(kriging);
    comparison.difference = 0.01 * difference;
    comparison.differenceError = 0.01;
    judge(comparison);
    return comparison;
}

void expectVerdict(const OutputComparison& comparison, OutputComparison::Verdict verdict,
                   const std::string& sentence)
{
    EXPECT_EQ(comparison.verdict, verdict);
    EXPECT_EQ(comparison.recommendation, sentence);
}
} // namespace

TEST(ComparisonVerdict, IsForTheModelThatIsClearlyBetter)
{
    expectVerdict(judged(figures(0.5), figures(0.25), 3.5), OutputComparison::Kriging,
                  "Use Kriging for \"Stress\": its RMSE for cases left out is 0.25 against 0.5 of "
                  "the response surface, and the squared errors differ by 3.5 times the standard "
                  "error of their difference.");
    expectVerdict(judged(figures(0.25), figures(0.5), -3.5), OutputComparison::ResponseSurface,
                  "Use the response surface for \"Stress\": its RMSE for cases left out is 0.25 "
                  "against 0.5 of Kriging, and the squared errors differ by 3.5 times the standard "
                  "error of their difference.");
}

TEST(ComparisonVerdict, IsForNoneWithinTheNoise)
{
    // 97.5 % point of Student's t with 19 degrees of freedom: 2.093 (any table of it).
    EXPECT_EQ(judged(figures(0.5), figures(0.25), 2.10).verdict, OutputComparison::Kriging);
    expectVerdict(judged(figures(0.5), figures(0.25), 2.09), OutputComparison::Either,
                  "There is no clear difference between the models of \"Stress\": the RMSE is 0.5 "
                  "and 0.25, and their squared errors differ by less than the noise of the cases.");
}

TEST(ComparisonVerdict, SaysWhichModelAloneIsBetterThanTheMean)
{
    expectVerdict(judged(figures(1.5), figures(0.5), 1.0), OutputComparison::Either,
                  "There is no clear difference between the models of \"Stress\": the RMSE is 1.5 "
                  "and 0.5, and their squared errors differ by less than the noise of the cases, "
                  "but only Kriging predicts cases left out better than their mean.");
    expectVerdict(judged(figures(0.5), figures(1.5), -1.0), OutputComparison::Either,
                  "There is no clear difference between the models of \"Stress\": the RMSE is 0.5 "
                  "and 1.5, and their squared errors differ by less than the noise of the cases, "
                  "but only the response surface predicts cases left out better than their mean.");
}

TEST(ComparisonVerdict, IsAgainstBothWhereTheMeanIsAsGood)
{
    expectVerdict(judged(figures(2.0), figures(1.0), 9.0), OutputComparison::Neither,
                  "Use neither model for \"Stress\": neither predicts cases left out better than "
                  "the mean of the cases does (Q2 -3 and 0).");
}

TEST(ComparisonVerdict, TakesDifferencesOfRoundingForNone)
{
    expectVerdict(judged(figures(1e-9), figures(1e-12), 9.0), OutputComparison::Either,
                  "There is no clear difference between the models of \"Stress\": both predict "
                  "cases left out to less than a millionth of its standard deviation.");
}

TEST(ComparisonVerdict, IsForTheOnlyModelThatCanBeFitted)
{
    expectVerdict(judged(CrossValidationMetrics(), figures(0.5), std::nan("")),
                  OutputComparison::Kriging,
                  "Use Kriging for \"Stress\": the response surface can be fitted in no fold.");
    expectVerdict(judged(figures(0.5), CrossValidationMetrics(), std::nan("")),
                  OutputComparison::ResponseSurface,
                  "Use the response surface for \"Stress\": Kriging can be fitted in no fold.");
}

TEST(ComparisonVerdict, IsAgainstTheOnlyModelIfTheMeanIsAsGood)
{
    expectVerdict(judged(CrossValidationMetrics(), figures(2.0), std::nan("")),
                  OutputComparison::Neither,
                  "Use neither model for \"Stress\": the response surface can be fitted in no "
                  "fold, and Kriging predicts cases left out no better than the mean of the cases "
                  "does (Q2 -3).");
    expectVerdict(judged(figures(2.0), CrossValidationMetrics(), std::nan("")),
                  OutputComparison::Neither,
                  "Use neither model for \"Stress\": Kriging can be fitted in no fold, and the "
                  "response surface predicts cases left out no better than the mean of the cases "
                  "does (Q2 -3).");
    expectVerdict(judged(CrossValidationMetrics(), CrossValidationMetrics(), std::nan("")),
                  OutputComparison::Neither,
                  "Use neither model for \"Stress\": neither can be fitted in any fold.");
}

TEST(ComparisonVerdict, AConstantOutputNeedsNoModel)
{
    CrossValidationMetrics constant = figures(0.0);
    constant.q2 = CrossValidationMetrics::none;

    expectVerdict(judged(constant, constant, 0.0), OutputComparison::Neither,
                  "Use neither model for \"Stress\": it is the same in all cases, so that there is "
                  "nothing to predict.");
}

TEST(ComparisonVerdict, ADifferenceWithoutSpreadIsClear)
{
    OutputComparison comparison;
    comparison.name = "Stress";
    comparison.responseSurface = figures(0.5);
    comparison.kriging = figures(0.25);
    comparison.difference = 0.1875;
    comparison.differenceError = 0.0;
    judge(comparison);

    expectVerdict(comparison, OutputComparison::Kriging,
                  "Use Kriging for \"Stress\": its RMSE for cases left out is 0.25 against 0.5 of "
                  "the response surface, and the squared errors differ alike in all cases.");
}

TEST(ComparisonVerdict, CasesThatBothPredictAreNeeded)
{
    expectVerdict(judged(figures(0.5), figures(0.25), std::nan("")), OutputComparison::Either,
                  "The models of \"Stress\" cannot be compared: less than two cases left out are "
                  "predicted by both.");
}

TEST(ComparisonVerdict, ShowsANameThatBreaksTheLine)
{
    OutputComparison comparison = judged(figures(2.0), figures(2.0), 0.0);
    comparison.name = "a\nb";
    judge(comparison);

    EXPECT_EQ(comparison.recommendation.rfind("Use neither model for \"a\\x0Ab\": ", 0), 0u);
}
