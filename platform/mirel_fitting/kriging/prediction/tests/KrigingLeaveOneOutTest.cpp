#include <mirel_fitting/kriging/prediction/KrigingLeaveOneOut.h>

#include "KrigingWaveTestSupport.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace wavetest;

namespace {

double errorOfNewCase(const KrigingSurrogateModel& model, Columns point)
{
    return model.standardErrors(pointersTo(point), 0, FittedModel::ErrorKind::Observation, 1)[0];
}

} // namespace

TEST(KrigingLeaveOneOut, EqualsRefitsWithoutEachCaseOfTheSameLengthsAndNugget)
{
    for (const int order : {0, 1}) {
        const Given given;
        const KrigingSurrogateModel model = given.model(order, 0.01);
        const std::vector<double> output = valuesOf(wave, given.inputs);

        const std::vector<LeaveOneOutPrediction> left = model.leaveOneOutPredictions(0);

        ASSERT_EQ(left.size(), output.size());
        for (std::size_t row = 0; row < left.size(); ++row) {
            Given others;
            Columns point;
            for (std::vector<double>& column : others.inputs) {
                point.push_back({column[row]});
                column.erase(column.begin() + static_cast<long>(row));
            }
            const KrigingSurrogateModel refit = others.model(order, 0.01);
            // The variance of the process is that of all cases.
            const double variances =
                model.krigingReport(0).processVariance / refit.krigingReport(0).processVariance;
            const double error = errorOfNewCase(refit, point);
            EXPECT_EQ(left[row].row, row);
            EXPECT_EQ(left[row].output, output[row]);
            EXPECT_NEAR(left[row].predicted, predictions(refit, point)[0], 1e-11);
            EXPECT_NEAR(left[row].standardError, error * std::sqrt(variances), 1e-11);
        }
    }
}

TEST(KrigingLeaveOneOut, LeavesRowsWithTheSameInputsOutTogether)
{
    Columns inputs = latinHypercube(15, 2, 3);
    std::vector<double> output = valuesOf(wave, inputs);
    for (std::vector<double>& column : inputs) {
        column.push_back(column[4]);
    }
    output.push_back(output[4] + 0.2);
    KrigingArguments arguments;
    arguments.nugget = 0.1;
    const KrigingSurrogateModel model = arguments.model(inputs, {output});

    const std::vector<LeaveOneOutPrediction> left = model.leaveOneOutPredictions(0);

    ASSERT_EQ(left.size(), 16u);
    EXPECT_EQ(left[15].row, 15u);
    EXPECT_EQ(left[15].output, output[15]);
    EXPECT_EQ(left[4].output, output[4]);
    EXPECT_EQ(left[15].predicted, left[4].predicted);
    EXPECT_EQ(left[15].standardError, left[4].standardError);
    // The sum of squares is that of the report.
    double press = 0.0;
    for (const LeaveOneOutPrediction& one : left) {
        press += (one.output - one.predicted) * (one.output - one.predicted);
    }
    EXPECT_NEAR(press, model.fitMetrics(0).press, 1e-12 * press);
}

TEST(KrigingLeaveOneOut, OfAMeanAreTheMeansOfTheOthers)
{
    const KrigingSurrogateModel model = KrigingArguments().model({{3, 3, 3}}, {{1, 2, 6}});

    const std::vector<LeaveOneOutPrediction> left = model.leaveOneOutPredictions(0);

    ASSERT_EQ(left.size(), 3u);
    EXPECT_NEAR(left[0].predicted, 4.0, 1e-14);
    EXPECT_NEAR(left[2].predicted, 1.5, 1e-14);
    // The process variance, 14 / 2, times 1 + 1 / 2.
    EXPECT_NEAR(left[0].standardError, std::sqrt(10.5), 1e-14);

    const KrigingSurrogateModel single = KrigingArguments().model({{3}}, {{1}});

    const std::vector<LeaveOneOutPrediction> none = single.leaveOneOutPredictions(0);

    ASSERT_EQ(none.size(), 1u);
    EXPECT_EQ(none[0].output, 1.0);
    EXPECT_TRUE(std::isnan(none[0].predicted));
    EXPECT_TRUE(std::isnan(none[0].standardError));
}
