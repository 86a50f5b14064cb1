// The exported classes between three parties: the library, a plugin and this program.
#include "ExportedClassesPlugin.h"
#include "ProjectTest.h"
#include "UserDistXml.h"

#include <surrogatemodel/SurrogateModelManager.h>

#include <mirel_datapipeline/ProjectDataPipelineManager.h>
#include <mirel_fitting/SurrogateModelInterface.h>

#include <stdexcept>

namespace {

/** Four cases with y = 3 x. */
class ExportedClasses : public ProjectTest
{
protected:
    ExportedClasses() { manager->independentVars()->set({x}); }

    VarPtr x = addInput("x", {0, 1, 2, 3});
    VarPtr y = addOutput("y", {0, 3, 6, 9});
    boost::shared_ptr<SurrogateModelManagerInterface> manager =
        plugin::makeManager(boost::make_shared<ProjectDataPipelineManager>(project));
};

constexpr char notEnoughCases[] = "There are not enough valid cases to create the surrogate model.";

} // namespace

TEST_F(ExportedClasses, AreTheSameTypesInThePluginAndInTheProgram)
{
    EXPECT_NE(dynamic_cast<SurrogateModelManager*>(manager.get()), nullptr);
    EXPECT_EQ(dynamic_cast<SurrogateModelManager*>(plugin::makeRefusingManager("").get()), nullptr);
}

TEST_F(ExportedClasses, EvaluateAModelFromAPlugin)
{
    std::string error;

    const std::vector<double> values = plugin::evaluate(manager, y, error);

    EXPECT_EQ(error, "");
    ASSERT_EQ(values.size(), 3U);
    EXPECT_NEAR(values[0], 0.0, 1e-9);
    EXPECT_NEAR(values[1], 3.0, 1e-9);
    EXPECT_NEAR(values[2], 6.0, 1e-9);
}

TEST_F(ExportedClasses, WriteEquationsFromAPlugin)
{
    const std::string text = plugin::equations(*manager, {y});

    EXPECT_EQ(text.substr(0, text.find("Result")),
              "Independent Variables\nV1 = x\n\nEquation for dependent variable: y\n");
}

TEST_F(ExportedClasses, ReadDistributionTextsFromAPlugin)
{
    EXPECT_EQ(plugin::valuesOf("1, 2 - 3 : 3"), (std::vector<double>{1, 2, 2.5, 3}));
    EXPECT_EQ(plugin::keepText("x", "1 - 2 : 3"), "1 - 2 : 3");
}

TEST_F(ExportedClasses, SaveAndLoadSettingsFromAPlugin)
{
    const std::string saved = plugin::savedSettings(manager);
    manager->independentVars()->set({});
    manager->type()->set(SurrogateModelManagerInterface::Kriging);

    plugin::loadSettings(manager, saved);

    EXPECT_EQ(manager->independentVars()->get(), std::vector<VarPtr>{x});
    EXPECT_EQ(manager->type()->get(), SurrogateModelManagerInterface::ResponseSurface);
    EXPECT_EQ(plugin::loadedDistribution(
                  "x", userDistBlock("<Variable Name='x' Distribution='1 - 2 : 3'/>")),
              "1 - 2 : 3");
}

TEST_F(ExportedClasses, LetFailuresOfALoadInThePluginBeCaughtInTheProgram)
{
    EXPECT_THROW(plugin::loadedDistribution("x", userDistBlock("<Variable Mode='Manual'/>")),
                 std::out_of_range);
    EXPECT_THROW(plugin::savedSettings(nullptr), std::invalid_argument);
}

TEST_F(ExportedClasses, LetModelErrorsOfThePluginBeCaughtInTheProgram)
{
    const auto refusing = plugin::makeRefusingManager("The plugin refuses.");
    try {
        refusing->model(std::set<int>{0});
        FAIL() << "no error";
    } catch (const SurrogateModelInterface::Error& error) {
        EXPECT_STREQ(error.what(), "The plugin refuses.");
    }
    EXPECT_THROW(refusing->model(std::set<int>{0}), veska::ExceptionBase);
    EXPECT_THROW(refusing->model(std::set<int>{0}), std::exception);
}

TEST_F(ExportedClasses, LetModelErrorsOfThePluginBeCaughtInTheLibrary)
{
    std::string error;

    EXPECT_TRUE(
        plugin::evaluate(plugin::makeRefusingManager("The plugin refuses."), y, error).empty());

    EXPECT_EQ(error, "The plugin refuses.");
}

TEST_F(ExportedClasses, LetModelErrorsOfTheLibraryBeCaughtInThePlugin)
{
    for (const RecordPtr& record : project->records()) {
        project->setIncluded(record, false);
    }

    EXPECT_EQ(plugin::errorOfRequest(*manager, {y}), notEnoughCases);
}
