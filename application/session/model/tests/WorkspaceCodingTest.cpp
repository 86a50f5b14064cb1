// The choice of a coding on its way from a workspace to the statistics, and into project documents.

#include "CvdCases.h"
#include "TemporaryFolder.h"

#include <session/model/CaseSession.h>
#include <session/project/ProjectDocument.h>

#include <mirel_analyzercommon/UndoStack.h>

#include <QUndoStack>
#include <gtest/gtest.h>

TEST(WorkspaceCoding, HoldsForTheStatisticsIsSavedAndUndone)
{
    UndoStack().stack().clear();
    const TemporaryFolder folder;
    CaseTable cases = cvdCases();
    cases.path = folder.write("cvd.csv", "cases");
    CaseSession session(std::move(cases), {{0, 1}, {2}}, {}, CaseSession::ResponseSurface);
    const auto coded = [&session] { return session.statistics()[0].codedCoefficients[1].estimate; };
    const ProjectDocument axialDocument = session.document();
    const double axial = coded();

    session.choose({{}, {}, {}, InputCoding::Factorial});
    const double factorial = coded();
    const std::string path = folder.path("cvd.surrogate.xml");
    session.document().save(path);

    EXPECT_NE(factorial, axial);
    EXPECT_EQ(session.statistics()[0].coding, InputCoding::Factorial);
    UndoStack().stack().undo();
    EXPECT_EQ(session.modelChoices().coding, InputCoding::Axial);
    EXPECT_EQ(coded(), axial);

    session.load(ProjectDocument::load(path));
    EXPECT_EQ(coded(), factorial);
    session.load(axialDocument);
    EXPECT_EQ(coded(), axial) << "a document that says nothing";
}
