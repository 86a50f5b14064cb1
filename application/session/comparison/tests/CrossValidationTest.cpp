#include <session/comparison/CrossValidation.h>

#include "CvdSession.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

TEST(CrossValidation, PredictsEachCaseByModelsOfTheOtherFolds)
{
    CaseSession session(cvdCases(), {{0, 1}, {3}}, {}, CaseSession::ResponseSurface);
    const ComparedCases cases(session);

    const CrossValidation validation(session, cases, 11);

    for (const auto* predictions : {&validation.responseSurface[0], &validation.kriging[0]}) {
        ASSERT_EQ(predictions->values.size(), 11u);
        EXPECT_EQ(predictions->terms.size(), 11u) << "one fit per fold";
        EXPECT_TRUE(predictions->failures.empty());
        for (std::size_t i = 0; i < 11; ++i) {
            EXPECT_LT(predictions->lower[i], predictions->values[i]);
            EXPECT_GT(predictions->upper[i], predictions->values[i]);
            EXPECT_NE(predictions->values[i], cases.outputs[0][i]) << "the case was left out";
        }
    }
    EXPECT_EQ(validation.pairedErrors(0).folds, 11u);
}

TEST(CrossValidation, IntervalsAreWiderForCasesOfLessWeight)
{
    CaseTable table = cvdCases();
    table.columns[2].numbers.assign(11, 1.0);
    const auto lengths = [&table](std::size_t row) {
        CaseSession session(table, {{0}, {3}}, {}, CaseSession::ResponseSurface);
        session.choose({{}, {table.columns[2].name, ""}});
        const CrossValidation validation(session, ComparedCases(session), 11);
        const Predictions& predictions = validation.responseSurface[0];
        return predictions.upper[row] - predictions.lower[row];
    };
    const double equal = lengths(4);
    table.columns[2].numbers.assign(11, 7.0);
    EXPECT_NEAR(lengths(4), equal, 1e-9 * equal) << "only their ratios count";

    table.columns[2].numbers[4] = 0.07;

    EXPECT_GT(lengths(4), 5.0 * equal);
    EXPECT_LT(lengths(4), 10.0 * equal);
}

TEST(CrossValidation, ComparesTheValidCasesWithWeightsOfMeanOne)
{
    CaseTable table = cvdCases();
    table.columns[3].numbers[4] = std::nan("");
    CaseSession session(table, {{0}, {3}}, {1}, CaseSession::ResponseSurface);
    EXPECT_EQ(ComparedCases(session).positions,
              (std::vector<std::size_t>{0, 2, 3, 5, 6, 7, 8, 9, 10}));
    EXPECT_EQ(ComparedCases(session).weight(3), 1.0);

    session.choose({{}, {"Uniformity", ""}});
    const ComparedCases weighted(session);
    double sum = 0.0;
    for (std::size_t i = 0; i < weighted.count(); ++i) {
        sum += weighted.weight(i);
    }
    EXPECT_NEAR(sum, static_cast<double>(weighted.count()), 1e-12);
    EXPECT_NEAR(weighted.weight(1) / weighted.weight(0),
                table.columns[2].numbers[2] / table.columns[2].numbers[0], 1e-12);
}
