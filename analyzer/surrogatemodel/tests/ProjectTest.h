#pragma once

#include <mirel_analyzercommon/GenericUndoCommand.h>
#include <mirel_analyzercommon/UndoStack.h>
#include <mirel_datamanagement/Project.h>

#include <boost/make_shared.hpp>

#include <QUndoStack>

#include <gtest/gtest.h>

#include <limits>

constexpr double missing = std::numeric_limits<double>::quiet_NaN();

/** An open project of its own and an empty undo stack for each test; the process has one each. */
class ProjectTest : public ::testing::Test
{
protected:
    ProjectTest() : project(boost::make_shared<Project>())
    {
        Project::setProject(project);
        undoStack().clear();
    }

    ~ProjectTest() override
    {
        undoStack().clear();
        Project::setProject(boost::make_shared<Project>());
    }

    /** A suspension or macro that a test left open would make the tests after it meaningless. */
    void TearDown() override
    {
        undoStack().clear();
        UndoStack().push(new GenericUndoCommand([] {}, [] {}, nullptr, "probe", -1));
        EXPECT_EQ(undoStack().count(), 1);
        EXPECT_TRUE(undoStack().canUndo());
    }

    static QUndoStack& undoStack() { return UndoStack().stack(); }

    void addRecords(int count) const
    {
        for (int record = 0; record < count; ++record) {
            project->addRecord();
        }
    }

    VarPtr addInput(const std::string& name, std::vector<double> values = {}) const
    {
        return project->addNumericVariable(name, Variable::Independent, std::move(values));
    }

    VarPtr addOutput(const std::string& name, std::vector<double> values = {}) const
    {
        return project->addNumericVariable(name, Variable::Dependent, std::move(values));
    }

    boost::shared_ptr<Project> project;
};
