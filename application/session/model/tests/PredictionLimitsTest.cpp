// Prediction intervals as a session gives them.

#include "CvdCases.h"

#include <session/model/CaseSession.h>
#include <session/report/SessionReport.h>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <vtkTable.h>

#include <cmath>
#include <string>
#include <vector>

namespace {
/** Uniformity and Stress, in the order in which the table does not have them. */
CaseSession cvdSession(CaseSession::Model model, const std::vector<std::size_t>& excluded = {})
{
    return CaseSession(cvdCases(), {{0, 1}, {3, 2}}, excluded, model);
}

const double centre[] = {42.0, 6.0};
} // namespace

TEST(PredictionLimits, AreStudentsOfAResponseSurface)
{
    CaseSession session = cvdSession(CaseSession::ResponseSurface);

    const auto limits = session.limits({&centre[0], &centre[1]}, 1, 95.0);
    const auto predicted = session.predict({&centre[0], &centre[1]}, 1);

    // The other eight runs lie on a circle, up to the rounding of the design, so that the middle
    // is determined by the three centre runs alone: a leverage of 1/3. Student's t with 5 degrees
    // of freedom, 97.5 %: 2.570582 (any table of it).
    ASSERT_EQ(limits.size(), 2u);
    const std::vector<OutputFit> fits = session.fits();
    for (std::size_t i = 0; i < 2; ++i) {
        const double reach = 2.570582 * fits[i].metrics.rmse * std::sqrt(1.0 + 1.0 / 3.0);
        EXPECT_NEAR(limits[i].upper[0] - predicted[i][0], reach, 1e-3 * reach);
        EXPECT_NEAR(predicted[i][0] - limits[i].lower[0], reach, 1e-3 * reach);
    }
}

TEST(PredictionLimits, OfKrigingWidenAwayFromTheCases)
{
    CaseSession session = cvdSession(CaseSession::Kriging);
    const double pressure[] = {42.0, 4.0};
    const double ratio[] = {6.0, 10.0};

    const auto limits = session.limits({pressure, ratio}, 2, 95.0);

    for (const PredictionLimits& output : limits) {
        EXPECT_GT(output.upper[1] - output.lower[1], output.upper[0] - output.lower[0]);
    }
    EXPECT_TRUE(session.limitFaults().empty());
}

TEST(PredictionLimits, WidenWithTheLevel)
{
    for (const auto model : {CaseSession::ResponseSurface, CaseSession::Kriging}) {
        CaseSession session = cvdSession(model);
        const auto narrow = session.limits({&centre[0], &centre[1]}, 1, 50.0);
        const auto wide = session.limits({&centre[0], &centre[1]}, 1, 99.9);

        EXPECT_LT(wide[0].lower[0], narrow[0].lower[0]);
        EXPECT_GT(wide[0].upper[0], narrow[0].upper[0]);
    }
}

TEST(PredictionLimits, OfATableAreThoseAtItsPoints)
{
    CaseSession session = cvdSession(CaseSession::ResponseSurface);
    session.stayAt(0, "42");
    session.stayAt(1, "6");

    const auto ofTable = session.limits(*session.evaluate(), 95.0);
    const auto ofPoint = session.limits({&centre[0], &centre[1]}, 1, 95.0);

    ASSERT_EQ(ofTable.size(), 2u);
    EXPECT_EQ(ofTable[1].lower, ofPoint[1].lower);
    EXPECT_EQ(ofTable[1].upper, ofPoint[1].upper);
}

TEST(PredictionLimits, WithoutResidualDegreesOfFreedomAreEmptyAndSaidToBe)
{
    // Six cases for six terms.
    CaseSession session = cvdSession(CaseSession::ResponseSurface, {3, 4, 5, 9, 10});

    const auto limits = session.limits({&centre[0], &centre[1]}, 1, 95.0);

    EXPECT_TRUE(std::isnan(limits[0].lower[0]));
    EXPECT_TRUE(std::isnan(limits[1].upper[0]));
    const std::string reason =
        " are empty. There are no prediction intervals: the polynomial has as many terms as there "
        "are cases, and none is left to tell the error by.";
    EXPECT_EQ(session.limitFaults(),
              (std::vector<std::string>{"The limits of \"Stress\"" + reason,
                                        "The limits of \"Uniformity\"" + reason}));
    EXPECT_NE(
        SessionReport::notes(session).find("Warning: The limits of \"Stress\"" + reason + '\n'),
        std::string::npos);
    const auto json = nlohmann::json::parse(SessionReport::fitJson(session, 0.0));
    EXPECT_EQ(json["intervalFaults"].size(), 2u);
}

TEST(PredictionLimits, AtNoPointsAreNone)
{
    CaseSession session = cvdSession(CaseSession::ResponseSurface);

    EXPECT_TRUE(session.limits({nullptr, nullptr}, 0, 95.0)[0].lower.empty());
}
