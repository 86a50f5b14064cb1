#include <session/model/SessionState.h>

#include "CvdCases.h"
#include "MessageOf.h"

#include <session/project/ProjectDocument.h>
#include <session/text/SessionErrors.h>

#include <surrogatemodel/SurrogateModelManager.h>

#include <mirel_analyzercommon/UndoStack.h>
#include <mirel_datamanagement/Project.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {
class SessionStateTest : public ::testing::Test
{
protected:
    ~SessionStateTest() override { Project::setProject(nullptr); }

    ProjectDocument saved() const
    {
        ProjectDocument document;
        state.save(document);
        return document;
    }

    std::string refusalOf(const ProjectDocument& document)
    {
        const std::string beginning = "The project does not fit its cases: ";
        const SessionSettings before = state.settings();
        const std::string message = messageOf<ProjectDocumentError>([&] { state.load(document); });
        EXPECT_EQ(message.rfind(beginning, 0), 0u) << message;
        EXPECT_TRUE(state.settings() == before);
        return message.substr(beginning.size());
    }

    UndoStack::SuspendUndoRecording unrecorded;
    CaseTable table = [] {
        CaseTable cases = cvdCases();
        cases.columns[2].isNumeric = false;
        cases.columns[2].numbers.clear();
        cases.columns[2].texts.assign(11, "high");
        return cases;
    }();
    SessionState state{table};
};
} // namespace

TEST_F(SessionStateTest, RefusesTextsOfTooManyValuesAndKeepsItsSettings)
{
    state.chooseRoles({{1, 0}, {3}});
    const SessionSettings settings = state.settings();
    std::string text = "4";
    for (int range = 0; range < 10; ++range) {
        text += ",4-80:1000000";
    }
    using Texts = boost::shared_ptr<veska::PropertyAbstract<SurrogateModelUserDistCollection>>;
    for (const Texts& texts :
         {Texts(state.manager->evaluationPoint()), Texts(state.userDistributions)}) {
        const SurrogateModelUserDistCollection before = texts->get();
        SurrogateModelUserDistCollection changed = before;
        changed.setUserDistString("Pressure", text);
        texts->set(changed);
        const ProjectDocument document = saved();
        texts->set(before);

        EXPECT_EQ(messageOf<ProjectDocumentError>([&] { state.load(document); }),
                  "The text for \"Pressure\" is too large: it asks for 10000001 values, and at "
                  "most 10000000 can be typed. Ask for fewer values.");
        EXPECT_TRUE(state.settings() == settings);
    }
}

TEST_F(SessionStateTest, RefusesTextsOfTooManyValuesTogether)
{
    state.chooseRoles({{1, 0}, {3}});
    std::string text = "4";
    for (int range = 0; range < 6; ++range) {
        text += ",4-80:1000000";
    }
    SurrogateModelUserDistCollection texts = state.userDistributions->get();
    texts.setUserDistString("Pressure", text);
    texts.setUserDistString("H2/WF6", text);
    state.userDistributions->set(texts);
    const ProjectDocument document = saved();

    EXPECT_EQ(messageOf<ProjectDocumentError>([&] { state.load(document); }),
              "The texts of all variables ask for more than 10000000 values together. Ask for "
              "fewer values.");
}

TEST_F(SessionStateTest, LoadsWhatItHasSaved)
{
    state.chooseRoles({{1, 0}, {3}});
    state.exclude({2, 5});
    const ProjectDocument document = saved();
    EXPECT_EQ(document.outputs, (std::vector<std::string>{"Stress"}));
    EXPECT_EQ(document.modelInputs(), (std::vector<std::string>{"H2/WF6", "Pressure"}));
    const SessionSettings settings = state.settings();

    state.chooseRoles({{0}, {1}});
    state.exclude({});
    state.load(document);

    EXPECT_TRUE(state.settings() == settings);
}

TEST_F(SessionStateTest, SettingsComeBackAsOneChangeOfTheProject)
{
    const SessionSettings before = state.settings();
    state.chooseRoles({{1, 0}, {3}});
    state.exclude({2});
    int changes = 0;
    const boost::signals2::scoped_connection connection =
        state.project->connectSignalChanged([&] { ++changes; });

    state.setSettings(before);

    EXPECT_EQ(changes, 1);
    EXPECT_TRUE(state.settings() == before);
}

TEST_F(SessionStateTest, RefusesADocumentThatDoesNotFitTheCases)
{
    ProjectDocument unknown = saved();
    unknown.variables.push_back({"Stres", Variable::Independent, std::nullopt});
    EXPECT_EQ(refusalOf(unknown),
              "There is no variable \"Stres\"; the nearest name is \"Stress\". The variables are: "
              "\"Pressure\", \"H2/WF6\", \"Uniformity\", \"Stress\".");

    ProjectDocument beyond = saved();
    beyond.excluded = {11};
    EXPECT_EQ(refusalOf(beyond), "There is no case 12 to exclude: the cases are 1 to 11.");

    ProjectDocument text = saved();
    text.variables[2].role = Variable::Dependent;
    EXPECT_EQ(refusalOf(text), "\"Uniformity\" is a column of texts, which can be neither an input "
                               "nor an output.");
}
