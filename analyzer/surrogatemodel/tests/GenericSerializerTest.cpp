#include <surrogatemodel/GenericSerializer.h>

#include <mirel_serialization/tests/XmlText.h>

#include <gtest/gtest.h>

namespace {

using TextSerializer = GenericSerializer<std::string>;
using Accessors = TextSerializer::Accessors;
using Names = std::vector<std::string>;

/** Values as an application may hold them, and how often each was set. */
class GenericSerializerTest : public ::testing::Test
{
protected:
    Accessors accessors(std::size_t index)
    {
        return {[this, index] { return values[index]; },
                [this, index](const std::string& value) {
                    values[index] = value;
                    setIndices.push_back(index);
                }};
    }

    TextSerializer textSerializer() { return {"Type", accessors(0).first, accessors(0).second}; }

    TextSerializer attributeSerializer()
    {
        return {"Size", {accessors(0), accessors(1), accessors(2)}, {"Width", "Height", "Depth"}};
    }

    std::vector<std::string> values = {"one", "two", "three"};
    std::vector<std::size_t> setIndices;
};

} // namespace

TEST_F(GenericSerializerTest, WritesItsValueAsTheTextOfItsElement)
{
    EXPECT_EQ(written(textSerializer()), "<Type>one</Type>");
}

TEST_F(GenericSerializerTest, ReadsItsValueFromTheTextOfItsElement)
{
    const std::pair<const char*, const char*> rows[] = {
        {"<Type>new</Type>", "new"},
        {"<Type/>", ""},
        {"<Type> a b </Type>", " a b "},
        {"<Type>a<![CDATA[<b>]]></Type>", "a<b>"},
    };
    for (const auto& [xml, value] : rows) {
        read(textSerializer(), xml);
        EXPECT_EQ(values[0], value) << xml;
    }
    EXPECT_EQ(setIndices.size(), 4U) << "the empty text is passed on, too";
    read(textSerializer(), "<Settings><type>new</type></Settings>");
    EXPECT_EQ(setIndices.size(), 4U) << "left alone without its element";
}

TEST_F(GenericSerializerTest, WritesOneValueUnderOneAttributeName)
{
    const TextSerializer serializer("Type", accessors(0).first, accessors(0).second, {"Value"});

    EXPECT_EQ(written(serializer), "<Type Value=\"one\"/>");
    read(serializer, "<Type Value='new'>text</Type>");
    EXPECT_EQ(values[0], "new");
}

TEST_F(GenericSerializerTest, WritesEachValueUnderItsOwnAttributeName)
{
    QDomDocument document;

    const QDomElement element = attributeSerializer().serialize(document);

    EXPECT_EQ(element.attribute("Width"), "one");
    EXPECT_EQ(element.attribute("Height"), "two");
    EXPECT_EQ(element.attribute("Depth"), "three");
    EXPECT_EQ(element.attributes().count(), 3);
    EXPECT_FALSE(element.hasChildNodes());
}

TEST_F(GenericSerializerTest, ReadsEachValueFromItsOwnAttributeInTheOrderOfTheValues)
{
    read(attributeSerializer(), "<Size Height=''/>");
    EXPECT_EQ(values, (Names{"one", "", "three"})) << "absent attributes leave values alone";
    read(attributeSerializer(), "<Size Depth='c' Height='b' Width='a'/>");
    EXPECT_EQ(values, (Names{"a", "b", "c"}));
    EXPECT_EQ(setIndices, (std::vector<std::size_t>{1, 0, 1, 2}));
}

TEST_F(GenericSerializerTest, BringsTextsWithMarkupBackByteForByte)
{
    for (const std::string& text : textsThatXmlCanCarry()) {
        values = {"<" + text + ">", text, text + "\n"};
        const std::string asText = written(textSerializer());
        const std::string asAttributes = written(attributeSerializer());
        const Names saved = values;

        values = {"", "", ""};
        read(attributeSerializer(), asAttributes);
        EXPECT_EQ(values, saved);
        values[0] = "";
        read(textSerializer(), asText);
        EXPECT_EQ(values[0], saved[0]);
    }
}

TEST_F(GenericSerializerTest, PassesOnWhatASetterThrows)
{
    const TextSerializer serializer(
        "Type", [] { return std::string(); },
        [](const std::string&) { throw std::runtime_error("refused"); });

    EXPECT_THROW(read(serializer, "<Type/>"), std::runtime_error);
}

TEST_F(GenericSerializerTest, RefusesNumbersOfValuesAndNamesThatDoNotFit)
{
    const Accessors one = accessors(0);

    EXPECT_THROW(TextSerializer("A", one.first, one.second, {"a", "b"}), std::invalid_argument);
    EXPECT_THROW(TextSerializer("A", std::vector<Accessors>(), Names()), std::invalid_argument);
    EXPECT_THROW(TextSerializer("A", {one, one, one, one}, {"a", "b", "c", "d"}),
                 std::invalid_argument);
    EXPECT_THROW(TextSerializer("A", {one, one}, Names()), std::invalid_argument);
    EXPECT_THROW(TextSerializer("A", {one, one}, Names{"a"}), std::invalid_argument);
    EXPECT_NO_THROW(TextSerializer("A", {one, one}, {"a", "b"}));
    EXPECT_NO_THROW(TextSerializer("A", std::vector<Accessors>{one}, Names()));
}

TEST_F(GenericSerializerTest, RefusesEmptyFunctionsAndUnusableAttributeNames)
{
    const Accessors one = accessors(0);

    EXPECT_THROW(TextSerializer("A", nullptr, one.second), std::invalid_argument);
    EXPECT_THROW(TextSerializer("A", one.first, nullptr), std::invalid_argument);
    EXPECT_THROW(TextSerializer("A", one.first, one.second, {""}), std::invalid_argument);
    EXPECT_THROW(TextSerializer("A", {one, one}, {"a", "a"}), std::invalid_argument);
}

TEST_F(GenericSerializerTest, RefusesWithASentenceThatNamesTheElement)
{
    try {
        const TextSerializer serializer("Size", {accessors(0), accessors(1)}, Names{"Width"});
        FAIL() << "no error";
    } catch (const std::invalid_argument& error) {
        EXPECT_STREQ(error.what(), "The element \"Size\" needs an attribute name for each of its "
                                   "values, but got 1 for 2.");
    }
}
