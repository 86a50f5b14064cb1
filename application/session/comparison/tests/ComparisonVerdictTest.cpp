#include <session/comparison/ComparisonVerdict.h>

#include <session/comparison/ModelComparison.h>

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

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

/** Nearer is the response surface in 5, Kriging in 15 of 20 cases.
 *  @param logRatio, p as PairedErrors has them. */
OutputComparison judged(CrossValidationMetrics responseSurface, CrossValidationMetrics kriging,
                        double logRatio, double p)
{
    OutputComparison comparison;
    comparison.name = "Stress";
    comparison.responseSurface = std::move(responseSurface);
    comparison.kriging = std::move(kriging);
    comparison.errors = {10, logRatio, 0.1, p, 5, 15};
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
    const OutputComparison kriging = judged(figures(0.5), figures(0.25), 0.7, 0.0012);
    EXPECT_TRUE(kriging.isClear);
    expectVerdict(kriging, OutputComparison::Kriging,
                  "Use Kriging for \"Stress\": its cross-validated RMSE is 0.25 against 0.5 of the "
                  "response surface, and it is nearer in 15 of 20 left-out cases (t test over 10 "
                  "folds: p = 0.0012).");
    expectVerdict(judged(figures(0.25), figures(0.5), -0.7, 1e-6),
                  OutputComparison::ResponseSurface,
                  "Use the response surface for \"Stress\": its cross-validated RMSE is 0.25 "
                  "against 0.5 of Kriging, and it is nearer in 5 of 20 left-out cases (t test over "
                  "10 folds: p < 0.0001).");
}

TEST(ComparisonVerdict, LeansToTheModelThatIsPerhapsBetter)
{
    const OutputComparison kriging = judged(figures(0.5), figures(0.25), 0.7, 0.12);
    EXPECT_FALSE(kriging.isClear);
    expectVerdict(
        kriging, OutputComparison::Kriging,
        "The comparison leans to Kriging for \"Stress\": its cross-validated RMSE is 0.25 "
        "against 0.5 of the response surface, and it is nearer in 15 of 20 left-out "
        "cases, but that may be chance (t test over 10 folds: p = 0.12).");

    expectVerdict(judged(figures(1.5), figures(0.5), 1.0, 0.6), OutputComparison::Kriging,
                  "The comparison leans to Kriging for \"Stress\": its cross-validated RMSE is 0.5 "
                  "against 1.5 of the response surface, which is no better than the mean of the "
                  "cases, and it is nearer in 15 of 20 left-out cases, but that may be chance (t "
                  "test over 10 folds: p = 0.6).");
    EXPECT_EQ(judged(figures(0.5), figures(1.5), -1.0, 0.6).verdict,
              OutputComparison::ResponseSurface);
}

TEST(ComparisonVerdict, IsForNoneWithinTheNoise)
{
    EXPECT_TRUE(judged(figures(0.5), figures(0.25), 0.7, 0.049).isClear);
    EXPECT_FALSE(judged(figures(0.5), figures(0.25), 0.7, 0.051).isClear);
    EXPECT_EQ(judged(figures(0.5), figures(0.25), 0.7, 0.29).verdict, OutputComparison::Kriging);
    expectVerdict(judged(figures(0.5), figures(0.25), 0.7, 0.31), OutputComparison::Either,
                  "Use either model for \"Stress\", there is no clear difference: the "
                  "cross-validated RMSE is 0.5 of the response surface and 0.25 of Kriging, which "
                  "is nearer in 15 of 20 left-out cases (t test over 10 folds: p = 0.31).");

    // Kriging is better in most folds, but has the larger RMSE over all of them.
    EXPECT_EQ(judged(figures(0.25), figures(0.5), 0.7, 0.01).verdict, OutputComparison::Either);
}

TEST(ComparisonVerdict, TakesTwoPercentAndRoundingForNoDifference)
{
    EXPECT_EQ(judged(figures(0.5), figures(0.489), 0.02, 1e-9).verdict, OutputComparison::Kriging);
    expectVerdict(judged(figures(0.5), figures(0.491), 0.02, 1e-9), OutputComparison::Either,
                  "Use either model for \"Stress\", there is no difference that matters: the "
                  "cross-validated RMSE is 0.5 of the "
                  "response surface and 0.491 of Kriging, less than 2 % apart.");
    expectVerdict(judged(figures(1e-9), figures(1e-12), 0.0, 1.0), OutputComparison::Either,
                  "Use either model for \"Stress\", there is no difference that matters: both "
                  "predict left-out cases to less than a "
                  "millionth of its standard deviation.");
}

TEST(ComparisonVerdict, IsAgainstBothWhereTheMeanIsAsGood)
{
    expectVerdict(judged(figures(2.0), figures(1.0), 0.5, 0.01), OutputComparison::Neither,
                  "Use neither model for \"Stress\": neither predicts cases left out better than "
                  "the mean of the cases does (Q2 -3 and 0).");

    CrossValidationMetrics constant = figures(0.0);
    constant.q2 = CrossValidationMetrics::none;

    expectVerdict(judged(constant, constant, 0.0, 1.0), OutputComparison::Neither,
                  "Use neither model for \"Stress\": it is the same in all cases, so that there is "
                  "nothing to predict.");

    expectVerdict(
        judged(figures(0.5), figures(0.25), std::nan(""), std::nan("")), OutputComparison::Either,
        "The models of \"Stress\" cannot be compared: both predict left-out cases in less "
        "than two folds.");
}

TEST(ComparisonVerdict, IsForTheOnlyModelThatCanBeFitted)
{
    expectVerdict(judged(CrossValidationMetrics(), figures(0.5), std::nan(""), std::nan("")),
                  OutputComparison::Kriging,
                  "Use Kriging for \"Stress\": the response surface can be fitted in no fold.");
    expectVerdict(judged(figures(0.5), CrossValidationMetrics(), std::nan(""), std::nan("")),
                  OutputComparison::ResponseSurface,
                  "Use the response surface for \"Stress\": Kriging can be fitted in no fold.");
}

TEST(ComparisonVerdict, IsAgainstTheOnlyModelIfTheMeanIsAsGood)
{
    expectVerdict(judged(CrossValidationMetrics(), figures(2.0), std::nan(""), std::nan("")),
                  OutputComparison::Neither,
                  "Use neither model for \"Stress\": the response surface can be fitted in no "
                  "fold, and Kriging predicts cases left out no better than the mean of the cases "
                  "does (Q2 -3).");
    expectVerdict(judged(figures(2.0), CrossValidationMetrics(), std::nan(""), std::nan("")),
                  OutputComparison::Neither,
                  "Use neither model for \"Stress\": Kriging can be fitted in no fold, and the "
                  "response surface predicts cases left out no better than the mean of the cases "
                  "does (Q2 -3).");
    expectVerdict(
        judged(CrossValidationMetrics(), CrossValidationMetrics(), std::nan(""), std::nan("")),
        OutputComparison::Neither,
        "Use neither model for \"Stress\": neither can be fitted in any fold.");
}

TEST(ComparisonVerdict, ShowsANameThatBreaksTheLine)
{
    OutputComparison comparison = judged(figures(2.0), figures(2.0), 0.0, 1.0);
    comparison.name = "a\nb";
    judge(comparison);

    EXPECT_EQ(comparison.recommendation.rfind("Use neither model for \"a\\x0Ab\": ", 0), 0u);
}

TEST(ComparisonVerdict, RemarksAFitThatContradictsTheFolds)
{
    CrossValidationMetrics kriging = figures(0.1);
    kriging.looRmse = 0.16;
    EXPECT_EQ(judged(figures(0.5), kriging, 1.6, 0.001).kriging.remarks,
              (std::vector<std::string>{
                  "The fit to all cases contradicts the folds: its leave-one-out RMSE is 0.16 "
                  "against a cross-validated of 0.1, so that it may predict worse than this "
                  "comparison says."}));

    kriging.looRmse = 0.14;
    EXPECT_TRUE(judged(figures(0.5), kriging, 1.6, 0.001).kriging.remarks.empty());

    CrossValidationMetrics exact = figures(1e-10);
    exact.looRmse = 1e-8;
    EXPECT_TRUE(judged(figures(0.5), exact, 1.6, 0.001).kriging.remarks.empty());
}
