#include <plot/model/ModelSlice.h>

#include "../../../session/tests/CvdSession.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <utility>
#include <vector>

TEST(ModelSlice, HoldsInputsAndSweepsOthersAsTheSessionChooses)
{
    CaseSession session = cvdSession();
    session.sweepEvenly(0, 5);
    session.stayAt(1, "6");

    const ModelSlice slice = ModelSlice::throughChosenValues(session);

    EXPECT_EQ(slice.modelName, "response surface");
    EXPECT_EQ(slice.swept, std::vector<std::size_t>{0});
    EXPECT_EQ(slice.inputs[0].name, "Pressure");
    EXPECT_EQ(slice.inputs[0].values, (std::vector<double>{4, 23, 42, 61, 80}));
    EXPECT_EQ(slice.inputs[1].values, std::vector<double>(5, 6.0));
    ASSERT_EQ(slice.outputs.size(), 2u);
    EXPECT_EQ(slice.outputs[1].name, "Stress");
    // The intercept of a fit to coded inputs, whose codes are 0 here; docs in examples/cvd.
    EXPECT_NEAR(slice.outputs[1].values[2], 7.79, 1e-2);
    EXPECT_EQ(slice.caption(),
              "At H2/WF6 = 6. Near: all held inputs within 10\302\240% of their range.");
}

TEST(ModelSlice, HasTheCasesNearIt)
{
    CaseSession session = cvdSession();
    session.sweep(0, "0 - 50 : 6");
    session.stayAt(1, "6.7");

    const ModelSlice slice = ModelSlice::throughChosenValues(session);

    // Of the five cases with a ratio of 6, within 0.8 of the slice, one is at a pressure of 80.
    EXPECT_EQ(slice.inputs[0].caseValues, (std::vector<double>{42, 4, 42, 42}));
    EXPECT_EQ(slice.outputs[0].caseValues, (std::vector<double>{6.2, 7.3, 6.4, 5.0}));
    EXPECT_EQ(slice.caseLabel(), "cases near (4 of 11)");
}

TEST(ModelSlice, SaysThatItIsFarFromAllCases)
{
    CaseSession session = cvdSession();
    session.sweepEvenly(0, 5);
    session.stayAt(1, "4.6");

    const ModelSlice slice = ModelSlice::throughChosenValues(session);

    EXPECT_TRUE(slice.inputs[0].caseValues.empty());
    EXPECT_EQ(slice.caption(),
              "At H2/WF6 = 4.6. No case has all held inputs within 10\302\240% of their range.");
}

TEST(ModelSlice, LeavesOutExcludedCases)
{
    CaseSession session = cvdSession();
    session.exclude({0, 4});
    session.sweepEvenly(0, 5);
    session.stayAt(1, "6");

    const ModelSlice slice = ModelSlice::throughChosenValues(session);

    EXPECT_EQ(slice.inputs[0].caseValues, (std::vector<double>{42, 42, 42}));
}

TEST(ModelSlice, HasNoCaptionWhereAllInputsAreSwept)
{
    CaseSession session = cvdSession();
    session.sweepEvenly(0, 2);
    session.sweepEvenly(1, 2);

    const ModelSlice slice = ModelSlice::throughChosenValues(session);

    EXPECT_EQ(slice.caption(), "");
    EXPECT_EQ(slice.caseLabel(), "cases");
    EXPECT_EQ(slice.nearCases(), 11u);
}

TEST(ModelSlice, NamesUnits)
{
    CaseTable table = cvdCases();
    table.columns[0].unit = "MPa";
    CaseSession session(std::move(table), {{0, 1}, {3}}, {}, CaseSession::ResponseSurface);
    session.sweepEvenly(1, 2);
    session.stayAt(0, "42");

    const ModelSlice slice = ModelSlice::throughChosenValues(session);

    EXPECT_EQ(slice.inputs[0].label(), "Pressure (MPa)");
    EXPECT_EQ(slice.inputs[1].label(), "H2/WF6");
    EXPECT_EQ(slice.caption().rfind("At Pressure = 42 MPa. ", 0), 0u) << slice.caption();
    EXPECT_EQ(ModelSlice::heldText(session), "Pressure = 42 MPa, H2/WF6 = 2");
}

TEST(ModelSlice, NamesHeldInputsAndCountsThoseBeyondForty)
{
    ModelSlice slice;
    slice.swept = {0};
    for (int i = 0; i < 43; ++i) {
        slice.inputs.push_back({"x" + std::to_string(i), {1.0}, {}});
    }
    slice.inputs[1].name = "the temperature of the inner wall, upstream";
    slice.inputs[2].values = {0.1234567890123};

    std::string held = "At the temperature of the inner wa\342\200\246 = 1, x2 = 0.1235";
    for (int i = 3; i <= 40; ++i) {
        held += ", x" + std::to_string(i) + " = 1";
    }
    EXPECT_EQ(slice.caption(), held + " and 2 more held. No case has all held inputs within "
                                      "10\302\240% of their range.");
}

TEST(ModelSlice, OverRangesHoldsTheOthersAndLeavesTheSessionAsItIs)
{
    CaseSession session = cvdSession();
    session.stayAt(1, "6");

    const ModelSlice slice =
        ModelSlice::overRanges(session, {0}, 101, ModelSlice::FittedCases(session));

    EXPECT_EQ(slice.points(), 101u);
    EXPECT_EQ(slice.inputs[0].values.front(), 4.0);
    EXPECT_EQ(slice.inputs[0].values.back(), 80.0);
    EXPECT_EQ(slice.inputs[1].values, std::vector<double>(slice.points(), 6.0));
    EXPECT_EQ(slice.caption().rfind("At H2/WF6 = 6. ", 0), 0u) << slice.caption();
    EXPECT_TRUE(session.sweptInputs().empty());
}

TEST(ModelSlice, OverRangesOfTwoInputsIsTheirProduct)
{
    CaseSession session = cvdSession();

    const ModelSlice slice =
        ModelSlice::overRanges(session, {0, 1}, 3, ModelSlice::FittedCases(session));

    EXPECT_EQ(slice.inputs[0].values, (std::vector<double>{4, 4, 4, 42, 42, 42, 80, 80, 80}));
    EXPECT_EQ(slice.inputs[1].values, (std::vector<double>{2, 6, 10, 2, 6, 10, 2, 6, 10}));
    EXPECT_EQ(slice.outputs[0].values.size(), 9u);
}

TEST(ModelSlice, SaysHowManyPointsLieOutsideTheCases)
{
    CaseSession session = cvdSession();
    session.sweep(0, "80, 4, 200");
    session.sweep(1, "2, 6");
    ModelSlice slice = ModelSlice::throughChosenValues(session);

    slice.findOutside(session);

    EXPECT_EQ(slice.isOutside[4] + slice.isOutside[5], 2);
    EXPECT_EQ(slice.extrapolation.points.substr(1), " of 6 points lie outside the cases");
    EXPECT_EQ(slice.extrapolation.reason.rfind("\"Pressure\" is up to ", 0), 0u);
}

TEST(ModelSlice, AnOutputOverThreeDecadesHasALogarithmicAxis)
{
    CaseTable table = cvdCases();
    CaseSession plain(table, {{0, 1}, {3}}, {}, CaseSession::ResponseSurface);
    EXPECT_FALSE(hasLogarithmicAxis(plain, 0));
    for (double& stress : table.columns[3].numbers) {
        stress = std::pow(10.0, 2.0 * stress);
    }
    CaseSession decades(table, {{0, 1}, {3}}, {}, CaseSession::ResponseSurface);
    EXPECT_TRUE(hasLogarithmicAxis(decades, 0));
    plain.choose({{}, {}, TransformSetting::Logarithm});
    EXPECT_TRUE(hasLogarithmicAxis(plain, 0));
}

TEST(ModelSlice, FinerHasValuesBetweenThoseThatAreSwept)
{
    CaseSession session = cvdSession();
    session.sweep(0, "80, 4, 42");
    session.sweepEvenly(1, 2);
    const ModelSlice coarse = ModelSlice::throughChosenValues(session);

    const ModelSlice fine = coarse.finer(session, 5);

    ASSERT_EQ(fine.points(), 25u);
    EXPECT_EQ(fine.inputs[0].values[0], 4.0);
    EXPECT_EQ(fine.inputs[0].values[5], 23.0);
    EXPECT_EQ(fine.inputs[0].values[24], 80.0);
    EXPECT_EQ(fine.inputs[1].values[1], 4.0);
    for (std::size_t point = 0; point < coarse.points(); ++point) {
        if (coarse.inputs[0].values[point] == 80.0 && coarse.inputs[1].values[point] == 10.0) {
            EXPECT_NEAR(fine.outputs[1].values[24], coarse.outputs[1].values[point], 1e-12);
        }
    }
    EXPECT_EQ(fine.nearCases(), coarse.nearCases());
    EXPECT_EQ(coarse.finer(session, 2).points(), 6u) << "none are taken away";
}
