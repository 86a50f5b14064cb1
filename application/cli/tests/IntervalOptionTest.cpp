// The option --interval as users meet it.

#include "ProgramFixture.h"

#include <gtest/gtest.h>

#include <string>

namespace {
class IntervalOption : public Program
{};
} // namespace

TEST_F(IntervalOption, EvaluateAddsLimitsBehindEachOutput)
{
    for (const std::string model : {"response-surface", "kriging"}) {
        const Json table = jsonOf("evaluate cvd.csv -x Pressure,H2/WF6 -y Stress,Uniformity "
                                  "--at Pressure=50 --at H2/WF6=6 --interval 95 -m " +
                                  model)["table"];
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

TEST_F(IntervalOption, ANoteSaysHowTheLimitsWereCalibrated)
{
    std::string cases = "x,y\n";
    for (int i = 0; i < 60; ++i) {
        cases += std::to_string(i) + ',' + std::to_string(i % 20 + i * 37 % 11) + '\n';
    }
    folder.write("teeth.csv", cases);

    for (const std::string model : {"response-surface", "kriging"}) {
        const std::string note = "Note for y: 95 % intervals are ";
        const std::string command = "evaluate teeth.csv -y y --at x=30 -m " + model;
        EXPECT_TRUE(contains(run(command + " --interval 80").err, note)) << model;
        EXPECT_FALSE(contains(run(command).err, note)) << model;
    }
    EXPECT_FALSE(
        contains(run("evaluate cvd.csv -x Pressure,H2/WF6 -y Stress --interval 95").err, "Note"))
        << "eleven cases: Student's t";
}

TEST_F(IntervalOption, PredictAddsLimitsBehindEachPrediction)
{
    folder.write("points.csv", "H2/WF6,Pressure,note\n6,42,middle\n6,,none\n");

    const Outcome outcome =
        run("predict cvd.csv -x Pressure,H2/WF6 -y Stress --points points.csv --interval 99.5");

    ASSERT_EQ(outcome.exitCode, 0) << outcome.err;
    const std::vector<std::string> lines = linesOf(outcome.out);
    EXPECT_EQ(lines[0], "H2/WF6,Pressure,note,Stress predicted,Stress lower,Stress upper");
    EXPECT_TRUE(beginsWith(lines[1], "6,42,middle,7.79"));
    EXPECT_EQ(lines[2], "6,,none,,,") << "empty where an input is missing";
}

TEST_F(IntervalOption, LimitsDoNotTakeTheNamesOfOtherColumns)
{
    folder.write("names.csv", "x,y lower,y\n1,2,3\n2,3,5\n3,5,6\n4,4,4\n");
    expectFailure("evaluate names.csv -x 'x,y lower' -y y --interval 95", 2,
                  "With --interval the table would have two columns \"y lower\"; rename the "
                  "variable.");
}

TEST_F(IntervalOption, EvaluateNamesTheInputsThatAreHeld)
{
    const Outcome outcome = run("evaluate cvd.csv -x Pressure,H2/WF6 -y Stress --count Pressure=3 "
                                "--json");

    ASSERT_EQ(outcome.exitCode, 0) << outcome.err;
    EXPECT_EQ(Json::parse(outcome.out)["held"], Json::parse(R"([{"name": "H2/WF6", "value": 6}])"));
}
