// The fitted model that the manager keeps: when it fits, which cases it uses, what errors leave.
#include <surrogatemodel/SurrogateModelManager.h>

#include "ManagerTest.h"

#include <stdexcept>

namespace {

using SurrogateModelManagerCacheTest = ManagerTest;

} // namespace

TEST_F(SurrogateModelManagerCacheTest, AnswersTheSameSetWithoutFittingAgain)
{
    SurrogateModelInterface& first = model({y1});
    pipeline->requests = 0;

    SurrogateModelInterface& second = model({y1});

    EXPECT_EQ(&first, &second);
    EXPECT_EQ(fitCount(), 1U);
    EXPECT_EQ(pipeline->requests, 0);
}

TEST_F(SurrogateModelManagerCacheTest, RefitsForAnotherSetWithoutASignal)
{
    model({y1});
    Counter changes;
    manager->connectSignalModelChanged(changes.slot());

    SurrogateModelInterface& other = model({y1, y2});

    EXPECT_EQ(nameOf(other), "model 2");
    EXPECT_EQ(changes.calls, 0);
}

TEST_F(SurrogateModelManagerCacheTest, KeepsOneModelAndStoresANewOneBeforeItDeletesTheOld)
{
    model({y1});
    model({y2});
    EXPECT_EQ(factory->mostAlive, 2);
    EXPECT_EQ(factory->alive(), 1);

    model({y1});
    EXPECT_EQ(fitCount(), 3U);
}

TEST_F(SurrogateModelManagerCacheTest, AsksForTheAlgorithmTwiceAndUsesTheSecondAnswersTable)
{
    const auto exchanged = vtkSmartPointer<TableSource>::New();
    CaseTable other(3);
    other.addNumbers("x1", {7, 8, 9}).addNumbers("x2", {4, 5, 6});
    other.addNumbers("y1", {10, 20, 30}).addNumbers("y2", {40, 50, 60});
    exchanged->table = other.get();
    exchanged->Update();
    pipeline->requests = 0;
    pipeline->onRequest = [&](int request) {
        return request == 1 ? pipeline->source.GetPointer() : exchanged.GetPointer();
    };

    model({y1});

    EXPECT_EQ(pipeline->requests, 2);
    EXPECT_EQ(pipeline->source->executions, 1);
    EXPECT_EQ(lastFit().inputs[0], (Values{7, 8, 9}));
}

TEST_F(SurrogateModelManagerCacheTest, ReportsThatThereAreNotEnoughCasesWithoutAnyValidOne)
{
    includeAll(false);
    EXPECT_EQ(errorOf([&] { model({y1}); }), notEnoughCases);
    includeAll(true);
    pipeline->onRequest = [](int) { return nullptr; };
    EXPECT_EQ(errorOf([&] { model({y1}); }), notEnoughCases) << "no algorithm";
    EXPECT_EQ(fitCount(), 0U);
}

TEST_F(SurrogateModelManagerCacheTest, LetsTheModelDecideAboutASingleCase)
{
    includeAll(false);
    project->setIncluded(project->record(2), true);

    model({y1});

    EXPECT_EQ(lastFit().inputs, (std::vector<Values>{{2}, {5}}));
    EXPECT_EQ(lastFit().rowCount, 1);
}

// On purpose: the set asked for counts as the cached one from the start of a request, and the model
// of the set before is kept when the request fails.
TEST_F(SurrogateModelManagerCacheTest, AnswersTheOlderModelWhenAFailedRequestIsRepeated)
{
    SurrogateModelInterface& older = model({y1});
    includeAll(false);
    EXPECT_EQ(errorOf([&] { model({y2}); }), notEnoughCases);

    EXPECT_EQ(&model({y2}), &older);
    EXPECT_EQ(fitCount(), 1U);

    includeAll(true);
    EXPECT_EQ(nameOf(model({y1})), "model 2");
}

TEST_F(SurrogateModelManagerCacheTest, FailsAgainWithAFullRebuildWhileNoModelIsHeld)
{
    cases.set(0, "x1", vtkVariant(missing));
    includeAll(false);
    EXPECT_EQ(errorOf([&] { model({y1}); }), notEnoughCases);
    EXPECT_EQ(errorOf([&] { model({y1}); }), notEnoughCases);

    includeAll(true);
    model({y1});

    EXPECT_EQ(lastFit().inputs[0], (Values{2, 3}));
}

TEST_F(SurrogateModelManagerCacheTest, KeepsTheModelWhenTheConstructorOfItsSuccessorThrows)
{
    SurrogateModelInterface& older = model({y1});
    factory->onMake = [] { throw SurrogateModelInterface::Error("cannot be fitted"); };

    EXPECT_EQ(errorOf([&] { model({y2}); }), "cannot be fitted");

    EXPECT_EQ(&model({y2}), &older);
    EXPECT_EQ(fitCount(), 2U);
    EXPECT_EQ(factory->alive(), 1);
}

TEST_F(SurrogateModelManagerCacheTest, PassesAnyExceptionOfTheConstructorsOn)
{
    for (const auto type : {Interface::ResponseSurface, Interface::Kriging}) {
        manager->type()->set(type);
        factory->onMake = [] { throw std::domain_error("out of luck"); };
        EXPECT_THROW(model({y1}), std::domain_error);
    }
}

TEST_F(SurrogateModelManagerCacheTest, RebuildsFullyWhenThePipelineFindsAChangeWhileItUpdates)
{
    cases.set(1, "x1", vtkVariant(missing));
    model({y1});
    cases.set(1, "x1", vtkVariant(2.0));
    pipeline->source->onExecute = [this] { pipeline->emitChange(); };
    pipeline->source->Modified();

    model({y2});

    EXPECT_EQ(lastFit().inputs[0], (Values{1, 2, 3}));
}

TEST_F(SurrogateModelManagerCacheTest,
       ExcludesTheInvalidRowsOfTheLastFullRebuildWhileAModelIsCached)
{
    cases.set(1, "x1", vtkVariant(missing));
    model({y1});
    cases.set(1, "x1", vtkVariant(2.0));
    cases.set(2, "x1", vtkVariant(missing));
    model({y2});
    EXPECT_EQ(lastFit().outputs[1], (Values{40, 60}));

    includeAll(false);
    EXPECT_EQ(errorOf([&] { model({y1}); }), notEnoughCases);
    includeAll(true);
    model({y1, y2});
    EXPECT_EQ(lastFit().outputs[1], (Values{40, 60})) << "after a failed request";
}

TEST_F(SurrogateModelManagerCacheTest, RebuildsFullyAfterEveryInvalidation)
{
    const std::vector<std::function<void()>> invalidations = {
        [this] { pipeline->emitChange(); },
        [this] { manager->type()->set(Interface::Kriging); },
        [this] {
            manager->independentVars()->set({x2, x1});
        },
        [] { undoStack().undo(); },
    };
    for (const auto& invalidate : invalidations) {
        cases.set(1, "x1", vtkVariant(missing));
        pipeline->emitChange();
        model({y1});
        EXPECT_EQ(lastFit().rowCount, 2);
        cases.set(1, "x1", vtkVariant(2.0));

        invalidate();
        model({y1});

        EXPECT_EQ(lastFit().rowCount, 3);
    }
}

TEST_F(SurrogateModelManagerCacheTest, FiltersByTheRequestedDependentsOnly)
{
    cases.set(0, "y2", vtkVariant(missing));

    model({y1});
    EXPECT_EQ(lastFit().outputs[0], (Values{10, 20, 30}));
    model({y2});
    EXPECT_EQ(lastFit().outputs[0], (Values{20, 30}));
    model({y1, y2});
    EXPECT_EQ(lastFit().outputs[0], (Values{20, 30}));
}

TEST_F(SurrogateModelManagerCacheTest, SharesTheCacheBetweenHandlesAndOffsets)
{
    SurrogateModelInterface& byHandles = model({y2, y1});

    EXPECT_EQ(&manager->model(std::set<int>{0, 1}), &byHandles);
    EXPECT_EQ(fitCount(), 1U);

    project->moveVariable(y2, 0);
    SurrogateModelInterface& byOffset = manager->model(std::set<int>{0});
    EXPECT_EQ(&model({y2}), &byOffset);
    EXPECT_EQ(fitCount(), 2U);
}

TEST_F(SurrogateModelManagerCacheTest, FitsOverAllDependentsWhenNoneIsAskedFor)
{
    cases.set(0, "y1", vtkVariant(missing));
    cases.set(1, "x1", vtkVariant(missing));

    SurrogateModelInterface& first = model({});

    EXPECT_EQ(lastFit().outputs[1], (Values{40, 60}));
    EXPECT_EQ(&manager->model(std::set<int>{}), &first);
    EXPECT_EQ(fitCount(), 1U);

    pipeline->emitChange();
    model({});
    EXPECT_EQ(fitCount(), 2U);
}

TEST_F(SurrogateModelManagerCacheTest, ReportsTooFewCasesForOffsetsThatNoDependentHas)
{
    for (const std::set<int>& offsets : {std::set<int>{99}, {-1}, {0, 99}}) {
        EXPECT_EQ(errorOf([&] { manager->model(offsets); }), notEnoughCases);
    }

    project->setNature(y1, Variable::Unassigned);
    project->setNature(y2, Variable::Unassigned);
    EXPECT_EQ(errorOf([&] { manager->model(std::set<int>{0}); }), notEnoughCases);
}

TEST_F(SurrogateModelManagerCacheTest, DropsAModelThatAListenerAskedForDuringTheChange)
{
    model({y1});
    project->removeVariable(x1);
    const boost::signals2::scoped_connection connection =
        manager->connectSignalModelChanged([this] { model({y1}); });

    pipeline->emitChange();

    EXPECT_EQ(factory->alive(), 1);
    EXPECT_EQ(fitCount(), 3U);
    EXPECT_EQ(lastFit().inputs.size(), 1U);
}

TEST_F(SurrogateModelManagerCacheTest, KeepsTheModelUntilAChangeOfTheDataIsSignalled)
{
    SurrogateModelInterface& first = model({y1});
    project->moveVariable(y2, 0);
    cases.set(0, "y1", vtkVariant(11.0));

    EXPECT_EQ(&model({y1}), &first);
    EXPECT_EQ(manager->offsetForVariableName("y2"), 0U);
}
