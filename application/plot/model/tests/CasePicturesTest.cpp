#include <plot/model/CasePictures.h>

#include "../../../session/tests/CvdSession.h"
#include "../../../session/tests/MessageOf.h"

#include <session/model/ModelFile.h>

#include <mirel_fitting/SurrogateModelInterface.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

TEST(CasePictures, ActualAndPredictedComeFromTheOtherCases)
{
    for (const CaseSession::ModelType model :
         {CaseSession::Kriging, CaseSession::ResponseSurface}) {
        CaseSession session = cvdSession(model);

        const ScatterPicture picture = actualPicture(LeaveOneOutCases::of(session, 0));

        ASSERT_EQ(picture.x.size(), 11u);
        EXPECT_EQ(picture.x[0], 4.6);
        double press = 0.0;
        for (std::size_t i = 0; i < picture.x.size(); ++i) {
            press += std::pow(picture.x[i] - picture.y[i], 2);
        }
        const FitMetrics metrics = session.fit().outputs.front().metrics;
        EXPECT_NEAR(std::sqrt(press / 11.0), metrics.looRmse, 1e-9 * metrics.looRmse);
        EXPECT_EQ(picture.caption, "Each case predicted by a fit to the other cases.");
    }
}

TEST(CasePictures, ResidualsAreActualMinusPredicted)
{
    CaseSession session = cvdSession();
    const LeaveOneOutCases cases = LeaveOneOutCases::of(session, 1);

    const ScatterPicture actual = actualPicture(cases);
    const ScatterPicture residuals = residualPicture(cases);

    EXPECT_EQ(residuals.title, "Stress, response surface, leave-one-out");
    EXPECT_EQ(residuals.x, actual.y);
    EXPECT_EQ(residuals.caption, actual.caption);
    ASSERT_EQ(residuals.y.size(), 11u);
    for (std::size_t i = 0; i < 11; ++i) {
        EXPECT_EQ(residuals.y[i], actual.x[i] - actual.y[i]);
    }
}

TEST(CasePictures, NameWhatTheyShow)
{
    CaseTable table = cvdCases();
    table.columns[3].unit = "GPa";
    CaseSession session(std::move(table), {{0, 1}, {3}}, {}, CaseSession::ResponseSurface);
    const LeaveOneOutCases cases = LeaveOneOutCases::of(session, 0);

    const ScatterPicture actual = actualPicture(cases);
    const ScatterPicture residuals = residualPicture(cases);

    EXPECT_EQ(actual.xName, "Stress, actual (GPa)");
    EXPECT_EQ(actual.yName, "Stress, predicted (GPa)");
    EXPECT_EQ(actual.referenceLabel, "predicted = actual");
    EXPECT_EQ(actual.limitLabel, "\302\261 2 standard deviations");
    EXPECT_EQ(residuals.xName, actual.yName);
    EXPECT_EQ(residuals.yName, "actual - predicted (GPa)");
    EXPECT_EQ(residuals.referenceLabel, "");
    EXPECT_EQ(residuals.limitLabel, actual.limitLabel);
}

TEST(CasePictures, NumberTheFiveWorstCasesAsTheCaseFileDoes)
{
    CaseSession session = cvdSession();
    session.exclude({0, 3});

    const ScatterPicture actual = actualPicture(LeaveOneOutCases::of(session, 0));
    const ScatterPicture residuals = residualPicture(LeaveOneOutCases::of(session, 0));

    ASSERT_EQ(actual.marks.size(), 5u);
    ASSERT_EQ(residuals.marks.size(), 5u);
    const std::vector<std::size_t> valid = session.validCases();
    double before = 1e300;
    for (std::size_t i = 0; i < 5; ++i) {
        EXPECT_EQ(actual.marks[i].caseNumber, valid[actual.marks[i].point] + 1);
        EXPECT_EQ(residuals.marks[i].caseNumber, actual.marks[i].caseNumber);
        const double size = std::abs(residuals.y[residuals.marks[i].point]);
        EXPECT_LE(size, before);
        before = size;
    }
    for (std::size_t point = 0; point < residuals.y.size(); ++point) {
        const bool isMarked =
            std::any_of(actual.marks.begin(), actual.marks.end(),
                        [point](const ScatterPicture::Mark& mark) { return mark.point == point; });
        EXPECT_TRUE(isMarked || std::abs(residuals.y[point]) <= before);
    }
}

TEST(CasePictures, CountOnlyDrawnCasesAmongTheWorst)
{
    const LeaveOneOutCases cases = {
        "y", "Kriging", {{4, 1.0, std::nan(""), 0.1}, {6, 3.0, 2.5, 0.1}, {8, 5.0, 7.0, 0.1}}, 3};

    const std::vector<ScatterPicture::Mark> worst = actualPicture(cases).marks;

    ASSERT_EQ(worst.size(), 2u);
    EXPECT_EQ(worst[0].point, 1u);
    EXPECT_EQ(worst[0].caseNumber, 9u);
    EXPECT_EQ(worst[1].point, 0u);
    EXPECT_EQ(worst[1].caseNumber, 7u);
}

TEST(CasePictures, HaveLimitsAtTwoStandardDeviations)
{
    CaseSession session = cvdSession();
    const LeaveOneOutCases cases = LeaveOneOutCases::of(session, 1);
    const double deviation = session.fit().outputs[1].metrics.looRmse;

    EXPECT_NEAR(actualPicture(cases).limit, 2.0 * deviation, 1e-9);
    EXPECT_EQ(residualPicture(cases).limit, actualPicture(cases).limit);
}

TEST(CasePictures, HaveLimitsOfTheLogarithmWhereTheAxesHave)
{
    const LeaveOneOutCases cases = {"y", "Kriging", {{0, 1.0, 2.0, 1.0}, {1, 100.0, 50.0, 1.0}},
                                    2,   "",        true};

    EXPECT_NEAR(actualPicture(cases).limit, 2.0 * std::log(2.0), 1e-12);
    EXPECT_EQ(actualPicture(cases).limitLabel, "\302\261 2 standard deviations of the logarithm");
    EXPECT_NEAR(residualPicture(cases).limit, 2.0 * std::sqrt(2501.0 / 2.0), 1e-9);
}

TEST(CasePictures, RefuseAModelThatHasNoCases)
{
    CaseSession fitted = cvdSession();
    CaseSession restored(ModelFile::exported(fitted, nullptr));

    EXPECT_THROW(LeaveOneOutCases::of(restored, 0), SurrogateModelInterface::Error);
}

TEST(CasePictures, LeaveOutAndCountCasesThatTheOthersDoNotDetermine)
{
    const double none = std::nan("");
    const LeaveOneOutCases cases = {
        "y", "Kriging", {{0, 1.0, 1.5, none}, {1, 3.0, 2.5, none}, {2, 5.0, none, none}}, 3};

    const ScatterPicture picture = actualPicture(cases);

    EXPECT_EQ(picture.x, (std::vector<double>{1.0, 3.0}));
    EXPECT_EQ(picture.y, (std::vector<double>{1.5, 2.5}));
    EXPECT_EQ(picture.caption, "Each case predicted by a fit to the other cases; 1 left out, which "
                               "the others do not determine.");
}

TEST(CasePictures, SayThatTheyShowASample)
{
    const LeaveOneOutCases cases = {"y", "Kriging", {{0, 1.0, 1.5, 0.1}, {1, 3.0, 2.5, 0.1}}, 9};

    EXPECT_EQ(actualPicture(cases).caption,
              "Each case predicted by a fit to the other cases, 2 of 9 cases drawn at random.");
}

TEST(CasePictures, AreRefusedIfNoCaseIsDeterminedByTheOthers)
{
    const LeaveOneOutCases cases = {"y", "Kriging", {{0, 1.0, std::nan(""), 0.1}}, 1};

    EXPECT_EQ(messageOf<SurrogateModelInterface::Error>([&] { actualPicture(cases); }),
              "The cases of \"y\" cannot be predicted from each other: they are too few to "
              "determine the model if one is left out. Add cases.");
    EXPECT_THROW(residualPicture(cases), SurrogateModelInterface::Error);
}

TEST(CasePictures, AreRefusedForValuesThatNoAxisCanShow)
{
    EXPECT_THROW(actualPicture({"y", "Kriging", {{0, 1.6e308, 1.0, 0.1}}, 1}),
                 SurrogateModelInterface::Error);
    EXPECT_THROW(residualPicture({"y", "Kriging", {{0, 8e307, -8e307, 0.1}}, 1}),
                 SurrogateModelInterface::Error);
}
