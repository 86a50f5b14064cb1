#include <mirel_datamanagement/WeakPtr.h>

#include <boost/smart_ptr/make_shared.hpp>

#include <gtest/gtest.h>

#include <cstddef>
#include <set>
#include <string>
#include <vector>

namespace {

struct Thing
{
    bool inProject = true;
    bool isInProject() const { return inProject; }
};

using ThingPtr = WeakPtr<Thing, std::size_t>;

std::string messageOfLocking(const ThingPtr& handle)
{
    try {
        handle.lock();
    } catch (const HandleError& error) {
        return error.what();
    }
    return "no exception";
}

} // namespace

TEST(WeakPtr, IsNullByDefaultAndOfANullObjectWhateverTheIdentity)
{
    for (const ThingPtr& handle : {ThingPtr(), ThingPtr(boost::shared_ptr<Thing>(), 7)}) {
        EXPECT_TRUE(handle.isNull());
        EXPECT_FALSE(handle.valid());
        EXPECT_EQ(handle.id(), 0u);
        EXPECT_EQ(handle, ThingPtr());
        EXPECT_EQ(messageOfLocking(handle),
                  "A null handle was given where a variable or record of the project is expected.");
        EXPECT_THROW(handle.lock(), veska::ExceptionBase);
    }
}

TEST(WeakPtr, HasAnIdentityAndLocksItsObjectWithoutKeepingItAlive)
{
    auto thing = boost::make_shared<Thing>();
    const ThingPtr handle(thing, 7);
    EXPECT_FALSE(handle.isNull());
    EXPECT_EQ(handle.id(), 7u);
    EXPECT_EQ(handle.lock(), thing);
    EXPECT_EQ(handle.tryLock(), thing);
    EXPECT_EQ(thing.use_count(), 1);

    thing.reset();
    EXPECT_EQ(handle.tryLock(), nullptr);
    EXPECT_FALSE(handle.valid());
    EXPECT_FALSE(handle.isNull());
    EXPECT_EQ(messageOfLocking(handle), "The variable or record of this handle no longer exists: "
                                        "its project has been closed.");
}

TEST(WeakPtr, IsValidWhileItsObjectIsInItsProjectAndLocksItAllTheSame)
{
    const auto thing = boost::make_shared<Thing>();
    const ThingPtr handle(thing, 7);
    for (const bool isInProject : {true, false, true}) {
        thing->inProject = isInProject;
        EXPECT_EQ(handle.valid(), isInProject);
        EXPECT_EQ(handle.lock(), thing);
    }
}

TEST(WeakPtr, ComparesByIdentity)
{
    const auto thing = boost::make_shared<Thing>();
    const auto other = boost::make_shared<Thing>();
    EXPECT_TRUE(ThingPtr(thing, 7) == ThingPtr(thing, 7));
    EXPECT_FALSE(ThingPtr(thing, 7) != ThingPtr(thing, 7));
    EXPECT_TRUE(ThingPtr(thing, 7) != ThingPtr(other, 8));
    EXPECT_TRUE(ThingPtr(thing, 7) < ThingPtr(other, 8));
    EXPECT_FALSE(ThingPtr(other, 8) < ThingPtr(thing, 7));
    EXPECT_FALSE(ThingPtr(thing, 7) < ThingPtr(thing, 7));
}

TEST(WeakPtr, SortsNullFirstAndEqualOnlyToNull)
{
    const auto thing = boost::make_shared<Thing>();
    const ThingPtr smallest(thing, 0);
    EXPECT_TRUE(ThingPtr() == ThingPtr());
    EXPECT_FALSE(ThingPtr() < ThingPtr());
    EXPECT_TRUE(ThingPtr() < smallest);
    EXPECT_FALSE(smallest < ThingPtr());
    EXPECT_TRUE(ThingPtr() != smallest);

    const WeakPtr<Thing, int> negative(thing, -1);
    EXPECT_TRUE((WeakPtr<Thing, int>() < negative));
    EXPECT_FALSE((negative < WeakPtr<Thing, int>()));
}

TEST(WeakPtr, KeepsItsPlaceInASetAfterItsObjectIsDestroyed)
{
    std::vector<boost::shared_ptr<Thing>> things;
    things.reserve(3);
    std::set<ThingPtr> handles;
    for (const std::size_t id : {3u, 1u, 2u}) {
        things.push_back(boost::make_shared<Thing>());
        handles.insert(ThingPtr(things.back(), id));
    }
    const ThingPtr second(things[2], 2);

    things.clear();

    std::vector<std::size_t> order;
    order.reserve(handles.size());
    for (const ThingPtr& handle : handles) {
        order.push_back(handle.id());
    }
    EXPECT_EQ(order, (std::vector<std::size_t>{1, 2, 3}));
    EXPECT_EQ(handles.count(second), 1u);
    EXPECT_EQ(*handles.find(second), second);
}
