#include <surrogatemodel/SurfaceCoefficientExporter.h>

#include "FakeManager.h"

#include <mirel_datamanagement/Project.h>

#include <gtest/gtest.h>

#include <iomanip>
#include <locale>
#include <sstream>

namespace {

/** Independents X and Y, dependents "stress" (offset 0) and "strain" (offset 1). */
class SurfaceCoefficientExporterTest : public testing::Test
{
protected:
    SurfaceCoefficientExporterTest()
    {
        manager.independents->set({x, y});
        manager.offsets = {{"stress", 0}, {"strain", 1}};
        manager.fakeModel.equations = {{0, "1 + 2 V1\n"}, {1, "3 - V2\n"}};
    }

    std::string exported() const
    {
        std::ostringstream out;
        SurfaceCoefficientExporter(manager, dependents, out).exportData();
        return out.str();
    }

    Project project;
    const VarPtr x = project.addNumericVariable("X", Variable::Independent);
    const VarPtr y = project.addNumericVariable("Y", Variable::Independent);
    const VarPtr stress = project.addNumericVariable("stress", Variable::Dependent);
    const VarPtr strain = project.addNumericVariable("strain", Variable::Dependent);
    FakeManager manager;
    std::set<VarPtr> dependents;
};

TEST_F(SurfaceCoefficientExporterTest, WritesTheLegendThenOneSectionPerDependentInSetOrder)
{
    const std::string legend = "Independent Variables\nV1 = X\nV2 = Y\n";
    EXPECT_EQ(exported(), legend);
    EXPECT_EQ(manager.requests, std::vector<std::set<VarPtr>>{{}}) << "asked for all the same";

    dependents = {strain, stress};
    manager.fakeModel.available = false; // of a model that reports none, too
    EXPECT_EQ(exported(), legend + "\nEquation for dependent variable: stress\n"
                                   "Result = 1 + 2 V1\n"
                                   "\nEquation for dependent variable: strain\n"
                                   "Result = 3 - V2\n");
    EXPECT_EQ(manager.requests[1], (std::set<VarPtr>{stress, strain})) << "once for both";
    EXPECT_EQ(manager.requests.size(), 2u);
    EXPECT_TRUE(manager.offsetRequests.empty());

    dependents = {stress};
    manager.fakeModel.equations[0] = "42";
    EXPECT_EQ(exported(), legend + "\nEquation for dependent variable: stress\nResult = 42")
        << "no line end is added to the text of the model";
    dependents.clear();
    manager.independents->set({});
    EXPECT_EQ(exported(), "Independent Variables\n");
}

TEST_F(SurfaceCoefficientExporterTest, HasWrittenTheLegendWhenTheModelFailsAlsoWithoutDependents)
{
    manager.failure = "too few cases";
    std::ostringstream out;
    const SurfaceCoefficientExporter exporter(manager, dependents, out);

    EXPECT_THROW(exporter.exportData(), SurrogateModelInterface::Error);
    EXPECT_EQ(out.str(), "Independent Variables\nV1 = X\nV2 = Y\n");
}

TEST_F(SurfaceCoefficientExporterTest, KeepsWhatWasWrittenBeforeAnEquationFails)
{
    dependents = {stress, strain};
    manager.fakeModel.equations.erase(1);
    std::ostringstream out;
    const SurfaceCoefficientExporter exporter(manager, dependents, out);

    EXPECT_THROW(exporter.exportData(), SurrogateModelInterface::Error);
    EXPECT_EQ(out.str(), "Independent Variables\nV1 = X\nV2 = Y\n"
                         "\nEquation for dependent variable: stress\nResult = 1 + 2 V1\n"
                         "\nEquation for dependent variable: strain\nResult = ");
}

TEST_F(SurfaceCoefficientExporterTest, AsksForTheEquationByTheLow32BitsOfTheOffsetZeroIfUnknown)
{
    dependents = {stress, project.addNumericVariable("unknown", Variable::Dependent)};
    manager.offsets["stress"] = (std::size_t(1) << 32) + 1;

    const std::string text = exported();

    EXPECT_NE(text.find("variable: stress\nResult = 3 - V2\n"), std::string::npos);
    EXPECT_NE(text.find("variable: unknown\nResult = 1 + 2 V1\n"), std::string::npos);
}

TEST_F(SurfaceCoefficientExporterTest, NamesRemovedVariablesAsTheyWereCalled)
{
    dependents = {strain};
    project.removeVariable(x);
    project.removeVariable(strain);

    const std::string text = exported();

    EXPECT_NE(text.find("V1 = X\n"), std::string::npos);
    EXPECT_NE(text.find("dependent variable: strain\n"), std::string::npos);
}

TEST_F(SurfaceCoefficientExporterTest, AHandleOfNoVariableIsAHandleError)
{
    dependents = {VarPtr()};
    EXPECT_THROW(exported(), HandleError);

    dependents.clear();
    manager.independents->set({VarPtr()});
    EXPECT_THROW(exported(), HandleError);
}

TEST_F(SurfaceCoefficientExporterTest, NumbersEveryListEntryWhateverItsNature)
{
    const VarPtr text = project.addTextVariable("material", Variable::Independent);
    manager.independents->set({stress, text, x, x});

    EXPECT_EQ(exported(), "Independent Variables\n"
                          "V1 = stress\nV2 = material\nV3 = X\nV4 = X\n");
}

class GroupsOfThree : public std::numpunct<char>
{
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

TEST_F(SurfaceCoefficientExporterTest, WritesTheSameBytesWhateverFlagsAndLocale)
{
    manager.independents->set(std::vector<VarPtr>(1000, x));
    const std::locale before = std::locale::global(std::locale(std::locale(), new GroupsOfThree));
    std::ostringstream out;
    out << std::hex << std::showbase << std::showpos << std::setw(40) << std::setfill('*');

    SurfaceCoefficientExporter(manager, dependents, out).exportData();

    std::locale::global(before);
    const std::string text = out.str();
    EXPECT_EQ(text.substr(0, 29), "Independent Variables\nV1 = X\n");
    const std::string last = "\nV999 = X\nV1000 = X\n";
    EXPECT_EQ(text.substr(text.size() - last.size()), last);
}

TEST_F(SurfaceCoefficientExporterTest, ReadsManagerAndDependentsWhenItExports)
{
    std::ostringstream out;
    const SurfaceCoefficientExporter exporter(manager, dependents, out);
    manager.independents->set({y});
    dependents = {stress};

    exporter.exportData();

    EXPECT_EQ(out.str(), "Independent Variables\nV1 = Y\n"
                         "\nEquation for dependent variable: stress\nResult = 1 + 2 V1\n");
}

} // namespace
