// These tests run without an application object: warnings go to standard error.
#include <surrogatemodel/SurrogateModelUserDistCollectionSerializer.h>

#include "CapturedErrors.h"
#include "ProjectTest.h"
#include "UserDistXml.h"

#include <mirel_property/tests/VirtualSlot.h>
#include <mirel_serialization/tests/XmlText.h>
#include <property/Property.h>
#include <property/UndoablePropertyProxy.h>
#include <property/tests/PropertyListener.h>

#include <QUndoStack>

#include <stdexcept>

namespace {

using Collection = SurrogateModelUserDistCollection;

/** The inputs x and y, a property that holds nothing and its serializer. */
class SurrogateModelUserDistCollectionSerializerTest : public ProjectTest
{
protected:
    SurrogateModelUserDistCollectionSerializerTest()
    {
        addInput("x");
        addInput("y");
    }

    void hold(const std::string& name, Collection::VariableMode mode, const std::string& text)
    {
        property->set(with(property->get(), name, mode, text));
    }

    /** Reads a block with these children; warnings are kept. */
    void load(const std::string& children)
    {
        const CapturedErrors errors;
        read(serializer, userDistBlock(children));
        warnings += errors.text();
    }

    /** The text of the std::out_of_range that loading these children ends with. */
    std::string failureOfLoading(const std::string& children)
    {
        const CapturedErrors errors;
        std::string failure;
        try {
            read(serializer, userDistBlock(children));
        } catch (const std::out_of_range& error) {
            failure = error.what();
        }
        warnings += errors.text();
        return failure;
    }

    /** The children of the block that is written now. */
    std::vector<QDomElement> writtenChildren()
    {
        document = QDomDocument();
        document.appendChild(serializer.serialize(document));
        std::vector<QDomElement> children;
        for (QDomElement child = document.documentElement().firstChildElement(); !child.isNull();
             child = child.nextSiblingElement()) {
            children.push_back(child);
        }
        return children;
    }

    std::vector<std::string> writtenNames()
    {
        std::vector<std::string> names;
        for (const QDomElement& child : writtenChildren()) {
            names.push_back(child.attribute("Name").toStdString());
        }
        return names;
    }

    boost::shared_ptr<veska::Property<Collection>> property =
        boost::make_shared<veska::Property<Collection>>();
    SurrogateModelUserDistCollectionSerializer serializer{property};
    QDomDocument document;
    std::string warnings;
};

using Names = std::vector<std::string>;

constexpr char invalidKey[] = "bimap<>: invalid key";

} // namespace

TEST_F(SurrogateModelUserDistCollectionSerializerTest, HasTheNameOfItsBlock)
{
    EXPECT_EQ(serializer.name(), "SurrogateModelUserDefinedVariableDistribution");
    EXPECT_EQ(written(serializer), "<SurrogateModelUserDefinedVariableDistribution/>");
}

TEST_F(SurrogateModelUserDistCollectionSerializerTest,
       WritesAnElementWithThreeAttributesForEachVariable)
{
    hold("x", Collection::UserDefined, "0 - 1 : 3");
    hold("y", Collection::Auto, "2");

    const std::vector<QDomElement> children = writtenChildren();

    ASSERT_EQ(children.size(), 2U);
    EXPECT_EQ(children[0].attribute("Mode"), "UserDefined");
    EXPECT_EQ(children[0].attribute("Distribution"), "0 - 1 : 3");
    EXPECT_EQ(children[0].attribute("Name"), "x");
    EXPECT_EQ(children[1].attribute("Mode"), "Auto");
    EXPECT_EQ(children[1].attribute("Distribution"), "2") << "kept in Auto mode too";
    EXPECT_EQ(children[1].attribute("Name"), "y");
    for (const QDomElement& child : children) {
        EXPECT_EQ(child.tagName(), "Variable");
        EXPECT_EQ(child.attributes().count(), 3);
        EXPECT_FALSE(child.hasChildNodes());
    }
}

TEST_F(SurrogateModelUserDistCollectionSerializerTest, WritesVariablesInByteOrderOfTheirNames)
{
    // As UTF-16 the last two would change places.
    const Names names = {"B", "a", "a b", "\xEF\xBC\xA1", "\xF0\x9F\x98\x80"};
    for (auto name = names.rbegin(); name != names.rend(); ++name) {
        addInput(*name);
        hold(*name, Collection::Auto, "1");
    }

    EXPECT_EQ(writtenNames(), names);
}

TEST_F(SurrogateModelUserDistCollectionSerializerTest, DoesNotWriteNamesThatTheProjectDoesNotHave)
{
    hold("gone", Collection::UserDefined, "1");
    hold("", Collection::UserDefined, "1");
    hold("y", Collection::UserDefined, "1");

    EXPECT_EQ(writtenNames(), Names{"y"});
}

TEST_F(SurrogateModelUserDistCollectionSerializerTest, WritesFaultyAndEmptyTextsAsTheyAreHeld)
{
    hold("x", Collection::UserDefined, " 1 - 0 : 3 <");
    hold("y", Collection::Auto, "");

    const std::vector<QDomElement> children = writtenChildren();

    ASSERT_EQ(children.size(), 2U);
    EXPECT_EQ(children[0].attribute("Distribution"), " 1 - 0 : 3 <");
    EXPECT_TRUE(children[1].hasAttribute("Distribution"));
    EXPECT_EQ(children[1].attribute("Distribution"), "");
    hold("x", Collection::UserDefined, "1\xEF\xBF\xBE\x01\xFF");
    EXPECT_TRUE(QDomDocument().setContent(QByteArray::fromStdString(written(serializer))))
        << "the document stays readable";
}

TEST_F(SurrogateModelUserDistCollectionSerializerTest, WritesElementsOfTheDocumentItIsGiven)
{
    hold("x", Collection::UserDefined, "1");

    EXPECT_TRUE(writtenChildren().at(0).ownerDocument() == document);
}

TEST_F(SurrogateModelUserDistCollectionSerializerTest, WritingChangesNothing)
{
    hold("gone", Collection::UserDefined, "abc");
    const Collection before = property->get();
    const PropertyListener<Collection> listener(*property);

    written(serializer);

    EXPECT_TRUE(property->get() == before);
    EXPECT_TRUE(listener.values.empty());
}

/** What a block does to a property that holds "5" for x and y in mode UserDefined. */
struct ReadBlock
{
    std::string name;
    std::string children;
    std::vector<std::pair<std::string, std::string>> changed; ///< texts; Auto behind a "~"
    std::vector<std::string> warnedOf;
};

class SurrogateModelUserDistCollectionSerializerBlock
    : public SurrogateModelUserDistCollectionSerializerTest,
      public testing::WithParamInterface<ReadBlock>
{};

TEST_P(SurrogateModelUserDistCollectionSerializerBlock, ChangesTheEntriesOfItsValidElements)
{
    addOutput("z");
    hold("x", Collection::UserDefined, "5");
    hold("gone", Collection::UserDefined, "6");
    Collection expected = property->get();
    for (const auto& [name, text] : GetParam().changed) {
        const bool isAuto = text.front() == '~';
        expected = with(expected, name, isAuto ? Collection::Auto : Collection::UserDefined,
                        text.substr(isAuto ? 1 : 0));
    }
    std::string expectedWarnings;
    for (const std::string& name : GetParam().warnedOf) {
        expectedWarnings += userDistWarning(name);
    }

    load(GetParam().children);

    EXPECT_TRUE(property->get() == expected);
    EXPECT_EQ(warnings, expectedWarnings);
}

INSTANTIATE_TEST_SUITE_P(
    , SurrogateModelUserDistCollectionSerializerBlock,
    testing::ValuesIn(std::vector<ReadBlock>{
        {"ModesAndTexts",
         "<Variable Mode='UserDefined' Distribution='0 - 1 : 3' Name='x'/>"
         "<Variable Name='y' Distribution='2' Mode='Auto'/>",
         {{"x", "0 - 1 : 3"}, {"y", "~2"}},
         {}},
        {"AbsentModeIsUserDefined", "<Variable Name='y' Distribution='1'/>", {{"y", "1"}}, {}},
        {"OutputsToo", "<Variable Name='z' Distribution='1'/>", {{"z", "1"}}, {}},
        {"TextsOfUnknownAndEmptyNamesAreNotLookedAt",
         "<Variable Name='nobody' Distribution='abc'/><Variable Name='' Distribution='abc'/>"
         "<Variable Distribution='abc'/><Variable Name='X' Distribution='1'/>"
         "<Variable Name='y' Distribution='1'/>",
         {{"y", "1"}},
         {}},
        {"EachFaultyTextIsWarnedOfAndTheEntryKeptWithItsMode",
         "<Variable Name='x' Distribution='1 - 0 : 3' Mode='Auto'/>"
         "<Variable Name='x' Distribution='abc'/><Variable Name='y' Distribution='1'/>",
         {{"y", "1"}},
         {"x", "x"}},
        {"EmptyAndAbsentTextsAreFaulty",
         "<Variable Name='x' Distribution='' Mode='Auto'/><Variable Name='y' Mode='Auto'/>",
         {},
         {"x", "y"}},
        {"ElementsOfEveryTag",
         "<Other Name='x' Distribution='1'/><variable Name='y' Distribution='2' Mode='Auto'/>",
         {{"x", "1"}, {"y", "~2"}},
         {}},
        {"NothingButElements",
         "text<!-- <Variable Name='x' Distribution='1'/> --><?instruction x?><![CDATA[data]]>"
         "<Variable Name='y' Distribution='1'/>",
         {{"y", "1"}},
         {}},
        {"DirectChildrenOnly",
         "<Variable Name='x' Distribution='1'><Variable Name='y' Distribution='2'/></Variable>",
         {{"x", "1"}},
         {}},
        {"LastValidElementOfAName",
         "<Variable Name='x' Distribution='1'/><Variable Name='x' Distribution='2' Mode='Auto'/>"
         "<Variable Name='x' Distribution='abc'/>",
         {{"x", "~2"}},
         {"x"}},
        {"Nothing", "", {}, {}},
    }),
    [](const auto& row) { return row.param.name; });

TEST_F(SurrogateModelUserDistCollectionSerializerTest, EndsTheReadAtAModeItDoesNotKnow)
{
    hold("y", Collection::Auto, "7");
    const Collection before = property->get();
    const PropertyListener<Collection> listener(*property);

    for (const char* mode : {"Manual", "", "auto", "AUTO", " Auto", "UserDefined "}) {
        for (const char* name : {"y", "gone"}) {
            EXPECT_EQ(failureOfLoading("<Variable Name='x' Distribution='1'/><Variable Mode='" +
                                       std::string(mode) + "' Name='" + name +
                                       "' Distribution='2'/>"),
                      invalidKey)
                << mode;
        }
    }
    EXPECT_EQ(failureOfLoading("<Variable Mode='Manual'/>"), invalidKey);

    EXPECT_TRUE(property->get() == before) << "nothing before it is set either";
    EXPECT_TRUE(listener.values.empty());
}

TEST_F(SurrogateModelUserDistCollectionSerializerTest, WarnsOfFaultyTextsBeforeAModeThatEndsTheRead)
{
    EXPECT_EQ(failureOfLoading("<Variable Name='x' Distribution='abc'/>"
                               "<Variable Mode='Manual' Name='y' Distribution='2'/>"
                               "<Variable Name='y' Distribution='abc'/>"),
              invalidKey);

    EXPECT_EQ(warnings, userDistWarning("x"));
}

TEST_F(SurrogateModelUserDistCollectionSerializerTest, WritesVariablesOfEveryNature)
{
    addOutput("z");
    hold("z", Collection::UserDefined, "1");

    EXPECT_EQ(writtenNames(), Names{"z"});
}

// Setting a mode alone stores an empty text, which is faulty: a caller that sets a mode sets a text
// too.
TEST_F(SurrogateModelUserDistCollectionSerializerTest, WarnsOnLoadingAnEntryThatWasGivenOnlyAMode)
{
    Collection collection;
    collection.setMode("x", Collection::Auto);
    property->set(collection);
    const std::string saved = written(serializer);
    property->set({});

    const CapturedErrors errors;
    read(serializer, saved);

    EXPECT_EQ(errors.text(), userDistWarning("x"));
    EXPECT_TRUE(property->get() == Collection());
}

TEST_F(SurrogateModelUserDistCollectionSerializerTest, NamesTheVariableInTheWarningLiterally)
{
    const std::string name = "%1% %s \"<b>x</b>\"\n{}";
    addInput(name);

    load("<Variable Distribution='abc' Name='%1% %s &quot;&lt;b>x&lt;/b>&quot;&#10;{}'/>");

    EXPECT_EQ(warnings, userDistWarning(name));
}

TEST_F(SurrogateModelUserDistCollectionSerializerTest, ChangesThePropertyOnceForAllElements)
{
    const PropertyListener<Collection> listener(*property);

    load("<Variable Name='x' Distribution='1'/><Variable Name='y' Distribution='2'/>"
         "<Variable Name='x' Distribution='3'/>");

    EXPECT_EQ(listener.values.size(), 1U);
    EXPECT_EQ(listener.untypedCalls, 1);
}

TEST_F(SurrogateModelUserDistCollectionSerializerTest, ChangesNothingWhenTheBlockEqualsTheValue)
{
    hold("x", Collection::UserDefined, "0 - 1 : 3");
    hold("y", Collection::Auto, "2");
    const std::string saved = written(serializer);
    const PropertyListener<Collection> listener(*property);

    read(serializer, saved);

    EXPECT_TRUE(listener.values.empty());
    EXPECT_EQ(listener.untypedCalls, 0);
}

TEST_F(SurrogateModelUserDistCollectionSerializerTest, ChangesNothingWithoutItsBlock)
{
    const PropertyListener<Collection> listener(*property);

    read(serializer, "<SurrogateModel><Variable Name='x' Distribution='1'/></SurrogateModel>");

    EXPECT_TRUE(listener.values.empty());
}

TEST_F(SurrogateModelUserDistCollectionSerializerTest, IsOneUndoStepForEachLoadThatChangesSomething)
{
    const auto proxy = boost::make_shared<veska::UndoablePropertyProxy<Collection>>(
        "User Distributions", property);
    const SurrogateModelUserDistCollectionSerializer undoable(proxy);
    const std::string block = userDistBlock("<Variable Name='x' Distribution='1'/>"
                                            "<Variable Name='y' Distribution='2'/>");

    read(undoable, block);
    read(undoable, block);
    EXPECT_EQ(undoStack().count(), 1);
    undoStack().undo();

    EXPECT_TRUE(property->get() == Collection());
}

TEST_F(SurrogateModelUserDistCollectionSerializerTest, PassesOnWhatThePropertysValidatorThrows)
{
    class NothingForX : public veska::ValidatorInterface<Collection>
    {
    public:
        veska::ValidationResult validate(const Collection& collection) const override
        {
            return collection.getVarNameSet().count("x") == 0
                       ? veska::ValidationResult()
                       : veska::ValidationResult("nothing for x");
        }
    };
    class ValidatedProperty : public veska::Property<Collection>
    {
    public:
        ValidatedProperty() : veska::Property<Collection>(boost::make_shared<NothingForX>()) {}
    };
    const auto validated = boost::make_shared<ValidatedProperty>();

    EXPECT_THROW(read(SurrogateModelUserDistCollectionSerializer(validated),
                      userDistBlock("<Variable Name='y' Distribution='1'/>"
                                    "<Variable Name='x' Distribution='1'/>")),
                 veska::InvalidPropertyValueException);

    EXPECT_TRUE(validated->get() == Collection());
}

TEST_F(SurrogateModelUserDistCollectionSerializerTest, LooksVariablesUpInTheProjectThatIsOpenNow)
{
    hold("x", Collection::UserDefined, "1");
    Project::setProject(boost::make_shared<Project>());

    EXPECT_TRUE(writtenNames().empty());
    load("<Variable Name='y' Distribution='1'/>");

    EXPECT_TRUE(property->get() == with({}, "x", Collection::UserDefined, "1"));
}

TEST_F(SurrogateModelUserDistCollectionSerializerTest, SharesOwnershipOfItsProperty)
{
    const long owners = property.use_count();
    {
        const SurrogateModelUserDistCollectionSerializer another(property);
        EXPECT_EQ(property.use_count(), owners + 1);
    }
    EXPECT_EQ(property.use_count(), owners);
}

TEST_F(SurrogateModelUserDistCollectionSerializerTest, RefusesANullProperty)
{
    EXPECT_THROW(SurrogateModelUserDistCollectionSerializer(nullptr), std::invalid_argument);
}

TEST_F(SurrogateModelUserDistCollectionSerializerTest, KeepsTheOrderOfItsOperations)
{
    class OpenSerializer : public SurrogateModelUserDistCollectionSerializer
    {
    public:
        using SurrogateModelUserDistCollectionSerializer::
            SurrogateModelUserDistCollectionSerializer;
        void serializeSelf(QDomElement&) const override {}
        void deserializeSelf(QDomElement&) const override {}
    };
    // Behind the operations of the interface: the first two that a Serializer adds.
    EXPECT_TRUE(isVirtualSlot(&OpenSerializer::serializeSelf, 5));
    EXPECT_TRUE(isVirtualSlot(&OpenSerializer::deserializeSelf, 6));
}
