#include <surrogatemodel/SurrogateModelManager.h>

#include "ManagerTest.h"

#include <stdexcept>

namespace {

using SurrogateModelManagerFactoryTest = ManagerTest;

} // namespace

TEST_F(SurrogateModelManagerFactoryTest, DropsTheModelAndSignalsOnceWhenTheFactoryChanges)
{
    model({y1});
    Counter changes;
    manager->connectSignalModelChanged(changes.slot());
    std::ptrdiff_t aliveWhenSignalled = -1;
    manager->connectSignalModelChanged([&] { aliveWhenSignalled = factory->alive(); });

    factory->emitChanged(Interface::ResponseSurface);

    EXPECT_EQ(changes.calls, 1);
    EXPECT_EQ(aliveWhenSignalled, 0);
    model({y1});
    EXPECT_EQ(fitCount(), 2U);
}

TEST_F(SurrogateModelManagerFactoryTest, KeepsAModelOfATypeThatTheChangeDoesNotConcern)
{
    manager->type()->set(Interface::Kriging);
    model({y1});
    Counter changes;
    manager->connectSignalModelChanged(changes.slot());

    factory->emitChanged(Interface::ResponseSurface);

    EXPECT_EQ(changes.calls, 0);
    EXPECT_EQ(factory->alive(), 1);
}

TEST_F(SurrogateModelManagerFactoryTest, TreatsEveryTypeButZeroAsAResponseSurface)
{
    manager->type()->set(static_cast<Interface::ModelType>(2));
    model({y1});

    factory->emitChanged(Interface::ResponseSurface);

    EXPECT_EQ(factory->alive(), 0);
}

TEST_F(SurrogateModelManagerFactoryTest, ServesSeveralManagers)
{
    const SurrogateModelManager other(pipeline, factory);
    other.independentVars()->set({x1});
    model({y1});
    other.model(std::set<VarPtr>{y1});

    factory->emitChanged(Interface::ResponseSurface);

    EXPECT_EQ(factory->alive(), 0);
}

TEST_F(SurrogateModelManagerFactoryTest, MayOutliveTheManagerAndDestroyItThroughAListener)
{
    model({y1});
    manager->connectSignalModelChanged([this] { manager.reset(); });

    factory->emitChanged(Interface::ResponseSurface);
    EXPECT_EQ(manager, nullptr);
    factory->emitChanged(Interface::ResponseSurface);

    EXPECT_EQ(factory->alive(), 0);
}

TEST_F(SurrogateModelManagerFactoryTest, MayHandOutAFinishedModelThatNeedsNoCases)
{
    factory->finished = boost::make_shared<FakeModel>();
    includeAll(false);

    EXPECT_EQ(&model({y1}), factory->finished.get());
    EXPECT_EQ(&manager->model(std::set<int>{0, 1}), factory->finished.get());
    manager->type()->set(Interface::Kriging);
    EXPECT_EQ(&model({y1}), factory->finished.get());
    manager.reset();
    EXPECT_EQ(factory->finished.use_count(), 1);
}

TEST_F(SurrogateModelManagerFactoryTest, IsRefusedByTheManagerWhenItOrThePipelineIsNull)
{
    EXPECT_THROW(SurrogateModelManager(pipeline, nullptr), std::invalid_argument);
    EXPECT_THROW(SurrogateModelManager(nullptr, factory), std::invalid_argument);
    EXPECT_THROW(SurrogateModelManager(nullptr), std::invalid_argument);
    EXPECT_EQ(undoStack().count(), 0);
}
