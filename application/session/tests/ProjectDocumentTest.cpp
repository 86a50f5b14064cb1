#include <session/ProjectDocument.h>

#include "ChildProcess.h"
#include "ElementSerializer.h"
#include "ProjectSample.h"
#include "TemporaryFolder.h"

#include <session/SessionErrors.h>

#include <QHash>
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <set>
#include <string>

#include <sys/resource.h>

namespace {
/** The document that the sample is written as, beside its case file "cases.csv". */
constexpr const char* sampleText = R"(<?xml version="1.0" encoding="UTF-8"?>
<SurrogateProject Version="1">
  <CaseFile Bytes="120" DecimalMark="comma" Path="cases.csv" Separator="semicolon" Sha256="aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa"/>
  <Variables>
    <Variable Lower="-0.5" Name="x" Role="independent" Upper="1e+300"/>
    <Variable Name="y" Role="dependent"/>
    <Variable Lower="2" Name="z" Role="dependent" Upper="2"/>
    <Variable Name="note" Role="unassigned"/>
  </Variables>
  <Outputs>
    <Output Name="z"/>
    <Output Name="y"/>
  </Outputs>
  <ExcludedCases>1,3-5,12</ExcludedCases>
  <Sweeps>
    <Sweep Count="11" From="1" Name="x" To="0.1"/>
  </Sweeps>
</SurrogateProject>
)";

/** A text with one part of it replaced. */
std::string with(const std::string& part, const std::string& replacement,
                 std::string text = sampleText)
{
    const std::size_t at = text.find(part);
    EXPECT_NE(at, std::string::npos) << part;
    return text.replace(at, part.size(), replacement);
}

/** Before an element, other ones. */
std::string withBefore(const std::string& element, const std::string& added)
{
    return with(element, added + element);
}

/** The sentence that refuses a document, without the file's name. */
std::string refusalOf(const std::string& text)
{
    const TemporaryFolder folder;
    const std::string path = folder.write("p.surrogate.xml", text);
    try {
        ProjectDocument::load(path);
    } catch (const ProjectDocumentError& error) {
        const std::string message = error.what();
        EXPECT_EQ(message.rfind(path + ", ", 0), 0u) << message;
        return message.substr(path.size() + 2);
    }
    return "loaded";
}

ProjectDocument loaded(const std::string& text)
{
    const TemporaryFolder folder;
    return ProjectDocument::load(folder.write("p.surrogate.xml", text));
}

/** The sentence that refuses to save a project over "old", which stays; without the beginning. */
std::string saveRefusalOf(const ProjectDocument& project)
{
    const TemporaryFolder folder;
    const std::string path = folder.write("p.surrogate.xml", "old");
    const std::string beginning = "The project document \"" + path + "\" cannot be written: ";
    try {
        project.save(path);
    } catch (const ProjectDocumentError& error) {
        EXPECT_EQ(folder.read("p.surrogate.xml"), "old");
        EXPECT_EQ(folder.fileCount(), 1u);
        EXPECT_EQ(std::string(error.what()).substr(0, beginning.size()), beginning);
        return std::string(error.what()).substr(beginning.size());
    }
    return "saved";
}

/** The bytes that a project is saved as. */
std::string saved(const ProjectDocument& project)
{
    const TemporaryFolder folder;
    project.save(folder.path("p.surrogate.xml"));
    return folder.read("p.surrogate.xml");
}

struct RefusedDocument
{
    const char* name;
    const char* part;
    const char* replacement;
    const char* sentence;
};

class RefusedProjectDocument : public ::testing::TestWithParam<RefusedDocument>
{};

const RefusedDocument refusedDocuments[] = {
    {"OtherRoot", "<SurrogateProject Version=\"1\">", "<SurrogateProject2 Version=\"1\">",
     "line 18, column 19: the document is damaged or no XML: Opening and ending tag mismatch."},
    {"NoVersion", " Version=\"1\"", "",
     "line 2, column 1: the element \"SurrogateProject\" lacks the attribute \"Version\"."},
    {"NewerVersion", "Version=\"1\"", "Version=\"2\"",
     "line 2, column 1: the document was written by a newer version of the program (format 2; this "
     "one reads format 1); open it with that one."},
    {"NoNumberAsVersion", "Version=\"1\"", "Version=\"1.0\"",
     "line 2, column 1: the attribute \"Version\" of the element \"SurrogateProject\" needs a "
     "whole number from 1 to 18446744073709551615, not \"1.0\"."},
    {"UnknownAttributeOfTheRoot", "Version=\"1\"", "Version=\"1\" A=\"\"",
     "line 2, column 1: the attribute \"A\" of the element \"SurrogateProject\" is not known to "
     "this version; remove it, or open the document with the program that wrote it."},
    {"TextInTheRoot", "<Outputs>", "x<Outputs>",
     "line 2, column 1: the element \"SurrogateProject\" holds the text \"\\x0A  \\x0A  "
     "\\x0A  x\\x0A  \\x0A  \\x0A\", where there is none to be."},
    {"ElementTwice", "<Outputs>", "<Sweeps/><Outputs>",
     "line 15, column 3: the element \"Sweeps\" comes twice."},
    {"NoCaseFile", "<CaseFile ", "<Other ",
     "line 2, column 1: the document lacks the element \"CaseFile\"."},
    {"NoPath", " Path=\"cases.csv\"", "",
     "line 3, column 3: the element \"CaseFile\" lacks the attribute \"Path\"."},
    {"EmptyPath", "\"cases.csv\"", "\"\"",
     "line 3, column 3: the attribute \"Path\" of the element \"CaseFile\" must not be empty."},
    {"NegativeSize", "\"120\"", "\"-120\"",
     "line 3, column 3: the attribute \"Bytes\" of the element \"CaseFile\" needs a whole number "
     "from 0 to 18446744073709551615, not \"-120\"."},
    {"HashWithAnotherLetter", "\"aaaaaaaaaa", "\"Aaaaaaaaaa",
     "line 3, column 3: the attribute \"Sha256\" of the element \"CaseFile\" needs 64 "
     "hexadecimal digits in lower case, not "
     "\"Aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa\"."},
    {"UnknownSeparator", "\"semicolon\"", "\";\"",
     "line 3, column 3: the attribute \"Separator\" of the element \"CaseFile\" must be "
     "\"comma\", \"semicolon\" or \"tab\", not \";\"."},
    {"UnknownDecimalMark", "DecimalMark=\"comma\"", "DecimalMark=\"Comma\"",
     "line 3, column 3: the attribute \"DecimalMark\" of the element \"CaseFile\" must be "
     "\"point\" or \"comma\", not \"Comma\"."},
    {"ElementInTheCaseFile", "a\"/>", "a\"><Zip/></CaseFile>",
     "line 3, column 158: the element \"Zip\" inside \"CaseFile\" is not known to this version; "
     "remove it, or open the document with the program that wrote it."},
    {"NoVariables", "Variables>", "Others>",
     "line 9, column 14: the document is damaged or no XML: Opening and ending tag mismatch."},
    {"UnknownElementAmongVariables", "<Variable Name=\"y\"", "<Varible Name=\"y\"",
     "line 6, column 5: the element \"Varible\" inside \"Variables\" is not known to this "
     "version; remove it, or open the document with the program that wrote it."},
    {"UnknownAttributeOfAVariable", "<Variable Name=\"y\"", "<Variable Unit=\"m\" Name=\"y\"",
     "line 6, column 5: the attribute \"Unit\" of the element \"Variable\" is not known to this "
     "version; remove it, or open the document with the program that wrote it."},
    {"VariableTwice", "Name=\"y\"", "Name=\"x\"",
     "line 6, column 5: the variable \"x\" comes twice."},
    {"VariableWithoutName", "Name=\"y\" ", "",
     "line 6, column 5: the element \"Variable\" lacks the attribute \"Name\"."},
    {"EmptyVariableName", "Name=\"y\"", "Name=\"\"",
     "line 6, column 5: the attribute \"Name\" of the element \"Variable\" must not be empty."},
    {"UnknownRole", "\"unassigned\"", "\"ignored\"",
     "line 8, column 5: the attribute \"Role\" of the element \"Variable\" must be "
     "\"independent\", \"dependent\" or \"unassigned\", not \"ignored\"."},
    {"ReversedRange", "Lower=\"2\"", "Lower=\"2.5\"",
     "line 7, column 5: the range of the variable \"z\" is reversed: its lower end 2.5 is above "
     "its upper end 2."},
    {"RangeWithoutUpperEnd", " Upper=\"2\"", "",
     "line 7, column 5: the element \"Variable\" lacks the attribute \"Upper\"."},
    {"RangeThatIsNotFinite", "Lower=\"2\"", "Lower=\"nan\"",
     "line 7, column 5: the attribute \"Lower\" of the element \"Variable\" needs a finite "
     "number with a decimal point, not \"nan\"."},
    {"RangeThatOverflows", "\"1e+300\"", "\"1e+400\"",
     "line 5, column 5: the attribute \"Upper\" of the element \"Variable\" needs a finite "
     "number with a decimal point, not \"1e+400\"."},
    {"RangeWithAComma", "\"-0.5\"", "\"-0,5\"",
     "line 5, column 5: the attribute \"Lower\" of the element \"Variable\" needs a finite "
     "number with a decimal point, not \"-0,5\"."},
    {"UnknownOutput", "Output Name=\"y\"", "Output Name=\"u\"",
     "line 12, column 5: the output \"u\" must be a dependent variable, and there is no variable "
     "of that name."},
    {"OutputThatIsNoDependent", "Output Name=\"y\"", "Output Name=\"x\"",
     "line 12, column 5: the output \"x\" must be a dependent variable, and that variable is "
     "independent."},
    {"OutputTwice", "Output Name=\"y\"", "Output Name=\"z\"",
     "line 12, column 5: the output \"z\" comes twice."},
    {"ExcludedCasesThatAreNone", "1,3-5,12", "1;3",
     "line 14, column 3: the excluded cases \"1;3\" are no case numbers or ranges of them, from 1 "
     "to 20000000; write them like 3,7-9."},
    {"CaseZero", "1,3-5,12", "0",
     "line 14, column 3: the excluded cases \"0\" are no case numbers or ranges of them, from 1 "
     "to 20000000; write them like 3,7-9."},
    {"MoreCasesThanFitIntoMemory", "1,3-5,12", "1-18446744073709551615",
     "line 14, column 3: the excluded cases \"1-18446744073709551615\" are no case numbers or "
     "ranges of them, from 1 to 20000000; write them like 3,7-9."},
    {"ElementAmongExcludedCases", "1,3-5,12", "<Case/>",
     "line 14, column 18: the element \"Case\" inside \"ExcludedCases\" is not known to this "
     "version; remove it, or open the document with the program that wrote it."},
    {"NegativeCount", "\"11\"", "\"-11\"",
     "line 16, column 5: the attribute \"Count\" of the element \"Sweep\" needs a whole number "
     "from 2 to 100000000, not \"-11\"."},
    {"CountOfOne", "\"11\"", "\"1\"",
     "line 16, column 5: the attribute \"Count\" of the element \"Sweep\" needs a whole number "
     "from 2 to 100000000, not \"1\"."},
    {"SweepOfAnOutput", "Name=\"x\" To", "Name=\"y\" To",
     "line 16, column 5: the swept input \"y\" must be an independent variable, and that variable "
     "is dependent."},
    {"SweepWithoutEnd", " To=\"0.1\"", "",
     "line 16, column 5: the element \"Sweep\" lacks the attribute \"To\"."},
    {"SweepTwice", "</Sweeps>", "<Sweep Name=\"x\" Count=\"2\"/></Sweeps>",
     "line 17, column 3: the swept input \"x\" comes twice."},
    {"OtherParentOfUserDistributions", "<Sweeps>",
     "<UserDistributions><Variable/>"
     "</UserDistributions><Sweeps>",
     "line 15, column 22: the element \"Variable\" inside \"UserDistributions\" is not known to "
     "this version; remove it, or open the document with the program that wrote it."},
    {"AttributeOfAnInput", "<Sweeps>",
     "<SurrogateModel><Variable Name=\"x\" Weight=\"2\"/></SurrogateModel><Sweeps>",
     "line 15, column 19: the attribute \"Weight\" of the element \"Variable\" is not known to "
     "this version; remove it, or open the document with the program that wrote it."},
    {"ElementInTheType", "<Sweeps>", "<SurrogateModel><Type><New/></Type></SurrogateModel><Sweeps>",
     "line 15, column 25: the element \"New\" inside \"Type\" is not known to this version; remove "
     "it, or open the document with the program that wrote it."},
    {"TypeTwice", "<Sweeps>", "<SurrogateModel><Type/><Type/></SurrogateModel><Sweeps>",
     "line 15, column 26: the element \"Type\" comes twice."},
    {"TextInTheModel", "<Sweeps>", "<SurrogateModel>x</SurrogateModel><Sweeps>",
     "line 15, column 3: the element \"SurrogateModel\" holds the text \"x\", where there is none "
     "to be."},
    {"AttributeOfADistribution", "<Sweeps>",
     "<UserDistributions><SurrogateModelUserDefinedVariableDistribution><Any Unit=\"m\"/>"
     "</SurrogateModelUserDefinedVariableDistribution></UserDistributions><Sweeps>",
     "line 15, column 69: the attribute \"Unit\" of the element \"Any\" is not known to this "
     "version; remove it, or open the document with the program that wrote it."},
    {"TermSelection", "  <Sweeps>", "  <TermSelection Method=\"Forward\"/>\n  <Sweeps>",
     "line 15, column 3: the attribute \"Method\" of the element \"TermSelection\" must be "
     "\"BackwardAicc\", not \"Forward\"."},
    {"TwoTermSelections", "  <Sweeps>",
     "  <TermSelection Method=\"BackwardAicc\"/>\n  <TermSelection/>\n  <Sweeps>",
     "line 16, column 3: the element \"TermSelection\" comes twice."},
    {"Declaration", "<SurrogateProject", "<!DOCTYPE SurrogateProject>\n<SurrogateProject",
     "line 2, column 1: a document type declaration is not accepted; remove it."},
};

std::string caseName(const ::testing::TestParamInfo<RefusedDocument>& info)
{
    return info.param.name;
}

/** A document with elements of the serializers, as somebody may have edited it. */
constexpr const char* settingsText = R"(<SurrogateProject Version="1">
  <CaseFile Bytes="0" DecimalMark="point" Path="c.csv" Separator="comma" Sha256="aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa"/>
  <Variables/>
  <SurrogateModel Future="1">
    <New><Deep>kept</Deep></New>
    <Variable Name="b"/>
    <SurrogateModelUserDefinedVariableDistribution>
      <Other Distribution="2" Name="a"/>
      <Variable Distribution="1" Mode="Auto" Name="b"/>
    </SurrogateModelUserDefinedVariableDistribution>
    <Variable Name="a"/>
    <Type>Neural</Type>
  </SurrogateModel>
  <UserDistributions>
    <SurrogateModelUserDefinedVariableDistribution>
      <Variable Distribution="0 - 1 : 3" Mode="Manual" Name="b"/>
    </SurrogateModelUserDefinedVariableDistribution>
  </UserDistributions>
</SurrogateProject>
)";
} // namespace

TEST(ProjectDocument, IsWrittenAsOneElementPerFieldWithSortedAttributes)
{
    const TemporaryFolder folder;

    sampleProject(folder.path("cases.csv")).save(folder.path("p.surrogate.xml"));

    EXPECT_EQ(folder.read("p.surrogate.xml"), sampleText);
}

TEST(ProjectDocument, ComesBackAsItWasSaved)
{
    const TemporaryFolder folder;
    const ProjectDocument project = sampleProject(folder.path("cases.csv"));
    project.save(folder.path("p.surrogate.xml"));

    const ProjectDocument loaded = ProjectDocument::load(folder.path("p.surrogate.xml"));

    EXPECT_EQ(loaded.caseFile.path, folder.path("cases.csv"));
    EXPECT_TRUE(loaded.caseFile.fingerprint == project.caseFile.fingerprint);
    EXPECT_EQ(loaded.caseFile.separator, ';');
    EXPECT_TRUE(loaded.caseFile.hasDecimalComma);
    ASSERT_EQ(loaded.variables.size(), 4u);
    EXPECT_EQ(loaded.variables[0].name, "x");
    EXPECT_EQ(loaded.variables[0].role, Variable::Independent);
    EXPECT_EQ(loaded.variables[0].range, project.variables[0].range);
    EXPECT_FALSE(loaded.variables[1].range);
    EXPECT_EQ(loaded.outputs, project.outputs);
    EXPECT_EQ(loaded.excluded, project.excluded);
    ASSERT_EQ(loaded.sweeps.size(), 1u);
    EXPECT_EQ(loaded.sweeps[0].count, 11u);
    EXPECT_EQ(loaded.sweeps[0].range, project.sweeps[0].range);
}

TEST(ProjectDocument, ComesBackEqualAndAsTheSameBytes)
{
    const TemporaryFolder folder;
    const ProjectDocument project = sampleProject(folder.path("cases.csv"));
    project.save(folder.path("p.surrogate.xml"));

    const ProjectDocument loaded = ProjectDocument::load(folder.path("p.surrogate.xml"));
    loaded.save(folder.path("q.surrogate.xml"));

    EXPECT_TRUE(loaded == project);
    EXPECT_EQ(folder.read("q.surrogate.xml"), folder.read("p.surrogate.xml"));
}

TEST(ProjectDocument, WithOneDifferenceIsAnother)
{
    const ProjectDocument project = sampleProject("cases.csv");
    ProjectDocument other = project;
    EXPECT_TRUE(other == project);

    other.variables[1].range = ProjectDocument::Range(0, 1);
    EXPECT_FALSE(other == project);
}

TEST(ProjectDocument, IsReadInAnyOrderAndWithoutWhatIsEmpty)
{
    const ProjectDocument project = loaded(
        "<SurrogateProject Version='1'><Variables><!-- all --><Variable Role='dependent' "
        "Name='y'/></Variables><ExcludedCases> </ExcludedCases><CaseFile Sha256='" +
        std::string(64, '0') +
        "' Separator='tab' Path='/c.csv' DecimalMark='point' Bytes='7'/></SurrogateProject>");

    EXPECT_EQ(project.caseFile.path, "/c.csv");
    EXPECT_EQ(project.caseFile.fingerprint.bytes, 7u);
    EXPECT_EQ(project.caseFile.separator, '\t');
    EXPECT_FALSE(project.caseFile.hasDecimalComma);
    EXPECT_EQ(project.variables.size(), 1u);
    EXPECT_TRUE(project.outputs.empty());
    EXPECT_TRUE(project.excluded.empty());
    EXPECT_TRUE(project.sweeps.empty());
    EXPECT_EQ(project.modelType(), "");
}

TEST(ProjectDocument, OverlappingExcludedCasesTakeNoMemory)
{
    std::string ranges = "1-1000000";
    for (int i = 0; i < 10000; ++i) {
        ranges += ",1-1000000";
    }

    EXPECT_EQ(loaded(with("1,3-5,12", ranges)).excluded.size(), 1000000u);
}

TEST_P(RefusedProjectDocument, IsRefusedWithLineAndColumn)
{
    EXPECT_EQ(refusalOf(with(GetParam().part, GetParam().replacement)), GetParam().sentence);
}

INSTANTIATE_TEST_SUITE_P(Documents, RefusedProjectDocument, ::testing::ValuesIn(refusedDocuments),
                         caseName);

TEST(ProjectDocument, AnotherKindOfFileIsRefused)
{
    EXPECT_EQ(refusalOf("<svg/>"),
              "line 1, column 1: a project document begins with the element \"SurrogateProject\", "
              "not with \"svg\"; this is another kind of file.");
    EXPECT_EQ(refusalOf("x,y\n1,2\n"), "line 1, column 1: the document is damaged or no XML: "
                                       "Start tag expected.");
    EXPECT_EQ(refusalOf(""), "line 1, column 1: the document is damaged or no XML: Premature end "
                             "of document.");
}

TEST(ProjectDocument, IsRefusedWithOneLineHoweverLongTheFaultyText)
{
    const std::string text(1000000, '\n');

    for (const char* part : {"\"120\"", "\"semicolon\"", "\"2\"", "\"11\"", "\"dependent\""}) {
        const std::string refusal = refusalOf(with(part, "\"x&#10;" + text + '"'));
        EXPECT_NE(refusal.find("x\\x0A"), std::string::npos) << refusal.substr(0, 1000);
        EXPECT_LT(refusal.size(), 1000u);
    }
}

TEST(ProjectDocument, AnEndlessFileIsRefused)
{
    try {
        ProjectDocument::load("/dev/zero");
        FAIL() << "loaded";
    } catch (const ProjectDocumentError& error) {
        EXPECT_STREQ(error.what(), "/dev/zero: a project document has at most 67108864 bytes; this "
                                   "is another kind of file.");
    }
}

TEST(ProjectDocument, AFileThatIsNotThereIsAFileError)
{
    const TemporaryFolder folder;

    EXPECT_THROW(ProjectDocument::load(folder.path("p.surrogate.xml")), FileError);
    EXPECT_THROW(ProjectDocument::load(folder.path(".")), FileError);
}

TEST(ProjectDocument, IsToldFromOtherFilesByTheEndOfItsName)
{
    EXPECT_TRUE(ProjectDocument::isProjectFile("a/p.surrogate.xml"));
    EXPECT_FALSE(ProjectDocument::isProjectFile(".surrogate.xml"));
    EXPECT_FALSE(ProjectDocument::isProjectFile("p.xml"));
    EXPECT_FALSE(ProjectDocument::isProjectFile("p.surrogate.xml.bak"));
}

TEST(ProjectDocument, KeepsElementsOfNewerVersionsAfterItsOwn)
{
    const std::string notes = "  <Notes by=\"x\">one <b/> two</Notes>\n  <Plot/>\n";

    const TemporaryFolder folder;

    ProjectDocument::load(folder.write("p.surrogate.xml", withBefore("  <Variables>", notes)))
        .save(folder.path("p.surrogate.xml"));

    EXPECT_EQ(folder.read("p.surrogate.xml"), withBefore("</SurrogateProject>", notes));
}

TEST(ProjectDocument, KeepsElementsOfNewerVersionsInTheModelWhenItsSettingsAreTaken)
{
    const ElementSerializer model("SurrogateModel", {{"Type", "Kriging", {}}});
    const ElementSerializer userDistributions("SurrogateModelUserDefinedVariableDistribution", {});
    ProjectDocument project = loaded(settingsText);

    project.takeSettings(model, userDistributions);

    EXPECT_NE(saved(project).find(R"(
  <SurrogateModel Future="1">
    <Type>Kriging</Type>
    <New>
      <Deep>kept</Deep>
    </New>
  </SurrogateModel>
  <UserDistributions>
    <SurrogateModelUserDefinedVariableDistribution/>
  </UserDistributions>
)"),
              std::string::npos)
        << saved(project);
}

TEST(ProjectDocument, WithoutNewSettingsIsSavedWithThoseItHad)
{
    const ProjectDocument project = loaded(settingsText);
    const ProjectDocument again = loaded(saved(project));

    EXPECT_EQ(again.modelType(), "Neural");
    EXPECT_EQ(again.modelInputs(), (std::vector<std::string>{"b", "a"}));
    EXPECT_NE(saved(project).find("<Other Distribution=\"2\" Name=\"a\"/>"), std::string::npos);
    EXPECT_EQ(saved(again), saved(project));
}

TEST(ProjectDocument, SaysWhatTheSettingsAreWithoutAProject)
{
    const ProjectDocument project = loaded(settingsText);

    EXPECT_EQ(project.modelType(), "Neural");
    EXPECT_EQ(project.modelInputs(), (std::vector<std::string>{"b", "a"}));
    ASSERT_EQ(project.evaluationPoint().size(), 2u);
    EXPECT_EQ(project.evaluationPoint()[0].name, "a");
    EXPECT_EQ(project.evaluationPoint()[0].mode, "UserDefined");
    EXPECT_EQ(project.evaluationPoint()[0].text, "2");
    EXPECT_EQ(project.evaluationPoint()[1].mode, "Auto");
    ASSERT_EQ(project.userDistributions().size(), 1u);
    EXPECT_EQ(project.userDistributions()[0].mode, "Manual");
    EXPECT_EQ(project.userDistributions()[0].text, "0 - 1 : 3");
}

TEST(ProjectDocument, GivesTheSettingsAsTheyWereTaken)
{
    const ElementSerializer model(
        "SurrogateModel", {{"Type", "<&\r\n\t>", {}}, {"Variable", "", {{"Name", "\r\"\n"}}}});
    const ElementSerializer userDistributions("SurrogateModelUserDefinedVariableDistribution",
                                              {{"Variable", "", {{"Mode", "Auto"}}}});
    ProjectDocument project = sampleProject("cases.csv");
    project.takeSettings(model, userDistributions);

    loaded(saved(project)).giveSettings(model, userDistributions);

    EXPECT_EQ(model.received(), model.written());
    EXPECT_EQ(userDistributions.received(), userDistributions.written());
}

TEST(ProjectDocument, WithoutSettingsGivesNone)
{
    const ElementSerializer model("SurrogateModel", {});
    const ElementSerializer userDistributions("SurrogateModelUserDefinedVariableDistribution", {});

    loaded(sampleText).giveSettings(model, userDistributions);

    EXPECT_EQ(model.received(), "");
    EXPECT_EQ(userDistributions.received(), "");
}

TEST(ProjectDocument, AModeThatDoesNotExistStopsEverySetting)
{
    const TemporaryFolder folder;
    const std::string path = folder.write("p.surrogate.xml", settingsText);
    const ElementSerializer model("SurrogateModel", {});
    const ElementSerializer userDistributions("SurrogateModelUserDefinedVariableDistribution", {});

    try {
        ProjectDocument::load(path).giveSettings(model, userDistributions);
        FAIL() << "given";
    } catch (const ProjectDocumentError& error) {
        EXPECT_EQ(error.what(), path + ", line 16, column 7: the mode \"Manual\" of the variable "
                                       "\"b\" must be \"Auto\" or \"UserDefined\".");
    }
    EXPECT_EQ(model.received(), "");
}

TEST(ProjectDocument, SettingsThatXmlCannotCarryAreRefused)
{
    const ElementSerializer sound("SurrogateModelUserDefinedVariableDistribution", {});
    ProjectDocument project = sampleProject("cases.csv");

    project.takeSettings(ElementSerializer("SurrogateModel", {{"Type", "\x01", {}}}), sound);
    EXPECT_EQ(saveRefusalOf(project), "XML cannot carry the text \"\\x01\": it holds a control "
                                      "character, or bytes that are no UTF-8.");

    ElementSerializer half("SurrogateModel", {});
    half.addText(QString(QChar(0xD83D)));
    EXPECT_THROW(project.takeSettings(half, sound), ProjectDocumentError);
}

TEST(ProjectDocument, CopiesHaveSettingsOfTheirOwn)
{
    const ProjectDocument project = loaded(settingsText);
    ProjectDocument copy = project;

    copy.takeSettings(ElementSerializer("SurrogateModel", {{"Type", "Kriging", {}}}),
                      ElementSerializer("SurrogateModelUserDefinedVariableDistribution", {}));

    EXPECT_EQ(copy.modelType(), "Kriging");
    EXPECT_EQ(project.modelType(), "Neural");
}

TEST(ProjectDocument, IsTheSameBytesWhateverTheOrderInWhichAttributesAreKept)
{
    // The DOM keeps attributes by a hash that differs between processes.
    const TemporaryFolder folder;
    std::set<std::string> texts;
    for (int i = 0; i < 8; ++i) {
        qSetGlobalQHashSeed(-1);
        ElementSerializer model("SurrogateModel", {});
        for (char letter = 'a'; letter <= 'z'; ++letter) {
            model.addAttribute(std::string(1, letter));
        }
        ProjectDocument project = sampleProject(folder.path("cases.csv"));
        project.takeSettings(
            model, ElementSerializer("SurrogateModelUserDefinedVariableDistribution", {}));
        project.save(folder.path("p.surrogate.xml"));
        texts.insert(folder.read("p.surrogate.xml"));
    }

    EXPECT_EQ(texts.size(), 1u);
}

TEST(ProjectDocument, RefusesToSaveWhatItWouldNotLoad)
{
    const ProjectDocument sound = sampleProject("cases.csv");
    EXPECT_EQ(saveRefusalOf(sound), "saved");

    ProjectDocument project = sound;
    project.variables[1].name = std::string("a\0b", 3);
    EXPECT_EQ(saveRefusalOf(project), "XML cannot carry the text \"a\\x00b\": it holds a control "
                                      "character, or bytes that are no UTF-8.");
    project = sound;
    project.outputs.push_back("x");
    EXPECT_EQ(saveRefusalOf(project),
              "the output \"x\" must be a dependent variable, and that variable is independent.");
    project = sound;
    project.variables[1].range = ProjectDocument::Range(2, 1);
    EXPECT_EQ(saveRefusalOf(project), "the range of the variable \"y\" is reversed: its lower end "
                                      "2 is above its upper end 1.");
    project = sound;
    project.caseFile.separator = '|';
    EXPECT_EQ(saveRefusalOf(project),
              "the attribute \"Separator\" of the element \"CaseFile\" must "
              "be \"comma\", \"semicolon\" or \"tab\", not \"\".");
    project = sound;
    project.excluded = {20000000};
    EXPECT_EQ(saveRefusalOf(project).substr(0, 33), "the excluded cases \"20000001\" are");
}

TEST(ProjectDocument, RefusesCaseFilesThatCannotBeNamed)
{
    EXPECT_EQ(saveRefusalOf(sampleProject("-")),
              "a project needs its cases in a file, not from the standard input.");
    EXPECT_NE(saveRefusalOf(sampleProject("c\xFF.csv")).find("\\xFF.csv\": it holds a control"),
              std::string::npos);
}

TEST(ProjectDocument, FindsItsCasesAfterTheFolderHasMoved)
{
    const TemporaryFolder folder;
    std::filesystem::create_directories(folder.path("old place/data"));
    std::filesystem::create_directories(folder.path("old place/studies"));
    ProjectDocument project = sampleProject(folder.write("old place/data/c.csv", "x\n1\n"));
    project.caseFile.fingerprint = FileFingerprint::of(project.caseFile.path);
    project.save(folder.path("old place/studies/p.surrogate.xml"));

    std::filesystem::rename(folder.path("old place"), folder.path("new"));
    const ProjectDocument moved = ProjectDocument::load(folder.path("new/studies/p.surrogate.xml"));

    EXPECT_EQ(moved.caseFile.path, folder.path("new/data/c.csv"));
    EXPECT_EQ(moved.checkCaseFile().state, ProjectDocument::Unchanged);
}

TEST(ProjectDocument, KnowsWhetherItsCaseFileIsStillTheSame)
{
    const TemporaryFolder folder;
    ProjectDocument project = sampleProject(folder.write("c.csv", "x\n1\n"));
    project.caseFile.fingerprint = FileFingerprint::of(project.caseFile.path);
    const std::string file = "The case file \"" + folder.path("c.csv") + "\" ";
    const std::string advice = " Name it with --cases FILE to work with it as it is now, and save "
                               "the project again.";
    EXPECT_EQ(project.checkCaseFile().state, ProjectDocument::Unchanged);
    EXPECT_EQ(project.checkCaseFile().sentence, "");

    folder.write("c.csv", "x\n2\n");
    EXPECT_EQ(project.checkCaseFile().state, ProjectDocument::Changed);
    EXPECT_EQ(project.checkCaseFile().sentence,
              file +
                  "has changed since the project was saved: its size is the same, its contents "
                  "are not." +
                  advice);
    folder.write("c.csv", "x\n10\n");
    EXPECT_EQ(project.checkCaseFile().state, ProjectDocument::Changed);
    EXPECT_EQ(project.checkCaseFile().sentence,
              file + "has changed since the project was saved: it has 5 bytes and had 4." + advice);

    std::filesystem::remove(project.caseFile.path);
    EXPECT_EQ(project.checkCaseFile().state, ProjectDocument::Missing);
    EXPECT_EQ(project.checkCaseFile().sentence,
              file +
                  "of the project is missing: it has been moved, renamed or deleted. Put it back "
                  "there, or name it with --cases FILE.");

    std::filesystem::create_directory(project.caseFile.path);
    EXPECT_THROW(project.checkCaseFile(), FileError);
}

TEST(ProjectDocument, KeepsTheDocumentBeforeAsABackup)
{
    const TemporaryFolder folder;
    ProjectDocument project = sampleProject(folder.path("c.csv"));
    project.save(folder.path("p.surrogate.xml"));
    const std::string first = folder.read("p.surrogate.xml");

    project.excluded.clear();
    project.save(folder.path("p.surrogate.xml"));

    EXPECT_EQ(folder.read("p.surrogate.xml.bak"), first);
    EXPECT_NE(folder.read("p.surrogate.xml"), first);
}

TEST(ProjectDocument, StaysAsItWasWhenTheDiskTakesNoMore)
{
    const TemporaryFolder folder;
    const std::string path = folder.path("p.surrogate.xml");
    ProjectDocument project = sampleProject(folder.path("c.csv"));
    project.save(path);
    const std::string before = folder.read("p.surrogate.xml");
    project.excluded.clear();

    const int code = exitCodeOf([&] {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit = {100, 100};
        setrlimit(RLIMIT_FSIZE, &limit);
        try {
            project.save(path);
        } catch (const FileError&) {
            return 1;
        }
        return 0;
    });

    EXPECT_EQ(code, 1);
    EXPECT_EQ(folder.read("p.surrogate.xml"), before);
    EXPECT_EQ(folder.fileCount(), 1u);
}

TEST(ProjectDocument, IsWholeWheneverASaveIsKilled)
{
    const TemporaryFolder folder;
    const std::string path = folder.path("p.surrogate.xml");
    ProjectDocument project = sampleProject(folder.path("c.csv"));
    project.save(path);

    for (int i = 0; i < 20; ++i) {
        const pid_t child = fork();
        if (child == 0) {
            for (std::size_t position = 0;; ++position) {
                project.excluded = {position};
                project.save(path);
            }
        }
        usleep(static_cast<useconds_t>(3000 + 500 * i));
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);

        const ProjectDocument found = ProjectDocument::load(path);
        EXPECT_EQ(found.variables.size(), project.variables.size());
        if (std::filesystem::exists(path + ".bak")) {
            EXPECT_NO_THROW(ProjectDocument::load(path + ".bak"));
        }
    }
}
