#pragma once

#include <mirel_analyzercommon/tests/CleanUndoStack.h>
#include <mirel_datamanagement/Project.h>

#include <boost/make_shared.hpp>

#include <gtest/gtest.h>

#include <limits>

constexpr double missing = std::numeric_limits<double>::quiet_NaN();

constexpr char notEnoughCases[] = "There are not enough valid cases to create the surrogate model.";

/** An open project of its own and an empty undo stack for each test; the process has one each. */
class ProjectTest : public ::testing::Test
{
protected:
    ProjectTest() : project(boost::make_shared<Project>()) { Project::setProject(project); }

    ~ProjectTest() override { Project::setProject(boost::make_shared<Project>()); }

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

    void includeAll(bool isIncluded) const
    {
        const Project::ChangeGroup oneChange(*project);
        for (const RecordPtr& record : project->records()) {
            project->setIncluded(record, isIncluded);
        }
    }

    CleanUndoStack cleanUndoStack;
    boost::shared_ptr<Project> project;
};
