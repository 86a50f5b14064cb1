#include <surrogatemodel/SurrogateModelManager.h>

#include "ManagerTest.h"

#include <QObject>

#include <stdexcept>

namespace {

using SurrogateModelManagerTest = ManagerTest;

} // namespace

TEST_F(SurrogateModelManagerTest, StartsAsAResponseSurfaceWithoutVariablesAndAsksForNoData)
{
    Project::setProject(boost::make_shared<Project>());
    pipeline->requests = 0;

    const SurrogateModelManager fresh(pipeline);

    EXPECT_EQ(fresh.type()->get(), Interface::ResponseSurface);
    EXPECT_TRUE(fresh.independentVars()->get().empty());
    EXPECT_EQ(fresh.evaluationPoint()->get(), SurrogateModelUserDistCollection());
    EXPECT_EQ(pipeline->requests, 0);
    EXPECT_EQ(pipeline->source->executions, 0);
    EXPECT_EQ(errorOf([&] { fresh.model(std::set<VarPtr>{}); }), notEnoughCases);
}

TEST_F(SurrogateModelManagerTest, SharesItsInterfaceWithTheClassesThatDeriveFromBoth)
{
    class Extended : public SurrogateModelManager, public virtual Interface
    {
    public:
        using SurrogateModelManager::SurrogateModelManager;
    };

    const Extended extended(pipeline);
    const SurrogateModelManager& asManager = extended;

    EXPECT_EQ(static_cast<const Interface*>(&extended), static_cast<const Interface*>(&asManager));
}

TEST_F(SurrogateModelManagerTest, LeavesOneUndoStepForItsTypeWhenConstructedWhichTurnsItToKriging)
{
    const SurrogateModelManager fresh(pipeline);

    EXPECT_EQ(undoStack().count(), 1);
    EXPECT_EQ(undoStack().undoText(), "Change Surrogate Model Type");
    undoStack().undo();
    EXPECT_EQ(fresh.type()->get(), Interface::Kriging);
    undoStack().redo();
    EXPECT_EQ(fresh.type()->get(), Interface::ResponseSurface);
}

TEST_F(SurrogateModelManagerTest, LeavesNoUndoStepWhenRecordingIsSuspended)
{
    const UndoStack::SuspendUndoRecording suspension;
    const SurrogateModelManager fresh(pipeline);

    EXPECT_EQ(undoStack().count(), 0);
    EXPECT_EQ(fresh.type()->get(), Interface::ResponseSurface);
}

TEST_F(SurrogateModelManagerTest, AddressesEachManagersOwnTypeWhenConstructionsAreUndone)
{
    auto first = boost::make_shared<SurrogateModelManager>(pipeline);
    const SurrogateModelManager second(pipeline);
    first.reset();

    undoStack().undo();
    EXPECT_EQ(second.type()->get(), Interface::Kriging);
    undoStack().undo();

    EXPECT_EQ(second.type()->get(), Interface::Kriging);
    EXPECT_EQ(manager->type()->get(), Interface::ResponseSurface);
}

TEST_F(SurrogateModelManagerTest, CanBeConstructedWhileTheUndoStackIsWatched)
{
    int lastCount = 0;
    const QMetaObject::Connection connection =
        QObject::connect(&undoStack(), &QUndoStack::indexChanged,
                         [&lastCount](int) { lastCount = undoStack().count(); });

    const SurrogateModelManager fresh(pipeline);

    QObject::disconnect(connection);
    EXPECT_EQ(lastCount, 1);
}

TEST_F(SurrogateModelManagerTest, ReturnsTheSamePropertiesEveryTime)
{
    const Interface& face = *manager;

    EXPECT_EQ(face.independentVars().get(), face.independentVars().get());
    EXPECT_EQ(face.type().get(), face.type().get());
    EXPECT_EQ(face.evaluationPoint().get(), face.evaluationPoint().get());
}

TEST_F(SurrogateModelManagerTest, GivesItsFactoryTheTypeAndTheCases)
{
    for (const int number : {0, 1, 2, -1}) {
        manager->type()->set(static_cast<Interface::ModelType>(number));

        model({y1});

        EXPECT_EQ(static_cast<int>(lastFit().type), number);
        EXPECT_EQ(lastFit().inputs, (std::vector<Values>{{1, 2, 3}, {4, 5, 6}}));
        EXPECT_EQ(lastFit().outputs, (std::vector<Values>{{10, 20, 30}, {40, 50, 60}}));
        EXPECT_EQ(lastFit().rowCount, 3);
    }
}

TEST_F(SurrogateModelManagerTest, FitsTheIndependentEntriesOverAllDependentsOfTheProject)
{
    const VarPtr unassigned = project->addNumericVariable("z", Variable::Unassigned);
    project->addTextVariable("label", Variable::Dependent);
    project->moveVariable(y2, 0);
    cases.addNumbers("z", {7, 8, 9}).addTexts("label", {"a", "b", "c"});
    pipeline->show(cases);
    manager->independentVars()->set({x2, unassigned, x1});

    model({y1});

    EXPECT_EQ(lastFit().inputs, (std::vector<Values>{{4, 5, 6}, {1, 2, 3}}));
    EXPECT_EQ(lastFit().outputs, (std::vector<Values>{{40, 50, 60}, {10, 20, 30}}));
}

TEST_F(SurrogateModelManagerTest, DeletesTheModelThroughItsInterface)
{
    model({y1});
    EXPECT_EQ(factory->alive(), 1);

    manager.reset();

    EXPECT_EQ(factory->alive(), 0);
}

TEST_F(SurrogateModelManagerTest, CountsOffsetsAmongTheNumericDependentsInProjectOrderFromZero)
{
    project->moveVariable(y2, 0);
    const VarPtr label = project->addTextVariable("label", Variable::Dependent);
    project->moveVariable(label, 0);

    EXPECT_EQ(manager->offsetForVariableName("y2"), 0U);
    EXPECT_EQ(manager->offsetForVariableName("y1"), 1U);

    for (const char* name : {"unknown", "Y2", "y2 ", "x2", ""}) {
        EXPECT_EQ(manager->offsetForVariableName(name), 0U) << name;
    }

    addOutput("e\xcc\x81");
    addOutput("\xc3\xa9");

    EXPECT_EQ(manager->offsetForVariableName("e\xcc\x81"), 2U);
    EXPECT_EQ(manager->offsetForVariableName("\xc3\xa9"), 3U);
}

TEST_F(SurrogateModelManagerTest, KnowsWhichVariablesAreInputsOfTheModel)
{
    const VarPtr notChosen = addInput("x3");
    const VarPtr unassigned = project->addNumericVariable("z", Variable::Unassigned);
    manager->independentVars()->set({x1, unassigned, y1});

    EXPECT_TRUE(manager->isVariableInSurrogateModel(x1));
    EXPECT_FALSE(manager->isVariableInSurrogateModel(notChosen));
    EXPECT_FALSE(manager->isVariableInSurrogateModel(unassigned));
    EXPECT_FALSE(manager->isVariableInSurrogateModel(y1));
    EXPECT_FALSE(manager->isVariableInSurrogateModel(y2));
    EXPECT_THROW(manager->isVariableInSurrogateModel(VarPtr()), HandleError);
}

TEST_F(SurrogateModelManagerTest, DropsTheModelAndSignalsOnceWhenThePipelineChanges)
{
    model({y1});
    Counter changes;
    manager->connectSignalModelChanged(changes.slot());
    std::ptrdiff_t aliveWhenSignalled = -1;
    manager->connectSignalModelChanged([&] { aliveWhenSignalled = factory->alive(); });

    pipeline->emitChange();

    EXPECT_EQ(changes.calls, 1);
    EXPECT_EQ(aliveWhenSignalled, 0);
    EXPECT_EQ(factory->alive(), 0);
    EXPECT_EQ(undoStack().count(), 0);
    EXPECT_EQ(pipeline->source->executions, 1);
}

TEST_F(SurrogateModelManagerTest, PrunesRemovedVariablesInOneUndoStepWithTwoSignals)
{
    Counter changes;
    manager->connectSignalModelChanged(changes.slot());

    project->removeVariable(x1);
    pipeline->emitChange();

    EXPECT_EQ(manager->independentVars()->get(), (Variables{x2}));
    EXPECT_EQ(changes.calls, 2);
    EXPECT_EQ(undoStack().count(), 1);
    EXPECT_EQ(undoStack().undoText(), "Change Surrogate Model Variables");
}

TEST_F(SurrogateModelManagerTest, PrunesVariablesThatAreNoInputsOfTheProjectAndKeepsTheOthersOrder)
{
    const VarPtr x3 = addInput("x3");
    const VarPtr unassigned = project->addNumericVariable("z", Variable::Unassigned);
    VarPtr destroyed;
    {
        Project other;
        destroyed = other.addNumericVariable("x3", Variable::Independent);
        manager->independentVars()->set({x3, x2, y1, x3, unassigned, destroyed, x1});
    }
    project->setNature(x2, Variable::Dependent);

    pipeline->emitChange();

    EXPECT_EQ(manager->independentVars()->get(), (Variables{x3, x3, x1}));
}

TEST_F(SurrogateModelManagerTest, DoesNotTakeANewVariableOfTheSameNameForTheOldOne)
{
    project->removeVariable(x1);
    addInput("x1");

    pipeline->emitChange();

    EXPECT_EQ(manager->independentVars()->get(), (Variables{x2}));
}

TEST_F(SurrogateModelManagerTest, SurvivesTheUndoOfAPruneUntilTheNextChangePrunesAgain)
{
    project->removeVariable(x1);
    cases.get()->RemoveColumnByName("x1");
    pipeline->source->Modified();
    pipeline->emitChange();

    undoStack().undo();
    EXPECT_EQ(manager->independentVars()->get(), (Variables{x1, x2}));
    EXPECT_EQ(errorOf([&] { model({y1}); }), notEnoughCases);

    pipeline->emitChange();
    EXPECT_EQ(manager->independentVars()->get(), (Variables{x2}));
}

TEST_F(SurrogateModelManagerTest, PrunesDuringAnUndoWithoutDisturbingTheStack)
{
    UndoStack().push(new GenericUndoCommand([] {},
                                            [this] {
                                                project->removeVariable(x1);
                                                pipeline->emitChange();
                                            },
                                            nullptr, "Add variable", -1));

    undoStack().undo();

    EXPECT_EQ(manager->independentVars()->get(), (Variables{x2}));
    EXPECT_EQ(undoStack().count(), 1);
    EXPECT_EQ(undoStack().index(), 0);
}

TEST_F(SurrogateModelManagerTest, DropsTheModelThatAListenerOfThePruneAskedForBeforeItThrew)
{
    model({y1});
    project->removeVariable(x1);
    manager->independentVars()->connectSignalChanged([this](const Variables&) {
        model({y1});
        throw std::runtime_error("listener");
    });

    EXPECT_THROW(pipeline->emitChange(), std::runtime_error);

    EXPECT_EQ(factory->alive(), 0);
}

TEST_F(SurrogateModelManagerTest, IgnoresThePipelineOnceDestroyed)
{
    const auto list = manager->independentVars();
    manager.reset();
    project->removeVariable(x1);

    pipeline->emitChange();

    EXPECT_EQ(list->get(), (Variables{x1, x2}));
}

TEST_F(SurrogateModelManagerTest, KeepsThePipelineAsLongAsItLives)
{
    const boost::weak_ptr<FakePipeline> watched = pipeline;
    pipeline.reset();
    EXPECT_FALSE(watched.expired());

    manager.reset();
    EXPECT_TRUE(watched.expired());
}

TEST_F(SurrogateModelManagerTest, MayBeDestroyedByAnEarlierListenerOfThePipeline)
{
    manager.reset();
    pipeline = boost::make_shared<FakePipeline>();
    pipeline->connectSignalChanged([this] { manager.reset(); });
    manager = boost::make_shared<SurrogateModelManager>(pipeline);
    manager->independentVars()->set({x1, x2});
    const auto list = manager->independentVars();
    project->removeVariable(x1);

    pipeline->emitChange();

    EXPECT_EQ(manager, nullptr);
    EXPECT_EQ(list->get(), (Variables{x1, x2}));
}

TEST_F(SurrogateModelManagerTest, MayBeDestroyedByAnyListenerOfItsSignalsAndSettings)
{
    const auto destroy = [this] { manager.reset(); };
    const auto setType = [this] { manager->type()->set(Interface::Kriging); };
    const auto undo = [&] {
        setType();
        manager->connectSignalModelChanged(destroy);
        undoStack().undo();
    };
    const VarPtr x3 = addInput("x3");
    struct
    {
        const char* what;
        std::function<void()> connect;
        std::function<void()> change;
    } const rows[] = {
        {"the list, when it is pruned",
         [&] {
             manager->independentVars()->connectSignalChanged([&](const Variables&) { destroy(); });
         },
         [&] {
             project->removeVariable(x1);
             pipeline->emitChange();
         }},
        {"the type",
         [&] { manager->type()->connectSignalChanged([&](Interface::ModelType) { destroy(); }); },
         setType},
        {"the default evaluation point",
         [&] {
             manager->evaluationPoint()->connectSignalChanged(
                 [&](const SurrogateModelUserDistCollection&) { destroy(); });
         },
         [&] {
             const auto list = manager->independentVars();
             list->set({x3});
             EXPECT_EQ(list->get(), (Variables{x3}));
         }},
        {"the model, during undo", [] {}, undo},
    };
    for (const auto& row : rows) {
        manager = boost::make_shared<SurrogateModelManager>(pipeline, factory);
        manager->independentVars()->set({x1, x2});
        row.connect();
        row.change();
        EXPECT_EQ(manager, nullptr) << row.what;
    }
}

TEST_F(SurrogateModelManagerTest, MayBeDestroyedByAListenerOfItsOwnSignal)
{
    Counter later;
    std::vector<boost::signals2::connection> unused(4);
    for (boost::signals2::connection& connection : unused) {
        connection = manager->connectSignalModelChanged([] {});
    }
    manager->connectSignalModelChanged([&] {
        for (const boost::signals2::connection& connection : unused) {
            connection.disconnect();
        }
        manager.reset();
    });
    manager->connectSignalModelChanged(later.slot());

    manager->type()->set(Interface::Kriging);

    EXPECT_EQ(manager, nullptr);
    EXPECT_EQ(later.calls, 0);
}

TEST_F(SurrogateModelManagerTest, LeavesPropertiesThatOutliveItUsable)
{
    const VarPtr x3 = addInput("x3");
    const auto type = manager->type();
    const auto list = manager->independentVars();
    const auto evaluationPoint = manager->evaluationPoint();
    const SurrogateModelUserDistCollection points = evaluationPoint->get();
    manager.reset();

    type->set(Interface::Kriging);
    list->set({x3});
    EXPECT_EQ(evaluationPoint->get(), points);

    undoStack().undo();
    EXPECT_EQ(list->get(), (Variables{x1, x2}));
    undoStack().undo();
    EXPECT_EQ(type->get(), Interface::ResponseSurface);
    undoStack().redo();
    EXPECT_EQ(type->get(), Interface::Kriging);
}
