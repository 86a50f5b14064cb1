#include <property/Property.h>
#include <property/UndoablePropertyProxy.h>

#include "NotNegativeValidator.h"
#include "PropertyListener.h"
#include "PropertyValueTypes.h"

#include <mirel_analyzercommon/tests/CleanUndoStack.h>
#include <mirel_property/tests/VirtualSlot.h>

#include <boost/make_shared.hpp>
#include <boost/weak_ptr.hpp>

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

template <class T>
class UndoablePropertyProxyOfTypeTest : public testing::Test
{
public:
    CleanUndoStack cleanUndoStack;
    QUndoStack& stack = UndoStack().stack();
    boost::shared_ptr<veska::Property<T>> target = boost::make_shared<veska::Property<T>>();
    boost::shared_ptr<veska::UndoablePropertyProxy<T>> proxy =
        boost::make_shared<veska::UndoablePropertyProxy<T>>("Numbers", target);
    PropertyListener<T> listener{*proxy};
};

TYPED_TEST_SUITE(UndoablePropertyProxyOfTypeTest, PropertyValueTypes);

TYPED_TEST(UndoablePropertyProxyOfTypeTest, ReadsThroughToItsTargetAndPassesItsChangesOnUnrecorded)
{
    EXPECT_EQ(this->proxy->get(), Samples<TypeParam>::fresh());

    this->target->set(Samples<TypeParam>::first());

    EXPECT_EQ(this->proxy->get(), Samples<TypeParam>::first());
    EXPECT_EQ(this->listener.values, std::vector<TypeParam>{Samples<TypeParam>::first()});
    EXPECT_EQ(this->listener.untypedCalls, 1);
    this->proxy->set(Samples<TypeParam>::first());
    EXPECT_EQ(this->listener.untypedCalls, 1) << "silent when set to the value it holds";
    EXPECT_EQ(this->stack.count(), 0);
}

TYPED_TEST(UndoablePropertyProxyOfTypeTest, RecordsOneStepPerChangeThatUndoAndRedoRestore)
{
    this->proxy->set(Samples<TypeParam>::first());
    EXPECT_EQ(this->target->get(), Samples<TypeParam>::first());
    EXPECT_EQ(this->listener.values, std::vector<TypeParam>{Samples<TypeParam>::first()});
    EXPECT_EQ(this->listener.untypedCalls, 1);
    EXPECT_EQ(this->stack.count(), 1);
    EXPECT_EQ(this->stack.index(), 1);
    EXPECT_EQ(this->stack.undoText(), "Change Numbers");

    this->proxy->set(Samples<TypeParam>::second());
    this->stack.undo();
    EXPECT_EQ(this->target->get(), Samples<TypeParam>::first());
    this->stack.undo();
    EXPECT_EQ(this->target->get(), Samples<TypeParam>::fresh());
    this->stack.redo();
    EXPECT_EQ(this->target->get(), Samples<TypeParam>::first());
    this->stack.redo();
    EXPECT_EQ(this->target->get(), Samples<TypeParam>::second());
}

TYPED_TEST(UndoablePropertyProxyOfTypeTest, CallsItsListenersTwiceForAnUndoAndForARedo)
{
    const PropertyListener<TypeParam> ofTarget(*this->target);
    this->proxy->set(Samples<TypeParam>::first());

    const PropertyListener<TypeParam> undoListener(*this->proxy);
    this->stack.undo();
    EXPECT_EQ(undoListener.values, std::vector<TypeParam>(2, Samples<TypeParam>::fresh()));
    EXPECT_EQ(undoListener.untypedCalls, 2);
    EXPECT_EQ(ofTarget.values,
              (std::vector<TypeParam>{Samples<TypeParam>::first(), Samples<TypeParam>::fresh()}))
        << "those of the target once";
    EXPECT_EQ(ofTarget.untypedCalls, 2);

    const PropertyListener<TypeParam> redoListener(*this->proxy);
    this->stack.redo();
    EXPECT_EQ(redoListener.values, std::vector<TypeParam>(2, Samples<TypeParam>::first()));
    EXPECT_EQ(redoListener.untypedCalls, 2);
}

TYPED_TEST(UndoablePropertyProxyOfTypeTest, DoesNothingOnUndoWhenTheTargetHoldsTheOldValueAlready)
{
    this->proxy->set(Samples<TypeParam>::first());
    this->target->set(Samples<TypeParam>::fresh());
    const PropertyListener<TypeParam> later(*this->proxy);

    this->stack.undo();

    EXPECT_EQ(this->target->get(), Samples<TypeParam>::fresh());
    EXPECT_TRUE(later.values.empty());
    EXPECT_EQ(later.untypedCalls, 0);
}

namespace {

// A target whose faults a test can choose.
class Target : public veska::Property<int>
{
public:
    Target() = default;
    explicit Target(boost::shared_ptr<const veska::ValidatorInterface<int>> validator)
        : veska::Property<int>(std::move(validator))
    {}

    bool refuses = false;

protected:
    void validate(const int& value) const override
    {
        if (refuses) {
            throw veska::InvalidPropertyValueException("refused by the target");
        }
        veska::Property<int>::validate(value);
    }
};

using Proxy = veska::UndoablePropertyProxy<int>;

class MergingProxy : public Proxy
{
public:
    explicit MergingProxy(boost::shared_ptr<veska::PropertyAbstract<int>> target)
        : Proxy("Merging", std::move(target))
    {
        mergeId = 7;
    }
};

// Puts values in as undo and redo do.
class ApplyingProxy : public Proxy
{
public:
    explicit ApplyingProxy(boost::shared_ptr<veska::PropertyAbstract<int>> target)
        : Proxy("Applying", std::move(target))
    {}

    using Proxy::applyValue;
};

struct UndoablePropertyProxyTest : testing::Test
{
    CleanUndoStack cleanUndoStack;
    QUndoStack& stack = UndoStack().stack();
    boost::shared_ptr<Target> target = boost::make_shared<Target>();
    boost::shared_ptr<Proxy> proxy = boost::make_shared<Proxy>("Number", target);
    std::string log;

    // Pushes a command that logs "r" and `name` when redone, "u" and `name` when undone.
    void push(const std::string& name)
    {
        UndoStack().push(new GenericUndoCommand([this, name] { log += "r" + name + " "; },
                                                [this, name] { log += "u" + name + " "; }, nullptr,
                                                QString::fromStdString(name), -1));
    }
};

} // namespace

TEST_F(UndoablePropertyProxyTest, TakesItsDisplayNameAsUtf8)
{
    Proxy("Gr\xc3\xb6\xc3\x9f"
          "e %1%",
          target)
        .set(1);

    // The proxy is destroyed, its step is still listed.
    EXPECT_EQ(stack.text(0), QString::fromUtf8("Change Gr\xc3\xb6\xc3\x9f"
                                               "e %1%"));
}

TEST_F(UndoablePropertyProxyTest, ListsApplyValueAfterTheOperationsOfAProperty)
{
    // And behind the two forms of the destructor, which are theirs too.
    EXPECT_TRUE(isVirtualSlot(&ApplyingProxy::applyValue, 8));
}

TEST_F(UndoablePropertyProxyTest, SharesTheValidatorOfItsTarget)
{
    EXPECT_EQ(proxy->validator(), target->validator());
}

TEST_F(UndoablePropertyProxyTest, KeepsItsTargetAlive)
{
    const boost::weak_ptr<Target> watched = target;
    target.reset();

    proxy->set(1);
    EXPECT_EQ(proxy->get(), 1);

    stack.clear();
    proxy.reset();
    EXPECT_TRUE(watched.expired());
}

TEST_F(UndoablePropertyProxyTest, RecordsEveryChangeAsAStepOfItsOwnApartFromOtherProxies)
{
    const auto otherTarget = boost::make_shared<Target>();
    auto other = boost::make_shared<Proxy>("Other", otherTarget);
    proxy->set(1);
    other->set(10);
    EXPECT_EQ(stack.count(), 2);
    EXPECT_EQ(stack.command(1)->child(0)->id(), -1);

    other.reset();
    stack.undo();
    EXPECT_EQ(otherTarget->get(), 10);
    EXPECT_EQ(target->get(), 1);

    stack.undo();
    EXPECT_EQ(target->get(), 0);
}

// Refusals and exceptions

TEST_F(UndoablePropertyProxyTest, RecordsNothingWhenTheSharedValidatorRefuses)
{
    const auto validator = boost::make_shared<const NotNegativeValidator>();
    target = boost::make_shared<Target>(validator);
    proxy = boost::make_shared<Proxy>("Number", target);
    const PropertyListener<int> listener(*proxy);

    EXPECT_THROW(proxy->set(-1), veska::InvalidPropertyValueException);

    EXPECT_EQ(validator->calls, 1) << "the target has been asked too";
    EXPECT_EQ(target->get(), 0);
    EXPECT_EQ(stack.count(), 0);
    EXPECT_TRUE(listener.values.empty());

    proxy->set(1);
    EXPECT_EQ(validator->calls, 3) << "asked for the proxy and for its target";
}

TEST_F(UndoablePropertyProxyTest, LeavesNoTraceOfARefusalOfItsTarget)
{
    proxy->set(1);
    proxy->set(2);
    stack.undo();
    target->refuses = true;

    EXPECT_THROW(proxy->set(3), veska::InvalidPropertyValueException);

    EXPECT_EQ(target->get(), 1);
    EXPECT_EQ(stack.count(), 2);
    EXPECT_EQ(stack.index(), 1);
    EXPECT_TRUE(stack.canRedo());
    EXPECT_EQ(stack.undoText(), "Change Number");

    target->refuses = false;
    proxy->set(4);
    EXPECT_EQ(stack.count(), 2);
    stack.undo();
    EXPECT_EQ(target->get(), 1);
    stack.redo();
    EXPECT_EQ(target->get(), 4);
}

TEST_F(UndoablePropertyProxyTest, LetsARefusalPassOutOfUndoAndRecordsAgainAfterIt)
{
    proxy->set(1);
    target->refuses = true;

    EXPECT_THROW(stack.undo(), veska::InvalidPropertyValueException);
    EXPECT_EQ(stack.index(), 1);
    EXPECT_EQ(target->get(), 1);

    target->refuses = false;
    proxy->set(2);
    EXPECT_EQ(stack.count(), 2);
    stack.undo();
    stack.undo();
    EXPECT_EQ(target->get(), 0);
}

TEST_F(UndoablePropertyProxyTest, KeepsTheValueButRecordsNothingWhenAListenerThrows)
{
    const boost::signals2::connection connection = proxy->connectSignalChanged(
        [](const int&) { throw std::runtime_error("from a listener"); });

    EXPECT_THROW(proxy->set(1), std::runtime_error);
    EXPECT_EQ(target->get(), 1);
    EXPECT_EQ(stack.count(), 0);

    connection.disconnect();
    proxy->set(2);
    EXPECT_EQ(stack.count(), 1);
    stack.undo();
    EXPECT_EQ(target->get(), 1);
}

TEST_F(UndoablePropertyProxyTest, KeepsTheStepOfWhatListenersPushedBeforeOneThrew)
{
    const boost::signals2::connection connection = proxy->connectSignalChanged([&](const int&) {
        push("A");
        throw std::runtime_error("from a listener");
    });

    EXPECT_THROW(proxy->set(1), std::runtime_error);
    connection.disconnect();

    EXPECT_EQ(stack.count(), 1);
    EXPECT_EQ(stack.command(0)->childCount(), 1);
    stack.undo();
    EXPECT_EQ(log, "rA uA ");
}

// What listeners push

TEST_F(UndoablePropertyProxyTest, JoinsWhatListenersPushToItsStep)
{
    const boost::signals2::scoped_connection connection =
        target->connectSignalChanged([this](const int& value) {
            push("A");
            EXPECT_EQ(target->get(), value);
        });

    proxy->set(1);

    EXPECT_EQ(stack.count(), 1);
    EXPECT_EQ(stack.undoText(), "Change Number");
    ASSERT_EQ(stack.command(0)->childCount(), 2);
    EXPECT_EQ(stack.command(0)->child(0)->text(), "A") << "the target is changed before the push";
    EXPECT_EQ(stack.command(0)->child(1)->text(), "Change Number");
}

TEST_F(UndoablePropertyProxyTest, UndoesWhatListenersPushedAfterItsOwnChange)
{
    boost::signals2::connection connection =
        target->connectSignalChanged([this](const int&) { push("A"); });
    proxy->set(1);
    connection.disconnect();
    target->connectSignalChanged([this](const int& value) { log += std::to_string(value) + " "; });
    log.clear();

    stack.undo();
    stack.redo();

    EXPECT_EQ(log, "0 uA rA 1 ");
}

TEST_F(UndoablePropertyProxyTest, RecordsNothingThatListenersPushDuringUndoAndRedo)
{
    proxy->set(1);
    target->connectSignalChanged([this](const int&) {
        const UndoStack::Macro macro("set off");
        push("A");
    });

    stack.undo();
    EXPECT_EQ(stack.count(), 1);
    EXPECT_EQ(stack.index(), 0);
    stack.redo();
    EXPECT_EQ(stack.count(), 1);
    EXPECT_EQ(stack.index(), 1);

    EXPECT_EQ(log, "rA rA ");
}

TEST_F(UndoablePropertyProxyTest, SuspendsRecordingItselfWhileItAppliesAValue)
{
    ApplyingProxy applying(target);
    target->refuses = true;
    EXPECT_THROW(applying.applyValue(1), veska::InvalidPropertyValueException);
    target->refuses = false;
    boost::signals2::scoped_connection pushing =
        target->connectSignalChanged([this](const int&) { push("A"); });

    applying.applyValue(1);
    EXPECT_EQ(target->get(), 1);
    EXPECT_EQ(log, "rA ");
    EXPECT_EQ(stack.count(), 0);

    pushing.disconnect();
    applying.set(2);
    EXPECT_EQ(stack.count(), 1) << "recorded again, once applying a value has failed, too";
}

TEST_F(UndoablePropertyProxyTest, RecordsNothingWhileRecordingIsSuspended)
{
    const PropertyListener<int> listener(*proxy);
    {
        const UndoStack::SuspendUndoRecording suspension;
        proxy->set(1);
    }

    EXPECT_EQ(target->get(), 1);
    EXPECT_EQ(listener.values, std::vector<int>{1});
    EXPECT_EQ(stack.count(), 0);
}

TEST_F(UndoablePropertyProxyTest, JoinsAMacroThatIsOpenAlready)
{
    {
        const UndoStack::Macro macro("several");
        proxy->set(1);
        proxy->set(2);
    }

    EXPECT_EQ(stack.count(), 1);
    EXPECT_EQ(stack.undoText(), "several");
    stack.undo();
    EXPECT_EQ(target->get(), 0);
}

// The inner change is recorded first: undo and redo both end with the outer value, which is the
// last one that they put back.
TEST_F(UndoablePropertyProxyTest, EndsWithTheOuterValueWhenAListenerHasSetItAgain)
{
    boost::signals2::connection connection;
    connection = proxy->connectSignalChanged([&](const int&) {
        connection.disconnect();
        proxy->set(2);
    });

    proxy->set(1);
    EXPECT_EQ(target->get(), 2);
    EXPECT_EQ(stack.count(), 1);
    EXPECT_EQ(stack.command(0)->childCount(), 2);

    stack.undo();
    EXPECT_EQ(target->get(), 1);
    stack.redo();
    EXPECT_EQ(target->get(), 1);
}

// Merging

TEST_F(UndoablePropertyProxyTest, MergesSuccessiveChangesWhenASubclassGivesItAnId)
{
    const auto merging = boost::make_shared<MergingProxy>(target);
    merging->set(1);
    merging->set(2);
    merging->set(3);

    EXPECT_EQ(stack.count(), 1);
    EXPECT_EQ(stack.undoText(), "Change Merging");
    stack.undo();
    EXPECT_EQ(target->get(), 0);
    stack.redo();
    EXPECT_EQ(target->get(), 3);
}

TEST_F(UndoablePropertyProxyTest, OpensNoMacroWhenItsChangesMerge)
{
    const auto merging = boost::make_shared<MergingProxy>(target);
    target->connectSignalChanged([this](const int&) { push("A"); });

    merging->set(1);

    EXPECT_EQ(stack.count(), 2);
}

// Destruction

TEST_F(UndoablePropertyProxyTest, LeavesCommandsWithoutEffectWhenDestroyed)
{
    proxy->set(1);
    proxy->set(2);

    proxy.reset();
    stack.undo();
    stack.redo();
    stack.undo();
    stack.undo();

    EXPECT_EQ(target->get(), 2);
}

TEST_F(UndoablePropertyProxyTest, IgnoresItsTargetOnceDestroyed)
{
    int calls = 0;
    const auto connection = proxy->connectSignalChanged([&](const int&) { ++calls; });
    const std::size_t slotsBefore = target->signalChanged.num_slots();

    proxy.reset();
    target->set(1);

    EXPECT_EQ(calls, 0);
    EXPECT_FALSE(connection.connected());
    EXPECT_EQ(target->signalChanged.num_slots(), slotsBefore - 1);
}

TEST_F(UndoablePropertyProxyTest, MayBeDroppedByItsListenerDuringSet)
{
    const boost::weak_ptr<Proxy> watched = proxy;
    proxy->connectSignalChanged([this](const int&) { proxy.reset(); });

    proxy->set(1);

    EXPECT_TRUE(watched.expired());
    EXPECT_EQ(target->get(), 1);
    stack.undo();
    EXPECT_EQ(target->get(), 1) << "the step of a proxy that has gone did something";
}

TEST_F(UndoablePropertyProxyTest, MayBeDroppedWithItsTargetByItsListenerDuringSet)
{
    const boost::weak_ptr<Target> watched = target;
    proxy->connectSignalPropertyChanged([this] {
        target.reset();
        proxy.reset();
    });

    proxy->set(1);

    EXPECT_TRUE(watched.expired());
}

TEST_F(UndoablePropertyProxyTest, MayBeDroppedByItsListenerWhenItsTargetChanges)
{
    int laterCalls = 0;
    proxy->connectSignalChanged([this](const int&) { proxy.reset(); });
    proxy->connectSignalChanged([&](const int&) { ++laterCalls; });
    proxy->connectSignalChanged([&](const int&) { ++laterCalls; });

    target->set(1);

    EXPECT_EQ(proxy, nullptr);
    EXPECT_EQ(laterCalls, 0);
}

TEST_F(UndoablePropertyProxyTest, MayBeDroppedByItsListenerDuringUndo)
{
    const boost::weak_ptr<Proxy> watched = proxy;
    proxy->set(1);
    proxy->connectSignalChanged([this](const int&) { proxy.reset(); });

    stack.undo();

    EXPECT_TRUE(watched.expired());
    EXPECT_EQ(target->get(), 0);
    proxy = boost::make_shared<Proxy>("Number", target);
    proxy->set(5);
    EXPECT_EQ(stack.undoText(), "Change Number");
    EXPECT_EQ(stack.index(), stack.count());
}

TEST(UndoablePropertyProxy, RefusesAMissingTarget)
{
    EXPECT_THROW(veska::UndoablePropertyProxy<int>("Numbers", nullptr), std::invalid_argument);
}
