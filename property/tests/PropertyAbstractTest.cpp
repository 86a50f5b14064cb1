#include <property/Property.h>

#include "NotNegativeValidator.h"
#include "PropertyListener.h"

#include <mirel_property/tests/VirtualSlot.h>

#include <boost/make_shared.hpp>
#include <boost/weak_ptr.hpp>

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>

namespace {

class CheckedProperty : public veska::Property<int>
{
public:
    explicit CheckedProperty(boost::shared_ptr<const veska::ValidatorInterface<int>> validator)
        : veska::Property<int>(std::move(validator))
    {}
};

// Logs the operations that set() runs, and counts those of the hook.
class LoggingProperty : public veska::Property<int>
{
public:
    mutable std::string log;
    int hookRuns = 0;

protected:
    void hook() override { ++hookRuns; }
    void setValue(const int& value) override
    {
        log += "setValue ";
        veska::Property<int>::setValue(value);
    }
    bool isEqual(const int& value) const override
    {
        log += "isEqual ";
        return veska::Property<int>::isEqual(value);
    }
    void validate(const int& value) const override
    {
        log += "validate ";
        veska::Property<int>::validate(value);
    }
    void emitChanged(const int& value) override
    {
        log += "emitChanged ";
        veska::Property<int>::emitChanged(value);
    }
};

} // namespace

TEST(PropertyAbstract, ValidatesComparesStoresAndEmitsInThisOrderAndNeverRunsItsHook)
{
    LoggingProperty property;
    property.connectSignalChanged([](const int&) {});

    property.set(1);
    EXPECT_EQ(property.log, "validate isEqual setValue emitChanged ");
    property.set(1);
    EXPECT_EQ(property.log, "validate isEqual setValue emitChanged validate isEqual ")
        << "the value that it holds, too";
    property.get();

    EXPECT_EQ(property.hookRuns, 0);
}

TEST(PropertyAbstract, DoesNotCompareARefusedValue)
{
    class RefusingProperty : public LoggingProperty
    {
        void validate(const int&) const override
        {
            throw veska::InvalidPropertyValueException("refused");
        }
    };
    RefusingProperty property;

    EXPECT_THROW(property.set(1), veska::InvalidPropertyValueException);

    EXPECT_EQ(property.log, "");
}

TEST(PropertyAbstract, RefusesAValueWithTheTextOfItsValidator)
{
    const auto validator = boost::make_shared<const NotNegativeValidator>();
    CheckedProperty property(validator);
    property.set(5);
    const PropertyListener<int> listener(property);

    try {
        property.set(-1);
        FAIL() << "the value was accepted";
    } catch (const veska::InvalidPropertyValueException& error) {
        EXPECT_STREQ(error.what(), "must not be negative");
    }
    EXPECT_EQ(property.get(), 5);
    EXPECT_TRUE(listener.values.empty());
    EXPECT_EQ(listener.untypedCalls, 0);
    EXPECT_EQ(property.validator(), validator);
    EXPECT_EQ(validator->calls, 2);
    EXPECT_THROW(CheckedProperty(nullptr), std::invalid_argument);
}

TEST(PropertyAbstract, PassesItsSignalOnToTheUntypedOneAndToListenersOfTheBareSignal)
{
    veska::Property<int> property;
    int calls = 0;
    int received = 0;
    property.connectSignalPropertyChanged([&] { ++calls; });
    property.signalChanged.connect([&](const int& value) { received = value; });

    property.signalChanged(7);

    EXPECT_EQ(calls, 1);
    EXPECT_EQ(received, 7);
}

TEST(PropertyAbstract, DisconnectsBothKindsOfListenersWhenDestroyedThroughItsUntypedBase)
{
    auto property = std::make_unique<veska::Property<int>>();
    const auto typed = property->connectSignalChanged([](const int&) {});
    const auto untyped = property->connectSignalPropertyChanged([] {});
    EXPECT_TRUE(typed.connected());

    std::unique_ptr<veska::PropertyItemInterface> item = std::move(property);
    item.reset();

    EXPECT_FALSE(typed.connected());
    EXPECT_FALSE(untyped.connected());
}

TEST(PropertyAbstract, HoldsTheNewValueWhenAListenerThrows)
{
    veska::Property<int> property;
    const boost::signals2::connection connection = property.connectSignalChanged(
        [](const int&) { throw std::runtime_error("from a listener"); });

    EXPECT_THROW(property.set(1), std::runtime_error);
    EXPECT_EQ(property.get(), 1);

    connection.disconnect();
    property.set(2);
    EXPECT_EQ(property.get(), 2);
}

TEST(PropertyAbstract, MayBeSetByItsOwnListener)
{
    veska::Property<int> property;
    property.connectSignalChanged([&](const int& value) {
        if (value < 3) {
            property.set(value + 1);
        }
    });

    property.set(1);

    EXPECT_EQ(property.get(), 3);
}

TEST(PropertyAbstract, LivesUntilSetIsDoneWhenAListenerDropsTheLastPointer)
{
    auto property = boost::make_shared<LoggingProperty>();
    const boost::weak_ptr<LoggingProperty> watched = property;
    bool isAliveInListener = false;
    property->connectSignalChanged([&](const int&) {
        property.reset();
        isAliveInListener = !watched.expired();
    });

    property->set(1);

    EXPECT_TRUE(isAliveInListener);
    EXPECT_TRUE(watched.expired());
}

TEST(PropertyAbstract, MayBeDestroyedByAListenerOfEitherKind)
{
    for (const bool isTyped : {true, false}) {
        auto property = std::make_unique<veska::Property<int>>();
        int laterCalls = 0;
        if (isTyped) {
            property->connectSignalChanged([&](const int&) { property.reset(); });
        } else {
            property->connectSignalPropertyChanged([&] { property.reset(); });
        }
        for (int i = 0; i < 20; ++i) {
            if (isTyped) {
                property->connectSignalChanged([&](const int&) { ++laterCalls; });
            } else {
                property->connectSignalPropertyChanged([&] { ++laterCalls; });
            }
        }

        property->set(1);

        EXPECT_EQ(property, nullptr);
        EXPECT_EQ(laterCalls, 0) << "called for a destroyed property";
    }
}

namespace {

// Names the operations that only subclasses see.
class OpenProperty : public veska::Property<int>
{
public:
    using veska::PropertyAbstract<int>::hook;
    using veska::PropertyAbstract<int>::setValue;
    using veska::PropertyAbstract<int>::isEqual;
    using veska::PropertyAbstract<int>::validate;
    using veska::PropertyAbstract<int>::emitChanged;
};

} // namespace

TEST(PropertyAbstract, KeepsTheOrderOfItsVirtualOperations)
{
    EXPECT_TRUE(isVirtualSlot(&OpenProperty::hook, 0));
    EXPECT_TRUE(isVirtualSlot(&OpenProperty::setValue, 1));
    EXPECT_TRUE(isVirtualSlot(&OpenProperty::isEqual, 2));
    EXPECT_TRUE(isVirtualSlot(&OpenProperty::validate, 3));
    EXPECT_TRUE(isVirtualSlot(&veska::PropertyAbstract<int>::get, 4));
    EXPECT_TRUE(isVirtualSlot(&OpenProperty::emitChanged, 5));
}

TEST(PropertyAbstract, IsNotCopyable)
{
    EXPECT_FALSE(std::is_copy_constructible<veska::Property<int>>::value);
    EXPECT_FALSE(std::is_copy_assignable<veska::Property<int>>::value);
}

namespace {

class NamedItem : public virtual veska::PropertyItemInterface
{};

class NamedProperty : public veska::Property<int>, public NamedItem
{};

} // namespace

TEST(PropertyAbstract, SharesItsUntypedBaseWithOtherBases)
{
    NamedProperty property;
    veska::PropertyItemInterface& item = property;
    int calls = 0;
    item.connectSignalPropertyChanged([&] { ++calls; });

    property.set(1);

    EXPECT_EQ(calls, 1);
}
