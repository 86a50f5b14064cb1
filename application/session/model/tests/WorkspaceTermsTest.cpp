// The choice of terms on its way from a workspace to the models, and into project documents.

#include "CvdCases.h"
#include "TemporaryFolder.h"

#include <session/model/CaseSession.h>
#include <session/project/ProjectDocument.h>

#include <mirel_analyzercommon/UndoStack.h>
#include <mirel_fitting/ResponseSurfaceStatistics.h>

#include <QUndoStack>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace {
using Texts = std::vector<std::string>;

const Texts none;
// By the same criterion as R's step() with an AICc that has one parameter more, for the variance.
const Texts squares = {"V1^2", "V2^2"};

const ResponseSurfaceOptions selected = {PolynomialTerms::Quadratic,
                                         ResponseSurfaceOptions::Selection::BackwardAicc};
const ResponseSurfaceOptions linear = {PolynomialTerms::Linear,
                                       ResponseSurfaceOptions::Selection::All};

Texts droppedBy(CaseSession& session)
{
    return session.statistics()[0].droppedTerms;
}

class WorkspaceTerms : public ::testing::Test
{
protected:
    WorkspaceTerms() { UndoStack().stack().clear(); }

    CaseSession session(CaseSession::ModelType model = CaseSession::ResponseSurface) const
    {
        CaseTable cases = cvdCases();
        cases.path = folder.write("cvd.csv", "cases");
        return CaseSession(std::move(cases), {{0, 1}, {2}}, {}, model);
    }

    ProjectDocument documentWith(const ResponseSurfaceOptions& options) const
    {
        const UndoStack::SuspendUndoRecording unrecorded;
        CaseSession chosen = session();
        chosen.choose({options});
        return chosen.document();
    }

    TemporaryFolder folder;
};
} // namespace

TEST_F(WorkspaceTerms, MayBeAFormulaInTheNamesOfTheInputs)
{
    const ResponseSurfaceOptions chosen = {PolynomialTerms::Chosen,
                                           ResponseSurfaceOptions::Selection::All,
                                           "H2/WF6 + Pressure + H2/WF6:Pressure"};
    CaseSession terms = session();

    terms.choose({chosen});
    EXPECT_EQ(terms.statistics()[0].coefficients.size(), 4u);
    EXPECT_EQ(terms.statistics()[0].coefficients[3].term, "V1 V2");

    UndoStack().stack().undo();
    EXPECT_EQ(terms.statistics()[0].coefficients.size(), 6u);
    EXPECT_TRUE(documentWith(chosen).responseSurface == chosen);
}

TEST_F(WorkspaceTerms, OfAFormulaNeedItsInputs)
{
    CaseSession terms = session();
    terms.choose(
        {{PolynomialTerms::Chosen, ResponseSurfaceOptions::Selection::All, "Pressure + Ratio"}});

    try {
        terms.fit();
        FAIL();
    } catch (const SurrogateModelInterface::Error& error) {
        EXPECT_STREQ(error.what(),
                     "The terms \"Pressure + Ratio\" name \"Ratio\", which is no input.");
    }
}

TEST_F(WorkspaceTerms, FitsAnewWheneverItChangesAndOnlyThen)
{
    CaseSession chosen = session();
    EXPECT_TRUE(chosen.modelChoices().responseSurface == ResponseSurfaceOptions());
    EXPECT_EQ(droppedBy(chosen), none);
    EXPECT_NE(chosen.equationText().find("V1^2"), std::string::npos);

    chosen.choose({selected});
    EXPECT_EQ(droppedBy(chosen), squares);
    EXPECT_EQ(chosen.equationText().find("V1^2"), std::string::npos);
    EXPECT_NE(chosen.equationText().find("V1 * V2"), std::string::npos);
    const SurrogateModelInterface* const model = &chosen.model();
    chosen.choose({selected});
    EXPECT_EQ(&chosen.model(), model);

    chosen.choose({ResponseSurfaceOptions()});
    EXPECT_EQ(droppedBy(chosen), none);
}

TEST_F(WorkspaceTerms, KeepsAKrigingModelAndCountsForTheNextResponseSurface)
{
    CaseSession chosen = session(CaseSession::Kriging);
    const SurrogateModelInterface* const model = &chosen.model();

    chosen.choose({selected});
    EXPECT_EQ(&chosen.model(), model);

    chosen.chooseModel(CaseSession::ResponseSurface);
    EXPECT_EQ(droppedBy(chosen), squares);
}

TEST_F(WorkspaceTerms, IsAnUndoStepUnlessRecordingIsSuspended)
{
    UndoStack().stack().clear();
    CaseSession chosen = session();
    {
        const UndoStack::SuspendUndoRecording unrecorded;
        chosen.choose({linear});
    }
    EXPECT_EQ(UndoStack().stack().count(), 0);

    chosen.choose({selected});
    EXPECT_EQ(droppedBy(chosen), squares);
    EXPECT_EQ(UndoStack().stack().undoText(), "Change Surrogate Model Terms");

    UndoStack().stack().undo();
    EXPECT_EQ(droppedBy(chosen), none);
    EXPECT_TRUE(chosen.modelChoices().responseSurface == linear);
}

TEST_F(WorkspaceTerms, IsThePolynomialToo)
{
    CaseSession chosen = session();
    chosen.fit();

    chosen.choose({{PolynomialTerms::Interactions, ResponseSurfaceOptions::Selection::All}});
    EXPECT_EQ(chosen.fit().outputs[0].metrics.terms, 4u);
    EXPECT_EQ(chosen.equationText().find("^2"), std::string::npos);

    chosen.choose({{PolynomialTerms::Linear, ResponseSurfaceOptions::Selection::BackwardAicc}});
    EXPECT_EQ(droppedBy(chosen), Texts{"V2"});
}

TEST_F(WorkspaceTerms, ComesBackFromADocumentAndIsTakenBackByOneWithoutIt)
{
    const ProjectDocument without = session().document();
    for (const ResponseSurfaceOptions& options : {selected, linear}) {
        const ProjectDocument saved = documentWith(options);
        saved.save(folder.path("p.surrogate.xml"));
        CaseSession loaded = session();

        loaded.load(ProjectDocument::load(folder.path("p.surrogate.xml")));
        EXPECT_TRUE(loaded.modelChoices().responseSurface == options);
        EXPECT_TRUE(loaded.document() == saved);
        loaded.fit();
        loaded.load(without);
        EXPECT_TRUE(loaded.modelChoices().responseSurface == ResponseSurfaceOptions());
        EXPECT_EQ(droppedBy(loaded), none);
    }
}

TEST_F(WorkspaceTerms, IsPartOfTheUndoStepOfLoading)
{
    const ProjectDocument document = documentWith(selected);
    CaseSession chosen = session();

    chosen.load(document);
    ASSERT_EQ(UndoStack().stack().count(), 1);
    EXPECT_EQ(droppedBy(chosen), squares);

    UndoStack().stack().undo();
    EXPECT_EQ(droppedBy(chosen), none);

    UndoStack().stack().redo();
    EXPECT_EQ(droppedBy(chosen), squares);
}
