#include <mirel_modelexport/FitJson.h>

#include <mirel_fitting/ResponseSurfaceStatistics.h>

#include <gtest/gtest.h>

#include <limits>

TEST(FitJson, FiguresThatDoNotExistAreNull)
{
    KrigingReport report;
    report.correlationLengths = {2.5, std::numeric_limits<double>::infinity()};
    report.lengthBounds = {KrigingReport::Bound::Upper};

    EXPECT_EQ(FitJson::of(report)["correlationLengths"].dump(), "[2.5,null]");
    EXPECT_EQ(FitJson::of(report)["lengthBounds"].dump(), R"(["upper","none"])");
    EXPECT_EQ(FitJson::of(FitMetrics())["q2"].dump(), "null");
    EXPECT_FALSE(FitJson::of(FitMetrics()).contains("aicc"));
    EXPECT_EQ(FitJson::of(ResponseSurfaceStatistics(), {})["stationaryPoint"], nullptr);
}
