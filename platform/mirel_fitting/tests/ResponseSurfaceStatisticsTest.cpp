#include <mirel_fitting/SurrogateResponseSurfaceModel.h>

#include "FittingTestSupport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <set>

using namespace fittingtest;

namespace {

using Model = SurrogateResponseSurfaceModel;

Model fit(Cases cases, int highestOrder = 2)
{
    return {cases.inputPointers(), cases.outputPointers(), cases.count(), highestOrder};
}

/** Columns of one point: what models are evaluated at and what they write to. */
std::vector<Column> caseAt(const Cases& cases, std::size_t row)
{
    std::vector<Column> point;
    for (const Column& column : cases.inputs) {
        point.push_back({column[row]});
    }
    return point;
}

Cases withoutCase(Cases cases, std::size_t row)
{
    for (std::vector<Column>* columns : {&cases.inputs, &cases.outputs}) {
        for (Column& column : *columns) {
            column.erase(column.begin() + static_cast<long>(row));
        }
    }
    return cases;
}

double standardError(const Model& model, std::vector<Column> points,
                     StandardErrorInterface::Kind kind)
{
    double error = -99.0;
    std::vector<double*> errors{&error};
    model.standardErrors(Cases::pointers(points), {0}, kind, errors, 1);
    return error;
}

} // namespace

// Leaving out one case

TEST(ResponseSurfaceLeaveOneOut, EqualsRefitsWithoutEachCase)
{
    const Cases cases = twoInputs(14, 1.0);

    const std::vector<LeaveOneOutPrediction> left = fit(cases).leaveOneOutPredictions(0);

    ASSERT_EQ(left.size(), cases.count());
    for (std::size_t row = 0; row < left.size(); ++row) {
        const Model refit = fit(withoutCase(cases, row));
        EXPECT_EQ(left[row].row, row);
        EXPECT_EQ(left[row].output, cases.outputs[0][row]);
        EXPECT_NEAR(left[row].predicted, predict(refit, caseAt(cases, row))[0], 1e-10);
        EXPECT_NEAR(
            left[row].standardError,
            standardError(refit, caseAt(cases, row), StandardErrorInterface::Kind::Observation),
            1e-10);
    }
}

TEST(ResponseSurfaceLeaveOneOut, HasNoFigureForACaseThatAloneDeterminesATerm)
{
    // Without the last case the second input is constant.
    Cases cases{{{0, 1, 2, 3, 4, 5}, {0, 0, 0, 0, 0, 1}}, {{1, 2, 2, 4, 5, 9}}};

    const std::vector<LeaveOneOutPrediction> left = fit(cases, 1).leaveOneOutPredictions(0);

    EXPECT_TRUE(std::isnan(left[5].predicted));
    EXPECT_TRUE(std::isnan(left[5].standardError));
    EXPECT_TRUE(std::isfinite(left[0].predicted));
    EXPECT_GT(left[0].standardError, 0.0);
}

TEST(ResponseSurfaceLeaveOneOut, SpreadsASampleOverManyCases)
{
    const Cases cases = twoInputs(250000, 1.0);

    const std::vector<LeaveOneOutPrediction> left = fit(cases).leaveOneOutPredictions(0);

    ASSERT_EQ(left.size(), 100000u);
    std::set<std::size_t> rows;
    for (std::size_t k = 0; k < left.size(); ++k) {
        EXPECT_NEAR(static_cast<double>(left[k].row), 2.5 * static_cast<double>(k), 3.0);
        EXPECT_EQ(left[k].output, cases.outputs[0][left[k].row]);
        rows.insert(left[k].row);
    }
    EXPECT_EQ(rows.size(), left.size());
}

// Standard errors and prediction intervals

TEST(ResponseSurfaceStandardErrors, OfAMeanAreThoseOfTheMean)
{
    // Deviation sqrt(10 / 4), n = 5.
    const Model model = fit(Cases{{}, {{1, 2, 3, 4, 5}}});

    EXPECT_NEAR(standardError(model, {}, StandardErrorInterface::Kind::Mean), std::sqrt(0.5),
                1e-15);
    EXPECT_NEAR(standardError(model, {}, StandardErrorInterface::Kind::Observation),
                std::sqrt(2.5 + 0.5), 1e-15);
}

TEST(ResponseSurfaceStandardErrors, AreNanAtPointsThatAreNotFiniteOnly)
{
    const Model model = fit(twoInputs(40, 1.0));
    std::vector<Column> points = {{1.0, notANumber, 1.0}, {0.5, 0.5, infinity}};
    Column errors(3, -99.0);
    std::vector<double*> results{errors.data()};

    model.standardErrors(Cases::pointers(points), {0}, StandardErrorInterface::Kind::Mean, results,
                         3);

    EXPECT_GT(errors[0], 0.0);
    EXPECT_TRUE(std::isnan(errors[1]));
    EXPECT_TRUE(std::isnan(errors[2]));
}

TEST(ResponseSurfaceIntervals, RefuseALevelThatIsNoProbability)
{
    const Model model = fit(twoInputs(40, 1.0));
    std::vector<double*> none;
    for (const double level : {0.0, 1.0, 95.0, -0.5}) {
        EXPECT_NE(errorOf([&] { model.predictionIntervals({}, {}, level, none, none, 0); }), "");
    }
    EXPECT_EQ(errorOf([&] { model.predictionIntervals({}, {}, 95.0, none, none, 0); }),
              "The level of an interval has to lie between 0 and 1, not at 95.");
    EXPECT_EQ(errorOf([&] { model.responseSurfaceStatistics(0, notANumber); }),
              "The level of an interval has to lie between 0 and 1, not at nan.");
}
