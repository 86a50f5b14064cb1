#include <property/Property.h>

#include "PropertyListener.h"
#include "PropertyValueTypes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <new>
#include <vector>

template <class T>
class PropertyTest : public testing::Test
{
public:
    veska::Property<T> property;
    PropertyListener<T> listener{property};
};

TYPED_TEST_SUITE(PropertyTest, PropertyValueTypes);

TYPED_TEST(PropertyTest, StartsWithAnEmptyOrZeroValueWhateverTheMemoryHeld)
{
    using Property = veska::Property<TypeParam>;
    alignas(Property) unsigned char memory[sizeof(Property)];
    std::fill(std::begin(memory), std::end(memory), static_cast<unsigned char>(0x5a));

    auto* property = new (memory) Property;

    EXPECT_EQ(property->get(), Samples<TypeParam>::fresh());
    property->~Property();
}

TYPED_TEST(PropertyTest, AnswersTheValueThatWasSetAndCallsBothKindsOfListenersOnce)
{
    EXPECT_EQ(this->property.get(), Samples<TypeParam>::fresh());
    this->property.set(Samples<TypeParam>::first());
    EXPECT_EQ(this->property.get(), Samples<TypeParam>::first());
    EXPECT_EQ(this->listener.values, std::vector<TypeParam>{Samples<TypeParam>::first()});
    EXPECT_EQ(this->listener.untypedCalls, 1);

    this->property.set(Samples<TypeParam>::second());
    EXPECT_EQ(this->property.get(), Samples<TypeParam>::second());
}

TYPED_TEST(PropertyTest, IsSilentWhenSetToTheValueItHolds)
{
    this->property.set(Samples<TypeParam>::fresh());
    EXPECT_TRUE(this->listener.values.empty());
    EXPECT_EQ(this->listener.untypedCalls, 0);

    this->property.set(Samples<TypeParam>::first());
    this->property.set(Samples<TypeParam>::first());
    EXPECT_EQ(this->listener.values.size(), 1u);
    EXPECT_EQ(this->listener.untypedCalls, 1);
}

TYPED_TEST(PropertyTest, AnswersTheNewValueWithinAListener)
{
    TypeParam seenByTyped = Samples<TypeParam>::fresh();
    TypeParam seenByUntyped = Samples<TypeParam>::fresh();
    this->property.connectSignalChanged(
        [&](const TypeParam&) { seenByTyped = this->property.get(); });
    this->property.connectSignalPropertyChanged([&] { seenByUntyped = this->property.get(); });

    this->property.set(Samples<TypeParam>::first());

    EXPECT_EQ(seenByTyped, Samples<TypeParam>::first());
    EXPECT_EQ(seenByUntyped, Samples<TypeParam>::first());
}

TYPED_TEST(PropertyTest, AcceptsEveryValueThroughAValidatorOfItsOwn)
{
    const veska::Property<TypeParam> other;

    ASSERT_NE(this->property.validator(), nullptr);
    EXPECT_TRUE(this->property.validator()->validate(Samples<TypeParam>::first()).isValid());
    EXPECT_NE(this->property.validator(), other.validator());
}

TEST(PropertyOfAVector, TakesAnotherOrderOrLengthAsAChange)
{
    veska::Property<std::vector<int>> property;
    property.set({1, 2});
    const PropertyListener<std::vector<int>> listener(property);

    property.set({2, 1});
    property.set({2, 1, 3});
    property.set({2, 1});

    EXPECT_EQ(listener.values, (std::vector<std::vector<int>>{{2, 1}, {2, 1, 3}, {2, 1}}));
}

TEST(PropertyOfAVector, KeepsACopyOfWhatWasSet)
{
    veska::Property<std::vector<int>> property;
    std::vector<int> original = {1, 2};
    property.set(original);

    original[0] = 9;

    EXPECT_EQ(property.get(), (std::vector<int>{1, 2}));
}
