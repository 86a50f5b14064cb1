#include <session/model/Evaluator.h>

#include "CaseTables.h"
#include "CvdSession.h"
#include "MessageOf.h"

#include <mirel_fitting/FitProgress.h>
#include <mirel_fitting/SurrogateModelInterface.h>

#include <gtest/gtest.h>
#include <vtkDoubleArray.h>
#include <vtkTable.h>

#include <cmath>
#include <numeric>
#include <string>
#include <vector>

namespace {
using Numbers = std::vector<double>;

/** y = 1 + 2 x and z = 10 - x: straight lines, which a response surface meets exactly. */
CaseTable lines(const Numbers& x)
{
    Numbers y;
    Numbers z;
    for (const double value : x) {
        y.push_back(1.0 + 2.0 * value);
        z.push_back(10.0 - value);
    }
    return tableOf({{"x", x}, {"y", y}, {"z", z}});
}

const CaseRoles lineRoles = {{0}, {1, 2}};

double cell(vtkTable& table, vtkIdType row, vtkIdType column)
{
    return vtkDoubleArray::SafeDownCast(table.GetColumn(column))->GetValue(row);
}
} // namespace

TEST(Evaluator, FitsTheOutputsInTheirOrder)
{
    CaseSession session = cvdSession(CaseSession::ResponseSurface, cvdRoles);

    const std::vector<OutputFit> fits = session.fit().outputs;

    // The R2 of lm() of R.
    ASSERT_EQ(fits.size(), 2u);
    EXPECT_EQ(fits[0].name, "Stress");
    EXPECT_EQ(fits[1].name, "Uniformity");
    EXPECT_NEAR(fits[1].metrics.r2, 0.870736650310639, 1e-12);
    EXPECT_FALSE(fits[1].kriging.has_value());
}

TEST(Evaluator, FitsKrigingWithItsParameters)
{
    CaseSession session = cvdSession(CaseSession::Kriging);

    const std::vector<OutputFit> fits = session.fit().outputs;

    ASSERT_TRUE(fits[0].kriging.has_value());
    EXPECT_EQ(fits[0].kriging->correlationLengths.size(), 2u);
    EXPECT_GT(session.fit().seconds, 0.0);
}

TEST(Evaluator, EvaluatesEveryCombinationInTheOrderOfTheRoles)
{
    CaseSession session(lines({0, 1, 2, 3}), {{0}, {2, 1}}, {}, CaseSession::ResponseSurface);
    session.sweepEvenly(0, 4);

    const auto table = session.evaluate().table;

    ASSERT_EQ(table->GetNumberOfColumns(), 3);
    ASSERT_EQ(table->GetNumberOfRows(), 4);
    EXPECT_STREQ(table->GetColumnName(0), "x");
    EXPECT_STREQ(table->GetColumnName(1), "z");
    EXPECT_STREQ(table->GetColumnName(2), "y");
    for (vtkIdType row = 0; row < 4; ++row) {
        const double x = cell(*table, row, 0);
        EXPECT_EQ(x, static_cast<double>(row));
        EXPECT_NEAR(cell(*table, row, 1), 10.0 - x, 1e-9);
        EXPECT_NEAR(cell(*table, row, 2), 1.0 + 2.0 * x, 1e-9);
    }
}

TEST(Evaluator, AnInputStaysAtItsMinimumUnlessMovedOrSwept)
{
    CaseSession session(lines({2, 3, 4, 5}), lineRoles, {}, CaseSession::ResponseSurface);
    EXPECT_EQ(cell(*session.evaluate().table, 0, 0), 2.0);

    session.stayAt(0, "2.5");
    const auto table = session.evaluate().table;
    ASSERT_EQ(table->GetNumberOfRows(), 1);
    EXPECT_EQ(cell(*table, 0, 0), 2.5);
    EXPECT_NEAR(cell(*table, 0, 1), 6.0, 1e-9);

    session.sweep(0, "4 - 8 : 3, 1");
    const auto swept = session.evaluate().table;
    ASSERT_EQ(swept->GetNumberOfRows(), 4);
    EXPECT_EQ(cell(*swept, 0, 0), 1.0);
    EXPECT_EQ(cell(*swept, 3, 0), 8.0);
}

TEST(Evaluator, OutputsAreFittedToTheCasesThatAreValidForAll)
{
    CaseTable table = lines({0, 1, 2, 3, missing, 5});
    table.columns[1].numbers[0] = missing;
    table.columns[2].numbers[1] = missing;
    CaseSession session(std::move(table), lineRoles, {3}, CaseSession::ResponseSurface);

    EXPECT_EQ(session.counts().valid, 2u);
    EXPECT_EQ(session.fit().outputs[0].metrics.cases, 2u);
}

TEST(Evaluator, AnExcludedCaseDoesNotCount)
{
    CaseTable table = lines({0, 1, 2, 3, 4});
    table.columns[1].numbers[2] = 1000.0;
    CaseSession session(std::move(table), {{0}, {1}}, {2}, CaseSession::ResponseSurface);

    EXPECT_NEAR(session.fit().outputs[0].metrics.rmse, 0.0, 1e-9);
}

TEST(Evaluator, WithoutAValidCaseTheErrorSaysWhereTheyWent)
{
    CaseSession session(lines({0, missing, 2}), lineRoles, {0, 2}, CaseSession::ResponseSurface);

    EXPECT_EQ(messageOf<SurrogateModelInterface::Error>([&] { session.fit(); }),
              "There are not enough valid cases to create the surrogate model. Cases: 3 read, "
              "2 excluded, 1 with missing or infinite values.");
    EXPECT_THROW(session.fit(), SurrogateModelInterface::Error) << "asked again, it fails again";
    EXPECT_THROW(session.evaluate(), SurrogateModelInterface::Error);
}

TEST(Evaluator, AGridThatIsTooLargeIsAnErrorOfTheModel)
{
    CaseSession session(cvdCases(), cvdRoles, {}, CaseSession::ResponseSurface);
    session.sweep(0, "0 - 1 : 1000000");
    session.sweep(1, "0 - 1 : 1000000");

    EXPECT_THROW(session.evaluate(), SurrogateModelInterface::Error);
}

TEST(Evaluator, PredictsInTheOrderOfTheOutputs)
{
    CaseSession session(lines({0, 1, 2, 3}), {{0}, {2, 1}}, {}, CaseSession::ResponseSurface);
    const Numbers points = {5.0, missing};

    const std::vector<Numbers> results = session.predict({points.data()}, points.size()).outputs;

    ASSERT_EQ(results.size(), 2u);
    EXPECT_NEAR(results[0][0], 5.0, 1e-9);
    EXPECT_NEAR(results[1][0], 11.0, 1e-9);
    EXPECT_TRUE(std::isnan(results[0][1]));
    EXPECT_EQ(session.predict({nullptr}, 0).outputs, std::vector<Numbers>(2)) << "no points";
}

TEST(Evaluator, WritesTheEquationsWithTheirLegend)
{
    CaseSession session(cvdCases(), cvdRoles, {}, CaseSession::ResponseSurface);

    const std::string text = session.equationText();

    EXPECT_EQ(text.rfind("Independent Variables\nV1 = Pressure\nV2 = H2/WF6\n", 0), 0u) << text;
    EXPECT_NE(
        text.find("\nEquation for dependent variable: Stress\nResult = " + session.equations()[0]),
        std::string::npos);
    EXPECT_NE(text.find("\nEquation for dependent variable: Uniformity\nResult = " +
                        session.equations()[1]),
              std::string::npos);
}

TEST(Evaluator, WarningsNameTheInputs)
{
    CaseTable table = lines({0, 1, 2, 3, 4, 5});
    table.columns[2].name = "fixed V9";
    table.columns[2].numbers.assign(6, 1.0);
    CaseSession session(std::move(table), {{0, 2}, {1}}, {}, CaseSession::ResponseSurface);

    const std::vector<std::string> warnings = session.fit().outputs[0].warnings;

    const std::string all = std::accumulate(warnings.begin(), warnings.end(), std::string());
    EXPECT_NE(all.find("\"fixed V9\""), std::string::npos) << all;
    EXPECT_EQ(all.find("V2"), std::string::npos) << all;
    EXPECT_NE(all.find("\"x\" * \"fixed V9\""), std::string::npos) << all;
}

TEST(Evaluator, MakesACancelledFitWhenItIsNextWanted)
{
    for (const auto model : {CaseSession::ResponseSurface, CaseSession::Kriging}) {
        const double undisturbed =
            cell(*CaseSession(cvdCases(), {{0, 1}, {2}}, {}, model).evaluate().table, 0, 2);
        CaseSession session(cvdCases(), {{0, 1}, {3}}, {}, model);
        session.fit();
        session.chooseRoles({{0, 1}, {2}});
        {
            const FitProgress progress([](double, const std::string&) { return false; });
            EXPECT_THROW(session.fit(), SurrogateModelInterface::Error);
            EXPECT_THROW(session.evaluate(), SurrogateModelInterface::Error);
        }

        EXPECT_EQ(cell(*session.evaluate().table, 0, 2), undisturbed);
    }
}

TEST(Evaluator, ReportsThePointsOutsideTheCases)
{
    for (const auto model : {CaseSession::ResponseSurface, CaseSession::Kriging}) {
        CaseSession session(cvdCases(), {{0, 1}, {3}}, {}, model);
        session.stayAt(0, "99");
        EXPECT_EQ(session.evaluate().extrapolation.text(),
                  "1 of 1 point lies outside the cases: \"Pressure\" is up to 0.25 of its range "
                  "beyond them. Do not rely on predictions there.");

        session.stayAt(0, "42");
        EXPECT_EQ(session.evaluate().extrapolation.text(), "");

        const Numbers pressure = {42.0, 99.0};
        const Numbers ratio = {6.0, 6.0};
        const PointEvaluation evaluation = session.predict({pressure.data(), ratio.data()}, 2);
        EXPECT_EQ(evaluation.extrapolation.points.rfind("1 of 2 points lies outside", 0), 0u);
    }
}

TEST(Evaluator, KeepsTheFitUntilAChoiceChangesTheModel)
{
    CaseSession session(cvdCases(), cvdRoles, {}, CaseSession::ResponseSurface);
    const FitResult* const first = &session.fit();
    const double seconds = first->seconds;
    session.sweepEvenly(0, 3);
    EXPECT_EQ(session.fit().seconds, seconds);

    session.chooseRoles({{0, 1}, {2, 3}});
    EXPECT_EQ(session.fit().outputs[0].name, "Uniformity");
}
