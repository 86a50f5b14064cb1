#include <session/project/ProjectDocument.h>

#include "ElementSerializer.h"
#include "MessageOf.h"
#include "ProjectSample.h"
#include "TemporaryFolder.h"

#include <session/text/SessionErrors.h>

#include <gtest/gtest.h>

#include <string>

namespace {
/** The sentence that refuses a document, without the file's name. */
std::string refusalOf(const std::string& text)
{
    const TemporaryFolder folder;
    const std::string path = folder.write("p.surrogate.xml", text);
    const std::string message =
        messageOf<ProjectDocumentError>([&] { ProjectDocument::load(path); });
    EXPECT_EQ(message.rfind(path + ", ", 0), 0u) << message;
    return message.substr(path.size() + 2);
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
} // namespace

TEST(ProjectDocumentRefusal, NamesTheFileLineAndColumn)
{
    EXPECT_EQ(refusalOf("<svg/>").rfind("line 1, column 1: a project document begins with ", 0),
              0u);
    EXPECT_EQ(refusalOf(""), "line 1, column 1: the document is damaged or no XML: Premature end "
                             "of document.");
}

TEST(ProjectDocumentRefusal, IsRefusedWithOneLineHoweverLongTheFaultyText)
{
    const std::string text(1000000, '\n');

    for (const char* part : {"\"120\"", "\"semicolon\"", "\"2\"", "\"11\"", "\"dependent\""}) {
        const std::string refusal = refusalOf(with(part, "\"x&#10;" + text + '"'));
        EXPECT_NE(refusal.find("x\\x0A"), std::string::npos) << refusal.substr(0, 1000);
        EXPECT_LT(refusal.size(), 1000u);
    }
}

TEST(ProjectDocumentRefusal, AnEndlessFileAndOneThatIsNotThereAreRefused)
{
    EXPECT_EQ(messageOf<ProjectDocumentError>([] { ProjectDocument::load("/dev/zero"); }),
              "/dev/zero: a project document has at most 67108864 bytes; this is another kind of "
              "file.");

    const TemporaryFolder folder;

    EXPECT_THROW(ProjectDocument::load(folder.path("p.surrogate.xml")), FileError);
    EXPECT_THROW(ProjectDocument::load(folder.path(".")), FileError);
}

TEST(ProjectDocumentRefusal, SettingsThatXmlCannotCarryAreRefused)
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

TEST(ProjectDocumentRefusal, RefusesToSaveWhatItWouldNotLoad)
{
    struct
    {
        void (*spoil)(ProjectDocument& project);
        const char* sentence;
    } const rows[] = {
        {[](ProjectDocument&) {}, "saved"},
        {[](ProjectDocument& project) { project.variables[1].name = std::string("a\0b", 3); },
         "XML cannot carry the text \"a\\x00b\": it holds a control character, or bytes that are "
         "no UTF-8."},
        {[](ProjectDocument& project) { project.outputs.push_back("x"); },
         "the output \"x\" must be a dependent variable, and that variable is independent."},
        {[](ProjectDocument& project) {
             project.variables[1].range = ProjectDocument::Range(2, 1);
         },
         "the range of the variable \"y\" is reversed: its lower end 2 is above its upper end 1."},
        {[](ProjectDocument& project) { project.caseFile.separator = ':'; },
         "the attribute \"Separator\" of the element \"CaseFile\" must be \"comma\", "
         "\"semicolon\", "
         "\"tab\", \"bar\" or \"blanks\", not \"\"."},
        {[](ProjectDocument& project) { project.caseFile.path = "-"; },
         "a project needs its cases in a file, not from the standard input."},
    };
    for (const auto& row : rows) {
        ProjectDocument project = sampleProject("cases.csv");
        row.spoil(project);
        EXPECT_EQ(saveRefusalOf(project), row.sentence);
    }
    ProjectDocument project = sampleProject("c\xFF.csv");
    EXPECT_NE(saveRefusalOf(project).find("\\xFF.csv\": it holds a control"), std::string::npos);
    project = sampleProject("cases.csv");
    project.excluded = {20000000};
    EXPECT_EQ(saveRefusalOf(project).substr(0, 33), "the excluded cases \"20000001\" are");
}
