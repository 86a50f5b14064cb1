// The options --select-terms and --all-terms as users meet them.

#include "ProgramFixture.h"

#include <gtest/gtest.h>

#include <string>

namespace {
const std::string cases = " cvd.csv -x Pressure,H2/WF6 -y Uniformity ";

const std::string note = "AICc is lower without \"Pressure\"^2 and \"H2/WF6\"^2: they were left "
                         "out.";

class TermSelectionOption : public Program
{};
} // namespace

TEST_F(TermSelectionOption, SelectedTermsHoldForWhateverTheModelIsUsedFor)
{
    folder.write("points.csv", "Pressure,H2/WF6\n40,5\n");
    const std::string named = "Note for Uniformity: " + note + "\n";

    const Outcome equation = run("equations" + cases + "--select-terms");
    EXPECT_EQ(equation.exitCode, 0);
    EXPECT_FALSE(contains(equation.out, "V1^2"));
    EXPECT_EQ(equation.err, named);

    for (const std::string command : {"evaluate", "predict"}) {
        const std::string values =
            command == "evaluate" ? "--at Pressure=40 --at H2/WF6=5 " : "--points points.csv ";
        const Outcome selected = run(command + cases + values + "--select-terms");
        EXPECT_EQ(selected.exitCode, 0) << selected.err;
        EXPECT_EQ(selected.err, named);
        EXPECT_NE(selected.out, run(command + cases + values).out);
    }

    const Outcome exported = run("export" + cases + "--select-terms --format json -o m.json");
    EXPECT_EQ(exported.exitCode, 0);
    EXPECT_EQ(exported.err, named);
    EXPECT_EQ(
        linesOf(run("evaluate m.json --at Pressure=40 --at H2/WF6=5").out),
        linesOf(run("evaluate" + cases + "--at Pressure=40 --at H2/WF6=5 -q --select-terms").out));

    const Outcome plotted = run("plot" + cases + "--kind residuals --select-terms -o p.svg");
    EXPECT_EQ(plotted.exitCode, 0);
    EXPECT_EQ(plotted.err, named);
}

TEST_F(TermSelectionOption, ASelectionIsKeptWhileAProjectTakesKriging)
{
    const std::string project = "study.surrogate.xml";
    ASSERT_EQ(run("fit" + cases + "--select-terms --save " + project).exitCode, 0);
    ASSERT_EQ(run("fit " + project + " -m kriging --save " + project).exitCode, 0);

    EXPECT_EQ(jsonOf("project " + project)["selectsTerms"], true);
    expectFailure(
        "fit " + project + " --select-terms", 2,
        "--terms, --select-terms and --all-terms choose the terms of a response surface, and the "
        "project chooses kriging: add -m response-surface.");
    const Outcome again = run("fit " + project + " -m response-surface");
    EXPECT_TRUE(contains(again.out, note));
}

TEST_F(TermSelectionOption, CompareSelectsTermsInEachFold)
{
    const std::string project = "study.surrogate.xml";
    ASSERT_EQ(run("summary" + cases + "-m kriging --save " + project).exitCode, 0);

    const Outcome text = run("compare " + project + " --select-terms -q");
    EXPECT_EQ(text.exitCode, 0) << text.err;
    EXPECT_TRUE(contains(text.out,
                         "Terms   those of the response surface selected by AICc, anew in each "
                         "fold\n"));
    EXPECT_FALSE(contains(text.out, "fewer terms"));

    const Json selected = jsonOf("compare" + cases + "--select-terms");
    const Json whole = Json::parse(run("compare" + cases + "--json").out);
    EXPECT_EQ(selected["selectsTerms"], true);
    EXPECT_EQ(whole["selectsTerms"], false);
    const auto q2 = [](const Json& object, int model) {
        return object["outputs"][0]["models"][model]["q2"].get<double>();
    };
    EXPECT_GT(q2(selected, 0), q2(whole, 0));
    EXPECT_EQ(q2(selected, 1), q2(whole, 1));
}

TEST_F(TermSelectionOption, ThePolynomialIsOfTheTermsThatAreAskedFor)
{
    const auto terms = [&](const std::string& options) {
        const Json fit = jsonOf("fit" + cases + options);
        return fit["outputs"][0]["metrics"]["terms"].get<int>();
    };

    EXPECT_EQ(terms(""), 6);
    EXPECT_EQ(terms("--terms linear"), 3);
    EXPECT_EQ(terms("--terms interactions"), 4);
    EXPECT_EQ(terms("--terms quadratic"), 6);
    EXPECT_EQ(terms("--terms linear --select-terms"), 2);
}

TEST_F(TermSelectionOption, CompareTakesThePolynomialThatIsAskedFor)
{
    const Json linear = jsonOf("compare plane.csv -y y --terms linear");

    EXPECT_EQ(linear["terms"], "linear");
    EXPECT_GT(linear["outputs"][0]["models"][0]["q2"].get<double>(), 1.0 - 1e-12);
    EXPECT_TRUE(contains(run("compare plane.csv -y y --terms linear -q").out,
                         "Order   the response surface is linear\n"));
}
