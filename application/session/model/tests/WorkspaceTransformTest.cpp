// The choice of a transform on its way from a workspace to the models, and into project documents.

#include "CvdCases.h"
#include "TemporaryFolder.h"

#include <session/model/CaseSession.h>
#include <session/project/ProjectDocument.h>

#include <mirel_analyzercommon/UndoStack.h>

#include <QUndoStack>
#include <gtest/gtest.h>

namespace {
class WorkspaceTransform : public ::testing::Test
{
protected:
    WorkspaceTransform() { UndoStack().stack().clear(); }

    CaseSession session(CaseSession::ModelType model = CaseSession::ResponseSurface) const
    {
        CaseTable cases = cvdCases();
        cases.path = folder.write("cvd.csv", "cases");
        return CaseSession(std::move(cases), {{0, 1}, {2}}, {}, model);
    }

    static OutputTransform transformOf(CaseSession& session)
    {
        return session.fit().outputs[0].modelled.transform;
    }

    TemporaryFolder folder;
};
} // namespace

TEST_F(WorkspaceTransform, FitsAnewWheneverItChanges)
{
    for (const CaseSession::ModelType model :
         {CaseSession::ResponseSurface, CaseSession::Kriging}) {
        CaseSession chosen = session(model);
        EXPECT_EQ(transformOf(chosen), OutputTransform::None);

        chosen.choose({{}, {}, TransformSetting::Logarithm});
        EXPECT_EQ(transformOf(chosen), OutputTransform::Logarithm);

        UndoStack().stack().undo();
        EXPECT_EQ(chosen.modelChoices().transform, TransformSetting::Usual);
        EXPECT_EQ(transformOf(chosen), OutputTransform::None);
    }
}

TEST_F(WorkspaceTransform, IsSavedWithTheProject)
{
    CaseSession chosen = session();
    chosen.choose({{}, {}, TransformSetting::SquareRoot});
    const std::string path = folder.path("cvd.surrogate.xml");
    chosen.document().save(path);

    CaseSession loaded = session();
    loaded.load(ProjectDocument::load(path));

    EXPECT_EQ(loaded.modelChoices().transform, TransformSetting::SquareRoot);
    EXPECT_EQ(transformOf(loaded), OutputTransform::SquareRoot);
}
