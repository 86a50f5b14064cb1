#include <mirel_property/PropertyItemInterface.h>

#include <gtest/gtest.h>

#include <type_traits>

namespace {

class Item : public veska::PropertyItemInterface
{
public:
    void emitChanged() const { signalPropertyChanged()(); }
    mutable int hookRuns = 0;
    bool emitInHook = false;

private:
    void signalPropertyChangedConnected() const override
    {
        ++hookRuns;
        if (emitInHook) {
            emitChanged();
        }
    }
};

} // namespace

TEST(PropertyItemInterface, CallsConnectedListenersForAChange)
{
    Item item;
    int calls = 0;
    item.connectSignalPropertyChanged([&] { ++calls; });

    item.emitChanged();

    EXPECT_EQ(calls, 1);
}

TEST(PropertyItemInterface, RunsItsHookOncePerConnectWithTheSlotConnected)
{
    Item item;
    item.emitInHook = true;
    int calls = 0;

    item.connectSignalPropertyChanged([&] { ++calls; });
    EXPECT_EQ(calls, 1);
    item.connectSignalPropertyChanged([] {});

    EXPECT_EQ(item.hookRuns, 2);
}

TEST(PropertyItemInterface, DisconnectsItsListenersWhenDestroyed)
{
    boost::signals2::connection connection;
    {
        Item item;
        connection = item.connectSignalPropertyChanged([] {});
        EXPECT_TRUE(connection.connected());
    }
    EXPECT_FALSE(connection.connected());
}

TEST(PropertyItemInterface, IsNotCopyable)
{
    EXPECT_FALSE(std::is_copy_constructible<Item>::value);
    EXPECT_FALSE(std::is_copy_assignable<Item>::value);
}
