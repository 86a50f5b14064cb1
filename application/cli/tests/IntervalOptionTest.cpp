// The option --interval as users meet it.

#include "ProgramFixture.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>

namespace {
using Json = nlohmann::json;

class IntervalOption : public Program
{};
} // namespace

TEST_F(IntervalOption, EvaluateAddsLimitsBehindEachOutput)
{
    for (const std::string model : {"response-surface", "kriging"}) {
        const Outcome outcome = run("evaluate cvd.csv -x Pressure,H2/WF6 -y Stress,Uniformity "
                                    "--at Pressure=50 --at H2/WF6=6 --interval 95 --json -m " +
                                    model);

        ASSERT_EQ(outcome.exitCode, 0) << outcome.err;
        const Json table = Json::parse(outcome.out)["table"];
        EXPECT_EQ(table["columns"],
                  Json::parse(R"(["Pressure", "H2/WF6", "Stress", "Stress lower", "Stress upper",
                                  "Uniformity", "Uniformity lower", "Uniformity upper"])"));
        const Json& row = table["rows"][0];
        EXPECT_LT(row[3].get<double>(), row[2].get<double>());
        EXPECT_GT(row[4].get<double>(), row[2].get<double>());
        EXPECT_LT(row[6].get<double>(), row[5].get<double>());
        EXPECT_GT(row[7].get<double>(), row[5].get<double>());
    }
}

TEST_F(IntervalOption, PredictAddsLimitsBehindEachPrediction)
{
    folder.write("points.csv", "H2/WF6,Pressure,note\n6,42,middle\n6,,none\n");

    const Outcome outcome =
        run("predict cvd.csv -x Pressure,H2/WF6 -y Stress --points points.csv --interval 99.5");

    ASSERT_EQ(outcome.exitCode, 0) << outcome.err;
    const std::vector<std::string> lines = linesOf(outcome.out);
    EXPECT_EQ(lines[0], "H2/WF6,Pressure,note,Stress predicted,Stress lower,Stress upper");
    EXPECT_EQ(lines[1].rfind("6,42,middle,7.79", 0), 0u) << lines[1];
    EXPECT_EQ(lines[2], "6,,none,,,") << "empty where an input is missing";
}

TEST_F(IntervalOption, LimitsThatDoNotExistAreEmptyAndSaidToBe)
{
    const Outcome outcome = run("evaluate cvd.csv -x Pressure,H2/WF6 -y Stress "
                                "--exclude 4-6,10,11 --interval 95");

    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(linesOf(outcome.out)[1].substr(linesOf(outcome.out)[1].size() - 2), ",,");
    EXPECT_NE(outcome.err.find("Warning: The limits of \"Stress\" are empty. There are no "
                               "prediction intervals: the polynomial has as many terms as there "
                               "are cases, and none is left to tell the error by.\n"),
              std::string::npos)
        << outcome.err;
}

TEST_F(IntervalOption, IntervalNeedsAPercentage)
{
    for (const std::string text : {"0", "100", "-5", "nan", "95%", "1e3"}) {
        expectFailure("evaluate cvd.csv -y Stress --interval='" + text + "'", 2,
                      "--interval needs a percentage above 0 and below 100, such as 95, not \"" +
                          text + "\".");
    }
}

TEST_F(IntervalOption, IntervalBelongsToTables)
{
    expectFailure("fit cvd.csv -y Stress --interval 95", 2,
                  "--interval belongs to the commands evaluate and predict.");
}

TEST_F(IntervalOption, LimitsDoNotTakeTheNamesOfOtherColumns)
{
    folder.write("names.csv", "x,y lower,y\n1,2,3\n2,3,5\n3,5,6\n4,4,4\n");
    expectFailure("evaluate names.csv -y y --interval 95", 2,
                  "With --interval the table would have two columns \"y lower\"; rename the "
                  "variable.");
    folder.write("points.csv", "x,z,y upper\n1,2,3\n");
    expectFailure("predict plane.csv -y y --points points.csv --interval 95", 3,
                  "points.csv, line 1: the table has a column \"y upper\" already.");
}
