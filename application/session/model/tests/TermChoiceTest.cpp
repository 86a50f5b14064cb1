// The choice of terms on its way from a session to the models, and into project documents.

#include <session/model/CaseSession.h>
#include <session/project/ProjectDocument.h>
#include <session/report/ProjectReport.h>
#include <session/report/SessionReport.h>
#include <session/text/SessionErrors.h>

#include "CvdCases.h"
#include "TemporaryFolder.h"

#include <mirel_analyzercommon/UndoStack.h>
#include <mirel_fitting/ResponseSurfaceStatistics.h>
#include <mirel_fitting/TermSelectionScope.h>

#include <QUndoStack>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>
#include <utility>
#include <vector>

namespace {
using Json = nlohmann::ordered_json;
using Texts = std::vector<std::string>;

const CaseRoles uniformity = {{0, 1}, {2}};
const Texts none;
// By the same criterion as R's step() with an AICc that has one parameter more, for the variance.
const Texts squares = {"V1^2", "V2^2"};

CaseSession session(CaseSession::Model model = CaseSession::ResponseSurface)
{
    return CaseSession(cvdCases(), uniformity, {}, model);
}

Texts droppedBy(CaseSession& session)
{
    return session.statistics()[0].droppedTerms;
}

class TermChoiceInProject : public ::testing::Test
{
protected:
    TermChoiceInProject() { UndoStack().stack().clear(); }

    CaseSession session() const
    {
        CaseTable cases = cvdCases();
        cases.path = folder.write("cvd.csv", "cases");
        return CaseSession(std::move(cases), uniformity, {}, CaseSession::ResponseSurface);
    }

    ProjectDocument selecting() const
    {
        CaseSession chosen = session();
        chosen.chooseTerms(CaseSession::SelectedTerms);
        return chosen.document();
    }

    TemporaryFolder folder;
};
} // namespace

TEST(TermChoice, IsAllTermsAtFirst)
{
    CaseSession chosen = session();

    EXPECT_EQ(chosen.terms(), CaseSession::AllTerms);
    EXPECT_EQ(droppedBy(chosen), none);
}

TEST(TermChoice, FitsAnewWheneverItChanges)
{
    CaseSession chosen = session();
    chosen.fit();

    chosen.chooseTerms(CaseSession::SelectedTerms);
    EXPECT_EQ(droppedBy(chosen), squares);

    chosen.chooseTerms(CaseSession::AllTerms);
    EXPECT_EQ(droppedBy(chosen), none);
}

TEST(TermChoice, KeepsTheModelWhenItStaysTheSame)
{
    CaseSession chosen = session();
    chosen.chooseTerms(CaseSession::SelectedTerms);
    const SurrogateModelInterface* const model = &chosen.fit();

    chosen.chooseTerms(CaseSession::SelectedTerms);

    EXPECT_EQ(&chosen.fit(), model);
}

TEST(TermChoice, KeepsAKrigingModelAndCountsForTheNextResponseSurface)
{
    CaseSession chosen = session(CaseSession::Kriging);
    const SurrogateModelInterface* const model = &chosen.fit();

    chosen.chooseTerms(CaseSession::SelectedTerms);
    EXPECT_EQ(&chosen.fit(), model);

    chosen.chooseModel(CaseSession::ResponseSurface);
    EXPECT_EQ(droppedBy(chosen), squares);
}

TEST(TermChoice, EndsWithTheRequestForTheModel)
{
    CaseSession chosen = session();
    chosen.chooseTerms(CaseSession::SelectedTerms);
    chosen.fit();

    EXPECT_EQ(TermSelectionScope::current(), TermSelectionScope::Selection::All);
}

TEST(TermChoice, HoldsForTheGridAndTheEquation)
{
    CaseSession whole = session();
    const std::string before = whole.equationText();
    EXPECT_NE(before.find("V1^2"), std::string::npos) << before;

    whole.chooseTerms(CaseSession::SelectedTerms);

    const std::string after = whole.equationText();
    EXPECT_EQ(after.find("V1^2"), std::string::npos) << after;
    EXPECT_NE(after.find("V1 * V2"), std::string::npos) << after;
}

TEST(TermChoice, RecordsNothingForUndoing)
{
    UndoStack().stack().clear();
    CaseSession chosen = session();

    chosen.chooseTerms(CaseSession::SelectedTerms);

    EXPECT_EQ(UndoStack().stack().count(), 0);
}

TEST(TermChoice, IsSaidInTheReportWithWhatWasDropped)
{
    CaseSession chosen = session();
    chosen.chooseTerms(CaseSession::SelectedTerms);

    const std::string text = SessionReport::fitText(chosen);

    EXPECT_NE(text.find("Model   response surface, terms selected by AICc\n"), std::string::npos)
        << text;
    EXPECT_NE(text.find("Warning: AICc is lower without \"Pressure\"^2 and \"H2/WF6\"^2: they were "
                        "left out.\n"),
              std::string::npos)
        << text;
    EXPECT_EQ(Json::parse(SessionReport::fitJson(chosen, 0.0))["outputs"][0]["droppedTerms"],
              Json::parse(R"([{"term": "V1^2", "name": "Pressure^2"},
                              {"term": "V2^2", "name": "H2/WF6^2"}])"));
}

TEST(TermChoice, LeavesTheListOfDroppedTermsEmptyWhereAllAreKept)
{
    CaseSession chosen = session();

    EXPECT_EQ(Json::parse(SessionReport::fitJson(chosen, 0.0))["outputs"][0]["droppedTerms"],
              Json::array());
}

TEST_F(TermChoiceInProject, ComesBackFromADocument)
{
    const std::string path = folder.path("p.surrogate.xml");
    const ProjectDocument saved = selecting();
    saved.save(path);
    CaseSession loaded = session();

    loaded.load(ProjectDocument::load(path));

    EXPECT_EQ(loaded.terms(), CaseSession::SelectedTerms);
    EXPECT_EQ(droppedBy(loaded), squares);
    EXPECT_TRUE(loaded.document() == saved);
}

TEST_F(TermChoiceInProject, IsAnElementThatIsThereOnlyWhenTermsAreSelected)
{
    const std::string path = folder.path("p.surrogate.xml");
    const std::string element = "  <TermSelection Method=\"BackwardAicc\"/>\n</SurrogateProject>\n";

    selecting().save(path);
    EXPECT_NE(folder.read("p.surrogate.xml").find(element), std::string::npos);

    session().document().save(path);
    EXPECT_EQ(folder.read("p.surrogate.xml").find("TermSelection"), std::string::npos);
}

TEST_F(TermChoiceInProject, IsTakenBackByADocumentWithoutIt)
{
    const ProjectDocument without = session().document();
    CaseSession chosen = session();
    chosen.chooseTerms(CaseSession::SelectedTerms);
    chosen.fit();

    chosen.load(without);

    EXPECT_EQ(chosen.terms(), CaseSession::AllTerms);
    EXPECT_EQ(droppedBy(chosen), none);
}

TEST_F(TermChoiceInProject, IsPartOfTheUndoStepOfLoading)
{
    const ProjectDocument document = selecting();
    CaseSession chosen = session();

    chosen.load(document, CaseSession::OneUndoStep);
    ASSERT_EQ(UndoStack().stack().count(), 1);
    EXPECT_EQ(droppedBy(chosen), squares);

    UndoStack().stack().undo();
    EXPECT_EQ(droppedBy(chosen), none);

    UndoStack().stack().redo();
    EXPECT_EQ(droppedBy(chosen), squares);
}

TEST_F(TermChoiceInProject, IsShownOfADocument)
{
    EXPECT_NE(ProjectReport::text(selecting()).find("selected by AICc"), std::string::npos);
    EXPECT_EQ(ProjectReport::text(session().document()).find("selected"), std::string::npos);
    EXPECT_EQ(Json::parse(ProjectReport::json(selecting()))["selectsTerms"], true);
    EXPECT_EQ(Json::parse(ProjectReport::json(session().document()))["selectsTerms"], false);
}

TEST(PolynomialChoice, IsThatOfTheFitAndOfWhatIsSaidAboutIt)
{
    CaseSession chosen = session();
    EXPECT_EQ(chosen.polynomial(), PolynomialTerms::Quadratic);
    chosen.fit();

    chosen.choosePolynomial(PolynomialTerms::Interactions);

    const Json json = Json::parse(SessionReport::fitJson(chosen, 0.0));
    EXPECT_EQ(json["terms"], "interactions");
    EXPECT_EQ(json["selectsTerms"], false);
    EXPECT_EQ(json["outputs"][0]["coefficients"].size(), 4u);
    EXPECT_EQ(json["outputs"][0]["droppedTerms"], Json::array());
    EXPECT_NE(SessionReport::fitText(chosen).find(
                  "\nModel   response surface, linear with interactions\n"),
              std::string::npos);
    EXPECT_EQ(chosen.equationText().find("^2"), std::string::npos);
    EXPECT_EQ(TermSelectionScope::currentTerms(), PolynomialTerms::Quadratic);
}

TEST(PolynomialChoice, GoesTogetherWithTheSelectionOfTerms)
{
    CaseSession chosen = session();
    chosen.chooseTerms(CaseSession::SelectedTerms);
    chosen.choosePolynomial(PolynomialTerms::Linear);

    EXPECT_EQ(chosen.terms(), CaseSession::SelectedTerms);
    EXPECT_EQ(droppedBy(chosen), Texts{"V2"});
    EXPECT_NE(SessionReport::fitText(chosen).find(
                  "\nModel   response surface, linear, terms selected by AICc\n"),
              std::string::npos);
}

TEST_F(TermChoiceInProject, TheTermsOfThePolynomialComeBackFromADocument)
{
    const std::string path = folder.path("p.surrogate.xml");
    CaseSession chosen = session();
    chosen.choosePolynomial(PolynomialTerms::Linear);
    const ProjectDocument saved = chosen.document();
    saved.save(path);
    EXPECT_NE(folder.read("p.surrogate.xml").find("  <Polynomial Terms=\"Linear\"/>\n"),
              std::string::npos);
    EXPECT_EQ(Json::parse(ProjectReport::json(saved))["terms"], "linear");
    EXPECT_NE(ProjectReport::text(saved).find("linear, if it is a response surface\n"),
              std::string::npos);

    CaseSession loaded = session();
    loaded.load(ProjectDocument::load(path));

    EXPECT_EQ(loaded.polynomial(), PolynomialTerms::Linear);
    EXPECT_TRUE(loaded.document() == saved);
    loaded.load(session().document());
    EXPECT_EQ(loaded.polynomial(), PolynomialTerms::Quadratic);
}

TEST_F(TermChoiceInProject, UnknownTermsOfAPolynomialAreRefused)
{
    const std::string path = folder.path("p.surrogate.xml");
    CaseSession chosen = session();
    chosen.choosePolynomial(PolynomialTerms::Linear);
    chosen.document().save(path);
    std::string text = folder.read("p.surrogate.xml");
    text.replace(text.find("\"Linear\""), 8, "\"Cubic\"");
    folder.write("p.surrogate.xml", text);

    try {
        ProjectDocument::load(path);
        FAIL();
    } catch (const ProjectDocumentError& error) {
        EXPECT_NE(std::string(error.what())
                      .find("the attribute \"Terms\" of the element \"Polynomial\" must be "
                            "\"Linear\", \"Interactions\" or \"Quadratic\", not \"Cubic\"."),
                  std::string::npos)
            << error.what();
    }
}
