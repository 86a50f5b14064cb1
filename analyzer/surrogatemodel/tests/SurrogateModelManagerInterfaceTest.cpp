#include <surrogatemodel/SurrogateModelManagerInterface.h>

#include "FakeManager.h"

#include <mirel_property/tests/VirtualSlot.h>

#include <gtest/gtest.h>

#include <type_traits>

namespace {

using Interface = SurrogateModelManagerInterface;

/** Counts the runs of the hook, and emits the signal in it on request. */
class CountingManager : public FakeManager
{
public:
    mutable int hookRuns = 0;
    bool emitInHook = false;

private:
    void signalModelChangedConnected() const override
    {
        ++hookRuns;
        if (emitInHook) {
            signalModelChanged();
        }
    }
};

} // namespace

TEST(SurrogateModelManagerInterface, HasModelTypesKrigingZeroAndResponseSurfaceOneIn32Bits)
{
    EXPECT_EQ(static_cast<int>(Interface::Kriging), 0);
    EXPECT_EQ(static_cast<int>(Interface::ResponseSurface), 1);
    EXPECT_TRUE((std::is_same<std::underlying_type_t<Interface::ModelType>, std::int32_t>::value));
    EXPECT_EQ(sizeof(Interface::ModelType), 4U);
}

TEST(SurrogateModelManagerInterface, AnswersEverythingThroughAConstReference)
{
    using VariablesForm = SurrogateModelInterface& (Interface::*)(const std::set<VarPtr>&) const;
    using OffsetsForm = SurrogateModelInterface& (Interface::*)(const std::set<int>&) const;
    const VariablesForm byVariables = &Interface::model;
    const OffsetsForm byOffsets = &Interface::model;
    EXPECT_TRUE(byVariables != nullptr && byOffsets != nullptr);

    const FakeManager manager;
    const Interface& face = manager;
    EXPECT_TRUE(
        (std::is_same<decltype(face.independentVars()),
                      boost::shared_ptr<veska::PropertyAbstract<std::vector<VarPtr>>>>::value));
    EXPECT_TRUE(
        (std::is_same<decltype(face.type()),
                      boost::shared_ptr<veska::PropertyAbstract<Interface::ModelType>>>::value));
    EXPECT_TRUE(
        (std::is_same<
            decltype(face.evaluationPoint()),
            boost::shared_ptr<veska::PropertyAbstract<SurrogateModelUserDistCollection>>>::value));
    EXPECT_FALSE(face.isVariableInSurrogateModel(VarPtr()));
    EXPECT_EQ(face.offsetForVariableName("y"), 0U);
    EXPECT_TRUE(std::is_abstract<Interface>::value);
    EXPECT_TRUE(std::has_virtual_destructor<Interface>::value);
}

TEST(SurrogateModelManagerInterface, KeepsTheOrderOfItsOperations)
{
    using VariablesForm = SurrogateModelInterface& (Interface::*)(const std::set<VarPtr>&) const;
    using OffsetsForm = SurrogateModelInterface& (Interface::*)(const std::set<int>&) const;

    // The hook, which is private, comes first.
    EXPECT_TRUE(isVirtualSlot(static_cast<VariablesForm>(&Interface::model), 1));
    EXPECT_TRUE(isVirtualSlot(static_cast<OffsetsForm>(&Interface::model), 2));
    EXPECT_TRUE(isVirtualSlot(&Interface::independentVars, 3));
    EXPECT_TRUE(isVirtualSlot(&Interface::type, 4));
    EXPECT_TRUE(isVirtualSlot(&Interface::evaluationPoint, 5));
    EXPECT_TRUE(isVirtualSlot(&Interface::isVariableInSurrogateModel, 6));
    EXPECT_TRUE(isVirtualSlot(&Interface::offsetForVariableName, 7));
}

TEST(SurrogateModelManagerInterface, SignalsThatTheModelChangedWithItsConnectionOnRequest)
{
    const FakeManager manager;
    EXPECT_EQ(manager.signalModelChanged.num_slots(), 0U);
    int calls = 0;
    int extendedCalls = 0;
    manager.connectSignalModelChanged([&calls] { ++calls; });
    manager.connectSignalModelChangedExtended([&](const boost::signals2::connection& connection) {
        ++extendedCalls;
        connection.disconnect();
    });

    manager.signalModelChanged();
    manager.signalModelChanged();

    EXPECT_EQ(calls, 2);
    EXPECT_EQ(extendedCalls, 1);
}

TEST(SurrogateModelManagerInterface, RunsItsHookOnceForEachConnectWithTheSlotConnected)
{
    CountingManager manager;
    manager.emitInHook = true;
    int calls = 0;

    manager.connectSignalModelChanged([&calls] { ++calls; });
    EXPECT_EQ(calls, 1);
    manager.connectSignalModelChangedExtended(
        [&calls](const boost::signals2::connection&) { ++calls; });

    EXPECT_EQ(calls, 3);
    EXPECT_EQ(manager.hookRuns, 2);
}

TEST(SurrogateModelManagerInterface, DoesNotRunItsHookForListenersOfTheBareSignal)
{
    const CountingManager manager;

    manager.signalModelChanged.connect([] {});

    EXPECT_EQ(manager.hookRuns, 0);
}

TEST(SurrogateModelManagerInterface, DisconnectsAllListenersWhenDestroyed)
{
    boost::signals2::connection plain;
    boost::signals2::connection extended;
    {
        const FakeManager manager;
        plain = manager.connectSignalModelChanged([] {});
        extended =
            manager.connectSignalModelChangedExtended([](const boost::signals2::connection&) {});
        EXPECT_TRUE(plain.connected());
        EXPECT_TRUE(extended.connected());
    }
    EXPECT_FALSE(plain.connected());
    EXPECT_FALSE(extended.connected());
}
