#include <session/project/ProjectCases.h>

#include "ElementSerializer.h"
#include "MessageOf.h"
#include "ProjectSample.h"
#include "TemporaryFolder.h"

#include <session/cases/CaseFileReader.h>
#include <session/text/SessionErrors.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {
using Positions = std::vector<std::size_t>;

CaseTable tableOf(const std::vector<std::string>& names)
{
    CaseTable table;
    for (const std::string& name : names) {
        table.columns.emplace_back();
        table.columns.back().name = name;
    }
    return table;
}

void expectState(const ProjectDocument& project, ProjectDocument::CaseFileState state,
                 const std::string& sentence)
{
    const ProjectDocument::CaseFileCheck check = project.checkCaseFile();
    EXPECT_EQ(check.state, state);
    EXPECT_EQ(check.sentence, sentence);
}
} // namespace

TEST(ProjectCases, AreReadAsTheOptionsSayAndElseAsTheDocumentDoes)
{
    const TemporaryFolder folder;
    ProjectDocument project = sampleProject(folder.write("cases.csv", ""));
    project.caseFile.reading.heading = false;
    project.caseFile.reading.skippedLines = 3;
    project.caseFile.reading.missing = MissingWords("failed,999");
    project.caseFile.reading.isStrict = true;
    project.save(folder.path("a.surrogate.xml"));
    const ProjectDocument loaded = ProjectDocument::load(folder.path("a.surrogate.xml"));
    CaseFileReader::Options wanted;
    wanted.separator = '\t';
    wanted.skippedLines = 4;

    const CaseFileReader::Options options = readingOptions(loaded, wanted);

    EXPECT_EQ(options.separator, '\t');
    EXPECT_EQ(readingOptions(loaded, {}).separator, ';');
    EXPECT_EQ(options.decimalMark, CellValue::Comma);
    wanted.decimalMark = CellValue::Point;
    EXPECT_EQ(readingOptions(loaded, wanted).decimalMark, CellValue::Point);
    EXPECT_EQ(options.heading, false);
    EXPECT_EQ(options.skippedLines, 4u);
    EXPECT_EQ(options.missing.text(), "failed,999");
    EXPECT_TRUE(options.isStrict);
    EXPECT_FALSE(options.unitsRow);
    EXPECT_FALSE(options.commentMark);
}

TEST(ProjectCases, RolesAreThoseOfTheColumnsThatAreThere)
{
    ProjectDocument project = sampleProject("cases.csv");
    // "y" is dependent and "w" unknown: neither can be an input.
    const ElementSerializer model("SurrogateModel", {{"Variable", "", {{"Name", "y"}}},
                                                     {"Variable", "", {{"Name", "x"}}},
                                                     {"Variable", "", {{"Name", "w"}}}});
    project.takeSettings(model,
                         ElementSerializer("SurrogateModelUserDefinedVariableDistribution", {}));

    const CaseRoles all = rolesIn(project, tableOf({"w", "x", "y", "z"}));
    EXPECT_EQ(all.inputs, (Positions{1}));
    EXPECT_EQ(all.outputs, (Positions{3, 2}));

    const CaseRoles some = rolesIn(project, tableOf({"y", "w"}));
    EXPECT_EQ(some.inputs, Positions());
    EXPECT_EQ(some.outputs, (Positions{0}));
}

TEST(ProjectCases, AProjectUnderAnotherNameIsNoTable)
{
    const TemporaryFolder folder;
    const std::string path = folder.write("p.surrogate.xml.bak", sampleProjectText);

    EXPECT_EQ(messageOf<CaseDataError>([&] { readCaseTable(path, {}); }),
              "\"" + path +
                  "\" is an XML document, not a table of cases; if it is a project, give it a "
                  "name that ends with .surrogate.xml.");
    EXPECT_EQ(readCaseTable(folder.write("c.csv", "x\n1\n"), {}).cases, 1u);
}

TEST(ProjectCases, OfAnotherFileAreNotedUnlessTheyAreTheSame)
{
    const TemporaryFolder folder;
    const std::string path = folder.write("moved.csv", "x;y\n0,5;1\n");
    ProjectDocument project = sampleProject("cases.csv");
    EXPECT_EQ(otherCasesNote(project, path),
              '"' + path +
                  "\" holds other data than the case file that the project was saved with.");

    project.caseFile.fingerprint = FileFingerprint::of(path);
    EXPECT_EQ(otherCasesNote(project, path), "");
}

TEST(ProjectCases, AreThoseThatTheProjectWasSavedWith)
{
    const TemporaryFolder folder;
    ProjectDocument project = sampleProject(folder.write("cases.csv", "x;y\n0,5;1\n"));
    project.caseFile.fingerprint = FileFingerprint::of(project.caseFile.path);

    expectState(project, ProjectDocument::Unchanged, "");
    const auto options = readingOptions(project, {});
    EXPECT_EQ(CaseFileReader::read(project.caseFile.path, options).columns[0].numbers,
              (std::vector<double>{0.5}));

    folder.write("cases.csv", "x;y\n0,5;1\n2;3\n");
    expectState(project, ProjectDocument::Changed,
                "The case file \"" + project.caseFile.path +
                    "\" has changed since the project was saved: it has 14 bytes "
                    "and had 10.");

    project.caseFile.path = folder.path("moved.csv");
    expectState(project, ProjectDocument::Missing,
                "The case file \"" + project.caseFile.path +
                    "\" of the project is missing: it has been moved, renamed or "
                    "deleted.");
}
