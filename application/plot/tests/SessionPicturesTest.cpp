#include <plot/SessionPictures.h>

#include "../../session/tests/CvdCases.h"

#include <session/model/CaseSession.h>
#include <session/text/SessionErrors.h>

#include <mirel_fitting/FittedModel.h>
#include <mirel_fitting/SurrogateModelInterface.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {
using SessionPictures::Kind;

/** Pressure and ratio to uniformity and stress. */
CaseSession cvdSession(CaseSession::Model model = CaseSession::ResponseSurface)
{
    return CaseSession(cvdCases(), {{0, 1}, {2, 3}}, {}, model);
}

std::string refusal(Kind kind, const CaseSession& session)
{
    try {
        SessionPictures::check(kind, session);
        return {};
    } catch (const UsageError& error) {
        return error.what();
    }
}
} // namespace

TEST(SessionPictures, ASweepShowsEveryOutput)
{
    CaseSession session = cvdSession();
    session.sweepEvenly(0, 5);
    session.stayAt(1, "6");

    const std::vector<PictureData> pictures = SessionPictures::make(Kind::Sweep, session);

    ASSERT_EQ(pictures.size(), 2u);
    const auto& stress = std::get<SweepPicture>(pictures[1]);
    EXPECT_EQ(stress.inputName, "Pressure");
    EXPECT_EQ(stress.outputName, "Stress");
    EXPECT_EQ(stress.inputs, (std::vector<double>{4, 23, 42, 61, 80}));
    // The intercept of a fit to coded inputs, whose codes are 0 here; docs in examples/cvd.
    EXPECT_NEAR(stress.model[2], 7.79, 1e-2);
    EXPECT_EQ(stress.caption,
              "At H2/WF6 = 6. Near: all held inputs within 10\302\240% of their range.");
}

TEST(SessionPictures, ASweepShowsTheCasesNearIt)
{
    CaseSession session = cvdSession();
    session.sweep(0, "0 - 50 : 6");
    session.stayAt(1, "6.7");

    const auto picture =
        std::get<SweepPicture>(SessionPictures::make(Kind::Sweep, session).front());

    // Of the five cases with a ratio of 6, within 0.8 of the cut, one is at a pressure of 80.
    EXPECT_EQ(picture.caseInputs, (std::vector<double>{42, 4, 42, 42}));
    EXPECT_EQ(picture.caseOutputs, (std::vector<double>{6.2, 7.3, 6.4, 5.0}));
    EXPECT_EQ(picture.caseLabel, "cases near (4 of 11)");
}

TEST(SessionPictures, ASweepFarFromAllCasesSaysSo)
{
    CaseSession session = cvdSession();
    session.sweepEvenly(0, 5);
    session.stayAt(1, "4.6");

    const auto picture =
        std::get<SweepPicture>(SessionPictures::make(Kind::Sweep, session).front());

    EXPECT_TRUE(picture.caseInputs.empty());
    EXPECT_EQ(picture.caption,
              "At H2/WF6 = 4.6. No case has all held inputs within 10\302\240% of their range.");
}

TEST(SessionPictures, ExcludedCasesAreNotShown)
{
    CaseSession session = cvdSession();
    session.exclude({0, 4});
    session.sweepEvenly(0, 5);
    session.stayAt(1, "6");

    const auto picture =
        std::get<SweepPicture>(SessionPictures::make(Kind::Sweep, session).front());

    EXPECT_EQ(picture.caseInputs, (std::vector<double>{42, 42, 42}));
}

TEST(SessionPictures, TypedValuesAreDrawnInOrderAndOnce)
{
    CaseSession session = cvdSession();
    session.sweep(0, "42, 4 - 80 : 3, 60");

    const auto picture =
        std::get<SweepPicture>(SessionPictures::make(Kind::Sweep, session).front());

    EXPECT_EQ(picture.inputs, (std::vector<double>{4, 42, 60, 80}));
    EXPECT_TRUE(std::is_sorted(picture.model.rbegin(), picture.model.rend()))
        << "uniformity falls with pressure";
}

TEST(SessionPictures, TheBandIsAsWideAsTheStandardErrors)
{
    CaseSession session = cvdSession(CaseSession::Kriging);
    session.sweepEvenly(0, 5);
    session.stayAt(1, "6");

    const auto picture =
        std::get<SweepPicture>(SessionPictures::make(Kind::Sweep, session).front());

    ASSERT_EQ(picture.lower.size(), 5u);
    for (std::size_t i = 0; i < 5; ++i) {
        EXPECT_LT(picture.lower[i], picture.model[i]);
        EXPECT_NEAR(picture.upper[i] - picture.model[i], picture.model[i] - picture.lower[i],
                    1e-12);
    }
    EXPECT_GT(picture.upper[0] - picture.lower[0], picture.upper[2] - picture.lower[2])
        << "wider at the border";
    EXPECT_EQ(picture.bandLabel, "\302\261 1.96 standard errors (95\302\240%)");
}

TEST(SessionPictures, TheBandOfAResponseSurfaceIsThatOfStudentsT)
{
    CaseSession session = cvdSession();
    session.sweepEvenly(0, 5);
    session.stayAt(1, "5");
    const auto picture =
        std::get<SweepPicture>(SessionPictures::make(Kind::Sweep, session).front());
    ASSERT_EQ(picture.lower.size(), 5u);

    // qt(0.975, 5), for 11 cases and 6 terms.
    const double quantile = 2.570581835636314;
    double pressure = picture.inputs[2];
    double ratio = 5.0;
    const double error =
        dynamic_cast<const FittedModel&>(session.fit())
            .standardErrors({&pressure, &ratio}, 0, FittedModel::ErrorKind::Mean, 1)[0];
    EXPECT_NEAR(picture.upper[2], picture.model[2] + quantile * error, 1e-12);
    EXPECT_NEAR(picture.lower[2], picture.model[2] - quantile * error, 1e-12);
    EXPECT_EQ(picture.bandLabel, "\302\261 2.57 standard errors (95\302\240%)");
}

TEST(SessionPictures, WhatIsLeftIsSweptWhereItIsAllThatThePictureNeeds)
{
    CaseSession both = cvdSession();
    SessionPictures::sweepWhatIsLeft(Kind::Contour, both, {});
    EXPECT_EQ(both.sweptInputs(), (std::vector<std::size_t>{0, 1}));
    EXPECT_EQ(std::get<ContourPicture>(SessionPictures::make(Kind::Contour, both)[0]).x.size(),
              SessionPictures::usualValues(Kind::Contour));

    CaseSession held = cvdSession();
    SessionPictures::sweepWhatIsLeft(Kind::Sweep, held, {0});
    EXPECT_EQ(held.sweptInputs(), std::vector<std::size_t>{1});

    CaseSession second = cvdSession();
    second.sweepEvenly(1, 7);
    SessionPictures::sweepWhatIsLeft(Kind::Contour, second, {});
    EXPECT_EQ(std::get<ContourPicture>(SessionPictures::make(Kind::Contour, second)[0]).y.size(),
              7u);
}

TEST(SessionPictures, AnInputThatDoesNotVaryIsNotLeftToBeSwept)
{
    CaseTable table = cvdCases();
    table.columns[1].numbers.assign(11, 6.0);
    CaseSession session(std::move(table), {{0, 1}, {2}}, {}, CaseSession::ResponseSurface);

    SessionPictures::sweepWhatIsLeft(Kind::Sweep, session, {});

    EXPECT_EQ(session.sweptInputs(), std::vector<std::size_t>{0});
}

TEST(SessionPictures, WhatIsLeftStaysWhereItIsNotClearWhatToSweep)
{
    CaseSession session = cvdSession();
    SessionPictures::sweepWhatIsLeft(Kind::Sweep, session, {});
    SessionPictures::sweepWhatIsLeft(Kind::Contour, session, {0});
    SessionPictures::sweepWhatIsLeft(Kind::Residuals, session, {});
    EXPECT_TRUE(session.sweptInputs().empty());

    session.sweepEvenly(0, 5);
    SessionPictures::sweepWhatIsLeft(Kind::Sweep, session, {});
    EXPECT_EQ(session.sweptInputs(), std::vector<std::size_t>{0});
}

TEST(SessionPictures, AReportSweepsEveryInputThroughTheMiddleOfTheOthers)
{
    CaseSession session = cvdSession();

    const auto all = SessionPictures::reportSweeps(session);

    ASSERT_EQ(all.size(), 2u);
    for (const std::vector<ReportSweep>& ofOutput : all) {
        ASSERT_EQ(ofOutput.size(), 2u);
        const auto& first = std::get<SweepPicture>(*ofOutput[0].picture);
        const auto& second = std::get<SweepPicture>(*ofOutput[1].picture);
        EXPECT_EQ(first.inputName, "Pressure") << "has the larger influence";
        EXPECT_EQ(first.inputs.front(), 4.0);
        EXPECT_EQ(first.inputs.back(), 80.0);
        EXPECT_EQ(first.caption.rfind("At H2/WF6 = 6. ", 0), 0u) << first.caption;
        EXPECT_EQ(second.caption.rfind("At Pressure = 42. ", 0), 0u) << second.caption;
        EXPECT_FALSE(first.lower.empty());
        // Both pass through the point in the middle.
        EXPECT_NEAR(first.model[50], second.model[50], 1e-12);
    }
    EXPECT_EQ(session.extrapolation(), "");
    EXPECT_TRUE(session.sweptInputs().empty());
}

TEST(SessionPictures, AReportSweepsNoInputThatDoesNotVary)
{
    CaseTable table = cvdCases();
    table.columns[1].numbers.assign(11, 6.0);
    CaseSession session(std::move(table), {{0, 1}, {2}}, {}, CaseSession::ResponseSurface);

    const std::vector<ReportSweep> sweeps = SessionPictures::reportSweeps(session)[0];

    ASSERT_EQ(sweeps.size(), 1u);
    EXPECT_EQ(std::get<SweepPicture>(*sweeps[0].picture).inputName, "Pressure");
}

TEST(SessionPictures, AReportTellsOfEachSweepThatCannotBeDrawn)
{
    CaseTable table = cvdCases();
    for (double& value : table.columns[0].numbers) {
        value *= 2e306; // up to 1.6e308
    }
    CaseSession session(std::move(table), {{0, 1}, {2}}, {}, CaseSession::ResponseSurface);

    const std::vector<ReportSweep> sweeps = SessionPictures::reportSweeps(session)[0];

    ASSERT_EQ(sweeps.size(), 2u);
    const auto isRefused = [](const ReportSweep& sweep) { return !sweep.picture; };
    ASSERT_EQ(std::count_if(sweeps.begin(), sweeps.end(), isRefused), 1);
    EXPECT_EQ(std::find_if(sweeps.begin(), sweeps.end(), isRefused)->reason,
              "\"Pressure\" holds values that are not finite, or too large to be drawn.");
}

TEST(SessionPictures, ValuesThatNoAxisCanShowAreRefused)
{
    CaseTable table = cvdCases();
    double largest = 0.0;
    for (const double value : table.columns[2].numbers) {
        largest = std::max(largest, std::abs(value));
    }
    for (double& value : table.columns[2].numbers) {
        value *= 1.5e308 / largest;
    }
    CaseSession session(std::move(table), {{0, 1}, {2}}, {}, CaseSession::ResponseSurface);
    session.sweepEvenly(0, 11);

    for (const Kind kind : {Kind::Sweep, Kind::Actual, Kind::Residuals, Kind::Coefficients}) {
        EXPECT_THROW(SessionPictures::make(kind, session), SurrogateModelInterface::Error);
    }
}

TEST(SessionPictures, AContourHasTheGridOfTheSweptInputs)
{
    CaseSession session = cvdSession();
    session.sweep(0, "80, 4, 42");
    session.sweepEvenly(1, 2);

    const auto picture =
        std::get<ContourPicture>(SessionPictures::make(Kind::Contour, session).front());

    EXPECT_EQ(picture.x, (std::vector<double>{4, 42, 80}));
    EXPECT_EQ(picture.y, (std::vector<double>{2, 10}));
    const double corner[] = {80.0};
    const double side[] = {10.0};
    EXPECT_EQ(picture.values[5], session.predict({corner, side}, 1)[0][0]);
    EXPECT_EQ(picture.caseX.size(), 11u);
    EXPECT_EQ(picture.caseLabel, "cases");
    EXPECT_EQ(picture.caption, "");
}

TEST(SessionPictures, ActualAndPredictedComeFromTheOtherCases)
{
    for (const CaseSession::Model model : {CaseSession::Kriging, CaseSession::ResponseSurface}) {
        CaseSession session = cvdSession(model);

        const auto picture =
            std::get<ActualPicture>(SessionPictures::make(Kind::Actual, session).front());

        ASSERT_EQ(picture.actual.size(), 11u);
        EXPECT_EQ(picture.actual[0], 4.6);
        double press = 0.0;
        for (std::size_t i = 0; i < picture.actual.size(); ++i) {
            press += std::pow(picture.actual[i] - picture.predicted[i], 2);
        }
        const FitMetrics metrics = session.fits().front().metrics;
        EXPECT_NEAR(std::sqrt(press / 11.0), metrics.looRmse, 1e-9 * metrics.looRmse);
        EXPECT_EQ(picture.caption, "Each case predicted by a fit to the other cases.");
    }
}

TEST(SessionPictures, ResidualsAreActualMinusPredicted)
{
    CaseSession session = cvdSession();

    const auto actual =
        std::get<ActualPicture>(SessionPictures::make(Kind::Actual, session).back());
    const auto picture =
        std::get<ResidualPicture>(SessionPictures::make(Kind::Residuals, session).back());

    EXPECT_EQ(picture.outputName, "Stress");
    EXPECT_EQ(picture.predicted, actual.predicted);
    ASSERT_EQ(picture.residuals.size(), 11u);
    for (std::size_t i = 0; i < 11; ++i) {
        EXPECT_EQ(picture.residuals[i], actual.actual[i] - actual.predicted[i]);
    }
}

TEST(SessionPictures, CoefficientsAreSortedBySizeAndHaveLimits)
{
    CaseSession session = cvdSession();

    const auto picture =
        std::get<CoefficientPicture>(SessionPictures::make(Kind::Coefficients, session).back());

    // Ordinary least squares for Stress in codes rounded to two decimals: 0.736 for the pressure,
    // -0.529 for its square, 0.497 for the ratio, -0.119 for its square, 0.069 for the product.
    const std::vector<std::string> names = {"Pressure", "Pressure\302\262", "H2/WF6",
                                            "H2/WF6\302\262", "Pressure \303\227 H2/WF6"};
    const std::vector<double> estimates = {0.736, -0.529, 0.497, -0.119, 0.069};
    ASSERT_EQ(picture.terms.size(), 5u);
    for (std::size_t i = 0; i < 5; ++i) {
        EXPECT_EQ(picture.terms[i].name, names[i]);
        EXPECT_NEAR(picture.terms[i].estimate, estimates[i], 3e-3);
        EXPECT_LT(picture.terms[i].lower, picture.terms[i].estimate);
        EXPECT_GT(picture.terms[i].upper, picture.terms[i].estimate);
    }
    EXPECT_EQ(picture.caption, "Inputs coded to -1 and 1 at the ends of their ranges; without the "
                               "constant. The bars are 95\302\240% confidence limits.");
}

TEST(SessionPictures, CoefficientsWithoutResidualsHaveNoLimits)
{
    CaseSession session(cvdCases(), {{0, 1}, {2}}, {0, 1, 2, 3, 4, 5, 6, 7},
                        CaseSession::ResponseSurface);

    const auto picture =
        std::get<CoefficientPicture>(SessionPictures::make(Kind::Coefficients, session).front());

    ASSERT_EQ(picture.terms.size(), 2u);
    EXPECT_TRUE(std::isnan(picture.terms[0].lower));
    EXPECT_EQ(picture.caption,
              "Inputs coded to -1 and 1 at the ends of their ranges; without the constant. As many "
              "terms as cases leave nothing for confidence limits.");
}

TEST(SessionPictures, AConstantModelHasNoCoefficientsToDraw)
{
    CaseSession session(cvdCases(), {{0, 1}, {2}}, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9},
                        CaseSession::ResponseSurface);

    EXPECT_THROW(SessionPictures::make(Kind::Coefficients, session),
                 SurrogateModelInterface::Error);
}

TEST(SessionPictures, KrigingHasNoCoefficients)
{
    const CaseSession session = cvdSession(CaseSession::Kriging);

    EXPECT_EQ(refusal(Kind::Coefficients, session),
              "Only the response surface has coefficients to draw: take -m response-surface.");
    EXPECT_EQ(refusal(Kind::Actual, session), "");
}

TEST(SessionPictures, CasesThatTheOthersDoNotDetermineAreLeftOutAndCounted)
{
    // Of a line through three cases, two at one place, the third one determines the slope.
    CaseTable table;
    table.path = "three.csv";
    table.cases = 3;
    table.columns.resize(2);
    table.columns[0].name = "x";
    table.columns[0].numbers = {0.0, 0.0, 1.0};
    table.columns[1].name = "y";
    table.columns[1].numbers = {1.0, 3.0, 5.0};
    CaseSession session(table, {{0}, {1}}, {}, CaseSession::ResponseSurface);

    const auto picture =
        std::get<ActualPicture>(SessionPictures::make(Kind::Actual, session).front());

    EXPECT_EQ(picture.actual, (std::vector<double>{1.0, 3.0}));
    EXPECT_EQ(picture.caption, "Each case predicted by a fit to the other cases; 1 left out, which "
                               "the others do not determine.");
}

TEST(SessionPictures, ASweepNeedsOneInputAndAContourTwo)
{
    CaseSession session = cvdSession();
    EXPECT_EQ(refusal(Kind::Sweep, session),
              "A picture of kind sweep needs one swept input and none is: name it with --sweep "
              "NAME, --sweep NAME=TEXT or --count NAME=N, and hold others with --at NAME=VALUE.");

    session.sweepEvenly(0, 5);
    EXPECT_EQ(refusal(Kind::Sweep, session), "");
    EXPECT_EQ(refusal(Kind::Contour, session),
              "A picture of kind contour needs two swept inputs and one is: name each with --sweep "
              "NAME, --sweep NAME=TEXT or --count NAME=N, and hold others with --at NAME=VALUE.");

    session.sweepEvenly(1, 5);
    EXPECT_EQ(refusal(Kind::Contour, session), "");
    EXPECT_NE(refusal(Kind::Sweep, session), "");
}

TEST(SessionPictures, OneValueOfASweptInputIsRefused)
{
    CaseSession session = cvdSession();
    session.sweep(0, "42, 42");
    try {
        SessionPictures::make(Kind::Sweep, session);
        FAIL();
    } catch (const UsageError& error) {
        EXPECT_STREQ(error.what(),
                     "The picture needs two different values of \"Pressure\" at least.");
    }
}

TEST(SessionPictures, AnUnknownKindIsRefusedWithTheKnownOnes)
{
    try {
        SessionPictures::kindOf("pie");
        FAIL();
    } catch (const UsageError& error) {
        EXPECT_STREQ(
            error.what(),
            "--kind needs one of sweep, contour, actual, residuals, coefficients, not \"pie\".");
    }
}
