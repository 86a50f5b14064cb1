#include <mirel_serialization/SerializerInterface.h>

#include <mirel_property/tests/VirtualSlot.h>

#include <QDomDocument>

#include <gtest/gtest.h>

#include <memory>
#include <type_traits>

namespace {

class LeftSerializer : public virtual SerializerInterface
{};

class RightSerializer : public virtual SerializerInterface
{};

class SerializerByTwoPaths : public LeftSerializer, public RightSerializer
{
public:
    explicit SerializerByTwoPaths(bool& destroyed) : destroyed(destroyed) {}
    ~SerializerByTwoPaths() override { destroyed = true; }

    std::string name() const override { return "Both"; }
    QDomElement serialize(QDomDocument& document) const override
    {
        return document.createElement("Both");
    }
    void deserialize(QDomElement&) const override {}

private:
    bool& destroyed;
};

} // namespace

TEST(SerializerInterface, IsOneBaseWhenInheritedVirtuallyByTwoPaths)
{
    bool destroyed = false;
    std::unique_ptr<const SerializerInterface> serializer =
        std::make_unique<SerializerByTwoPaths>(destroyed);

    EXPECT_EQ(serializer->name(), "Both");
    serializer.reset();

    EXPECT_TRUE(destroyed);
}

TEST(SerializerInterface, KeepsTheOrderOfItsOperations)
{
    // The destructor, which comes first, has two slots.
    EXPECT_TRUE(isVirtualSlot(&SerializerInterface::name, 2));
    EXPECT_TRUE(isVirtualSlot(&SerializerInterface::serialize, 3));
    EXPECT_TRUE(isVirtualSlot(&SerializerInterface::deserialize, 4));
    EXPECT_TRUE(std::is_abstract<SerializerInterface>::value);
}
