#include <mirel_fitting/ModelInterfaces.h>

#include <mirel_fitting/DescribedSurrogateModel.h>
#include <mirel_fitting/KrigingSurrogateModel.h>
#include <mirel_fitting/SurrogateResponseSurfaceModel.h>
#include <mirel_fitting/TransformedOutput.h>

#include <gtest/gtest.h>

#include <vector>

namespace {
std::vector<double> x = {0, 1, 2, 3, 4, 5};
std::vector<double> y = {0, 2, 3, 7, 8, 9};
} // namespace

TEST(ModelInterfaces, HasTheReportOfAKrigingModelAlone)
{
    const KrigingSurrogateModel model({x.data()}, {y.data()}, 6, KrigingOptions());
    const ModelInterfaces interfaces(model);

    EXPECT_EQ(interfaces.fitted(), &model);
    EXPECT_TRUE(interfaces.krigingReport(0).has_value());
    EXPECT_FALSE(interfaces.responseSurfaceStatistics(0).has_value());
}

TEST(ModelInterfaces, HasTheStatisticsOfAResponseSurfaceAlone)
{
    const SurrogateResponseSurfaceModel model({x.data()}, {y.data()}, x.size());
    const ModelInterfaces interfaces(model);

    EXPECT_EQ(interfaces.fitted(), &model);
    EXPECT_EQ(interfaces.responseSurfaceStatistics(0)->coefficients.size(), 3u);
    EXPECT_FALSE(interfaces.krigingReport(0).has_value());
}

TEST(ModelInterfaces, HasNothingThatNeedsCasesOfARestoredModel)
{
    const SurrogateResponseSurfaceModel fitted({x.data()}, {y.data()}, x.size());
    const DescribedSurrogateModel model(
        {{fitted.predictorDescription(0), fitted.fitMetrics(0), {}}});
    const ModelInterfaces interfaces(model);

    EXPECT_EQ(interfaces.predictive(), &model);
    EXPECT_EQ(interfaces.fitted(), nullptr);
    EXPECT_FALSE(interfaces.responseSurfaceStatistics(0).has_value());
}

TEST(ModelInterfaces, LooksIntoTransformedOutputs)
{
    std::vector<double> positive = {1, 2, 3, 7, 8, 9};
    const TransformedOutput model(
        {x.data()}, {positive.data()}, x.size(),
        [](const auto& inputs, const auto& outputs, std::size_t rows, const auto&) {
            return std::make_unique<KrigingSurrogateModel>(inputs, outputs, static_cast<int>(rows),
                                                           KrigingOptions());
        },
        TransformSetting::Logarithm);
    const ModelInterfaces interfaces(model);

    EXPECT_EQ(interfaces.transform(0).transform, OutputTransform::Logarithm);
    const KrigingReport report = *interfaces.krigingReport(0);
    ASSERT_FALSE(report.worstCases.empty());
    const KrigingReport::LeftOutCase& worst = report.worstCases[0];
    EXPECT_NEAR(worst.output, positive[worst.row], 1e-12);
    EXPECT_NEAR(worst.predicted, model.leaveOneOutPredictions(0)[worst.row].predicted, 1e-9);
    EXPECT_FALSE(interfaces.responseSurfaceStatistics(0).has_value());
}

TEST(ModelInterfaces, NamesTheOutputsOfTransformedCasesThemselves)
{
    std::vector<double> large = {1000, 2100, 3900, 8200, 15000, 33000};
    const TransformedOutput model(
        {x.data()}, {large.data()}, x.size(),
        [](const auto& inputs, const auto& outputs, std::size_t rows, const auto&) {
            return std::make_unique<SurrogateResponseSurfaceModel>(inputs, outputs, rows);
        },
        TransformSetting::Logarithm);

    const auto statistics = ModelInterfaces(model).responseSurfaceStatistics(0);

    for (const CaseDiagnostics& one : statistics->cases) {
        EXPECT_NEAR(one.output, large[one.row], 1e-8);
        EXPECT_LT(std::abs(one.residual), 1.0) << "of the logarithm";
    }
}
