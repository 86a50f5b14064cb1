// Models that leave the program, and come back.

#include "ProgramFixture.h"

#include <gtest/gtest.h>

#include <string>

namespace {
class ExportCommand : public Program
{
protected:
    /** Exports both outputs of the cvd cases. */
    void exportModel(const std::string& model, const std::string& file)
    {
        const Outcome done =
            run("export cvd.csv -y Uniformity,Stress -q --format json -m " + model + " -o " + file);
        ASSERT_EQ(done.exitCode, 0) << done.err;
        EXPECT_EQ(done.err, "");
    }

    static Json withoutSeconds(const std::string& text)
    {
        Json json = Json::parse(text);
        json.erase("seconds");
        return json;
    }
};

const char* const models[] = {"response-surface", "kriging"};

/** What goes to the standard error of a model that knows no cases: no notes about their fit, and no
 *  word of combinations that none supports. */
std::string withoutCases(const std::string& text)
{
    std::string kept;
    for (const std::string& line : linesOf(text)) {
        if (line.rfind("Note ", 0) != 0 &&
            line.find("the cases do not support this combination") == std::string::npos) {
            kept += line + '\n';
        }
    }
    return kept;
}
} // namespace

TEST_F(ExportCommand, AnExportedModelEvaluatesLikeItsCases)
{
    for (const char* model : models) {
        exportModel(model, "model.json");
        for (const char* values : {"", "--sweep 'Pressure=4 - 80 : 5, 33.3' --count H2/WF6=3",
                                   "--at Pressure=90", "--count Pressure=70 --count H2/WF6=70"}) {
            const Outcome cases = run("evaluate cvd.csv -y Uniformity,Stress -m " +
                                      std::string(model) + " " + values);
            const Outcome exported = run("evaluate model.json " + std::string(values));
            EXPECT_EQ(exported.exitCode, 0);
            EXPECT_EQ(exported.out, cases.out) << model << values;
            EXPECT_EQ(exported.err, withoutCases(cases.err)) << model << values;
        }
    }
}

TEST_F(ExportCommand, AnExportedModelReportsItsFitAsJson)
{
    for (const char* model : models) {
        exportModel(model, "model.json");
        const std::string values = " --json --at Pressure=90";
        const Outcome cases =
            run("evaluate cvd.csv -y Uniformity,Stress -m " + std::string(model) + values);
        const Outcome exported = run("evaluate model.json" + values);

        EXPECT_EQ(withoutSeconds(exported.out), withoutSeconds(cases.out));
        EXPECT_EQ(withoutSeconds(exported.out)["model"], model);
        EXPECT_TRUE(withoutSeconds(exported.out).contains("extrapolation"));
    }
}

TEST_F(ExportCommand, AnExportedModelPredictsLikeItsCases)
{
    folder.write("points.csv", "H2/WF6;Pressure;note\n3,5;20;a\n;30;b\n6;12,25;c\n");
    for (const char* model : models) {
        exportModel(model, "model.json");
        const Outcome cases = run("predict cvd.csv --points points.csv -y Uniformity,Stress --json "
                                  "-m " +
                                  std::string(model));
        const Outcome exported = run("predict model.json --points points.csv --json");

        EXPECT_EQ(exported.exitCode, 0) << exported.err;
        EXPECT_EQ(Json::parse(exported.out)["table"], Json::parse(cases.out)["table"]);
        EXPECT_EQ(linesOf(run("predict model.json --points points.csv").out)[0],
                  "H2/WF6;Pressure;note;Uniformity predicted;Stress predicted");
    }
}

TEST_F(ExportCommand, AProjectIsExportedAndKept)
{
    ASSERT_EQ(run("fit cvd.csv -y Stress -m kriging -q --save study.surrogate.xml").exitCode, 0);

    EXPECT_EQ(run("export study.surrogate.xml -q --format c").out,
              run("export cvd.csv -y Stress -m kriging -q --format c").out);

    ASSERT_EQ(run("export cvd.csv -y Stress --format c --save study.surrogate.xml").exitCode, 0);
    EXPECT_EQ(run("fit study.surrogate.xml").exitCode, 0);
}

TEST_F(ExportCommand, WrongUseIsAnsweredByASentence)
{
    expectFailure("export cvd.csv -y Stress", 2,
                  "The command export needs a format: --format text, json, c, python or excel.");
    exportModel("kriging", "model.json");
    const Outcome unknown = run("evaluate model.json --at Speed=3");
    EXPECT_EQ(unknown.exitCode, 2);
    EXPECT_TRUE(contains(unknown.err, "Speed"));
}

TEST_F(ExportCommand, AModelThatCannotBeUsedIsRefusedWithItsFaultyMember)
{
    exportModel("kriging", "model.json");
    Json json = Json::parse(folder.read("model.json"));
    json["outputs"][1].erase("weights");
    folder.write("model.json", json.dump());

    expectFailure("evaluate model.json", 3,
                  "\"model.json\" cannot be used: the member \"outputs[1].weights\" is missing.");
}

TEST_F(ExportCommand, AFaultLeavesTheFileAsItWas)
{
    folder.write("model.c", "old");
    EXPECT_EQ(run("export cvd.csv -y Stress -x Stress --format c -o model.c").exitCode, 2);
    EXPECT_EQ(folder.read("model.c"), "old");
}

TEST_F(ExportCommand, WarningsGoToTheStandardError)
{
    const Outcome done = run("export cvd.csv -y Uniformity,Stress -m kriging --format text");

    EXPECT_EQ(done.exitCode, 0);
    EXPECT_TRUE(beginsWith(done.out, "Kriging model\n"));
    EXPECT_TRUE(contains(done.err, "Warning for Uniformity: "));
}
