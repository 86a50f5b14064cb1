#include "CvdCases.h"
#include "TemporaryFolder.h"

#include <session/cases/CaseFileReader.h>
#include <session/cases/VariableNames.h>
#include <session/model/CaseSession.h>
#include <session/project/ProjectCases.h>
#include <session/project/ProjectDocument.h>
#include <session/text/SessionErrors.h>

#include <surrogatemodel/SurrogateModelManagerInterface.h>
#include <surrogatemodel/SurrogateModelUserDistCollection.h>

#include <mirel_analyzercommon/UndoStack.h>
#include <mirel_datamanagement/Project.h>

#include <QUndoStack>
#include <gtest/gtest.h>
#include <vtkTable.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {
class WorkspaceDocument : public ::testing::Test
{
protected:
    WorkspaceDocument() { UndoStack().stack().clear(); }

    /** The document needs a file, whose bytes do not matter here. */
    CaseTable table() const
    {
        CaseTable cases = cvdCases();
        cases.path = folder.write("cvd.csv", "cases");
        return cases;
    }

    /** A session in which everything has been chosen, without undo steps. */
    std::unique_ptr<CaseSession> chosen() const
    {
        const UndoStack::SuspendUndoRecording unrecorded;
        const CaseRoles roles = {{1, 0}, {3, 2}};
        const std::vector<std::size_t> excluded = {1, 9};
        auto session =
            std::make_unique<CaseSession>(table(), roles, excluded, CaseSession::ResponseSurface);
        session->sweep(1, "4 - 80 : 3, 42");
        session->stayAt(0, "5");
        return session;
    }

    ProjectDocument document() const { return chosen()->document(); }

    /** A document with an element of a newer version. */
    ProjectDocument documentOfNewerVersion() const
    {
        const std::string name = "newer.surrogate.xml";
        document().save(folder.path(name));
        std::string text = folder.read(name);
        text.insert(text.find("</SurrogateProject>"), "  <Goals Count=\"2\"/>\n");
        return ProjectDocument::load(folder.write(name, text));
    }

    TemporaryFolder folder;
};

using Names = std::vector<std::string>;
} // namespace

TEST_F(WorkspaceDocument, LoadingGivesTheSameChoices)
{
    const ProjectDocument saved = document();
    CaseSession session(table());

    session.load(saved);

    EXPECT_EQ(namesOf(session.inputs()), (Names{"H2/WF6", "Pressure"}));
    EXPECT_EQ(namesOf(session.outputs()), (Names{"Stress", "Uniformity"}));
    EXPECT_EQ(session.modelType(), CaseSession::ResponseSurface);
    EXPECT_EQ(session.counts().excluded, 2u);
    EXPECT_EQ(session.evaluate().table->GetNumberOfRows(), 3);
    EXPECT_TRUE(session.document() == saved);
}

TEST_F(WorkspaceDocument, ARangeThatWasChosenIsKept)
{
    const auto owner = chosen();
    CaseSession& session = *owner;
    const VarPtr pressure = session.inputs()[1];
    Project::project()->setRange(pressure, {10.0, 20.0});
    const ProjectDocument saved = session.document();
    Project::project()->resetRange(pressure);

    session.load(saved);

    EXPECT_EQ(pressure.lock()->chosenRange(), std::make_pair(10.0, 20.0));
}

TEST_F(WorkspaceDocument, LoadingReplacesWhatWasChosenBefore)
{
    CaseSession plain(table(), {{0}, {3}}, {}, CaseSession::Kriging);
    const ProjectDocument saved = plain.document();
    const auto owner = chosen();
    CaseSession& session = *owner;
    Project::project()->setRange(session.inputs()[0], {1.0, 2.0});

    session.load(saved);

    EXPECT_TRUE(session.document() == saved);
}

TEST_F(WorkspaceDocument, LoadingIsOneUndoStepIfItChangesAnything)
{
    const ProjectDocument saved = document();
    const ProjectDocument newer = documentOfNewerVersion();
    CaseSession session(table(), {{0}, {3}}, {4}, CaseSession::Kriging);
    const ProjectDocument before = session.document();
    {
        const UndoStack::SuspendUndoRecording unrecorded;
        session.load(saved);
        session.load(before);
    }
    EXPECT_EQ(UndoStack().stack().count(), 0) << "nor while recording is suspended";

    session.load(saved);
    session.load(saved);
    ASSERT_EQ(UndoStack().stack().count(), 1);
    session.load(newer);
    ASSERT_EQ(UndoStack().stack().count(), 2) << "what is kept beside the choices counts, too";
    EXPECT_TRUE(session.document() == newer);

    UndoStack().stack().undo();
    EXPECT_TRUE(session.document() == saved);
    UndoStack().stack().undo();
    EXPECT_TRUE(session.document() == before);
    EXPECT_EQ(namesOf(session.inputs()), (Names{"Pressure"}));
    UndoStack().stack().redo();
    EXPECT_TRUE(session.document() == saved);
    EXPECT_EQ(session.evaluate().table->GetNumberOfRows(), 3);
    UndoStack().stack().redo();
    EXPECT_TRUE(session.document() == newer);
}

TEST_F(WorkspaceDocument, AnUndoStepOutlivesTheWorkspaceWithoutEffect)
{
    {
        const ProjectDocument saved = document();
        CaseSession session(table());
        session.load(saved);
    }

    EXPECT_NO_THROW(UndoStack().stack().undo());
}

TEST_F(WorkspaceDocument, CasesFromTheStandardInputMakeNoProject)
{
    CaseTable cases = cvdCases();
    cases.path = "-";

    EXPECT_THROW(CaseSession(std::move(cases)).document(), UsageError);
}

TEST_F(WorkspaceDocument, ThousandsAreReadAgainAsTheyWereRead)
{
    for (const std::string content :
         {"x;y\n1;9.604.308\n2;1.853\n", "x;y\n1,5;9.604.308\n2;1.853\n",
          "x;y\n1.5;9.604.308\n2;1.853\n", "x;y\n1;9,604,308\n2;1,853\n",
          "x;y\n1.5;9,604,308\n2;1,853\n", "x;y\n1;9 604 308\n2;1 853\n",
          "x;y\n1;9'604'308\n2;1'853\n"}) {
        const CaseTable table =
            CaseFileReader::read(folder.write("cases.csv", content), CaseFileReader::Options());
        const std::string path = folder.path("a.surrogate.xml");
        CaseSession(table).document().save(path);

        const ProjectDocument saved = ProjectDocument::load(path);
        const CaseTable again =
            CaseFileReader::read(saved.caseFile.path, readingOptions(saved, {}));

        EXPECT_EQ(table.columns[1].numbers, (std::vector<double>{9604308.0, 1853.0})) << content;
        EXPECT_EQ(again.columns[1].numbers, table.columns[1].numbers) << content;
        EXPECT_EQ(again.columns[0].numbers, table.columns[0].numbers) << content;
    }
}

TEST_F(WorkspaceDocument, ChangedChoicesAreFittedAnew)
{
    CaseSession session(table(), {{0, 1}, {3}}, {}, CaseSession::ResponseSurface);
    const double r2 = session.fit().outputs[0].metrics.r2;

    session.exclude({0});
    EXPECT_NE(session.fit().outputs[0].metrics.r2, r2);
    EXPECT_EQ(session.counts().valid, 10u);

    session.exclude({});
    EXPECT_EQ(session.fit().outputs[0].metrics.r2, r2);

    session.chooseModel(CaseSession::Kriging);
    EXPECT_TRUE(session.fit().outputs[0].kriging.has_value());

    session.chooseRoles({{1}, {2, 3}});
    EXPECT_EQ(session.fit().outputs.size(), 2u);
    EXPECT_EQ(session.fit().outputs[0].name, "Uniformity");
}

TEST_F(WorkspaceDocument, ASweptVariableThatIsNoInputAnyMoreCanBeSaved)
{
    const auto owner = chosen();
    CaseSession& session = *owner;
    ASSERT_EQ(session.document().sweeps.size(), 1u);

    session.chooseRoles({{1}, {3}});

    EXPECT_TRUE(session.document().sweeps.empty());
    EXPECT_NO_THROW(session.document().save(folder.path("study.surrogate.xml")));
}

TEST_F(WorkspaceDocument, EvenValuesTakeThePlaceOfTypedOnesAndOneValueThatOfBoth)
{
    CaseSession session(table(), {{0}, {3}}, {}, CaseSession::ResponseSurface);
    session.sweep(0, "4, 80, 42");
    EXPECT_EQ(session.evaluate().table->GetNumberOfRows(), 3);

    session.sweepEvenly(0, 5);
    EXPECT_EQ(session.evaluate().table->GetNumberOfRows(), 5);

    session.stayAt(0, "7");
    EXPECT_EQ(session.evaluate().table->GetNumberOfRows(), 1);
}
