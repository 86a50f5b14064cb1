#include <session/model/Evaluator.h>

#include "CvdSession.h"

#include <gtest/gtest.h>
#include <vtkTable.h>

#include <cmath>
#include <string>
#include <vector>

namespace {
const double centre[] = {42.0, 6.0};
} // namespace

TEST(EvaluatorIntervals, AreStudentsOfAResponseSurface)
{
    CaseSession session = cvdSession(CaseSession::ResponseSurface, cvdRoles);

    const PointEvaluation evaluation = session.predict({&centre[0], &centre[1]}, 1, 95.0);
    const auto& limits = evaluation.intervals;
    const auto& predicted = evaluation.outputs;

    // The other eight runs lie on a circle, up to the rounding of the design, so that the middle
    // is determined by the three centre runs alone: a leverage of 1/3. Student's t with 5 degrees
    // of freedom, 97.5 %: 2.570582 (any table of it).
    ASSERT_EQ(limits.size(), 2u);
    const std::vector<OutputFit> fits = session.fit().outputs;
    for (std::size_t i = 0; i < 2; ++i) {
        const double reach = 2.570582 * fits[i].metrics.rmse * std::sqrt(1.0 + 1.0 / 3.0);
        EXPECT_NEAR(limits[i].upper[0] - predicted[i][0], reach, 1e-3 * reach);
        EXPECT_NEAR(predicted[i][0] - limits[i].lower[0], reach, 1e-3 * reach);
    }
}

TEST(EvaluatorIntervals, DoNotExistWhereTheOutputDoesNotVary)
{
    const double point[] = {1.5};
    for (const auto model : {CaseSession::ResponseSurface, CaseSession::Kriging}) {
        CaseSession constant(tableOf({{"x", {0, 1, 2, 3, 4}}, {"y", {7, 7, 7, 7, 7}}}), {{0}, {1}},
                             {}, model);

        const PointEvaluation evaluation = constant.predict({point}, 1, 95.0);

        EXPECT_TRUE(std::isnan(evaluation.intervals[0].lower[0]));
        EXPECT_EQ(evaluation.intervalFaults,
                  std::vector<std::string>{"The limits of \"y\" are empty. The output is the same "
                                           "in all cases: nothing tells how far others lie from "
                                           "it."});
    }
    CaseSession single(tableOf({{"x", {1}}, {"y", {7}}}), {{0}, {1}}, {}, CaseSession::Kriging);
    EXPECT_EQ(single.predict({point}, 1, 95.0).intervalFaults,
              std::vector<std::string>{"The limits of \"y\" are empty. There is only one case: "
                                       "nothing tells how far others lie from it."});
}

TEST(EvaluatorIntervals, WidenWithTheLevel)
{
    for (const auto model : {CaseSession::ResponseSurface, CaseSession::Kriging}) {
        CaseSession session = cvdSession(model, cvdRoles);
        const auto narrow = session.predict({&centre[0], &centre[1]}, 1, 50.0).intervals;
        const auto wide = session.predict({&centre[0], &centre[1]}, 1, 99.9).intervals;

        EXPECT_LT(wide[0].lower[0], narrow[0].lower[0]);
        EXPECT_GT(wide[0].upper[0], narrow[0].upper[0]);
    }
}

TEST(EvaluatorIntervals, OfATableAreThoseAtItsPoints)
{
    CaseSession session = cvdSession(CaseSession::ResponseSurface, cvdRoles);
    session.stayAt(0, "42");
    session.stayAt(1, "6");

    const auto ofTable = session.evaluate(95.0).intervals;
    const auto ofPoint = session.predict({&centre[0], &centre[1]}, 1, 95.0).intervals;

    ASSERT_EQ(ofTable.size(), 2u);
    EXPECT_EQ(ofTable[1].lower, ofPoint[1].lower);
    EXPECT_EQ(ofTable[1].upper, ofPoint[1].upper);
}

TEST(EvaluatorIntervals, WithoutResidualDegreesOfFreedomAreEmptyAndSaidToBe)
{
    // Six cases for six terms.
    CaseSession session = cvdSession(CaseSession::ResponseSurface, cvdRoles, {3, 4, 5, 9, 10});

    const PointEvaluation evaluation = session.predict({&centre[0], &centre[1]}, 1, 95.0);
    const auto& limits = evaluation.intervals;

    EXPECT_TRUE(std::isnan(limits[0].lower[0]));
    EXPECT_TRUE(std::isnan(limits[1].upper[0]));
    const std::string reason =
        " are empty. There are no prediction intervals: the polynomial has as many terms as there "
        "are cases, and none is left to estimate the error from.";
    EXPECT_EQ(evaluation.intervalFaults,
              (std::vector<std::string>{"The limits of \"Stress\"" + reason,
                                        "The limits of \"Uniformity\"" + reason}));
}

TEST(EvaluatorIntervals, AreNoneUnlessAskedForAndAtNoPoints)
{
    CaseSession session = cvdSession(CaseSession::ResponseSurface, cvdRoles);

    EXPECT_TRUE(session.evaluate().intervals.empty());

    EXPECT_TRUE(session.predict({nullptr, nullptr}, 0, 95.0).intervals[0].lower.empty());
}
