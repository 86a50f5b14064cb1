#include <session/model/SweepInterpolationVariables.h>

#include <surrogatemodel/SurrogateModelManager.h>
#include <surrogatemodel/SurrogateModelUserDistCollection.h>

#include <mirel_analyzercommon/UndoStack.h>
#include <mirel_datamanagement/Project.h>
#include <mirel_datapipeline/ProjectDataPipelineManager.h>

#include <property/Property.h>

#include <boost/make_shared.hpp>
#include <gtest/gtest.h>

#include <map>
#include <vector>

namespace {
using Collection = SurrogateModelUserDistCollection;
using Numbers = std::vector<double>;

class SweepInterpolationVariablesTest : public ::testing::Test
{
protected:
    SweepInterpolationVariablesTest()
    {
        // The last case lacks the output.
        a = project->addNumericVariable("a", Variable::Independent, {0.0, 10.0, 90.0});
        b = project->addNumericVariable("b", Variable::Independent, {5.0, 7.0, 6.0});
        y = project->addNumericVariable("y", Variable::Dependent, {1.0, 2.0, std::nan("")});
        Project::setProject(project);
        manager = boost::make_shared<SurrogateModelManager>(
            boost::make_shared<ProjectDataPipelineManager>(project));
        manager->independentVars()->set({a, b});
        variables =
            boost::make_shared<SweepInterpolationVariables>(manager, userDistributions, project);
        variables->connectSignalInterpolationVariablesChanged([this] { ++emissions; });
    }

    ~SweepInterpolationVariablesTest() override { Project::setProject(nullptr); }

    Numbers valuesOf(const VarPtr& variable)
    {
        return variables->inputIndependentVariables()->at(variable);
    }

    void type(const std::string& name, const std::string& text)
    {
        Collection distributions = userDistributions.get();
        distributions.setUserDistString(name, text);
        distributions.setMode(name, Collection::UserDefined);
        userDistributions.set(distributions);
    }

    UndoStack::SuspendUndoRecording unrecorded;
    boost::shared_ptr<Project> project = boost::make_shared<Project>();
    VarPtr a;
    VarPtr b;
    VarPtr y;
    veska::Property<Collection> userDistributions;
    boost::shared_ptr<SurrogateModelManager> manager;
    boost::shared_ptr<SweepInterpolationVariables> variables;
    int emissions = 0;
};
} // namespace

TEST_F(SweepInterpolationVariablesTest, NothingIsSweptOrWantedAtFirst)
{
    EXPECT_FALSE(variables->isVariableEmployed(a));
    EXPECT_EQ(valuesOf(a), (Numbers{0.0}));
    EXPECT_TRUE(variables->dependentVariables().empty());
}

TEST_F(SweepInterpolationVariablesTest, SweepsOverTheRangeOfTheValidCases)
{
    variables->setOutputs({y});
    variables->sweep(a, 3);

    EXPECT_EQ(variables->dependentVariables(), (std::set<VarPtr>{y}));
    EXPECT_TRUE(variables->isVariableEmployed(a));
    EXPECT_EQ(valuesOf(a), (Numbers{0.0, 5.0, 10.0}));
    EXPECT_EQ(valuesOf(b), (Numbers{5.0})) << "the others stay at the evaluation point";
}

TEST_F(SweepInterpolationVariablesTest, TheRangeIsReadWhenValuesAreAskedFor)
{
    variables->sweep(a, 3);
    project->setRange(a, {0.0, 100.0});

    EXPECT_EQ(valuesOf(a), (Numbers{0.0, 50.0, 100.0}));

    variables->setSweeps({{a, {3, SweepInterpolationVariables::Range(2.0, -2.0)}}});

    EXPECT_EQ(valuesOf(a), (Numbers{2.0, 0.0, -2.0}));

    variables->sweep(a, 3);
    variables->stayAtEvaluationPoint(a);

    EXPECT_FALSE(variables->isVariableEmployed(a));
    EXPECT_EQ(valuesOf(a), (Numbers{0.0}));
}

TEST_F(SweepInterpolationVariablesTest, EvenValuesReadAsAPersonExpects)
{
    variables->setSweeps({{a, {5, SweepInterpolationVariables::Range(0.1, 0.885)}}});
    EXPECT_EQ(valuesOf(a), (Numbers{0.1, 0.29625, 0.4925, 0.68875, 0.885}));

    variables->setSweeps({{a, {7, SweepInterpolationVariables::Range(-0.3, 0.3)}}});
    EXPECT_EQ(valuesOf(a), (Numbers{-0.3, -0.2, -0.1, 0.0, 0.1, 0.2, 0.3}));
}

TEST_F(SweepInterpolationVariablesTest, TypedValuesReplaceThoseOfASweptVariableOnly)
{
    variables->sweep(a, 3);
    type("a", "1, 2");
    type("b", "1, 2");

    EXPECT_EQ(valuesOf(a), (Numbers{1.0, 2.0}));
    EXPECT_EQ(valuesOf(b), (Numbers{5.0}));
}

TEST_F(SweepInterpolationVariablesTest, EachRealChangeIsReportedOnce)
{
    variables->sweep(a, 3);
    variables->sweep(a, 3);
    EXPECT_EQ(emissions, 1);

    variables->sweep(a, 4);
    variables->setSweeps({{a, {4, SweepInterpolationVariables::Range(0.0, 1.0)}}});
    variables->setOutputs({y});
    variables->setOutputs({y});
    variables->stayAtEvaluationPoint(a);
    variables->stayAtEvaluationPoint(a);
    EXPECT_EQ(emissions, 5);
}

TEST_F(SweepInterpolationVariablesTest, AllSweepsAreChosenAtOnceWithOneSignal)
{
    variables->sweep(a, 3);
    const auto before = variables->sweeps();
    emissions = 0;

    variables->setSweeps({{b, {2, SweepInterpolationVariables::Range(0.0, 1.0)}}});
    EXPECT_EQ(emissions, 1);
    EXPECT_FALSE(variables->isVariableEmployed(a));
    EXPECT_EQ(valuesOf(b), (Numbers{0.0, 1.0}));

    variables->setSweeps(before);
    variables->setSweeps(before);
    EXPECT_EQ(emissions, 2);
    EXPECT_EQ(valuesOf(a), (Numbers{0.0, 45.0, 90.0})) << "all cases are valid without an output";
}

TEST_F(SweepInterpolationVariablesTest, ChangesWhileSuspendedAreNeverReported)
{
    variables->suspend();
    variables->sweep(a, 3);
    type("a", "1");
    variables->resume();
    EXPECT_EQ(emissions, 0);

    variables->sweep(b, 3);
    EXPECT_EQ(emissions, 1);
}
