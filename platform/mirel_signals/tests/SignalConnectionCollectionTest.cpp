#include <mirel_signals/SignalConnectionCollection.h>

#include <boost/signals2/signal.hpp>

#include <gtest/gtest.h>

#include <memory>
#include <type_traits>

namespace {

struct SignalConnectionCollectionTest : testing::Test
{
    boost::signals2::signal<void()> signal;
    int calls = 0;
    SignalConnectionCollection connections;

    boost::signals2::connection connect()
    {
        return signal.connect([this] { ++calls; });
    }
};

} // namespace

TEST_F(SignalConnectionCollectionTest, SilencesEveryConnectionWhileBlockedAndDeliversNothingLater)
{
    connections.add(connect());
    connections.unblock(); // accepted, though nothing is blocked
    connections.add(connect());
    signal();
    EXPECT_EQ(calls, 2);

    connections.block();
    connections.block(); // not counted
    signal();
    connections.add(connect());
    signal();
    EXPECT_EQ(calls, 2) << "a connection that is added while blocked is, too";

    connections.unblock();
    EXPECT_EQ(calls, 2);
    signal();
    EXPECT_EQ(calls, 5);
}

TEST_F(SignalConnectionCollectionTest, DisconnectsWhenDestroyed)
{
    auto shortLived = std::make_unique<SignalConnectionCollection>();
    boost::signals2::connection connection = connect();
    shortLived->add(connection);

    shortLived.reset();

    EXPECT_FALSE(connection.connected());
    signal();
    EXPECT_EQ(calls, 0);
}

TEST_F(SignalConnectionCollectionTest, SilencesSlotsThatARunningEmissionHasYetToReach)
{
    auto shortLived = std::make_unique<SignalConnectionCollection>();
    signal.connect([&] { shortLived.reset(); });
    shortLived->add(connect());

    signal();

    EXPECT_EQ(calls, 0);
}

TEST_F(SignalConnectionCollectionTest, DisconnectsAlsoWhileBlocked)
{
    auto shortLived = std::make_unique<SignalConnectionCollection>();
    const boost::signals2::connection connection = connect();
    shortLived->add(connection);
    shortLived->block();

    shortLived.reset();

    EXPECT_FALSE(connection.connected());
}

TEST_F(SignalConnectionCollectionTest, OutlivesTheSignal)
{
    auto other = std::make_unique<boost::signals2::signal<void()>>();
    connections.add(other->connect([] {}));
    other.reset();
    EXPECT_NO_THROW(connections.block());
    EXPECT_NO_THROW(connections.unblock());
}

TEST_F(SignalConnectionCollectionTest, IsNotCopyable)
{
    EXPECT_FALSE(std::is_copy_constructible<SignalConnectionCollection>::value);
    EXPECT_FALSE(std::is_copy_assignable<SignalConnectionCollection>::value);
}
