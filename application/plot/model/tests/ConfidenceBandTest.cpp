#include <plot/model/ConfidenceBand.h>

#include "../../../session/tests/CvdSession.h"

#include <plot/model/ModelCut.h>

#include <mirel_fitting/ResponseSurfaceStatistics.h>

#include <gtest/gtest.h>

TEST(ConfidenceBand, OfKrigingIsByStudentsTForFewCasesAndWiderAtTheBorder)
{
    CaseSession session = cvdSession(CaseSession::Kriging);
    session.sweepEvenly(0, 5);
    session.stayAt(1, "6");

    const ConfidenceBand band =
        ConfidenceBand::of(session, ModelCut::throughChosenValues(session), 0);

    // qt(0.975, 8), for 11 cases and a linear trend.
    EXPECT_NEAR(band.quantile, 2.306004135204166, 1e-12);
    ASSERT_EQ(band.standardErrors.size(), 5u);
    EXPECT_GT(band.standardErrors[2], 0.0);
    EXPECT_GT(band.standardErrors[0], band.standardErrors[2]);
}

TEST(ConfidenceBand, OfAResponseSurfaceIsByStudentsT)
{
    CaseSession session = cvdSession();
    session.sweepEvenly(0, 3);
    session.stayAt(1, "6");

    const ConfidenceBand band =
        ConfidenceBand::of(session, ModelCut::throughChosenValues(session), 0);

    // qt(0.975, 5), for 11 cases and 6 terms.
    EXPECT_NEAR(band.quantile, 2.570581835636314, 1e-9);
    // In the middle of the ranges the prediction is the constant of the coded polynomial.
    EXPECT_NEAR(band.standardErrors[1], session.statistics()[0].codedCoefficients[0].standardError,
                1e-9);
}

TEST(ConfidenceBand, DoesNotExistWithoutResidualDegreesOfFreedom)
{
    CaseSession session(cvdCases(), {{0, 1}, {2}}, {0, 1, 2, 3, 4, 5, 6, 7},
                        CaseSession::ResponseSurface);
    session.sweepEvenly(0, 3);

    const ConfidenceBand band =
        ConfidenceBand::of(session, ModelCut::throughChosenValues(session), 0);

    EXPECT_TRUE(band.standardErrors.empty());
}
