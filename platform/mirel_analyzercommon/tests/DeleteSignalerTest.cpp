#include <mirel_analyzercommon/DeleteSignaler.h>

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <type_traits>

TEST(DeleteSignaler, CallsEveryListenerOnceWhenDestroyed)
{
    auto object = std::make_unique<DeleteSignaler>();
    int calls = 0;
    object->connectSignalDeleted([&] { ++calls; });
    object->connectSignalDeleted([&] { ++calls; });
    EXPECT_EQ(calls, 0);

    object.reset();

    EXPECT_EQ(calls, 2);
}

TEST(DeleteSignaler, SignalsThroughItsBase)
{
    class Derived : public DeleteSignaler
    {};
    std::unique_ptr<DeleteSignaler> object = std::make_unique<Derived>();
    int calls = 0;
    object->connectSignalDeleted([&] { ++calls; });

    object.reset();

    EXPECT_EQ(calls, 1);
}

TEST(DeleteSignaler, ForgetsAListenerThatDisconnected)
{
    auto object = std::make_unique<DeleteSignaler>();
    int calls = 0;
    object->connectSignalDeleted([&] { ++calls; }).disconnect();

    object.reset();

    EXPECT_EQ(calls, 0);
}

TEST(DeleteSignaler, CallsTheOtherListenersWhenOneThrows)
{
    auto object = std::make_unique<DeleteSignaler>();
    int calls = 0;
    object->connectSignalDeleted([&] { ++calls; });
    object->connectSignalDeleted([] { throw std::runtime_error("from a listener"); });
    object->connectSignalDeleted([&] { ++calls; });

    object.reset();

    EXPECT_EQ(calls, 2);
}

TEST(DeleteSignaler, DisconnectsItsListenersWhenDestroyed)
{
    auto object = std::make_unique<DeleteSignaler>();
    const boost::signals2::connection connection = object->connectSignalDeleted([] {});

    object.reset();

    EXPECT_FALSE(connection.connected());
}

TEST(DeleteSignaler, IsNotCopyable)
{
    EXPECT_FALSE(std::is_copy_constructible<DeleteSignaler>::value);
    EXPECT_FALSE(std::is_copy_assignable<DeleteSignaler>::value);
}
