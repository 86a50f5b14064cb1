#include <plot/model/DiagnosticPictures.h>

#include "../../../session/tests/CvdSession.h"

#include <mirel_fitting/SurrogateModelInterface.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace {
const std::vector<std::string> inputs = {"Pressure", "H2/WF6"};
constexpr double none = std::numeric_limits<double>::quiet_NaN();

ResponseSurfaceStatistics uniformity(double spoiling = 0.0)
{
    CaseTable table = cvdCases();
    table.columns[2].numbers[3] += spoiling;
    return CaseSession(std::move(table), {{0, 1}, {2}}, {}, CaseSession::ResponseSurface)
        .statistics()[0];
}
} // namespace

TEST(DiagnosticPictures, SetResidualsAgainstNormalQuantiles)
{
    const ScatterPicture picture = normalPicture(uniformity(), "Uniformity");

    // R: qqnorm(rstudent(lm(...)))
    ASSERT_EQ(picture.y.size(), 11u);
    EXPECT_NEAR(picture.y.front(), -1.728626240724724, 1e-9);
    EXPECT_NEAR(picture.x.front(), -1.69062163, 1e-8);
    EXPECT_NEAR(picture.x[5], 0.0, 1e-15);
    EXPECT_NEAR(picture.y.back(), 1.541927024892796, 1e-9);
    EXPECT_TRUE(picture.marks.empty());
    EXPECT_EQ(picture.caption,
              "Residuals of normal noise lie near the dashed line. No case is suspected to be an "
              "outlier: none is beyond \302\261 5.75 (Bonferroni at 5\302\240%).");
}

TEST(DiagnosticPictures, NumberSuspectedOutliers)
{
    const ScatterPicture picture = normalPicture(uniformity(5.0), "Uniformity");

    ASSERT_EQ(picture.marks.size(), 1u);
    EXPECT_EQ(picture.marks[0].point, 10u);
    EXPECT_EQ(picture.marks[0].caseNumber, 4u);
}

TEST(DiagnosticPictures, HaveNoResidualsOfASaturatedFit)
{
    ResponseSurfaceStatistics statistics = uniformity();
    for (CaseDiagnostics& one : statistics.cases) {
        one.externallyStudentised = none;
    }

    EXPECT_THROW(normalPicture(statistics, "Uniformity"), SurrogateModelInterface::Error);
}

TEST(DiagnosticPictures, FollowTheRidge)
{
    const ConfidenceBand band = {std::vector<double>(11, 1.0), std::vector<double>(11, 9.0),
                                 "95 %"};
    const SweepPicture ascent = ridgePicture(uniformity(), true, inputs, "Uniformity", "%", band);

    EXPECT_EQ(ascent.title, "Uniformity, response surface, ridge of steepest ascent");
    EXPECT_EQ(ascent.outputName, "Uniformity (%)");
    ASSERT_EQ(ascent.inputs.size(), 11u);
    EXPECT_EQ(ascent.inputs.back(), 1.0);
    EXPECT_NEAR(ascent.model.back(), 8.47936264855032, 1e-9);
    EXPECT_EQ(ascent.upper, band.upper);
    EXPECT_EQ(ascent.bandLabel, "95 %");
    EXPECT_EQ(ascent.caption, "In the middle Pressure = 42, H2/WF6 = 6; at distance 1 Pressure = "
                              "9.097, H2/WF6 = 3.999.");
}

TEST(DiagnosticPictures, OfADescentMayHaveNoLimits)
{
    const SweepPicture descent = ridgePicture(uniformity(), false, inputs, "Uniformity", "%", {});

    EXPECT_EQ(descent.modelLabel, "smallest value");
    EXPECT_TRUE(descent.lower.empty());
    EXPECT_LT(descent.model.back(), descent.model.front());
}

TEST(DiagnosticPictures, HaveNoRidgeOfSquaresThatTheCasesDoNotSeparate)
{
    ResponseSurfaceStatistics withheld;
    withheld.isCurved = true;

    try {
        ridgePicture(withheld, true, inputs, "Uniformity", "%", {});
        FAIL();
    } catch (const SurrogateModelInterface::Error& error) {
        EXPECT_STREQ(error.what(), "The model of \"Uniformity\" has no ridge: the cases cannot "
                                   "separate its second-order terms from each other.");
    }
}

TEST(DiagnosticPictures, HaveNoRidgeOfAConstant)
{
    EXPECT_THROW(ridgePicture(ResponseSurfaceStatistics(), true, inputs, "Uniformity", "%", {}),
                 SurrogateModelInterface::Error);
}
