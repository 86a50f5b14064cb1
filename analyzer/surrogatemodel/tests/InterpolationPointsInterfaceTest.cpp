#include <surrogatemodel/InterpolationPointsInterface.h>

#include <mirel_property/tests/VirtualSlot.h>

#include <gtest/gtest.h>

#include <type_traits>

namespace {

class NoPoints : public virtual InterpolationPointsInterface
{
public:
    void get(std::vector<double>&) const override {}
};

} // namespace

TEST(InterpolationPointsInterface, IsAbstractWithoutStateAndLetsImplementationsBeCopied)
{
    EXPECT_TRUE(std::is_abstract<InterpolationPointsInterface>::value);
    EXPECT_TRUE(std::has_virtual_destructor<InterpolationPointsInterface>::value);
    // Nothing but the pointer to the virtual functions.
    EXPECT_EQ(sizeof(InterpolationPointsInterface), sizeof(void*));

    EXPECT_TRUE(std::is_copy_constructible<NoPoints>::value);
    EXPECT_TRUE(std::is_copy_assignable<NoPoints>::value);
    EXPECT_TRUE(std::is_copy_assignable<InterpolationPointsInterface>::value);

    EXPECT_TRUE(isVirtualSlot(&InterpolationPointsInterface::get, 0));
}
