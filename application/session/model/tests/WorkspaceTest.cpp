#include <session/model/Workspace.h>

#include "CvdSession.h"
#include "MessageOf.h"

#include <session/text/SessionErrors.h>

#include <surrogatemodel/SurrogateModelUserDistCollection.h>

#include <mirel_analyzercommon/UndoStack.h>
#include <mirel_datamanagement/Project.h>

#include <QUndoStack>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

TEST(Workspace, OpensAProjectWithTheRolesAsNaturesWithoutAnUndoStepAndClosesItAtTheEnd)
{
    const int before = UndoStack().stack().count();
    {
        const Workspace workspace(cvdCases(), {{1}, {3}}, {3}, Workspace::Kriging);

        const std::vector<VarPtr> variables = Project::project()->variables();
        ASSERT_EQ(variables.size(), 4u);
        EXPECT_EQ(variables[0].lock()->nature(), Variable::Unassigned);
        EXPECT_EQ(variables[1].lock()->nature(), Variable::Independent);
        EXPECT_EQ(variables[3].lock()->nature(), Variable::Dependent);
        EXPECT_EQ(workspace.manager()->independentVars()->get(), workspace.inputs());
        EXPECT_EQ(UndoStack().stack().count(), before);
    }
    EXPECT_TRUE(Project::project()->variables().empty());
}

TEST(Workspace, StartsWithAResponseSurfaceOfAllTerms)
{
    const Workspace workspace(cvdCases());

    EXPECT_EQ(workspace.modelType(), Workspace::ResponseSurface);
    EXPECT_TRUE(workspace.modelChoices().responseSurface == ResponseSurfaceOptions());
    EXPECT_TRUE(workspace.inputs().empty());
    EXPECT_TRUE(workspace.outputs().empty());
}

TEST(Workspace, LabelsVariablesWithTheUnitsOfTheCaseFile)
{
    CaseTable table = cvdCases();
    table.columns[1].unit = "K";

    const Workspace workspace(std::move(table));

    const std::string second = Project::project()->variables()[1].lock()->name();
    EXPECT_EQ(workspace.unitOf(second), "K");
    EXPECT_EQ(workspace.labelOf(second), second + " (K)");
    EXPECT_EQ(workspace.unitOf("no such name"), "");
    EXPECT_EQ(workspace.labelOf("no such name"), "no such name");
}

TEST(Workspace, LeavesItToTheCallerWhetherAChoiceIsAnUndoStep)
{
    UndoStack().stack().clear();
    Workspace workspace(cvdCases(), cvdRoles, {}, Workspace::ResponseSurface);
    {
        const UndoStack::SuspendUndoRecording unrecorded;
        workspace.chooseModel(Workspace::Kriging);
        workspace.stayAt(0, "42");
    }
    EXPECT_EQ(UndoStack().stack().count(), 0);

    workspace.stayAt(1, "5");
    workspace.chooseModel(Workspace::ResponseSurface);
    EXPECT_EQ(UndoStack().stack().count(), 2);

    UndoStack().stack().undo();
    EXPECT_EQ(workspace.modelType(), Workspace::Kriging);
    UndoStack().stack().undo();
    const auto point = workspace.manager()->evaluationPoint()->get();
    EXPECT_EQ(point.getUserDistString("Pressure"), "42");
    EXPECT_EQ(point.getUserDistString("H2/WF6"), "2");
}

TEST(Workspace, OutputsHaveTheOffsetsOfTheirColumns)
{
    Workspace workspace(cvdCases(), cvdRoles, {}, Workspace::ResponseSurface);
    EXPECT_EQ(workspace.outputOffsets(), (std::vector<int>{1, 0}));

    workspace.chooseRoles({{0, 1}, {3}});
    EXPECT_EQ(workspace.outputOffsets(), (std::vector<int>{0}));
}

TEST(Workspace, RefusesANameThatAProjectCannotCarry)
{
    CaseTable table = cvdCases();
    table.columns[1].name = "a\x01z";

    const std::string message = messageOf<CaseDataError>(
        [&] { Workspace(table, cvdRoles, {}, Workspace::ResponseSurface); });

    EXPECT_EQ(message.substr(0, 19), "cases.csv, line 1: ");
}

TEST(Workspace, AFaultyTextIsRefusedInOneSentenceWithTheItem)
{
    Workspace workspace(cvdCases(), cvdRoles, {}, Workspace::ResponseSurface);

    EXPECT_EQ(
        messageOf<DistributionTextError>([&] { workspace.sweep(0, "1, 2 - x : 3"); }),
        "The text \"1, 2 - x : 3\" for \"Pressure\" cannot be read. Expression: 2 - x : 3: Invalid "
        "floating point number. Write numbers and ranges like 4 - 80 : 20, 42.");
    EXPECT_THROW(workspace.stayAt(0, "five"), DistributionTextError);
    EXPECT_THROW(workspace.stayAt(0, ""), DistributionTextError);
    EXPECT_EQ(messageOf<DistributionTextError>([&] { workspace.stayAt(0, "1, 2"); }),
              "The text \"1, 2\" for \"Pressure\" has several values where one is wanted.");

    std::string manyValues = "4";
    for (int range = 0; range < 10; ++range) {
        manyValues += ",4-80:1000000";
    }
    EXPECT_EQ(messageOf<DistributionTextError>([&] { workspace.sweep(0, manyValues); }),
              "The text for \"Pressure\" is too large: it asks for 10000001 values, and at most "
              "10000000 can be typed. Ask for fewer values.");

    EXPECT_EQ(messageOf<UsageError>([&] { workspace.sweepEvenly(0, 1); }),
              "\"Pressure\" can be swept evenly over 2 to 100000000 values, not 1.");
}
