#include <property/AllowAnyValueValidator.h>

#include "PropertyValueTypes.h"

#include <mirel_property/tests/VirtualSlot.h>

#include <gtest/gtest.h>

#include <memory>

template <class T>
class AllowAnyValueValidatorTest : public testing::Test
{};

TYPED_TEST_SUITE(AllowAnyValueValidatorTest, PropertyValueTypes);

TYPED_TEST(AllowAnyValueValidatorTest, AcceptsEveryValueWithoutAText)
{
    const std::unique_ptr<veska::ValidatorInterface<TypeParam>> validator =
        std::make_unique<veska::AllowAnyValueValidator<TypeParam>>();

    for (const TypeParam& value : {Samples<TypeParam>::fresh(), Samples<TypeParam>::first()}) {
        EXPECT_TRUE(validator->validate(value).isValid());
        EXPECT_EQ(validator->validate(value).errorString(), "");
    }
}

namespace {

class AnotherValidator : public virtual veska::ValidatorInterface<int>
{};

class ValidatorByTwoPaths : public veska::AllowAnyValueValidator<int>, public AnotherValidator
{};

} // namespace

TEST(AllowAnyValueValidator, SharesItsInterfaceWithOtherBases)
{
    const ValidatorByTwoPaths validator;
    const veska::ValidatorInterface<int>& interface = validator;

    EXPECT_TRUE(interface.validate(7).isValid());
}

TEST(AllowAnyValueValidatorInterface, ListsValidateBeforeTheDestructor)
{
    EXPECT_TRUE(isVirtualSlot(&veska::ValidatorInterface<int>::validate, 0));
}
