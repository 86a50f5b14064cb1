// The exported C file, compiled and run.

#include "ExportTestSupport.h"

using namespace exporttest;

namespace {

const char* const strict = " -std=c99 -Wall -Wextra -Wpedantic -Werror -O1 ";

class CSource : public ExportFolder
{
protected:
    void compile(const std::string& source, const std::string& compiler = MODELEXPORT_CC,
                 const std::string& options = "-DSURROGATE_MAIN")
    {
        write("model.c", source);
        const Outcome compiled =
            run("'" + compiler + "'" + strict + options + " model.c -o model -lm");
        ASSERT_EQ(compiled.exitCode, 0) << compiled.err;
        EXPECT_EQ(compiled.err, "");
    }

    std::vector<Column> valuesAt(const std::vector<Column>& points)
    {
        std::string commands = "true";
        for (const Column& point : points) {
            commands += " && ./model" + arguments(point);
        }
        const Outcome outcome = run(commands);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
        return rowsOf(numbersOf(outcome.out), points.size());
    }
};

std::string sourceOf(Cases cases, Kind kind)
{
    return exportModel(cases.exported(kind), ExportFormat::C);
}

} // namespace

TEST_F(CSource, ComputesWhatTheModelPredicts)
{
    for (NamedCases& variety : varieties()) {
        for (const Kind kind : {Polynomial, Kriging}) {
            const ExportedModel model = variety.cases.exported(kind);
            compile(exportModel(model, ExportFormat::C));
            const std::vector<Column> points = pointsFor(model, 8);
            expectAgreement(model, points, valuesAt(points),
                            variety.name + (kind == Kriging ? ", Kriging" : ", polynomial"));
        }
    }
}

TEST_F(CSource, CompilesWithoutAWarningWhateverTheNamesAre)
{
    for (const Kind kind : {Polynomial, Kriging}) {
        const std::string source = sourceOf(cvd(), kind);
        for (const char* compiler : {MODELEXPORT_CC, MODELEXPORT_CLANG}) {
            if (std::string(compiler).empty()) {
                continue;
            }
            compile(source, compiler);
            compile(source + "int main(void) { return surrogate_self_check(); }\n", compiler, "");
        }
    }
}

TEST_F(CSource, CompilesWithTheWarningsOfCarefulUsers)
{
    for (const Kind kind : {Polynomial, Kriging}) {
        compile(sourceOf(cvd(), kind), MODELEXPORT_CC,
                "-DSURROGATE_MAIN -Wmissing-prototypes -Wstrict-prototypes -Wshadow -Wconversion");
    }
}

TEST_F(CSource, TheSelfCheckHoldsAndSeesAChangedNumber)
{
    const std::string check = "int main(void) { return surrogate_self_check(); }\n";
    for (const Kind kind : {Polynomial, Kriging}) {
        const std::string source = sourceOf(cvd(), kind);
        compile(source + check, MODELEXPORT_CC, "");
        EXPECT_EQ(run("./model").exitCode, 0);

        const std::string mark = kind == Kriging ? "surrogate_1_weights[] = {" : "sum += x[1] * (";
        const std::string changed = corrupted(source, mark);
        ASSERT_NE(changed, source);
        compile(changed + check, MODELEXPORT_CC, "");
        EXPECT_EQ(run("./model").exitCode, 2) << "1 + the output";
    }
}

TEST_F(CSource, TheSelfCheckSeesAWeightThatNoCheckPointIsNear)
{
    // Noise of short length: most cases are far from every check point.
    Cases cases = smoothCases(60, 2, 0.0, 1.0, 0.0, 1.0);
    UniformNumbers random(8);
    for (double& value : cases.outputs[1]) {
        value = random.next();
    }
    const std::string source = sourceOf(cases, Kriging);
    std::size_t at = source.find("surrogate_0_weights[] = {");
    int changes = 0;
    for (int number = 0; number < 60; number += 7) {
        std::string changed = source;
        for (int skip = 0; skip < 7; ++skip) {
            at = source.find_first_of(",}", at + 1);
        }
        const std::size_t digit = source.find_last_of("0123456789", source.find('.', at) - 1);
        changed[digit] = changed[digit] == '7' ? '6' : '7';
        if (changed == source || source[at] == '}') {
            break;
        }
        compile(changed + "int main(void) { return surrogate_self_check(); }\n", MODELEXPORT_CC,
                "");
        EXPECT_NE(run("./model").exitCode, 0);
        ++changes;
    }
    EXPECT_GE(changes, 8);
}

TEST_F(CSource, AProgramThatComputesSomethingElseSaysSo)
{
    compile(corrupted(sourceOf(cvd(), Polynomial), "sum += x[1] * ("));
    const Outcome outcome = run("./model 40 6");

    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err,
              "The self-check fails: this program does not compute the exported model.\n");
}

TEST_F(CSource, TheProgramRefusesArgumentsThatAreNoInputs)
{
    compile(sourceOf(cvd(), Kriging));
    Outcome outcome = run("./model 40");
    EXPECT_NE(outcome.exitCode, 0);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err,
              "The model has 2 inputs, listed at the top of its source, but 1 were given.\n");
    for (const char* text : {"six", "6x", "''", "6,5"}) {
        outcome = run("./model 40 " + std::string(text));
        EXPECT_NE(outcome.exitCode, 0);
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.err.rfind("The input 2 is no number: \"", 0), 0u) << outcome.err;
    }
}

TEST_F(CSource, NaNAndInfinityGiveNaN)
{
    for (const Kind kind : {Polynomial, Kriging}) {
        compile(sourceOf(cvd(), kind));
        for (const char* point : {"nan 6", "40 inf", "-inf nan"}) {
            EXPECT_EQ(run("./model " + std::string(point)).out, "nan\nnan\n");
        }
    }
}

TEST_F(CSource, PointsFarAwayHaveValues)
{
    compile(sourceOf(cvd(), Kriging));
    const Outcome outcome = run("./model 1e300 6");

    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_TRUE(std::isfinite(numbersOf(outcome.out).at(0))) << outcome.out;
}
