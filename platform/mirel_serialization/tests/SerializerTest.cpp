#include <mirel_serialization/Serializer.h>

#include "XmlText.h"

#include <mirel_property/tests/VirtualSlot.h>

#include <boost/make_shared.hpp>

#include <functional>
#include <stdexcept>
#include <type_traits>
#include <vector>

namespace {

/** A serializer whose own content is the attribute "value"; counts and reports what it reads. */
class ValueSerializer : public Serializer
{
public:
    explicit ValueSerializer(const std::string& name, std::string value = "")
        : Serializer(name), value(std::move(value))
    {}

    void serializeSelf(QDomElement& element) const override
    {
        if (onSelf) {
            onSelf();
        }
        QDomElement own = element.ownerDocument().createElement("Own");
        own.setAttribute("value", QString::fromStdString(value));
        element.appendChild(own);
    }

    void deserializeSelf(QDomElement& element) const override
    {
        if (onSelf) {
            onSelf();
        }
        const QDomElement own = element.firstChildElement("Own");
        readValues.push_back(own.attribute("value").toStdString());
        if (order != nullptr) {
            order->push_back(name());
        }
    }

    std::string value;
    std::function<void()> onSelf;
    mutable std::vector<std::string> readValues;
    std::vector<std::string>* order = nullptr;
};

using Values = std::vector<std::string>;

boost::shared_ptr<ValueSerializer> makeValue(const std::string& name, const std::string& value = "")
{
    return boost::make_shared<ValueSerializer>(name, value);
}

/** The text of the std::invalid_argument that `call` ends with; empty if it does not. */
std::string refusalOf(const std::function<void()>& call)
{
    try {
        call();
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
    return {};
}

} // namespace

TEST(Serializer, HasTheNameOfItsElement)
{
    const Serializer serializer("Settings");

    EXPECT_EQ(serializer.name(), "Settings");
    EXPECT_EQ(written(serializer), "<Settings/>");
}

TEST(Serializer, RefusesNamesThatAreNoElementNames)
{
    for (const char* name : {"", " ", "a b", "1a", "-a", "a<b", "a\"", "Gr\xC3\xB6\xC3\x9F"}) {
        EXPECT_EQ(refusalOf([name] { const Serializer serializer(name); }),
                  std::string("A serializer needs the name of an XML element, but got \"") + name +
                      "\".");
    }
    EXPECT_EQ(written(Serializer("_a-b.C9")), "<_a-b.C9/>");
}

TEST(Serializer, ReturnsAnElementOfTheDocumentThatIsNotInsertedYet)
{
    QDomDocument document;

    const QDomElement element = Serializer("Settings").serialize(document);

    EXPECT_EQ(element.tagName(), "Settings");
    EXPECT_TRUE(element.ownerDocument() == document);
    EXPECT_TRUE(element.parentNode().isNull());
    EXPECT_FALSE(document.hasChildNodes());
}

TEST(Serializer, WritesSubElementsInTheOrderAddedThenItsOwnContent)
{
    ValueSerializer serializer("Settings", "own");
    serializer.addSubElement(boost::make_shared<Serializer>("Second"));
    serializer.addSubElement(boost::make_shared<Serializer>("First"));

    EXPECT_EQ(written(serializer), "<Settings><Second/><First/><Own value=\"own\"/></Settings>");
}

TEST(Serializer, ReadsSubElementsInTheOrderAddedThenItsOwnContent)
{
    Values order;
    ValueSerializer serializer("Settings");
    const auto second = makeValue("Second");
    const auto first = makeValue("First");
    serializer.addSubElement(second);
    serializer.addSubElement(first);
    for (ValueSerializer* each : {&serializer, second.get(), first.get()}) {
        each->order = &order;
    }

    read(serializer, "<Settings><Own/><First/><Second/></Settings>");

    EXPECT_EQ(order, (Values{"Second", "First", "Settings"}));
}

TEST(Serializer, ReadsTheFirstElementThatHasItsNameHereOrAmongTheDirectChildren)
{
    const std::pair<const char*, Values> rows[] = {
        {"<Settings><Own value='1'/></Settings>", {"1"}},
        {"<Project><Other/><Settings><Own value='1'/></Settings>"
         "<Settings><Own value='2'/></Settings></Project>",
         {"1"}},
        {"<Settings><Settings><Own value='inner'/></Settings></Settings>", {""}},
        {"<Project/>", {}},
        {"<Project><settings/><Deeper><Settings/></Deeper></Project>", {}},
    };
    for (const auto& [xml, values] : rows) {
        const ValueSerializer serializer("Settings");
        QDomElement null;
        serializer.deserialize(null);
        read(serializer, xml);
        EXPECT_EQ(serializer.readValues, values) << xml;
    }
}

TEST(Serializer, PassesASubElementTheFirstDirectChildWithItsName)
{
    ValueSerializer serializer("Settings");
    const auto type = makeValue("Type");
    const auto inner = makeValue("Settings");
    serializer.addSubElement(type);
    serializer.addSubElement(inner);

    read(serializer, "<Settings><Deeper><Type><Own value='deep'/></Type></Deeper>"
                     "<Type><Own value='1'/></Type><Type><Own value='2'/></Type></Settings>");
    EXPECT_EQ(type->readValues, Values{"1"});
    EXPECT_TRUE(inner->readValues.empty()) << "the outer element is not its own";
    read(serializer, "<Settings><Deeper><Type/></Deeper><Settings><Own value='inner'/></Settings>"
                     "</Settings>");
    EXPECT_EQ(type->readValues, Values{"1"}) << "left alone where its element is missing";
    EXPECT_EQ(inner->readValues, Values{"inner"});
    EXPECT_EQ(serializer.readValues.size(), 2U) << "the own content is read all the same";
}

TEST(Serializer, ReadsButDoesNotWriteDeserializeOnlySubElements)
{
    Values order;
    Serializer serializer("Settings");
    const auto old = makeValue("Old");
    const auto present = makeValue("Present");
    old->order = &order;
    present->order = &order;
    serializer.addDeserializeOnlySubElement(old);
    serializer.addSubElement(present);

    read(serializer, "<Settings><Present/><Old><Own value='1'/></Old></Settings>");
    EXPECT_EQ(order, (Values{"Old", "Present"})) << "in the order added";
    EXPECT_EQ(old->readValues, Values{"1"});
    serializer.replaceSubElement(makeValue("Old"));
    EXPECT_EQ(written(serializer), "<Settings><Present><Own value=\"\"/></Present></Settings>")
        << "nor once it is replaced";
}

TEST(Serializer, ReplacesASubElementInItsPlace)
{
    Serializer serializer("Settings");
    const auto replaced = makeValue("First", "old");
    const auto replacing = makeValue("First", "new");
    serializer.addSubElement(replaced);
    serializer.addSubElement(boost::make_shared<Serializer>("Second"));

    serializer.replaceSubElement(replacing);

    EXPECT_EQ(written(serializer),
              "<Settings><First><Own value=\"new\"/></First><Second/></Settings>");
    read(serializer, "<Settings><First/></Settings>");
    EXPECT_TRUE(replaced->readValues.empty());
    EXPECT_EQ(replacing->readValues.size(), 1U);
    EXPECT_EQ(replaced.use_count(), 1) << "released";
    EXPECT_EQ(replacing.use_count(), 2) << "shared";
}

TEST(Serializer, RefusesSubElementsThatItCannotHave)
{
    const auto settings = boost::make_shared<Serializer>("Settings");
    Serializer& serializer = *settings;
    serializer.addSubElement(makeValue("Type", "1"));
    const std::string second = "The element \"Settings\" already has a sub-element named \"Type\".";
    const std::string null =
        "A sub-element of \"Settings\" needs a serializer, but got a null pointer.";

    EXPECT_EQ(refusalOf([&] { serializer.replaceSubElement(makeValue("Size")); }),
              "The element \"Settings\" has no sub-element named \"Size\" to replace.");
    EXPECT_EQ(refusalOf([&] { serializer.addSubElement(makeValue("Type", "2")); }), second);
    EXPECT_EQ(refusalOf([&] { serializer.addDeserializeOnlySubElement(makeValue("Type")); }),
              second);
    EXPECT_EQ(refusalOf([&] { serializer.addSubElement(nullptr); }), null);
    EXPECT_EQ(refusalOf([&] { serializer.addDeserializeOnlySubElement(nullptr); }), null);
    EXPECT_EQ(refusalOf([&] { serializer.replaceSubElement(nullptr); }), null);
    EXPECT_EQ(refusalOf([&] { serializer.addSubElement(settings); }),
              "The element \"Settings\" cannot be a sub-element of itself.");

    EXPECT_EQ(written(serializer), "<Settings><Type><Own value=\"1\"/></Type></Settings>");
    EXPECT_EQ(settings.use_count(), 1);
}

TEST(Serializer, LeavesOutASubElementThatReturnsANullElement)
{
    class Silent : public SerializerInterface
    {
    public:
        std::string name() const override { return "Silent"; }
        QDomElement serialize(QDomDocument&) const override { return {}; }
        void deserialize(QDomElement&) const override {}
    };
    Serializer serializer("Settings");
    serializer.addSubElement(boost::make_shared<Silent>());
    serializer.addSubElement(boost::make_shared<Serializer>("Type"));

    EXPECT_EQ(written(serializer), "<Settings><Type/></Settings>");
}

TEST(Serializer, FinishesARunWithTheSubElementsItStartedWith)
{
    Serializer serializer("Settings");
    const auto first = makeValue("First");
    serializer.addSubElement(first);
    serializer.addSubElement(makeValue("Second", "old"));
    first->onSelf = [&serializer, first = first.get()] {
        serializer.replaceSubElement(makeValue("Second", "new"));
        serializer.addSubElement(boost::make_shared<Serializer>("Third"));
        first->onSelf = nullptr;
    };

    EXPECT_EQ(written(serializer), "<Settings><First><Own value=\"\"/></First>"
                                   "<Second><Own value=\"old\"/></Second></Settings>");
    EXPECT_EQ(written(serializer), "<Settings><First><Own value=\"\"/></First>"
                                   "<Second><Own value=\"new\"/></Second><Third/></Settings>");
}

TEST(Serializer, PassesOnWhatASubElementThrowsAndReadsNoFurther)
{
    ValueSerializer serializer("Settings");
    const auto before = makeValue("Before");
    const auto failing = makeValue("Failing");
    failing->onSelf = [] { throw std::runtime_error("cannot be read"); };
    serializer.addSubElement(before);
    serializer.addSubElement(failing);

    EXPECT_THROW(read(serializer, "<Settings><Before/><Failing/><Own/></Settings>"),
                 std::runtime_error);

    EXPECT_EQ(before->readValues.size(), 1U);
    EXPECT_TRUE(serializer.readValues.empty());
}

TEST(Serializer, KeepsTheOrderOfItsOperations)
{
    EXPECT_TRUE(std::is_abstract<SerializerInterface>::value);
    EXPECT_TRUE(std::has_virtual_destructor<SerializerInterface>::value);
    // The destructor, which comes first, has two slots.
    EXPECT_TRUE(isVirtualSlot(&SerializerInterface::name, 2));
    EXPECT_TRUE(isVirtualSlot(&SerializerInterface::serialize, 3));
    EXPECT_TRUE(isVirtualSlot(&SerializerInterface::deserialize, 4));
    // The first two that it adds, behind those of the interface.
    EXPECT_TRUE(isVirtualSlot(&ValueSerializer::serializeSelf, 5));
    EXPECT_TRUE(isVirtualSlot(&ValueSerializer::deserializeSelf, 6));
    EXPECT_TRUE((std::is_base_of<SerializerInterface, Serializer>::value));
    EXPECT_FALSE(std::is_copy_constructible<Serializer>::value);
    EXPECT_FALSE(std::is_copy_assignable<Serializer>::value);
}
