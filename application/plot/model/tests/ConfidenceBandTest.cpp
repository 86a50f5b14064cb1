#include <plot/model/ConfidenceBand.h>

#include "../../../session/tests/CvdSession.h"

#include <plot/model/ModelSlice.h>

#include <mirel_fitting/ResponseSurfaceStatistics.h>

#include <gtest/gtest.h>

#include <cmath>

namespace {
double width(const ConfidenceBand& band, std::size_t point)
{
    return band.upper[point] - band.lower[point];
}
} // namespace

TEST(ConfidenceBand, OfKrigingIsByStudentsTForFewCasesAndWiderAtTheBorder)
{
    CaseSession session = cvdSession(CaseSession::Kriging);
    session.sweepEvenly(0, 5);
    session.stayAt(1, "6");

    const ConfidenceBand band =
        ConfidenceBand::of(session, ModelSlice::throughChosenValues(session), 0);

    // qt(0.975, 8), for 11 cases and a linear trend.
    EXPECT_EQ(band.label, "\302\261 2.31 standard errors (95\302\240%)");
    ASSERT_EQ(band.lower.size(), 5u);
    EXPECT_GT(width(band, 2), 0.0);
    EXPECT_GT(width(band, 0), width(band, 2));
}

TEST(ConfidenceBand, OfAResponseSurfaceIsByStudentsT)
{
    CaseSession session = cvdSession();
    session.sweepEvenly(0, 3);
    session.stayAt(1, "6");

    const ConfidenceBand band =
        ConfidenceBand::of(session, ModelSlice::throughChosenValues(session), 0);

    // In the middle of the ranges the prediction is the constant of the coded polynomial; qt(0.975,
    // 5), for 11 cases and 6 terms.
    const CoefficientStatistics constant = session.statistics()[0].codedCoefficients[0];
    EXPECT_NEAR(band.lower[1], constant.estimate - 2.570581835636314 * constant.standardError,
                1e-9);
    EXPECT_NEAR(band.upper[1], constant.estimate + 2.570581835636314 * constant.standardError,
                1e-9);
}

TEST(ConfidenceBand, DoesNotExistWithoutResidualDegreesOfFreedom)
{
    CaseSession session(cvdCases(), {{0, 1}, {2}}, {0, 1, 2, 3, 4, 5, 6, 7},
                        CaseSession::ResponseSurface);
    session.sweepEvenly(0, 3);

    const ConfidenceBand band =
        ConfidenceBand::of(session, ModelSlice::throughChosenValues(session), 0);

    EXPECT_TRUE(band.lower.empty());
    EXPECT_EQ(band.label, "");
}

TEST(ConfidenceBand, OfATransformIsTransformedBack)
{
    CaseSession session(tableOf({{"x", {0, 1, 2, 3, 4, 5}}, {"y", {1, 3, 6, 25, 50, 170}}}),
                        {{0}, {1}}, {}, CaseSession::ResponseSurface);
    session.choose({{}, {}, TransformSetting::Logarithm});
    session.sweepEvenly(0, 3);
    const ModelSlice slice = ModelSlice::throughChosenValues(session);

    const ConfidenceBand band = ConfidenceBand::of(session, slice, 0);

    // The logarithm has its band on both sides alike.
    ASSERT_EQ(band.lower.size(), 3u);
    for (std::size_t i = 0; i < 3; ++i) {
        const double prediction = slice.outputs[0].values[i];
        EXPECT_GT(band.lower[i], 0.0);
        EXPECT_NEAR(std::log(band.upper[i] / prediction), std::log(prediction / band.lower[i]),
                    1e-9);
    }
}
