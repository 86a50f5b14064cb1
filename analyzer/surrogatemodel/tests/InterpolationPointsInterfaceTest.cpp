#include <surrogatemodel/InterpolationPointsInterface.h>

#include <mirel_property/tests/VirtualSlot.h>

#include <gtest/gtest.h>

#include <memory>
#include <type_traits>

namespace {

class TwoPoints : public virtual InterpolationPointsInterface
{
public:
    explicit TwoPoints(double lowPoint) : low(lowPoint) {}
    ~TwoPoints() override { ++destroyed; }

    void get(std::vector<double>& values) const override { values = {low, low + 1.0}; }

    static int destroyed;

private:
    double low;
};

int TwoPoints::destroyed = 0;

class Named : public virtual InterpolationPointsInterface
{};

class NamedTwoPoints : public TwoPoints, public Named
{
public:
    NamedTwoPoints() : TwoPoints(3.0) {}
    void get(std::vector<double>& values) const override { TwoPoints::get(values); }
};

TEST(InterpolationPointsInterface, IsAbstractAndWithoutState)
{
    EXPECT_TRUE(std::is_abstract<InterpolationPointsInterface>::value);
    EXPECT_TRUE(std::has_virtual_destructor<InterpolationPointsInterface>::value);
    // Nothing but the pointer to the virtual functions.
    EXPECT_EQ(sizeof(InterpolationPointsInterface), sizeof(void*));
}

TEST(InterpolationPointsInterface, ListsGetBeforeTheDestructor)
{
    EXPECT_TRUE(isVirtualSlot(&InterpolationPointsInterface::get, 0));
}

TEST(InterpolationPointsInterface, LetsImplementationsBeCopied)
{
    const TwoPoints original(5.0);

    const TwoPoints copy(original);

    std::vector<double> values;
    copy.get(values);
    EXPECT_EQ(values, (std::vector<double>{5.0, 6.0}));
}

TEST(InterpolationPointsInterface, AssigningTheInterfaceCopiesNothing)
{
    TwoPoints target(1.0);
    const TwoPoints source(5.0);

    static_cast<InterpolationPointsInterface&>(target) = source;

    std::vector<double> values;
    target.get(values);
    EXPECT_EQ(values, (std::vector<double>{1.0, 2.0}));
}

TEST(InterpolationPointsInterface, DeletesImplementationsThroughTheInterface)
{
    TwoPoints::destroyed = 0;

    std::unique_ptr<InterpolationPointsInterface> points = std::make_unique<TwoPoints>(1.0);
    points.reset();

    EXPECT_EQ(TwoPoints::destroyed, 1);
}

TEST(InterpolationPointsInterface, CanBeReachedAlongTwoPaths)
{
    const NamedTwoPoints points;
    const InterpolationPointsInterface& source = points;

    std::vector<double> values;
    source.get(values);

    EXPECT_EQ(values, (std::vector<double>{3.0, 4.0}));
}

} // namespace
