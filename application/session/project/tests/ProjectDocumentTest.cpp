#include <session/project/ProjectDocument.h>

#include "ElementSerializer.h"
#include "MessageOf.h"
#include "ProjectSample.h"
#include "TemporaryFolder.h"

#include <session/text/SessionErrors.h>

#include <QHash>
#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <string>

namespace {
/** Before an element, other ones. */
std::string withBefore(const std::string& element, const std::string& added)
{
    return with(element, added + element);
}

ProjectDocument loaded(const std::string& text)
{
    const TemporaryFolder folder;
    return ProjectDocument::load(folder.write("p.surrogate.xml", text));
}

/** The bytes that a project is saved as. */
std::string saved(const ProjectDocument& project)
{
    const TemporaryFolder folder;
    project.save(folder.path("p.surrogate.xml"));
    return folder.read("p.surrogate.xml");
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

    EXPECT_EQ(folder.read("p.surrogate.xml"), sampleProjectText);
}

TEST(ProjectDocument, WithOneDifferenceIsAnotherAndIsRecognisedByTheEndOfItsName)
{
    const ProjectDocument project = sampleProject("cases.csv");
    ProjectDocument other = project;
    EXPECT_TRUE(other == project);

    other.variables[1].range = ProjectDocument::Range(0, 1);
    EXPECT_FALSE(other == project);

    EXPECT_TRUE(ProjectDocument::isProjectFile("a/p.surrogate.xml"));
    EXPECT_FALSE(ProjectDocument::isProjectFile(".surrogate.xml"));
    EXPECT_FALSE(ProjectDocument::isProjectFile("p.xml"));
    EXPECT_FALSE(ProjectDocument::isProjectFile("p.surrogate.xml.bak"));
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
    const ProjectDocument original = loaded(settingsText);
    ProjectDocument project = original;

    project.takeSettings(model, userDistributions);

    EXPECT_EQ(original.modelType(), "Neural") << "copies have settings of their own";
    EXPECT_EQ(project.modelType(), "Kriging");
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

TEST(ProjectDocument, SaysWhatTheSettingsAreAndSavesThoseItHad)
{
    const ProjectDocument once = loaded(settingsText);
    EXPECT_NE(saved(once).find("<Other Distribution=\"2\" Name=\"a\"/>"), std::string::npos);
    EXPECT_EQ(saved(loaded(saved(once))), saved(once));

    for (const ProjectDocument& project : {once, loaded(saved(once))}) {
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
}

TEST(ProjectDocument, WithoutSettingsGivesNone)
{
    const ElementSerializer model("SurrogateModel", {});
    const ElementSerializer userDistributions("SurrogateModelUserDefinedVariableDistribution", {});

    loaded(sampleProjectText).giveSettings(model, userDistributions);

    EXPECT_EQ(model.received(), "");
    EXPECT_EQ(userDistributions.received(), "");
}

TEST(ProjectDocument, AModeThatDoesNotExistStopsEverySetting)
{
    const TemporaryFolder folder;
    const std::string path = folder.write("p.surrogate.xml", settingsText);
    const ElementSerializer model("SurrogateModel", {});
    const ElementSerializer userDistributions("SurrogateModelUserDefinedVariableDistribution", {});

    EXPECT_EQ(messageOf<ProjectDocumentError>(
                  [&] { ProjectDocument::load(path).giveSettings(model, userDistributions); }),
              path + ", line 16, column 7: the mode \"Manual\" of the variable \"b\" must be "
                     "\"Auto\" or \"UserDefined\".");
    EXPECT_EQ(model.received(), "");
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
    const auto expect = [&](ProjectDocument::CaseFileState state, const std::string& sentence) {
        const ProjectDocument::CaseFileCheck check = project.checkCaseFile();
        EXPECT_EQ(check.state, state);
        EXPECT_EQ(check.sentence,
                  sentence.empty() ? ""
                                   : "The case file \"" + folder.path("c.csv") + "\" " + sentence);
    };
    expect(ProjectDocument::Unchanged, "");
    folder.write("c.csv", "x\n2\n");
    expect(ProjectDocument::Changed, "has changed since the project was saved: its size is the "
                                     "same, its contents are not.");
    folder.write("c.csv", "x\n10\n");
    expect(ProjectDocument::Changed,
           "has changed since the project was saved: it has 5 bytes and had 4.");
    std::filesystem::remove(project.caseFile.path);
    expect(ProjectDocument::Missing,
           "of the project is missing: it has been moved, renamed or deleted.");
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
