// The command compare as users meet it.

#include "ProgramFixture.h"

#include <gtest/gtest.h>

#include <regex>
#include <string>

namespace {
/** The times are all that differs between two runs. */
std::string withoutTimes(const std::string& text)
{
    return std::regex_replace(text, std::regex(" +\\S+\n  (Kriging|Use|There)"), "\n  $1");
}

class CompareCommand : public Program
{};
} // namespace

TEST_F(CompareCommand, ComparesBothModelsOnTheSameCases)
{
    const Outcome outcome = run("compare cvd.csv -x Pressure,H2/WF6 -y Stress,Uniformity");

    ASSERT_EQ(outcome.exitCode, 0) << outcome.err;
    const std::vector<std::string> lines = linesOf(outcome.out);
    ASSERT_EQ(lines.size(), 18u) << outcome.out;
    EXPECT_EQ(lines[0], "Cases   11 read, 11 valid, 0 excluded, 0 invalid");
    EXPECT_EQ(lines[2], "Folds   10, each predicted by models of the cases of all others");
    EXPECT_EQ(lines[3], "Kriging by restricted likelihood, penalised lengths");
    EXPECT_EQ(lines[5], "Stress");
    EXPECT_TRUE(beginsWith(lines[7], "  response surface  0.9"));
    EXPECT_TRUE(beginsWith(
        lines[9], "  Use either model for \"Stress\", there is no difference that matters: "));
    EXPECT_TRUE(beginsWith(lines[10], "  The 95 % intervals held 100 % (response surface), "));
    EXPECT_EQ(outcome.err, "");
}

TEST_F(CompareCommand, CompareComesToTheSameOnAnyNumberOfThreads)
{
    const std::string one = withoutTimes(run("compare cvd.csv -y Stress --threads 1").out);
    const std::string two = withoutTimes(run("compare cvd.csv -y Stress --threads 2").out);

    EXPECT_EQ(one, two);
    EXPECT_TRUE(contains(one, "Kriging"));
}

TEST_F(CompareCommand, CompareAsJson)
{
    const Json json = jsonOf("compare cvd.csv -x Pressure,H2/WF6 -y Stress --folds 11");
    EXPECT_EQ(json["folds"], 11);
    EXPECT_EQ(json["outputs"][0]["models"][0]["model"], "response-surface");
    EXPECT_EQ(json["outputs"][0]["models"][1]["model"], "kriging");
}

TEST_F(CompareCommand, CompareWritesIntoAFileAndKeepsTheChoices)
{
    const Outcome outcome =
        run("compare plane.csv -y y -o compared.txt --save plane.surrogate.xml");

    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    EXPECT_EQ(outcome.out, "");
    EXPECT_TRUE(beginsWith(folder.read("compared.txt"), "Cases   6 read"));
    EXPECT_EQ(run("compare plane.surrogate.xml").exitCode, 0);
}

TEST_F(CompareCommand, CompareRefusesWhatItCannotDo)
{
    expectFailure("compare cvd.csv -q -y Stress --folds 12", 2,
                  "--folds 12 is more than there are valid cases, copies counted once: 11.");
    EXPECT_EQ(run("compare cvd.csv -y Stress --exclude 1-10").exitCode, 1);
}
