// Projects as users meet them: saved by one run of the program, taken up by another.

#include "ProgramFixture.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace {
const std::string project = "study.surrogate.xml";

class ProjectCommands : public Program
{
protected:
    /** Saves a project that has a choice of everything. */
    void saveProject()
    {
        const Outcome saved = run("evaluate cvd.csv -x H2/WF6,Pressure -y Stress -y Uniformity "
                                  "-m kriging --exclude 2,10 --sweep 'Pressure=4 - 80 : 3, 42' "
                                  "--at H2/WF6=5 -o first.csv --save " +
                                  project);
        ASSERT_EQ(saved.exitCode, 0) << saved.err;
    }

    /** Replaces a text of the project document, which must be there once. */
    void edit(const std::string& before, const std::string& after)
    {
        std::string text = folder.read(project);
        const std::size_t at = text.find(before);
        ASSERT_NE(at, std::string::npos) << before << " in\n" << text;
        EXPECT_EQ(text.find(before, at + 1), std::string::npos) << before;
        folder.write(project, text.replace(at, before.size(), after));
    }

    Json contents() { return jsonOf("project " + project); }
};
} // namespace

TEST_F(ProjectCommands, AProjectGivesTheSameNumbersAgainAndShowsWhatItHolds)
{
    saveProject();

    const Outcome again = run("evaluate " + project);

    EXPECT_EQ(again.exitCode, 0) << again.err;
    EXPECT_EQ(again.out, folder.read("first.csv"));
    EXPECT_EQ(linesOf(again.out)[0], "H2/WF6,Pressure,Stress,Uniformity");
    EXPECT_EQ(linesOf(again.out).size(), 4u) << "42 is typed twice over";

    EXPECT_EQ(outputOf("project " + project), "Case file  cvd.csv (unchanged)\n"
                                              "Read with  commas between cells, decimal points\n"
                                              "Excluded   2,10\n"
                                              "Model      kriging\n"
                                              "Inputs     H2/WF6, Pressure\n"
                                              "Outputs    Stress, Uniformity\n"
                                              "\n"
                                              "Variable    Role    Range         Values\n"
                                              "Pressure    input   of the cases  4 - 80 : 3, 42\n"
                                              "H2/WF6      input   of the cases  5\n"
                                              "Uniformity  output  of the cases\n"
                                              "Stress      output  of the cases\n");

    const Json json = contents();

    EXPECT_EQ(json["schema"], 1);
    EXPECT_EQ(json["caseFile"]["path"], "cvd.csv");
    EXPECT_EQ(json["caseFile"]["state"], "unchanged");
    EXPECT_EQ(json["caseFile"]["bytes"], cvd.size());
    EXPECT_EQ(json["caseFile"]["separator"], "comma");
    EXPECT_EQ(json["caseFile"]["decimalMark"], "point");
    EXPECT_EQ(json["excluded"], Json::parse("[2, 10]"));
    EXPECT_EQ(json["model"], "kriging");
    EXPECT_EQ(json["inputs"], Json::parse(R"(["H2/WF6", "Pressure"])"));
    EXPECT_EQ(json["outputs"], Json::parse(R"(["Stress", "Uniformity"])"));
    EXPECT_EQ(json["variables"][0],
              Json::parse(R"({"name": "Pressure", "role": "input", "range": null})"));
    EXPECT_EQ(json["userDistributions"][0],
              Json::parse(R"({"name": "Pressure", "mode": "UserDefined",
                              "text": "4 - 80 : 3, 42"})"));
    EXPECT_EQ(json["sweeps"][0]["name"], "Pressure");
}

TEST_F(ProjectCommands, EveryCommandThatChoosesSomethingSavesAndStartsFromAProject)
{
    folder.write("points.csv", "Pressure,H2/WF6\n20,5\n");
    for (const std::string command :
         {"summary", "fit", "evaluate", "predict --points points.csv", "equations"}) {
        const std::string options = command == "summary" ? " -y Stress" : " -y Stress -q";
        const Outcome direct =
            run(command + " cvd.csv -x Pressure,H2/WF6" + options + " --save " + project);
        ASSERT_EQ(direct.exitCode, 0) << command << direct.err;

        const Outcome resumed = run(command + ' ' + project);
        EXPECT_EQ(resumed.exitCode, 0) << command << resumed.err;
        EXPECT_EQ(resumed.out, direct.out) << command;
        std::filesystem::remove(folder.path(project));
    }
}

TEST_F(ProjectCommands, OptionsOverrideWhatAProjectHolds)
{
    saveProject();

    EXPECT_EQ(linesOf(run("evaluate " + project + " -y Stress").out)[0], "H2/WF6,Pressure,Stress");
    EXPECT_EQ(linesOf(run("evaluate " + project + " -x Pressure").out)[0],
              "Pressure,Stress,Uniformity");
    EXPECT_TRUE(
        beginsWith(linesOf(run("evaluate " + project + " --at Pressure=7").out)[1], "5,7,"));
    EXPECT_EQ(linesOf(run("evaluate " + project + " --count Pressure=9").out).size(), 10u);
    EXPECT_EQ(linesOf(run("evaluate " + project + " --count H2/WF6=5").out).size(), 16u);
    EXPECT_TRUE(contains(run("fit " + project + " -m response-surface").out, "response surface"));
    EXPECT_TRUE(contains(run("fit " + project + " --exclude none").out, "0 excluded"));
    EXPECT_TRUE(contains(run("fit " + project + " --exclude 1").out, "1 excluded"));
    expectFailure("equations " + project, 2,
                  "Only response surfaces have equations, and the project chooses kriging: add "
                  "-m response-surface.");
}

TEST_F(ProjectCommands, ProjectAlsoShowsADocumentWhoseCasesAreMissingOrChanged)
{
    saveProject();

    folder.write("cvd.csv", cvd + "1,2,3,4\n");
    EXPECT_EQ(contents()["caseFile"]["state"], "changed");

    std::filesystem::remove(folder.path("cvd.csv"));
    EXPECT_EQ(contents()["caseFile"]["state"], "missing");
}

TEST_F(ProjectCommands, CasesThatAreMissingOrChangedAreReportedAndMayBeNamed)
{
    saveProject();
    const std::string first = folder.read("first.csv");
    std::filesystem::rename(folder.path("cvd.csv"), folder.path("moved.csv"));

    const Outcome missing = run("evaluate " + project);
    EXPECT_EQ(missing.exitCode, 3);
    EXPECT_TRUE(contains(missing.err, "cvd.csv"));
    EXPECT_TRUE(contains(missing.err, "--cases"));
    const Outcome moved = run("evaluate " + project + " --cases moved.csv");
    EXPECT_EQ(moved.out, first);
    EXPECT_FALSE(contains(moved.err, "Note:"));

    folder.write("cvd.csv", cvd + "1,2,3,4\n");
    const Outcome changed = run("evaluate " + project);
    EXPECT_EQ(changed.exitCode, 3);
    EXPECT_TRUE(contains(changed.err, "changed"));
    const Outcome accepted = run("evaluate " + project + " --cases cvd.csv --save " + project);
    EXPECT_EQ(accepted.exitCode, 0);
    EXPECT_EQ(linesOf(accepted.err)[0], "Note: \"cvd.csv\" holds other data than the case file "
                                        "that the project was saved with.");
    EXPECT_EQ(run("evaluate " + project).out, accepted.out) << "the new state has been saved";
}

TEST_F(ProjectCommands, CasesAreReadAsTheyWereWhenTheProjectWasSaved)
{
    folder.write("comma.csv", "x;y\n0,5;1\n1,5;2\n2,5;3\n4;7\n");
    ASSERT_EQ(run("fit comma.csv -y y --save " + project).exitCode, 0);

    EXPECT_EQ(contents()["caseFile"]["separator"], "semicolon");
    EXPECT_EQ(contents()["caseFile"]["decimalMark"], "comma");
    EXPECT_TRUE(beginsWith(linesOf(run("evaluate " + project).out)[1], "2;"));
    expectFailure("evaluate " + project + " --decimal point", 3,
                  "The project does not fit its cases: \"x\" is a column of texts, which can be "
                  "neither an input nor an output.");
}

TEST_F(ProjectCommands, AnInvalidTextIsWarnedOfAndLeftOut)
{
    saveProject();
    edit("4 - 80 : 3, 42", "80 - 4 : 3");

    const Outcome table = run("evaluate " + project);

    EXPECT_EQ(table.exitCode, 0);
    EXPECT_EQ(linesOf(table.err)[0],
              "Warning: The Surrogate Model User Defined Variable Distribution Syntax for variable "
              "\"Pressure\" is not valid. This variable will use Auto mode.");
}

TEST_F(ProjectCommands, ADocumentThatIsNoneEndsWithThreeAndOneSentence)
{
    for (const std::string text :
         {"", "not XML", "<Other/>", "<SurrogateProject", "<!DOCTYPE a [<!ENTITY b \"c\">]><a/>"}) {
        folder.write(project, text);
        for (const std::string command : {"evaluate ", "project "}) {
            const Outcome refused = run(command + project);
            EXPECT_EQ(refused.exitCode, 3) << text;
            EXPECT_EQ(linesOf(refused.err).size(), 1u) << refused.err;
            EXPECT_TRUE(beginsWith(refused.err, "surrogate: "));
            EXPECT_TRUE(contains(refused.err, project));
        }
    }
    EXPECT_EQ(run("fit none.surrogate.xml").exitCode, 5);
}

TEST_F(ProjectCommands, WrongUseIsRefused)
{
    saveProject();

    expectFailure("evaluate " + project + " -o cvd.csv", 2,
                  "The output would replace \"cvd.csv\", which is read; name another file.");
    EXPECT_EQ(folder.read("cvd.csv"), cvd);
}

TEST_F(ProjectCommands, AFileThatMayNotGrowIsNamedAndTheOldOneStays)
{
    saveProject();
    const std::string before = folder.read(project);

    // No limit of 0: it would hold for the report of the failure too.
    const Outcome limited = run("--version; ulimit -f 1; '" SURROGATE_PROGRAM
                                "' summary cvd.csv -y Stress -q -o /dev/null --save " +
                                project);

    EXPECT_EQ(limited.exitCode, 5);
    EXPECT_EQ(limited.err,
              "surrogate: The file \"" + project + "\" cannot be written: File too large.\n");
    EXPECT_EQ(folder.read(project), before);
}

TEST_F(ProjectCommands, ABackupThatCannotBeKeptIsRefusedBeforeTheWork)
{
    std::filesystem::create_directory(folder.path(project + ".bak"));

    const Outcome refused = run("evaluate plane.csv -y y --exclude 1-6 --save " + project);

    EXPECT_EQ(refused.exitCode, 5) << "1 would be that of the fit, which has no case";
    EXPECT_TRUE(contains(refused.err, project + ".bak\" is in the way"));
}

TEST_F(ProjectCommands, ACommandThatFailsSavesNothing)
{
    const std::size_t before = (run("--version"), folder.fileCount());

    EXPECT_EQ(run("evaluate plane.csv -y y --exclude 1-6 --save " + project).exitCode, 1);
    EXPECT_EQ(run("evaluate plane.csv -y y --sweep x=no --save " + project).exitCode, 4);
    EXPECT_EQ(run("fit plane.csv -y y --save none/" + project).exitCode, 5);

    EXPECT_EQ(folder.fileCount(), before);
}
