// The exported Python module, imported and run.

#include "ExportTestSupport.h"

using namespace exporttest;

namespace {

class PythonSource : public ExportFolder
{
protected:
    Outcome python(const std::string& arguments) const
    {
        return run("PYTHONDONTWRITEBYTECODE=1 '" MODELEXPORT_PYTHON "' -W error " + arguments);
    }
};

std::string sourceOf(Cases cases, Kind kind)
{
    return exportModel(cases.exported(kind), ExportFormat::Python);
}

} // namespace

TEST_F(PythonSource, ComputesWhatTheModelPredicts)
{
    for (NamedCases& variety : varieties()) {
        for (const Kind kind : {Polynomial, Kriging}) {
            const ExportedModel model = variety.cases.exported(kind);
            const std::vector<Column> points = pointsFor(model, 20);
            std::string script = "import model\nassert model.self_check() == 0\n";
            for (const Column& point : points) {
                std::string list;
                for (const double value : point) {
                    list += exactText(value) + ",";
                }
                script += "for value in model.predict([" + list + "]): print('%.17g' % value)\n";
            }
            write("model.py", exportModel(model, ExportFormat::Python));
            write("script.py", script);
            const Outcome outcome = python("script.py");
            ASSERT_EQ(outcome.exitCode, 0) << outcome.err;

            expectAgreement(model, points, rowsOf(numbersOf(outcome.out), points.size()),
                            variety.name + (kind == Kriging ? ", Kriging" : ", polynomial"));
        }
    }
}

TEST_F(PythonSource, IsAScriptToo)
{
    Cases cases = cvd();
    const ExportedModel model = cases.exported(Kriging);
    write("model.py", exportModel(model, ExportFormat::Python));
    const Outcome outcome = python("model.py 40 6.5");

    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    expectAgreement(model, {{40, 6.5}}, {numbersOf(outcome.out)}, "script");
}

TEST_F(PythonSource, KnowsTheNamesOfItsVariables)
{
    write("model.py", sourceOf(cvd(), Polynomial));
    write("script.py",
          "import model, sys\n"
          "sys.stdout.buffer.write('|'.join(model.INPUTS + model.OUTPUTS).encode())\n");

    EXPECT_EQ(python("script.py").out, cvd().inputNames[0] + "|" + cvd().inputNames[1] + "|" +
                                           cvd().outputNames[0] + "|" + cvd().outputNames[1]);
}

TEST_F(PythonSource, TheSelfCheckRaisesWhenANumberHasChanged)
{
    for (const Kind kind : {Polynomial, Kriging}) {
        const std::string source = sourceOf(cvd(), kind);
        const std::string changed =
            corrupted(source, kind == Kriging ? "_WEIGHTS_1 = (" : "total += x[1] * (");
        ASSERT_NE(changed, source);
        write("model.py", changed);
        const Outcome imported = python("-c 'import model; model.self_check()'");
        EXPECT_NE(imported.exitCode, 0);
        EXPECT_NE(imported.err.find("RuntimeError: The self-check fails: "), std::string::npos);

        const Outcome script = python("model.py 40 6");
        EXPECT_EQ(script.exitCode, 1);
        EXPECT_EQ(script.out, "");
        EXPECT_EQ(script.err.rfind("The self-check fails: ", 0), 0u) << script.err;
    }
}

TEST_F(PythonSource, TheScriptRefusesArgumentsThatAreNoInputs)
{
    write("model.py", sourceOf(cvd(), Polynomial));
    for (const char* arguments : {"40", "40 6 7", ""}) {
        const Outcome outcome = python("model.py " + std::string(arguments));
        EXPECT_EQ(outcome.exitCode, 2);
        EXPECT_EQ(outcome.err.rfind("The model has 2 inputs, but ", 0), 0u) << outcome.err;
    }
    for (const char* text : {"six", "1_0", "''", "6,5"}) {
        const Outcome outcome = python("model.py 40 " + std::string(text));
        EXPECT_EQ(outcome.exitCode, 2);
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.err.rfind("The input 2 is no number: ", 0), 0u) << outcome.err;
    }
}

TEST_F(PythonSource, NaNAndInfinityGiveNaN)
{
    for (const Kind kind : {Polynomial, Kriging}) {
        write("model.py", sourceOf(cvd(), kind));
        for (const char* point : {"nan 6", "40 inf", "-inf nan"}) {
            const Outcome outcome = python("model.py " + std::string(point));
            EXPECT_EQ(outcome.out, "nan\nnan\n") << outcome.err;
        }
    }
}

TEST_F(PythonSource, RefusesAnotherNumberOfInputs)
{
    write("model.py", sourceOf(cvd(), Polynomial));
    const Outcome outcome = python("-c 'import model; model.predict([1.0])'");

    EXPECT_NE(outcome.err.find("ValueError: The model has 2 inputs, but 1 were given."),
              std::string::npos);
}
