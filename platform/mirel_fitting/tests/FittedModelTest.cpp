#include <mirel_fitting/FittedModel.h>

#include <gtest/gtest.h>

#include <cmath>

namespace {

/** A model of a host: it predicts 0 with the standard error 1, and says no more than it must. */
class HostModel : public FittedModel
{
public:
    void activateDependentVariables(const std::set<int>& /*offsets*/) override {}

    void interpolateDependentValues(const std::vector<double*>& /*inputs*/,
                                    const std::set<int>& /*offsets*/, std::vector<double*>& outputs,
                                    std::size_t count) const override
    {
        std::fill_n(outputs[0], count, 0.0);
    }

    bool surfaceCoefficientInformationAvailable() const override { return false; }
    bool qualityMetricInformationAvailable() const override { return false; }
    std::string surfaceCoefficientInformation(int /*offset*/) const override { return {}; }
    std::string qualityMetricInformation(int /*offset*/) const override { return {}; }
    FitMetrics fitMetrics(int /*offset*/) const override { return {}; }

    std::vector<std::string>
    fitWarnings(int /*offset*/, const std::vector<std::string>& /*inputNames*/) const override
    {
        return {};
    }

    std::vector<double> extrapolations(const std::vector<double*>& /*inputs*/,
                                       std::size_t count) const override
    {
        return std::vector<double>(count, 0.0);
    }

    Extrapolation extrapolation(const std::vector<double*>& /*inputs*/, std::size_t /*count*/,
                                const std::vector<std::string>& /*names*/) const override
    {
        return {};
    }

    PredictorDescription predictorDescription(int /*offset*/) const override { return {}; }

    std::vector<double> standardErrors(const std::vector<double*>& /*inputs*/, int /*offset*/,
                                       ErrorKind /*kind*/, std::size_t count) const override
    {
        return std::vector<double>(count, 1.0);
    }

    double intervalQuantile(int /*offset*/, double level) const override { return 4.0 * level; }

    std::vector<LeaveOneOutPrediction> leaveOneOutPredictions(int /*offset*/) const override
    {
        return {{0, 1.0, 0.0, 1.0},
                {1, -3.0, 0.0, 1.0},
                {2, 6.0, 0.0, 1.0},
                {3, 6.0, std::nan(""), 1.0},
                {4, 6.0, 0.0, 2.0}};
    }
};

} // namespace

TEST(FittedModel, PutsItsIntervalsAroundThePrediction)
{
    double value = 0.0;
    const PredictionIntervals found = HostModel().predictionIntervals({&value}, 0, 0.5, 1);

    EXPECT_EQ(found.lower[0], -2.0);
    EXPECT_EQ(found.upper[0], 2.0);

    EXPECT_EQ(HostModel().confidenceQuantile(0, 0.5), 2.0);
}

TEST(FittedModel, ReportsTheCoverageOfItsIntervals)
{
    const CalibrationReport report = HostModel().calibrationReport(0);

    EXPECT_EQ(report.basis, CalibrationReport::Basis::Distribution);
    EXPECT_EQ(report.factor, 1.0);
    EXPECT_EQ(report.cases, 4u);
    ASSERT_EQ(report.coverage.size(), 4u);
    EXPECT_EQ(report.coverage[0].share, 0.25); // within 2
    EXPECT_EQ(report.coverage[1].share, 0.75); // within 3.2
    EXPECT_EQ(report.coverage[3].share, 0.75); // within 3.96
}
