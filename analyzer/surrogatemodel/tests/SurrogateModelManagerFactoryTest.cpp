#include <surrogatemodel/SurrogateModelManager.h>

#include "ChoosingFactory.h"
#include "ManagerTest.h"

#include <boost/make_shared.hpp>

#include <stdexcept>

namespace {

/** Hands out one finished model. */
class RestoringFactory : public SurrogateModelFactory
{
public:
    boost::shared_ptr<SurrogateModelInterface> makeModel(ModelType, const std::vector<double*>&,
                                                         const std::vector<double*>&,
                                                         int) const override
    {
        return restored;
    }

    bool needsCases() const override { return false; }

    boost::shared_ptr<SurrogateModelInterface> restored;
};

/** The manager of ManagerTest with a factory that has a choice. */
class SurrogateModelManagerFactoryTest : public ManagerTest
{
protected:
    SurrogateModelManagerFactoryTest()
    {
        manager = boost::make_shared<SurrogateModelManager>(pipeline, factory);
        manager->independentVars()->set({x1, x2});
        undoStack().clear();
    }

    boost::shared_ptr<ChoosingFactory> factory = boost::make_shared<ChoosingFactory>();
};

} // namespace

TEST_F(SurrogateModelManagerFactoryTest, DropsTheModelAndSignalsOnceWhenTheChoiceChanges)
{
    model({y1});
    Counter changes;
    manager->connectSignalModelChanged(changes.slot());
    int aliveWhenSignalled = -1;
    manager->connectSignalModelChanged([&] { aliveWhenSignalled = recordedModels().alive; });

    factory->choice->set(1);

    EXPECT_EQ(changes.calls, 1);
    EXPECT_EQ(aliveWhenSignalled, 0);
    model({y1});
    EXPECT_EQ(fitCount(), 2U);
}

TEST_F(SurrogateModelManagerFactoryTest, KeepsAModelOfATypeThatTheChoiceDoesNotConcern)
{
    manager->type()->set(Interface::Kriging);
    model({y1});
    Counter changes;
    manager->connectSignalModelChanged(changes.slot());

    factory->choice->set(1);

    EXPECT_EQ(changes.calls, 0);
    EXPECT_EQ(recordedModels().alive, 1);
}

TEST_F(SurrogateModelManagerFactoryTest, TakesEveryTypeButZeroForAResponseSurface)
{
    manager->type()->set(static_cast<Interface::ModelType>(2));
    model({y1});

    factory->choice->set(1);

    EXPECT_EQ(recordedModels().alive, 0);
}

TEST_F(SurrogateModelManagerFactoryTest, ServesSeveralManagers)
{
    const SurrogateModelManager other(pipeline, factory);
    other.independentVars()->set({x1});
    model({y1});
    other.model(std::set<VarPtr>{y1});

    factory->choice->set(1);

    EXPECT_EQ(recordedModels().alive, 0);
}

TEST_F(SurrogateModelManagerFactoryTest, MayOutliveTheManager)
{
    manager.reset();

    factory->choice->set(1);

    EXPECT_EQ(recordedModels().alive, 0);
}

TEST_F(SurrogateModelManagerFactoryTest, MayDestroyTheManagerThroughAListener)
{
    model({y1});
    manager->connectSignalModelChanged([this] { manager.reset(); });

    factory->choice->set(1);

    EXPECT_EQ(manager, nullptr);
    EXPECT_EQ(recordedModels().alive, 0);
}

TEST_F(SurrogateModelManagerFactoryTest, MayHandOutAFinishedModelThatNeedsNoCases)
{
    const auto restoring = boost::make_shared<RestoringFactory>();
    restoring->restored = factory->makeModel(Interface::ResponseSurface, {}, {}, 0);
    manager = boost::make_shared<SurrogateModelManager>(pipeline, restoring);
    manager->independentVars()->set({x1, x2});
    includeAll(false);

    EXPECT_EQ(&model({y1}), restoring->restored.get());
    EXPECT_EQ(&manager->model(std::set<int>{0, 1}), restoring->restored.get());
    manager->type()->set(Interface::Kriging);
    EXPECT_EQ(&model({y1}), restoring->restored.get());
    manager.reset();
    EXPECT_EQ(recordedModels().alive, 1);
}

TEST_F(SurrogateModelManagerFactoryTest, IsRefusedByTheManagerWhenItIsNull)
{
    EXPECT_THROW(SurrogateModelManager(pipeline, nullptr), std::invalid_argument);
    EXPECT_THROW(SurrogateModelManager(nullptr, factory), std::invalid_argument);
    EXPECT_EQ(undoStack().count(), 0);
}
