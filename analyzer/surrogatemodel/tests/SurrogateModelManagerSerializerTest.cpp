// These tests run without an application object: warnings go to standard error.
#include <surrogatemodel/SurrogateModelManagerSerializer.h>

#include "CapturedErrors.h"
#include "FakeManager.h"
#include "FakePipeline.h"
#include "ProjectTest.h"
#include "UserDistXml.h"

#include <surrogatemodel/SerializedNames.h>
#include <surrogatemodel/SurrogateModelManager.h>

#include <mirel_property/tests/VirtualSlot.h>
#include <mirel_serialization/tests/XmlText.h>
#include <property/tests/PropertyListener.h>

#include <QUndoStack>

#include <stdexcept>

namespace {

using Interface = SurrogateModelManagerInterface;
using Collection = SurrogateModelUserDistCollection;
using Variables = std::vector<VarPtr>;
using Names = std::vector<std::string>;

std::string settings(const std::string& children)
{
    return "<SurrogateModel>" + children + "</SurrogateModel>";
}

/** "Variable" elements with these names, which need no quoting. */
std::string chosen(const Names& names)
{
    std::string elements;
    for (const std::string& name : names) {
        elements += "<Variable Name='" + name + "'/>";
    }
    return elements;
}

/** The inputs x and y, the output z, and the settings of a manager that is a fake. */
class SurrogateModelManagerSerializerTest : public ProjectTest
{
protected:
    SurrogateModelManagerSerializerTest() { manager->modelType->set(Interface::ResponseSurface); }

    void load(const std::string& children) const { read(serializer, settings(children)); }

    /** The element that is written now, in a document of the fixture. */
    QDomElement writtenElement()
    {
        document = QDomDocument();
        document.appendChild(serializer.serialize(document));
        return document.documentElement();
    }

    Names writtenTags()
    {
        const QDomElement element = writtenElement();
        Names tags;
        for (QDomElement child = element.firstChildElement(); !child.isNull();
             child = child.nextSiblingElement()) {
            tags.push_back(child.tagName().toStdString());
        }
        return tags;
    }

    Names writtenVariables()
    {
        const QDomElement element = writtenElement();
        Names names;
        for (QDomElement child = element.firstChildElement("Variable"); !child.isNull();
             child = child.nextSiblingElement("Variable")) {
            names.push_back(child.attribute("Name").toStdString());
        }
        return names;
    }

    Variables list() const { return manager->independents->get(); }

    VarPtr x = addInput("x");
    VarPtr y = addInput("y");
    VarPtr z = addOutput("z");
    boost::shared_ptr<FakeManager> manager = boost::make_shared<FakeManager>();
    SurrogateModelManagerSerializer serializer{manager};
    QDomDocument document;
};

/** The same inputs, the settings of a real manager, and an undo stack that begins empty. */
class SurrogateModelManagerSerializerUndoTest : public ProjectTest
{
protected:
    SurrogateModelManagerSerializerUndoTest() { undoStack().clear(); }

    void load(const std::string& children) const { read(serializer, settings(children)); }

    VarPtr x = addInput("x", {1, 2, 3});
    VarPtr y = addInput("y", {4, 5, 6});
    boost::shared_ptr<SurrogateModelManager> manager =
        boost::make_shared<SurrogateModelManager>(boost::make_shared<FakePipeline>());
    SurrogateModelManagerSerializer serializer{manager};
};

} // namespace

TEST_F(SurrogateModelManagerSerializerTest, HasTheNameOfItsElementAsAConstantOfTheCompiler)
{
    EXPECT_EQ(serializer.name(), "SurrogateModel");
    EXPECT_EQ(writtenElement().tagName(), "SurrogateModel");

    static_assert(SerializedNames::manager[0] == 'S', "there before any constructor runs");
    static_assert(SerializedNames::userDefinedMode[0] == 'U', "there before any constructor runs");
    EXPECT_EQ(serializer.name(), SerializedNames::manager);
}

TEST_F(SurrogateModelManagerSerializerTest, WritesTypeThenDistributionThenVariables)
{
    manager->independents->set({x, y});

    EXPECT_EQ(writtenTags(), (Names{"Type", "SurrogateModelUserDefinedVariableDistribution",
                                    "Variable", "Variable"}));
}

TEST_F(SurrogateModelManagerSerializerTest, WritesVariablesInTheOrderOfTheListWithoutNullHandles)
{
    manager->independents->set({y, x, y});

    EXPECT_EQ(writtenVariables(), (Names{"y", "x", "y"}));
    const QDomElement variable = document.documentElement().firstChildElement("Variable");
    EXPECT_EQ(variable.attributes().count(), 1);
    EXPECT_FALSE(variable.hasChildNodes());

    manager->independents->set({VarPtr(), y});

    EXPECT_EQ(writtenVariables(), Names{"y"});

    manager->independents->set({x, y});
    project->removeVariable(x);

    EXPECT_EQ(writtenVariables(), (Names{"x", "y"}));
}

TEST_F(SurrogateModelManagerSerializerTest, WritesTheNamesOfTheTypes)
{
    EXPECT_EQ(writtenElement().firstChildElement("Type").text(), "ResponseModel");
    manager->modelType->set(Interface::Kriging);
    EXPECT_EQ(writtenElement().firstChildElement("Type").text(), "Kriging");

    manager->modelType->set(static_cast<Interface::ModelType>(7));

    for (int time = 0; time < 2; ++time) {
        const QDomElement type = writtenElement().firstChildElement("Type");
        EXPECT_FALSE(type.isNull());
        EXPECT_EQ(type.text(), "");
    }
}

TEST_F(SurrogateModelManagerSerializerTest, WritesTheEvaluationPointAsTheDistributionElement)
{
    manager->point->set(with({}, "x", Collection::UserDefined, "1.5"));

    const QDomElement block =
        writtenElement().firstChildElement("SurrogateModelUserDefinedVariableDistribution");

    const QDomElement entry = block.firstChildElement();
    EXPECT_EQ(entry.attribute("Name"), "x");
    EXPECT_EQ(entry.attribute("Distribution"), "1.5");
    EXPECT_EQ(entry.attribute("Mode"), "UserDefined");
    EXPECT_TRUE(entry.nextSibling().isNull());
}

TEST_F(SurrogateModelManagerSerializerTest, ReportsAVariableThatIsDestroyed)
{
    manager->independents->set({x});
    project.reset();
    Project::setProject(nullptr);

    EXPECT_THROW(writtenElement(), HandleError);
}

TEST_F(SurrogateModelManagerSerializerTest, WritesElementsOfTheDocumentItIsGiven)
{
    manager->independents->set({x});

    const QDomElement element = writtenElement();

    EXPECT_TRUE(element.firstChildElement("Variable").ownerDocument() == document);
    EXPECT_TRUE(element.firstChildElement("Type").firstChild().ownerDocument() == document);
}

TEST_F(SurrogateModelManagerSerializerTest, ReadsResponseModelAsSuchAndEveryOtherTypeAsKriging)
{
    for (const char* text : {"Kriging", "", "kriging", "responsemodel", "RESPONSEMODEL",
                             " ResponseModel ", "ResponseSurface", "1", "Gr\xC3\xB6\xC3\x9F"}) {
        load("<Type>ResponseModel</Type>");
        EXPECT_EQ(manager->modelType->get(), Interface::ResponseSurface) << "after another text";
        load("<Type>" + std::string(text) + "</Type>");
        EXPECT_EQ(manager->modelType->get(), Interface::Kriging) << text;
        EXPECT_EQ(writtenElement().firstChildElement("Type").text(), "Kriging") << text;
    }
}

TEST_F(SurrogateModelManagerSerializerTest, ReadsTheEvaluationPoint)
{
    load(userDistBlock("<Variable Name='x' Distribution='1.5'/>"));

    EXPECT_TRUE(manager->point->get() == with({}, "x", Collection::UserDefined, "1.5"));
}

/** Which inputs an element's children choose, x having been chosen before; z is an output, u
 * neither. */
struct ChosenInputs
{
    std::string name;
    std::string children;
    Names inputs;
};

class SurrogateModelManagerSerializerList : public SurrogateModelManagerSerializerTest,
                                            public testing::WithParamInterface<ChosenInputs>
{};

TEST_P(SurrogateModelManagerSerializerList, IsThatOfTheVariableElementsWithoutAWarning)
{
    project->addNumericVariable("u", Variable::Unassigned);
    manager->independents->set({x});
    const CapturedErrors errors;

    load(GetParam().children);

    Names found;
    for (const VarPtr& variable : list()) {
        found.push_back(variable.lock()->name());
    }
    EXPECT_EQ(found, GetParam().inputs);
    EXPECT_EQ(errors.text(), "");
}

INSTANTIATE_TEST_SUITE_P(
    , SurrogateModelManagerSerializerList,
    testing::ValuesIn(std::vector<ChosenInputs>{
        {"InDocumentOrder", chosen({"y", "x"}), {"y", "x"}},
        {"WithRepetitions", chosen({"x", "y", "x"}), {"x", "y", "x"}},
        {"EmptyWithoutAnyVariable", "<Type>Kriging</Type>", {}},
        {"WithoutNamesThatTheProjectDoesNotHave",
         chosen({"gone", "x", "X", "", " y"}) + "<Variable/><Variable name='x'/>" + chosen({"y"}),
         {"x", "y"}},
        {"WithoutVariablesOfAnotherNature", chosen({"z", "y", "u"}), {"y"}},
        {"OfElementsTaggedExactlyVariable",
         "<variable Name='x'/><Variables Name='x'/><Other Name='x'/>"
         "<!--<Variable Name='x'/>-->" +
             chosen({"y"}),
         {"y"}},
        {"OfDirectChildren", "<Group>" + chosen({"x"}) + "</Group>" + chosen({"y"}), {"y"}},
    }),
    [](const auto& row) { return row.param.name; });

TEST_F(SurrogateModelManagerSerializerTest, DoesNotChooseTheVariablesOfTheEvaluationPoint)
{
    manager->independents->set({x});
    manager->point->set(
        with(with({}, "x", Collection::UserDefined, "1"), "y", Collection::UserDefined, "2"));
    const std::string saved = written(serializer);
    manager->independents->set({});

    read(serializer, saved);

    EXPECT_EQ(list(), Variables{x});
}

TEST_F(SurrogateModelManagerSerializerTest, LeavesTypeAndEvaluationPointAloneWithoutTheirElements)
{
    const Collection point = with({}, "x", Collection::UserDefined, "1");
    manager->point->set(point);

    load("<type>Kriging</type><Group><Type>Kriging</Type>" +
         userDistBlock("<Variable Name='x' Distribution='2'/>") + "</Group>");

    EXPECT_EQ(manager->modelType->get(), Interface::ResponseSurface);
    EXPECT_TRUE(manager->point->get() == point);
}

TEST_F(SurrogateModelManagerSerializerTest, BringsNamesWithMarkupBackByteForByte)
{
    const Names names = textsThatXmlCanCarry();
    Variables variables;
    Collection point;
    for (const std::string& name : names) {
        variables.push_back(addInput(name));
        point = with(point, name, Collection::UserDefined, "1");
    }
    manager->independents->set(variables);
    manager->point->set(point);
    const std::string saved = written(serializer);
    manager->independents->set({});
    manager->point->set({});

    read(serializer, saved);

    EXPECT_EQ(list(), variables);
    EXPECT_TRUE(manager->point->get() == point);
    EXPECT_EQ(writtenVariables(), names);
}

TEST_F(SurrogateModelManagerSerializerTest, EmitsNothingWhenItLoadsThePresentSettings)
{
    manager->independents->set({x, y});
    manager->point->set(with({}, "x", Collection::UserDefined, "1"));
    const std::string saved = written(serializer);
    const PropertyListener<Variables> ofList(*manager->independents);
    const PropertyListener<Interface::ModelType> ofType(*manager->modelType);
    const PropertyListener<Collection> ofPoint(*manager->point);

    read(serializer, saved);

    EXPECT_TRUE(ofList.values.empty());
    EXPECT_TRUE(ofType.values.empty());
    EXPECT_TRUE(ofPoint.values.empty());
}

TEST_F(SurrogateModelManagerSerializerTest, SetsTheListOnce)
{
    const PropertyListener<Variables> listener(*manager->independents);

    load(chosen({"x", "y"}));

    EXPECT_EQ(listener.values, (std::vector<Variables>{{x, y}}));
}

// Type and evaluation point come before the list, so that an unknown mode ends the load there.
TEST_F(SurrogateModelManagerSerializerTest, KeepsTheListWhenTheEvaluationPointCannotBeRead)
{
    manager->independents->set({x});
    const std::string content =
        chosen({"y"}) + userDistBlock("<Variable Mode='Manual'/>") + "<Type>Kriging</Type>";
    try {
        load(content);
        FAIL() << "no error";
    } catch (const std::out_of_range& error) {
        EXPECT_STREQ(error.what(), "bimap<>: invalid key");
    }

    EXPECT_EQ(manager->modelType->get(), Interface::Kriging);
    EXPECT_EQ(list(), Variables{x});
}

TEST_F(SurrogateModelManagerSerializerTest, MayFillItsTableOfTypesAgain)
{
    load("<Type>Other</Type>");
    serializer.initTypeMap();

    load("<Type>ResponseModel</Type>");

    EXPECT_EQ(manager->modelType->get(), Interface::ResponseSurface);
}

TEST_F(SurrogateModelManagerSerializerTest, SharesOwnershipOfItsManagerUntilItIsDestroyed)
{
    const long owners = manager.use_count();
    const boost::weak_ptr<Interface> watched = manager;
    auto another = boost::make_shared<SurrogateModelManagerSerializer>(manager);
    const boost::weak_ptr<SurrogateModelManagerSerializer> watchedSerializer = another;
    EXPECT_EQ(manager.use_count(), owners + 1);

    another.reset();

    EXPECT_TRUE(watchedSerializer.expired());
    EXPECT_EQ(watched.use_count(), owners);
}

TEST_F(SurrogateModelManagerSerializerTest, RefusesANullManager)
{
    EXPECT_THROW(SurrogateModelManagerSerializer(nullptr), std::invalid_argument);
}

TEST_F(SurrogateModelManagerSerializerTest, KeepsTheOrderOfItsOperations)
{
    class OpenSerializer : public SurrogateModelManagerSerializer
    {
    public:
        using SurrogateModelManagerSerializer::SurrogateModelManagerSerializer;
        void serializeSelf(QDomElement&) const override {}
        void deserializeSelf(QDomElement&) const override {}
    };
    // Behind the operations of the interface: the first two that a Serializer adds.
    EXPECT_TRUE(isVirtualSlot(&OpenSerializer::serializeSelf, 5));
    EXPECT_TRUE(isVirtualSlot(&OpenSerializer::deserializeSelf, 6));
}

TEST_F(SurrogateModelManagerSerializerUndoTest, RecordsAStepForEachValueThatChanges)
{
    load("<Type>Kriging</Type>" + userDistBlock("<Variable Name='x' Distribution='2'/>") +
         chosen({"x"}));
    EXPECT_EQ(undoStack().count(), 3);
    EXPECT_EQ(manager->independentVars()->get(), Variables{x});

    for (int step = 0; step < 3; ++step) {
        undoStack().undo();
    }

    EXPECT_EQ(manager->type()->get(), Interface::ResponseSurface);
    EXPECT_TRUE(manager->evaluationPoint()->get() == Collection());
    EXPECT_TRUE(manager->independentVars()->get().empty());
}

// A variable that enters the list without an evaluation point would be given one.
TEST_F(SurrogateModelManagerSerializerUndoTest, KeepsTheEvaluationPointOfVariablesThatEnterTheList)
{
    load(chosen({"x"}) + userDistBlock("<Variable Name='x' Distribution='2.5'/>"));

    EXPECT_TRUE(manager->evaluationPoint()->get() == with({}, "x", Collection::UserDefined, "2.5"));
    EXPECT_EQ(undoStack().count(), 2);
}

TEST_F(SurrogateModelManagerSerializerUndoTest, RecordsAnotherOrderOfTheListAsAChange)
{
    load(chosen({"x", "y"}));
    undoStack().clear();
    int modelChanges = 0;
    manager->connectSignalModelChanged([&modelChanges] { ++modelChanges; });

    load(chosen({"y", "x"}));

    EXPECT_EQ(manager->independentVars()->get(), (Variables{y, x}));
    EXPECT_EQ(undoStack().count(), 1);
    EXPECT_EQ(modelChanges, 1);
}
