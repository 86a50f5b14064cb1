#include <mirel_fitting/kriging/report/KrigingTexts.h>

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using Bound = KrigingReport::Bound;
using Sentences = std::vector<std::string>;

/** A fit that leaves nothing to say. */
KrigingFit soundFit()
{
    KrigingFit fit{KrigingPredictor(FittedKriging())};
    fit.trendText = "2 + 3 * V1";
    fit.metrics.cases = 20;
    fit.metrics.terms = 2;
    fit.metrics.r2 = 1.0;
    fit.metrics.rmse = 0.25;
    fit.metrics.looRmse = 0.5;
    fit.metrics.q2 = 0.875;
    fit.report.trendOrder = 1;
    fit.report.correlationLengths = {0.5, 300.0, 0.01};
    fit.report.lengthBounds = {Bound::None, Bound::None, Bound::None};
    fit.report.logLikelihood = -12.5;
    fit.report.processVariance = 4.0;
    fit.report.nugget = 0.01;
    fit.report.condition = 12345.0;
    fit.noiseShare = 0.02;
    return fit;
}

} // namespace

TEST(KrigingTexts, WritesALinePerFigure)
{
    KrigingFit fit = soundFit();
    fit.report.secondLogLikelihood = -20.0;
    fit.report.noiseDeviation = 0.2;
    fit.report.lengthBounds = {Bound::None, Bound::Upper, Bound::Lower};
    fit.report.worstCases = {{4, 3.5, 2.5}, {0, 1.0, 1.25}};
    fit.constantInputs = {3};

    EXPECT_EQ(
        KrigingTexts::quality(fit),
        "Cases: 20\n"
        "RMSE: 0.25\n"
        "Leave-one-out RMSE: 0.5\n"
        "Q2: 0.875\n"
        "Worst when left out: case 5 (2.5 instead of 3.5), case 1 (1.25 instead of 1)\n"
        "Criterion: none\n"
        "Log-likelihood: -12.5\n"
        "Second-best log-likelihood: -20\n"
        "Process variance: 4\n"
        "Nugget (relative to the process variance): 0.01\n"
        "Noise (standard deviation): 0.2\n"
        "Condition of the correlation matrix: 12345\n"
        "Trend: linear, 2 + 3 * V1\n"
        "Correlation length of V1: 0.5\n"
        "Correlation length of V2: 300 (no influence beyond the trend)\n"
        "Correlation length of V3: 0.01 (at its lower bound)\n"
        "Warning: V4 is constant over the cases and was ignored.\n"
        "Warning: The cases show no influence of V2 beyond the trend.\n"
        "Warning: The output changes along V3 faster than the cases can show: its correlation "
        "length is at its lower bound.\n");
}

TEST(KrigingTexts, ShowsTheErrorOfAWorstCaseBesideALargeOffset)
{
    KrigingFit fit = soundFit();
    fit.report.worstCases = {{4, 1e9 + 3.5, 1e9 + 2.25}};

    EXPECT_NE(KrigingTexts::quality(fit).find("case 5 (1000000002.25 instead of 1000000003.5)\n"),
              std::string::npos)
        << KrigingTexts::quality(fit);
}

TEST(KrigingTexts, LeavesOutWhatDoesNotExist)
{
    KrigingFit fit = soundFit();
    fit.metrics.looRmse = FitMetrics::none;
    fit.metrics.q2 = FitMetrics::none;
    fit.report.condition = FitMetrics::none;

    const std::string text = KrigingTexts::quality(fit);

    for (const char* name :
         {"Leave-one-out", "Q2", "Worst", "Second-best", "Noise", "Condition", "Warning"}) {
        EXPECT_EQ(text.find(name), std::string::npos) << name;
    }
}

TEST(KrigingTexts, HasNothingToSayAboutASoundFit)
{
    EXPECT_EQ(KrigingTexts::verdicts(soundFit()), Sentences());
}

TEST(KrigingTexts, SaysWhichLengthsAreAtABound)
{
    KrigingFit fit = soundFit();
    fit.report.lengthBounds = {Bound::None, Bound::Upper, Bound::Lower};

    EXPECT_EQ(KrigingTexts::warnings(fit),
              (Sentences{"The cases show no influence of V2 beyond the trend.",
                         "The output changes along V3 faster than the cases can show: its "
                         "correlation length is at its lower bound."}));
    EXPECT_EQ(KrigingTexts::warnings(fit, InputNames({"a", "b", "c"}))[0],
              "The cases show no influence of \"b\" beyond the trend.");
}

TEST(KrigingTexts, SaysOfManyInputsAtOnceThatTheyHaveNoInfluence)
{
    KrigingFit fit = soundFit();
    fit.report.lengthBounds.assign(300, Bound::Upper);

    EXPECT_EQ(
        KrigingTexts::warnings(fit),
        Sentences{"The cases show no influence of V1, V2, V3 and 297 more beyond the trend."});

    fit.report.lengthBounds.assign(2, Bound::Lower);
    EXPECT_EQ(KrigingTexts::warnings(fit),
              Sentences{"The output changes along V1 and V2 faster than the cases can show: the "
                        "correlation lengths are at their lower bounds."});
}

TEST(KrigingTexts, SaysWhatIsWrongWithAModel)
{
    struct
    {
        void (*change)(KrigingFit&);
        double noiseShare;
        const char* verdict; // none: ""
    } const rows[] = {
        {[](KrigingFit& fit) { fit.metrics.r2 = 0.034; }, 0.0,
         "The model is flat: it explains 3 % of the variance."},
        // It is said in other words that no input varies.
        {[](KrigingFit& fit) {
             fit.metrics.r2 = 0.0;
             fit.metrics.terms = 1;
             fit.metrics.q2 = -0.1;
             fit.report.condition = FitMetrics::none;
         },
         0.0, ""},
        {[](KrigingFit&) {}, 0.5, ""},
        {[](KrigingFit&) {}, 0.62, "Noise dominates: 62 % of the variance is taken for noise."},
        {[](KrigingFit& fit) { fit.metrics.q2 = 0.02; }, 0.0,
         "Left-out cases are predicted hardly better than by the mean of the cases (2 % of the "
         "variance): noise dominates, or more cases are needed to show how the output changes "
         "between them."},
        {[](KrigingFit& fit) { fit.metrics.q2 = -0.1; }, 0.0,
         "Left-out cases are predicted no better than by the mean of the cases: do not rely on "
         "this model."},
        {[](KrigingFit& fit) { fit.report.secondLogLikelihood = -13.5; }, 0.0,
         "Other correlation lengths are nearly as likely (log-likelihood lower by 1): more cases "
         "would decide between two different models."},
        {[](KrigingFit& fit) { fit.report.secondLogLikelihood = -12.5; }, 0.0,
         "Other correlation lengths are as likely: more cases would decide between two different "
         "models."},
        {[](KrigingFit& fit) { fit.report.secondLogLikelihood = -14.6; }, 0.0, ""}};
    for (const auto& row : rows) {
        KrigingFit fit = soundFit();
        fit.noiseShare = row.noiseShare;
        row.change(fit);
        const std::string verdict = row.verdict;

        EXPECT_EQ(KrigingTexts::verdicts(fit), verdict.empty() ? Sentences() : Sentences{verdict});
    }
}

TEST(KrigingTexts, TakesShortLengthsOfNoiseForNoChanges)
{
    KrigingFit fit = soundFit();
    fit.report.lengthBounds = {Bound::Lower, Bound::None, Bound::None};
    fit.noiseShare = 0.9;

    EXPECT_TRUE(KrigingTexts::warnings(fit).empty());
}

TEST(KrigingTexts, IsSilentAboutOtherLengthsWhereNoneMakesAModel)
{
    KrigingFit fit = soundFit();
    fit.report.secondLogLikelihood = -12.5;
    const auto isSaid = [&](double noiseShare) {
        fit.noiseShare = noiseShare;
        const Sentences sentences = KrigingTexts::verdicts(fit);
        return std::any_of(sentences.begin(), sentences.end(), [](const std::string& sentence) {
            return sentence.find("Other correlation lengths") != std::string::npos;
        });
    };

    EXPECT_TRUE(isSaid(0.4));
    EXPECT_FALSE(isSaid(0.6));
    fit.metrics.q2 = -0.1;
    EXPECT_FALSE(isSaid(0.0));
    fit.metrics.q2 = FitMetrics::none;
    EXPECT_FALSE(isSaid(0.0));
}

TEST(KrigingTexts, SaysWhenTheNuggetIsAtItsUpperBound)
{
    KrigingFit fit = soundFit();
    fit.report.nugget = 100.0;
    fit.report.nuggetBound = Bound::Upper;

    EXPECT_NE(KrigingTexts::quality(fit).find(
                  "Nugget (relative to the process variance): 100 (at its upper bound)\n"),
              std::string::npos);
    EXPECT_EQ(KrigingTexts::verdicts(fit),
              Sentences{"The nugget is at its upper bound, 100 times the process variance: beyond "
                        "the trend the cases show no correlation."});
}
