#include <session/comparison/ModelComparison.h>

#include "CvdSession.h"
#include "MessageOf.h"

#include <mirel_datamanagement/Project.h>
#include <mirel_fitting/FitProgress.h>
#include <mirel_fitting/SurrogateModelInterface.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace {
/** Uniform in [0, 1) and the same on every machine. */
class Uniform
{
public:
    double operator()() { return static_cast<double>(generator() >> 11) * 0x1p-53; }

private:
    std::mt19937_64 generator = std::mt19937_64(7);
};

/** Inputs a and b; outputs that are a wave, a plane with noise, and noise alone. */
CaseTable madeCases(std::size_t cases)
{
    Uniform uniform;
    std::vector<double> a(cases), b(cases), wave(cases), plane(cases), noise(cases);
    for (std::size_t i = 0; i < cases; ++i) {
        a[i] = uniform();
        b[i] = uniform();
        wave[i] = std::sin(8.0 * a[i]) + b[i];
        noise[i] = uniform();
        plane[i] = a[i] - 2.0 * b[i] + 0.3 * noise[i];
    }
    return tableOf({{"a", a}, {"b", b}, {"wave", wave}, {"plane", plane}, {"noise", noise}});
}

/** n cases of one input, 0, 1, 2, ..., and the output given. */
CaseSession sessionOf(const std::vector<double>& output,
                      const std::vector<std::size_t>& excluded = {})
{
    std::vector<double> input(output.size());
    for (std::size_t i = 0; i < input.size(); ++i) {
        input[i] = static_cast<double>(i);
    }
    return CaseSession(tableOf({{"x", input}, {"y", output}}), {{0}, {1}}, excluded,
                       CaseSession::ResponseSurface);
}
} // namespace

TEST(ModelComparison, LeavingOneOutGivesTheFitsOwnPredictedR2)
{
    CaseSession session(cvdCases(), {{0, 1}, {2, 3}}, {}, CaseSession::ResponseSurface);

    const ModelComparison comparison = ModelComparison::of(session, 11);

    // PRESS in closed form, of the one fit to all cases.
    const std::vector<OutputFit> fits = session.fit().outputs;
    for (std::size_t i = 0; i < 2; ++i) {
        const CrossValidationMetrics& figures = comparison.outputs[i].responseSurface;
        EXPECT_EQ(comparison.outputs[i].name, fits[i].name);
        EXPECT_NEAR(figures.q2, fits[i].metrics.predictedR2, 1e-10);
        EXPECT_NEAR(figures.rmse, fits[i].metrics.looRmse, 1e-10);
        EXPECT_EQ(figures.cases, 11u);
    }
}

TEST(ModelComparison, MakesTheModelsThatASessionMakes)
{
    // Case 5 has a fold of its own if there are as many folds as cases.
    CaseSession whole(cvdCases(), {{0, 1}, {3}}, {}, CaseSession::Kriging);
    const ModelComparison comparison = ModelComparison::of(whole, 11);
    const CrossValidationMetrics& figures = comparison.outputs[0].kriging;

    const std::size_t leftOut = figures.largestErrorCase;
    whole.exclude({leftOut});
    const CaseTable table = cvdCases();
    const double predicted =
        whole.predict({&table.columns[0].numbers[leftOut], &table.columns[1].numbers[leftOut]}, 1)
            .outputs[0][0];

    EXPECT_EQ(std::abs(predicted - table.columns[3].numbers[leftOut]), figures.largestError);
}

TEST(ModelComparison, PrefersKrigingForAWaveAndNoModelForNoise)
{
    const CaseSession session(madeCases(40), {{0, 1}, {2}}, {}, CaseSession::ResponseSurface);

    const OutputComparison output = ModelComparison::of(session, 5).outputs[0];

    EXPECT_EQ(output.verdict, OutputComparison::Kriging);
    EXPECT_LT(output.kriging.rmse, 0.1 * output.responseSurface.rmse);
    EXPECT_TRUE(output.isClear);
    EXPECT_GT(output.errors.krigingNearer, 32u);

    const CaseSession noise(madeCases(40), {{0, 1}, {4}}, {}, CaseSession::ResponseSurface);

    EXPECT_EQ(ModelComparison::of(noise, 5).outputs[0].verdict, OutputComparison::Neither);
}

TEST(ModelComparison, IsClearWhereFewCasesCarryTheWholeError)
{
    // Smooth but for a pole beyond one end: the response surface is far off in the last cases, and
    // the squared errors there are all that counts in their mean.
    std::vector<double> output;
    for (int i = 0; i < 12; ++i) {
        output.push_back(100.0 / (12.5 - i));
    }

    const OutputComparison comparison = ModelComparison::of(sessionOf(output), 12).outputs[0];

    EXPECT_EQ(comparison.verdict, OutputComparison::Kriging);
    EXPECT_TRUE(comparison.isClear) << comparison.recommendation;
}

TEST(ModelComparison, ComesToTheSameAgain)
{
    const CaseSession session(madeCases(20), {{0, 1}, {2, 3}}, {}, CaseSession::ResponseSurface);

    const ModelComparison first = ModelComparison::of(session, 2);
    const ModelComparison second = ModelComparison::of(session, 2);

    for (std::size_t i = 0; i < 2; ++i) {
        EXPECT_EQ(first.outputs[i].kriging.rmse, second.outputs[i].kriging.rmse);
        EXPECT_EQ(first.outputs[i].responseSurface.rmse, second.outputs[i].responseSurface.rmse);
        EXPECT_EQ(first.outputs[i].recommendation, second.outputs[i].recommendation);
    }
}

TEST(ModelComparison, TakesTheValidCasesAndNamesThemAsTheFileDoes)
{
    const CaseSession session = sessionOf({0, 1, 99, 3, std::nan(""), 5, 6, 50, 8, 9, 10}, {2});

    const ModelComparison comparison = ModelComparison::of(session, 3);

    EXPECT_EQ(comparison.outputs[0].kriging.cases, 9u);
    EXPECT_EQ(comparison.outputs[0].responseSurface.largestErrorCase, 7u);
    EXPECT_EQ(ModelComparison::maxFolds(session), 9u);

    const CaseSession deviating = sessionOf({0, 1, 2, 3, 4, 5, 6, 50, 8, 9, 10, 11, 12, 13, 14});

    const CrossValidationMetrics figures =
        ModelComparison::of(deviating, 15).outputs[0].responseSurface;

    EXPECT_EQ(figures.largestErrorCase, 7u);
    EXPECT_GT(figures.largestError, 40.0);
}

TEST(ModelComparison, LeavesTheSessionAsItIs)
{
    CaseSession session = sessionOf({0, 1, 4, 9, 16, 25}, {1});
    int changes = 0;
    const auto connection = session.project().connectSignalChanged([&changes] { ++changes; });
    SurrogateModelInterface* const fitted = &session.model();

    ModelComparison::of(session, 3);

    EXPECT_EQ(changes, 0);
    EXPECT_EQ(session.counts().excluded, 1u);
    EXPECT_EQ(&session.model(), fitted);
    connection.disconnect();
}

TEST(ModelComparison, AConstantOutputHasNoQ2)
{
    const OutputComparison output =
        ModelComparison::of(sessionOf({2, 2, 2, 2, 2, 2}), 3).outputs[0];

    EXPECT_TRUE(std::isnan(output.responseSurface.q2));
    EXPECT_TRUE(std::isnan(output.kriging.q2));
    EXPECT_EQ(output.kriging.rmse, 0.0);
    EXPECT_EQ(output.verdict, OutputComparison::Neither);
}

TEST(ModelComparison, RemarksThatFewerCasesMeanFewerTerms)
{
    const OutputComparison output = ModelComparison::of(sessionOf({0, 1, 5}), 3).outputs[0];

    EXPECT_EQ(output.responseSurface.remarks,
              (std::vector<std::string>{
                  "In 3 of 3 fits it has fewer terms than with all cases, down to 2 instead of 3, "
                  "so that the figures do not describe the model of all cases."}));
}

TEST(ModelComparison, AFitThatFailsIsSaidAndItsFoldLeftOutForBoth)
{
    // From the other cases no prediction reaches as far as the first one.
    const CaseSession session(tableOf({{"x", {1.7e308, 1, 2, 3, 4, 5}}, {"y", {1, 2, 4, 7, 5, 9}}}),
                              {{0}, {1}}, {}, CaseSession::ResponseSurface);

    const OutputComparison output = ModelComparison::of(session, 6).outputs[0];

    ASSERT_EQ(output.responseSurface.failures.size(), 1u);
    EXPECT_EQ(output.responseSurface.failures[0].sentence, "A prediction is no finite number.");
    EXPECT_EQ(output.responseSurface.cases, 5u);
    EXPECT_EQ(output.kriging.cases, 5u);
    EXPECT_TRUE(std::isfinite(output.kriging.rmse));
}

TEST(ModelComparison, WithoutCasesThatBothPredictErrorsAreNotPaired)
{
    // The range of the inputs overflows for Kriging where both ends are among the cases, and the
    // response surface reaches neither end from the rest.
    const CaseSession session(
        tableOf({{"x", {-1.7e308, 1.7e308, 1, 2, 3, 4}}, {"y", {1, 2, 3, 4, 5, 7}}}), {{0}, {1}},
        {}, CaseSession::ResponseSurface);

    const OutputComparison output = ModelComparison::of(session, 6).outputs[0];

    EXPECT_EQ(output.responseSurface.cases, 4u);
    EXPECT_EQ(output.kriging.cases, 2u);
    EXPECT_TRUE(std::isnan(output.errors.p));
}

TEST(ModelComparison, NeedsTwoCasesThatAreNoCopies)
{
    const auto message = [](const CaseSession& session) {
        return messageOf<SurrogateModelInterface::Error>([&] { ModelComparison::of(session, 2); });
    };

    EXPECT_EQ(message(sessionOf({3})), "A comparison leaves cases out and needs at least two that "
                                       "are valid and no copies, but there is one.");
    EXPECT_EQ(message(sessionOf({3}, {0})), "A comparison leaves cases out and needs at least two "
                                            "that are valid and no copies, but there is none.");

    const OutputComparison output = ModelComparison::of(sessionOf({1, 2}), 2).outputs[0];

    EXPECT_EQ(output.kriging.cases, 2u);
    EXPECT_EQ(output.verdict, OutputComparison::Neither);
}

TEST(ModelComparison, CanBeCancelledInsideAFitAndBetweenThem)
{
    const CaseSession session(madeCases(40), {{0, 1}, {2}}, {}, CaseSession::ResponseSurface);
    for (const double end : {0.0, 0.11, 0.35, 0.8}) {
        const FitProgress progress(
            [&](double fraction, const std::string&) { return fraction < end; });
        const auto run = [&] { ModelComparison::of(session, 5); };
        EXPECT_THROW(run(), SurrogateModelInterface::Error) << end;
    }
}

TEST(ModelComparison, ReportsBetweenThePartsOfAPrediction)
{
    // In two folds, 1500 cases are predicted by the others, in two parts.
    const CaseSession session(madeCases(3000), {{0, 1}, {2}}, {}, CaseSession::ResponseSurface);
    std::size_t reports = 0;
    const FitProgress progress([&](double, const std::string& message) {
        reports += message == "response surface, fold 1 of 2" ? 1 : 0;
        return message.find("Kriging") == std::string::npos;
    });

    EXPECT_THROW(ModelComparison::of(session, 2), SurrogateModelInterface::Error);

    // Before, between the parts and after.
    EXPECT_EQ(reports, 3u);
}

TEST(ModelComparison, ProgressNeverGoesBack)
{
    const CaseSession session(madeCases(40), {{0, 1}, {2, 3}}, {}, CaseSession::ResponseSurface);
    double last = 0.0;
    bool isAscending = true;
    std::vector<std::string> messages;
    const FitProgress progress([&](double fraction, const std::string& message) {
        isAscending = isAscending && fraction >= last - 1e-12 && fraction <= 1.0 + 1e-12;
        last = fraction;
        messages.push_back(message);
        return true;
    });

    ModelComparison::of(session, 3);

    EXPECT_TRUE(isAscending);
    EXPECT_GT(last, 0.99);
    EXPECT_EQ(messages.front(), "response surface, fold 1 of 3");
    EXPECT_EQ(std::count(messages.begin(), messages.end(), "Kriging, fold 3 of 3"), 4);
}

TEST(ModelComparison, CountsTheLeftOutCasesInsideTheIntervalsThereAre)
{
    CaseSession session(madeCases(100), {{0, 1}, {3}}, {}, CaseSession::ResponseSurface);

    const OutputComparison comparison = ModelComparison::of(session, 5).outputs[0];

    EXPECT_GE(comparison.responseSurface.held95, 0.88);
    EXPECT_LE(comparison.responseSurface.held95, 1.0);
    EXPECT_GE(comparison.kriging.held95, 0.88);
    EXPECT_LE(comparison.kriging.held95, 1.0);

    // Three cases in each fit of three coefficients.
    CaseSession few = sessionOf({1.0, 2.0, 4.0, 3.0});

    const OutputComparison without = ModelComparison::of(few, 4).outputs[0];

    EXPECT_EQ(without.responseSurface.cases, 4u);
    EXPECT_TRUE(std::isnan(without.responseSurface.held95));
}

TEST(ModelComparison, IntervalsOfLeftOutCasesAreThoseOfTheirWeights)
{
    // Each second case has ten times the error. Intervals of a case of mean weight would hold all
    // of the others and few of these, in the output as in its logarithm.
    Uniform uniform;
    std::vector<double> a(160), w(160), y(160), exponential(160);
    for (std::size_t i = 0; i < a.size(); ++i) {
        a[i] = uniform();
        w[i] = i % 2 == 0 ? 200.0 : 2.0;
        const double normal =
            std::sqrt(-2.0 * std::log(1.0 - uniform())) * std::cos(6.283185307179586 * uniform());
        y[i] = 3.0 * a[i] + normal / std::sqrt(w[i]);
        exponential[i] = std::exp(y[i]);
    }
    const CaseTable table = tableOf({{"a", a}, {"w", w}, {"y", y}, {"e", exponential}});
    const std::pair<std::size_t, TransformSetting> rows[] = {{2, TransformSetting::None},
                                                             {3, TransformSetting::Logarithm}};
    for (const auto& [output, transform] : rows) {
        CaseSession session(table, {{0}, {output}}, {}, CaseSession::ResponseSurface);
        session.choose({{}, {"w", ""}, transform});

        const OutputComparison compared = ModelComparison::of(session, 4).outputs[0];

        EXPECT_GT(compared.responseSurface.held95, 0.9);
        EXPECT_LT(compared.responseSurface.held95, 0.99);
        EXPECT_FALSE(std::isnan(compared.kriging.held95));
    }
}

TEST(ModelComparison, CountsTheTransformsOfTheFolds)
{
    // Over six decades, with noise that grows with the output.
    Uniform uniform;
    std::vector<double> a(60), y(60);
    for (std::size_t i = 0; i < a.size(); ++i) {
        a[i] = uniform();
        y[i] = std::exp(14.0 * a[i] + 0.1 * uniform());
    }
    const CaseSession session(tableOf({{"a", a}, {"y", y}}), {{0}, {1}}, {},
                              CaseSession::ResponseSurface);

    const OutputComparison output = ModelComparison::of(session, 4).outputs[0];

    EXPECT_EQ(output.kriging.transform, OutputTransform::Logarithm);
    EXPECT_EQ(output.kriging.transforms,
              (std::map<OutputTransform, std::size_t>{{OutputTransform::Logarithm, 4}}));
    EXPECT_EQ(output.responseSurface.transform, OutputTransform::None);
    EXPECT_EQ(output.responseSurface.transforms,
              (std::map<OutputTransform, std::size_t>{{OutputTransform::None, 4}}));
}

TEST(ModelComparison, HasTheLeaveOneOutErrorsOfTheFitToAllCases)
{
    CaseSession session(cvdCases(), {{0, 1}, {2}}, {}, CaseSession::Kriging);

    const OutputComparison output = ModelComparison::of(session, 5).outputs[0];

    EXPECT_EQ(output.kriging.looRmse, session.fit().outputs[0].metrics.looRmse);
}
