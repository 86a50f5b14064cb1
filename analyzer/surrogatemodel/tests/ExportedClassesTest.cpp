// The exported classes between three parties: the library, a plugin and this program.
#include "ExportedClassesPlugin.h"
#include "FixedVariables.h"
#include "ProjectTest.h"

#include <surrogatemodel/SurrogateModelManager.h>
#include <surrogatemodel/SurrogateModelQueryToTable.h>

#include <mirel_datapipeline/ProjectDataPipelineManager.h>
#include <mirel_fitting/SurrogateModelInterface.h>

#include <vtkCallbackCommand.h>
#include <vtkNew.h>
#include <vtkTable.h>
#include <vtkVariant.h>

#include <stdexcept>

namespace {

/** Four cases with y = 3 x. */
class ExportedClasses : public ProjectTest
{
protected:
    ExportedClasses() { manager->independentVars()->set({x}); }

    /** A table of y at x = 0 and x = 2. */
    vtkSmartPointer<SurrogateModelQueryToTable>
    updatedQuery(const boost::shared_ptr<const SurrogateModelManagerInterface>& source) const
    {
        const auto variables = boost::make_shared<FixedVariables>();
        variables->inputs = {{x, {0, 2}}};
        variables->dependents = {y};
        auto query = SurrogateModelQueryToTable::New(source, variables);
        query->AddObserver(vtkCommand::ErrorEvent, vtkNew<vtkCallbackCommand>());
        query->Update();
        return query;
    }

    VarPtr x = addInput("x", {0, 1, 2, 3});
    VarPtr y = addOutput("y", {0, 3, 6, 9});
    boost::shared_ptr<DataPipelineManagerInterface> pipeline =
        boost::make_shared<ProjectDataPipelineManager>(project);
    boost::shared_ptr<SurrogateModelManagerInterface> manager = plugin::makeManager(pipeline);
    boost::shared_ptr<SurrogateModelManagerInterface> refusingManager =
        plugin::makeRefusingManager(pipeline, "The plugin refuses.");
};

} // namespace

TEST_F(ExportedClasses, AreTheSameTypesInThePluginAndInTheProgram)
{
    EXPECT_NE(dynamic_cast<SurrogateModelManager*>(manager.get()), nullptr);
}

TEST_F(ExportedClasses, EvaluateAModelOfAPlugin)
{
    const auto query = updatedQuery(manager);

    EXPECT_EQ(query->getLastError(), "");
    EXPECT_NEAR(query->GetOutput()->GetValueByName(0, "y").ToDouble(), 0.0, 1e-9);
    EXPECT_NEAR(query->GetOutput()->GetValueByName(1, "y").ToDouble(), 6.0, 1e-9);
}

TEST_F(ExportedClasses, LetFailuresOfTheLibraryInThePluginBeCaughtInTheProgram)
{
    EXPECT_THROW(plugin::makeSerializerOfNothing(), std::invalid_argument);
}

TEST_F(ExportedClasses, LetModelErrorsOfThePluginBeCaughtInTheProgramAndTheLibrary)
{
    EXPECT_THROW(refusingManager->model(std::set<int>{0}), SurrogateModelInterface::Error);
    EXPECT_THROW(refusingManager->model(std::set<int>{0}), veska::ExceptionBase);
    EXPECT_THROW(refusingManager->model(std::set<int>{0}), std::exception);
    EXPECT_EQ(updatedQuery(refusingManager)->getLastError(), "The plugin refuses.");
}

TEST_F(ExportedClasses, LetModelErrorsOfTheLibraryBeCaughtInThePlugin)
{
    includeAll(false);

    EXPECT_EQ(plugin::errorOfRequest(*manager, {y}), notEnoughCases);
}
