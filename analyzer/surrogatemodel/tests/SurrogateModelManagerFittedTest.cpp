// Fitted models from project to table: project, pipeline, manager, filter.
#include <surrogatemodel/SurrogateModelManager.h>

#include "ProjectTest.h"

#include <surrogatemodel/InterpolationVariablesAbstract.h>
#include <surrogatemodel/SurrogateModelQueryToTable.h>
#include <surrogatemodel/SurrogateModelUserDistCollection.h>

#include <mirel_datapipeline/ProjectDataPipelineManager.h>
#include <mirel_fitting/KrigingSurrogateModel.h>
#include <property/Property.h>

#include <vtkCallbackCommand.h>
#include <vtkDoubleArray.h>
#include <vtkNew.h>
#include <vtkTable.h>

#include <cmath>

namespace {

using Values = std::vector<double>;

/** Sweeps the variables that have points, and answers the dependents that a test chooses. */
class SweptVariables : public InterpolationVariablesAbstract
{
public:
    using InterpolationVariablesAbstract::InterpolationVariablesAbstract;

    std::set<VarPtr> dependentVariables() const override { return dependents; }

    std::map<VarPtr, boost::shared_ptr<InterpolationPointsInterface>> points;
    std::set<VarPtr> dependents;

protected:
    boost::shared_ptr<InterpolationPointsInterface>
    interpolationPoints(VarPtr variable) const override
    {
        const auto found = points.find(variable);
        return found != points.end() ? found->second : nullptr;
    }
};

/** Eight cases over x = 0 ... 7 with y1 = x and y2 = 100 + x, in a project with its pipeline. */
class SurrogateModelManagerFittedTest : public ProjectTest
{
protected:
    SurrogateModelManagerFittedTest()
        : x(addInput("x", {0, 1, 2, 3, 4, 5, 6, 7})), y1(addOutput("y1", {0, 1, 2, 3, 4, 5, 6, 7})),
          y2(addOutput("y2", {100, 101, 102, 103, 104, 105, 106, 107}))
    {
        manager->independentVars()->set({x});
        variables->dependents = {y1};
        // Errors are looked for in getLastError().
        filter->AddObserver(vtkCommand::ErrorEvent, vtkNew<vtkCallbackCommand>());
    }

    void sweep(const VarPtr& variable, double low, double high, std::size_t count) const
    {
        variables->points[variable] =
            boost::make_shared<InterpolationVariablesAbstract::DistributedPoints>(
                std::make_pair(low, high), count);
    }

    void setPoint(const std::string& name, const std::string& text) const
    {
        SurrogateModelUserDistCollection points = manager->evaluationPoint()->get();
        points.setUserDistString(name, text);
        manager->evaluationPoint()->set(points);
    }

    /** The results of one output from the filter. */
    Values results(const std::string& name) const
    {
        filter->Update();
        EXPECT_EQ(filter->getLastError(), "");
        auto* const column =
            vtkArrayDownCast<vtkDoubleArray>(filter->GetOutput()->GetColumnByName(name.c_str()));
        return {column->GetPointer(0), column->GetPointer(0) + column->GetNumberOfValues()};
    }

    /** The model's value of one output at x = `at`. */
    static double valueAt(SurrogateModelInterface& model, int offset, double at)
    {
        double result = missing;
        std::vector<double*> outputs = {&result};
        model.activateDependentVariables({offset});
        model.interpolateDependentValues({&at}, {offset}, outputs, 1);
        return result;
    }

    std::string errorAfterUpdate() const
    {
        filter->Update();
        return filter->getLastError();
    }

    VarPtr x;
    VarPtr y1;
    VarPtr y2;
    boost::shared_ptr<SurrogateModelManager> manager = boost::make_shared<SurrogateModelManager>(
        boost::make_shared<ProjectDataPipelineManager>(project));
    veska::Property<SurrogateModelUserDistCollection> userDistributions;
    boost::shared_ptr<SweptVariables> variables =
        boost::make_shared<SweptVariables>(manager, userDistributions);
    vtkSmartPointer<SurrogateModelQueryToTable> filter =
        SurrogateModelQueryToTable::New(manager, variables);
};

/** Exact data of a polynomial that both models contain: only rounding is left. */
constexpr double rounding = 1e-6;

} // namespace

class SurrogateModelManagerFittedByBoth
    : public SurrogateModelManagerFittedTest,
      public ::testing::WithParamInterface<SurrogateModelManagerInterface::ModelType>
{
protected:
    SurrogateModelManagerFittedByBoth() { manager->type()->set(GetParam()); }
};

TEST_P(SurrogateModelManagerFittedByBoth, PredictTheOutputsOverTheSweptValues)
{
    sweep(x, 0, 7, 3);

    const Values values = results("y1");

    ASSERT_EQ(values.size(), 3U);
    EXPECT_NEAR(values[0], 0.0, rounding);
    EXPECT_NEAR(values[1], 3.5, rounding);
    EXPECT_NEAR(values[2], 7.0, rounding);
}

TEST_P(SurrogateModelManagerFittedByBoth, MakeTheModelOfTheDefaultFactory)
{
    SurrogateModelInterface& model = manager->model(std::set<VarPtr>{y1});

    EXPECT_EQ(dynamic_cast<KrigingSurrogateModel*>(&model) != nullptr,
              GetParam() == SurrogateModelManagerInterface::Kriging);
}

TEST_P(SurrogateModelManagerFittedByBoth,
       PutOutputsUnderTheirNamesWhenProjectOrderIsNotCreationOrder)
{
    project->moveVariable(y2, 0);
    variables->dependents = {y1, y2};
    sweep(x, 2, 4, 2);

    const Values first = results("y1");
    const Values second = results("y2");

    EXPECT_NEAR(first[0], 2.0, rounding);
    EXPECT_NEAR(first[1], 4.0, rounding);
    EXPECT_NEAR(second[0], 102.0, rounding);
    EXPECT_NEAR(second[1], 104.0, rounding);
}

TEST_P(SurrogateModelManagerFittedByBoth, AnswerForCleanOutputsBesideDirtyOnes)
{
    project->setValue(project->record(1), y2, missing);
    SurrogateModelInterface& clean = manager->model(std::set<VarPtr>{y1});
    EXPECT_NEAR(valueAt(clean, 0, 2.5), 2.5, rounding);
    EXPECT_THROW(valueAt(clean, 1, 2.5), SurrogateModelInterface::Error);

    SurrogateModelInterface& dirty = manager->model(std::set<VarPtr>{y2});
    EXPECT_NEAR(valueAt(dirty, 1, 2.5), 102.5, rounding);
}

TEST_P(SurrogateModelManagerFittedByBoth, RefuseAListWithEntriesThatAreNoInputs)
{
    manager->independentVars()->set({y2, x});

    EXPECT_NE(errorAfterUpdate(), "");
    EXPECT_EQ(filter->GetOutput()->GetNumberOfRows(), 0);
}

INSTANTIATE_TEST_SUITE_P(Types, SurrogateModelManagerFittedByBoth,
                         ::testing::Values(SurrogateModelManagerInterface::Kriging,
                                           SurrogateModelManagerInterface::ResponseSurface));

TEST_F(SurrogateModelManagerFittedTest, FollowsChangesOfTheProject)
{
    setPoint("x", "2.5");
    EXPECT_NEAR(results("y1")[0], 2.5, rounding);

    {
        const Project::ChangeGroup oneChange(*project);
        for (const RecordPtr& record : project->records()) {
            project->setValue(record, y1, 7.0);
        }
    }

    EXPECT_NEAR(results("y1")[0], 7.0, rounding);
}

TEST_F(SurrogateModelManagerFittedTest, ReportsThatNoCaseIsValidInTheTable)
{
    includeAll(false);
    EXPECT_EQ(errorAfterUpdate(), notEnoughCases);
    EXPECT_EQ(filter->GetOutput()->GetNumberOfRows(), 0);

    includeAll(true);
    EXPECT_EQ(errorAfterUpdate(), "");
}

TEST_F(SurrogateModelManagerFittedTest, HasNoValuesForARenamedVariableUntilItsPointIsSet)
{
    project->renameVariable(x, "renamed");
    EXPECT_EQ(results("y1"), Values());

    setPoint("renamed", "2.5");
    EXPECT_NEAR(results("y1")[0], 2.5, rounding);
}

TEST_F(SurrogateModelManagerFittedTest, OutlivesTheProjectThatItsVariablesCameFrom)
{
    Project::setProject(boost::make_shared<Project>());

    EXPECT_EQ(manager->offsetForVariableName("y2"), 0U);
    EXPECT_EQ(errorAfterUpdate(), notEnoughCases);
}
