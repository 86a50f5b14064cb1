#include <session/model/SessionChoices.h>

#include "CvdCases.h"
#include "MessageOf.h"
#include "TemporaryFolder.h"

#include <session/cases/VariableNames.h>
#include <session/project/ProjectDocument.h>
#include <session/text/SessionErrors.h>

#include <mirel_datamanagement/Project.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

namespace {
using Names = std::vector<std::string>;

/** The cases of a file, whose bytes do not matter here. */
CaseTable tableIn(const TemporaryFolder& folder)
{
    CaseTable table = cvdCases();
    table.path = folder.write("cvd.csv", "cases");
    return table;
}

/** A project of a Kriging model of two outputs, without the cases 2 and 3. */
ProjectDocument documentIn(const TemporaryFolder& folder)
{
    return CaseSession(tableIn(folder), {{0, 1}, {3, 2}}, {1, 2}, CaseSession::Kriging).document();
}

/** The document with a part of its text replaced. */
ProjectDocument edited(const TemporaryFolder& folder, const std::string& part,
                       const std::string& replacement)
{
    documentIn(folder).save(folder.path("p.surrogate.xml"));
    std::string text = folder.read("p.surrogate.xml");
    text.replace(text.find(part), part.size(), replacement);
    return ProjectDocument::load(folder.write("p.surrogate.xml", text));
}
} // namespace

TEST(SessionChoices, CasesWithoutAChoiceGetAResponseSurfaceOfAllNumericColumns)
{
    const auto session = openCases(cvdCases(), {});

    EXPECT_EQ(namesOf(session->inputs()), (Names{"Pressure", "H2/WF6", "Uniformity", "Stress"}));
    EXPECT_TRUE(session->outputs().empty());
    EXPECT_EQ(session->counts().excluded, 0u);
    EXPECT_EQ(session->modelType(), CaseSession::ResponseSurface);
    EXPECT_TRUE(session->modelChoices().responseSurface == ResponseSurfaceOptions());
}

TEST(SessionChoices, TermsMustBeOfTheInputs)
{
    SessionChoices choices;
    choices.inputs = {"Pressure,H2/WF6"};
    choices.outputs = {"Stress"};
    choices.terms = PolynomialTerms::Chosen;
    choices.formula = "cubic";
    const auto open = [&] { openCases(cvdCases(), choices); };

    EXPECT_EQ(
        messageOf<UsageError>(open),
        "The terms \"cubic\" name \"cubic\", which is no input. Terms are linear, "
        "interactions, quadratic or a sum of terms such as A + B + A * B + A^2 of the inputs, "
        "which are: Pressure, H2/WF6.");
    choices.formula = "Pressure + H2/WF6^2";
    EXPECT_NO_THROW(open());
}

TEST(SessionChoices, CasesGetWhatIsChosen)
{
    SessionChoices choices;
    choices.inputs = {"H2/WF6, Pressure"};
    choices.outputs = {"Stress"};
    choices.excluded = "1,4-5";
    choices.model = CaseSession::Kriging;
    choices.terms = PolynomialTerms::Linear;

    const auto session = openCases(cvdCases(), choices);

    EXPECT_EQ(namesOf(session->inputs()), (Names{"H2/WF6", "Pressure"}));
    EXPECT_EQ(namesOf(session->outputs()), (Names{"Stress"}));
    EXPECT_EQ(session->counts().excluded, 3u);
    EXPECT_EQ(session->modelType(), CaseSession::Kriging);
    EXPECT_EQ(session->modelChoices().responseSurface.terms, PolynomialTerms::Linear);
}

TEST(SessionChoices, AProjectWithoutAChoiceIsAsItsDocumentSays)
{
    const TemporaryFolder folder;
    const ProjectDocument document = documentIn(folder);

    const OpenedProject opened = openProject(tableIn(folder), document, {});

    EXPECT_EQ(opened.notes, Names());
    EXPECT_EQ(namesOf(opened.session->inputs()), (Names{"Pressure", "H2/WF6"}));
    EXPECT_EQ(namesOf(opened.session->outputs()), (Names{"Stress", "Uniformity"}));
    EXPECT_EQ(opened.session->counts().excluded, 2u);
    EXPECT_EQ(opened.session->modelType(), CaseSession::Kriging);
}

TEST(SessionChoices, ChoicesTakePrecedenceOverTheDocument)
{
    const TemporaryFolder folder;
    const ProjectDocument document = documentIn(folder);
    SessionChoices choices;
    choices.outputs = {"Uniformity"};
    choices.excluded = "none";
    choices.model = CaseSession::ResponseSurface;
    choices.selection = ResponseSurfaceOptions::Selection::BackwardAicc;

    const OpenedProject opened = openProject(tableIn(folder), document, choices);

    EXPECT_EQ(namesOf(opened.session->inputs()), (Names{"Pressure", "H2/WF6"}));
    EXPECT_EQ(namesOf(opened.session->outputs()), (Names{"Uniformity"}));
    EXPECT_EQ(opened.session->counts().excluded, 0u);
    EXPECT_EQ(opened.session->modelType(), CaseSession::ResponseSurface);
    EXPECT_EQ(opened.session->modelChoices().responseSurface.selection,
              ResponseSurfaceOptions::Selection::BackwardAicc);
}

TEST(SessionChoices, AnInputThatIsNoVariableIsLeftOutWithANote)
{
    const TemporaryFolder folder;
    const ProjectDocument document =
        edited(folder, "</SurrogateModel>", "<Variable Name=\"H2\"/><Variable/></SurrogateModel>");

    EXPECT_EQ(openProject(tableIn(folder), document, {}).notes,
              (Names{"the input \"H2\" of the project is left out, it is no independent variable "
                     "there.",
                     "the input \"\" of the project is left out, it is no independent variable "
                     "there."}));
    SessionChoices choices;
    choices.inputs = {"Pressure"};
    EXPECT_EQ(openProject(tableIn(folder), document, choices).notes, Names());
}

TEST(SessionChoices, AnUnknownModelIsKrigingWithANoteIfItIsTaken)
{
    const TemporaryFolder folder;
    const ProjectDocument document = edited(folder, "<Type>Kriging</Type>", "<Type>spline</Type>");

    const OpenedProject opened = openProject(tableIn(folder), document, {});
    EXPECT_EQ(opened.session->modelType(), CaseSession::Kriging);
    EXPECT_EQ(opened.notes, (Names{"the model \"spline\" of the project is not known to this "
                                   "version, which takes kriging."}));
    SessionChoices choices;
    choices.model = CaseSession::ResponseSurface;
    EXPECT_EQ(openProject(tableIn(folder), document, choices).notes, Names());
}

TEST(SessionChoices, RolesThatAModelNeedsAreAskedFor)
{
    const auto refusal = [](const Workspace& workspace, bool isOfProject) {
        return messageOf<UsageError>([&] { requireRoles(workspace, isOfProject); });
    };
    SessionChoices choices;
    EXPECT_EQ(refusal(*openCases(cvdCases(), choices), false),
              "An output is needed: name one. The numeric columns are: \"Pressure\", "
              "\"H2/WF6\", \"Uniformity\", \"Stress\".");

    choices.outputs = {"Pressure,H2/WF6,Uniformity,Stress"};
    const auto session = openCases(cvdCases(), choices);
    EXPECT_EQ(refusal(*session, false),
              "No column is left to be an input: there is no other column; if the file has more, "
              "name what separates them.");
    EXPECT_EQ(refusal(*session, true), "The project has no input; name one.");

    choices.outputs = {"Stress"};
    EXPECT_EQ(refusal(*openCases(cvdCases(), choices), false), "accepted");
}

TEST(SessionChoices, MoreInputsThanAModelCanHaveAreRefusedWithWhatTheyWouldNeed)
{
    const auto refusal = [](std::size_t inputs, CaseSession::ModelType model, bool comparesModels,
                            std::size_t constants = 0, const std::string& formula = "") {
        CaseTable table;
        CaseRoles roles;
        roles.outputs = {0};
        for (std::size_t i = 0; i <= inputs; ++i) {
            CaseColumn& column = table.columns.emplace_back();
            column.name = 'v' + std::to_string(i);
            column.numbers = {1.0, 2.0, 4.0};
            if (i > inputs - constants) {
                column.numbers = {7.0, 7.0, 7.0};
            }
            if (i > 0) {
                roles.inputs.push_back(i);
            }
        }
        Workspace workspace(std::move(table), roles, {}, model);
        if (!formula.empty()) {
            ResponseSurfaceOptions options;
            options.terms = PolynomialTerms::Chosen;
            options.formula = formula;
            workspace.choose({options});
        }
        return messageOf<UsageError>([&] { requireFewInputs(workspace, comparesModels); });
    };
    EXPECT_EQ(refusal(2000, CaseSession::Kriging, false), "accepted");
    const std::string tooMany = "2001 columns would be inputs, and a Kriging model takes at most "
                                "2000: it would need 32 MB of memory for each search for their "
                                "correlation lengths, and time that grows with the cube of their "
                                "number. Name the inputs that matter.";
    EXPECT_EQ(refusal(2001, CaseSession::Kriging, false), tooMany);
    EXPECT_EQ(refusal(2001, CaseSession::ResponseSurface, true), tooMany);

    EXPECT_EQ(refusal(2100, CaseSession::Kriging, false, 99), tooMany);
    EXPECT_EQ(refusal(2100, CaseSession::Kriging, false, 100), "accepted");

    EXPECT_EQ(refusal(9999, CaseSession::ResponseSurface, false), "accepted");
    EXPECT_EQ(refusal(10000, CaseSession::ResponseSurface, false, 0, "v1 + v2"), "accepted");
    EXPECT_EQ(refusal(10000, CaseSession::ResponseSurface, false),
              "10000 columns would be inputs, and a response surface takes at most 9999: it would "
              "need 10001 valid cases for the linear terms alone. Name the inputs that matter.");
}

TEST(SessionChoices, AnInputWithNothingSaidStaysAtTheMedianOfTheValidCases)
{
    CaseTable table = cvdCases();
    table.columns[0].numbers[0] = std::nan("");
    SessionChoices choices;
    choices.inputs = {"Pressure, H2/WF6"};
    choices.outputs = {"Stress"};
    choices.excluded = "2";
    const std::vector<double> pressures = table.columns[0].numbers;

    const auto session = openCases(std::move(table), choices);

    std::vector<double> valid(pressures.begin() + 2, pressures.end());
    std::sort(valid.begin(), valid.end());
    ASSERT_EQ(valid.size(), 9u);
    EXPECT_EQ(session->heldValues()[0], valid[4]);
    ASSERT_EQ(session->evaluate().held.size(), 2u);
    EXPECT_EQ(session->evaluate().held[0].name, "Pressure");
    EXPECT_EQ(session->evaluate().held[0].value, valid[4]);
}

TEST(SessionChoices, AnEvenNumberOfCasesHasItsMedianBetweenTheMiddleTwoNoneTheMinimum)
{
    SessionChoices choices;
    choices.outputs = {"Stress"};
    choices.excluded = "1";
    for (const double last : {1.0, 1.1}) {
        CaseTable table = cvdCases();
        table.columns[0].numbers = {3, 0.3, 1, 0.1, -1e-7, 7, 0.2, 9, 2, 5, last};
        EXPECT_EQ(openCases(std::move(table), choices)->heldValues()[0], 0.5 + last / 2.0);
    }
    choices.excluded = "1-11";
    EXPECT_EQ(openCases(cvdCases(), choices)->heldValues()[0], 4.0);
    choices.excluded = "12";
    EXPECT_THROW(openCases(cvdCases(), choices), UsageError);
}

TEST(SessionChoices, AProjectKeepsTheValuesThatWereChosenAndTheMediansOfTheOthers)
{
    const TemporaryFolder folder;
    SessionChoices choices;
    choices.inputs = {"Pressure, H2/WF6"};
    choices.outputs = {"Stress"};
    const ProjectDocument document = [&] {
        const auto session = openCases(tableIn(folder), choices);
        session->stayAt(1, "3.5");
        return session->document();
    }();
    SessionChoices withoutMost;
    withoutMost.excluded = "2-11";
    CaseTable table = tableIn(folder);
    const double first = table.columns[0].numbers[0];

    const OpenedProject opened = openProject(std::move(table), document, withoutMost);

    EXPECT_EQ(opened.session->heldValues(), (std::vector<double>{first, 3.5}));
}
