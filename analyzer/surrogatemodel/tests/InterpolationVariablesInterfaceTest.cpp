#include <surrogatemodel/InterpolationVariablesInterface.h>

#include "FixedVariables.h"

#include <mirel_property/tests/VirtualSlot.h>

#include <gtest/gtest.h>

#include <memory>
#include <type_traits>

namespace {

class EmittingInItsHook : public FixedVariables
{
    void signalInterpolationVariablesChangedConnected() const override
    {
        signalInterpolationVariablesChanged();
    }
};

class Suspendable : public virtual SuspendableInterface
{};

class SuspendableAlongTwoPaths : public FixedVariables, public Suspendable
{};

TEST(InterpolationVariablesInterface, SignalsAChangeUntilTheConnectionEnds)
{
    const FixedVariables variables;
    int calls = 0;
    boost::signals2::connection connection =
        variables.connectSignalInterpolationVariablesChanged([&calls] { ++calls; });

    variables.signalInterpolationVariablesChanged();
    EXPECT_EQ(calls, 1);
    connection.disconnect();
    variables.signalInterpolationVariablesChanged();

    EXPECT_EQ(calls, 1);
}

TEST(InterpolationVariablesInterface, RunsTheHookOncePerConnectWithTheNewSlotConnected)
{
    const EmittingInItsHook variables;
    int first = 0;
    int second = 0;

    variables.connectSignalInterpolationVariablesChanged([&first] { ++first; });
    EXPECT_EQ(first, 1) << "the hook's emission reaches the slot that was just connected";
    variables.connectSignalInterpolationVariablesChanged([&second] { ++second; });

    EXPECT_EQ(first, 2);
    EXPECT_EQ(second, 1);
}

TEST(InterpolationVariablesInterface, ConnectingToTheSignalItselfDoesNotRunTheHook)
{
    const EmittingInItsHook variables;
    int calls = 0;

    variables.signalInterpolationVariablesChanged.connect([&calls] { ++calls; });

    EXPECT_EQ(calls, 0);
}

TEST(InterpolationVariablesInterface, DisconnectsListenersWhenDeletedThroughSuspendableInterface)
{
    std::unique_ptr<SuspendableInterface> variables = std::make_unique<FixedVariables>();
    const boost::signals2::connection connection =
        dynamic_cast<InterpolationVariablesInterface&>(*variables)
            .connectSignalInterpolationVariablesChanged([] {});

    variables.reset();

    EXPECT_FALSE(connection.connected());
}

TEST(InterpolationVariablesInterface, InheritsSuspendableInterfaceVirtually)
{
    // Ambiguous, and hence no conversion, if there were two of them.
    EXPECT_TRUE((std::is_convertible<SuspendableAlongTwoPaths*, SuspendableInterface*>::value));
}

TEST(InterpolationVariablesInterface, KeepsTheOrderOfItsVirtualOperations)
{
    EXPECT_TRUE(std::is_abstract<SuspendableInterface>::value);
    // Behind the two forms of the destructor.
    EXPECT_TRUE(isVirtualSlot(&SuspendableInterface::suspend, 2));
    EXPECT_TRUE(isVirtualSlot(&SuspendableInterface::resume, 3));
    EXPECT_TRUE(isVirtualSlot(&InterpolationVariablesInterface::inputIndependentVariables, 4));
    EXPECT_TRUE(isVirtualSlot(&InterpolationVariablesInterface::dependentVariables, 5));
    EXPECT_TRUE(isVirtualSlot(&InterpolationVariablesInterface::isVariableEmployed, 6));
}

} // namespace
