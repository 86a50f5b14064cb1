#include <mirel_datamanagement/Project.h>

#include <mirel_datamanagement/ProjectError.h>

#include <boost/smart_ptr/make_shared.hpp>

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>

namespace {

constexpr double missing = std::numeric_limits<double>::quiet_NaN();

struct ProjectChanges : testing::Test
{
    Project project;
    VarPtr x = project.addNumericVariable("x", Variable::Independent, {1.0, missing, 0.0});
    VarPtr t = project.addTextVariable("t", Variable::Unassigned, {"a", "", "c"});
    RecordPtr first = project.record(1);
    RecordPtr second = project.record(2);
    RecordPtr third = project.record(3);

    int changes = 0;
    boost::signals2::scoped_connection counting =
        project.connectSignalChanged([this] { ++changes; });

    int changesOf(const std::function<void()>& operation)
    {
        changes = 0;
        operation();
        return changes;
    }
};

} // namespace

TEST_F(ProjectChanges, AreAnnouncedOnceEach)
{
    EXPECT_EQ(changesOf([&] {
                  project.addNumericVariable("n", Variable::Dependent, {1, 2, 3, 4});
              }),
              1);
    EXPECT_EQ(changesOf([&] { project.addTextVariable("s", Variable::Dependent); }), 1);
    EXPECT_EQ(changesOf([&] { project.moveVariable(x, 1); }), 1);
    EXPECT_EQ(changesOf([&] { project.renameVariable(x, "renamed"); }), 1);
    EXPECT_EQ(changesOf([&] { project.setNature(x, Variable::Dependent); }), 1);
    EXPECT_EQ(changesOf([&] { project.setRange(x, {0.0, 1.0}); }), 1);
    EXPECT_EQ(changesOf([&] { project.resetRange(x); }), 1);
    EXPECT_EQ(changesOf([&] { project.addRecord(); }), 1);
    EXPECT_EQ(changesOf([&] { project.setIncluded(first, false); }), 1);
    EXPECT_EQ(changesOf([&] { project.setValue(first, x, 5.0); }), 1);
    EXPECT_EQ(changesOf([&] { project.setValue(first, t, "z"); }), 1);
    EXPECT_EQ(changesOf([&] { project.removeRecord(first); }), 1);
    EXPECT_EQ(changesOf([&] { project.removeVariable(x); }), 1);
    EXPECT_EQ(changesOf([&] { project.restoreVariable(x, 0); }), 1);
}

TEST_F(ProjectChanges, AreSilentWhenNothingChanges)
{
    project.setRange(x, {0.0, 1.0});
    EXPECT_EQ(changesOf([&] { project.moveVariable(x, 0); }), 0);
    EXPECT_EQ(changesOf([&] { project.moveVariable(t, 99); }), 0);
    EXPECT_EQ(changesOf([&] { project.renameVariable(x, "x"); }), 0);
    EXPECT_EQ(changesOf([&] { project.setNature(x, Variable::Independent); }), 0);
    EXPECT_EQ(changesOf([&] { project.setRange(x, {0.0, 1.0}); }), 0);
    project.resetRange(x);
    EXPECT_EQ(changesOf([&] { project.resetRange(x); }), 0);
    EXPECT_EQ(changesOf([&] { project.setIncluded(first, true); }), 0);
    EXPECT_EQ(changesOf([&] { project.setValue(first, x, 1.0); }), 0);
    EXPECT_EQ(changesOf([&] { project.setValue(second, x, missing); }), 0);
    EXPECT_EQ(changesOf([&] { project.setValue(first, t, "a"); }), 0);
    EXPECT_EQ(changesOf([&] { project.restoreVariable(x, 1); }), 0);
}

TEST_F(ProjectChanges, AreSilentWhenARemovedVariableIsRemovedAgain)
{
    project.removeVariable(x);
    project.removeRecord(first);
    EXPECT_EQ(changesOf([&] { project.removeVariable(x); }), 0);
    EXPECT_EQ(changesOf([&] { project.removeRecord(first); }), 0);
    EXPECT_EQ(project.recordCount(), 2u);
}

TEST_F(ProjectChanges, IncludeTheSignOfZero)
{
    EXPECT_EQ(changesOf([&] { project.setValue(third, x, -0.0); }), 1);
    EXPECT_TRUE(std::signbit(project.numericValues(x)[2]));
}

TEST_F(ProjectChanges, AreMadeBeforeTheListenerIsCalled)
{
    double seen = 0.0;
    const boost::signals2::scoped_connection reading =
        project.connectSignalChanged([&] { seen = project.numericValues(x)[0]; });
    project.setValue(first, x, 5.0);
    EXPECT_EQ(seen, 5.0);
}

TEST_F(ProjectChanges, StandWhenAListenerThrows)
{
    const boost::signals2::scoped_connection throwing =
        project.connectSignalChanged([] { throw std::runtime_error("listener"); });
    EXPECT_THROW(project.setValue(first, x, 5.0), std::runtime_error);
    EXPECT_EQ(project.numericValues(x)[0], 5.0);
}

TEST_F(ProjectChanges, MayBeMadeByAListener)
{
    const boost::signals2::scoped_connection answering =
        project.connectSignalChanged([&] { project.setValue(second, x, 8.0); });
    project.setValue(first, x, 5.0);
    EXPECT_EQ(project.numericValues(x)[1], 8.0);
}

TEST(ProjectChangesOfAClosedProject, ReachNoOtherListenerWhenOneClosesTheProject)
{
    auto project = std::make_unique<Project>();
    int later = 0;
    project->connectSignalChanged([&project] { project.reset(); });
    project->connectSignalChanged([&later] { ++later; });
    const VarPtr added = project->addNumericVariable("x", Variable::Independent);
    EXPECT_EQ(project, nullptr);
    EXPECT_FALSE(added.valid());
    EXPECT_EQ(later, 0);
}

TEST(ProjectChangesOfAClosedProject, ReachNoListenerWhenTheGroupEnds)
{
    auto project = std::make_unique<Project>();
    int emissions = 0;
    project->connectSignalChanged([&emissions] { ++emissions; });
    {
        Project::ChangeGroup group(*project);
        project->addRecord();
        project.reset();
    }
    EXPECT_EQ(emissions, 0);
}

TEST_F(ProjectChanges, OfAGroupAndOfGroupsWithinAreAnnouncedOnceAtTheEndOfTheOutermost)
{
    const int announced = changesOf([&] {
        Project::ChangeGroup outer(project);
        project.addRecord();
        for (const double value : {5.0, 6.0}) {
            Project::ChangeGroup inner(project);
            project.setValue(first, x, value);
        }
        project.setNature(x, Variable::Dependent);
        EXPECT_EQ(changes, 0);
    });
    EXPECT_EQ(announced, 1);
    EXPECT_EQ(changesOf([&] { project.addRecord(); }), 1) << "each again after a group";
}

TEST_F(ProjectChanges, OfAGroupInWhichNothingChangedAreNotAnnounced)
{
    EXPECT_EQ(changesOf([&] { Project::ChangeGroup group(project); }), 0);
    EXPECT_EQ(changesOf([&] {
                  Project::ChangeGroup group(project);
                  project.setValue(first, x, 1.0);
              }),
              0);
}

TEST_F(ProjectChanges, OfAGroupAreAnnouncedWhenAnExceptionEndsIt)
{
    const int announced = changesOf([&] {
        try {
            Project::ChangeGroup group(project);
            project.setValue(first, x, 5.0);
            throw std::runtime_error("half-way");
        } catch (const std::runtime_error&) {
        }
    });
    EXPECT_EQ(announced, 1);
    EXPECT_EQ(project.numericValues(x)[0], 5.0);
}

TEST_F(ProjectChanges, LetTheExceptionOfAListenerOutOfAGroupUnlessAnotherIsUnderWay)
{
    const boost::signals2::scoped_connection throwing =
        project.connectSignalChanged([] { throw std::runtime_error("listener"); });
    const auto change = [&](bool fails) {
        Project::ChangeGroup group(project);
        project.setValue(first, x, fails ? 6.0 : 5.0);
        if (fails) {
            throw std::logic_error("under way");
        }
    };
    EXPECT_THROW(change(false), std::runtime_error);
    EXPECT_EQ(project.numericValues(x)[0], 5.0);
    EXPECT_THROW(change(true), std::logic_error);
}

TEST_F(ProjectChanges, AreGroupedWithinTheCleanUpAfterAnException)
{
    // The group begins and ends while an exception is under way: it ends like any other.
    bool listenerWasHeard = false;
    const auto cleanUp = [&](void*) {
        try {
            Project::ChangeGroup group(project);
            project.setValue(first, x, 5.0);
        } catch (const std::runtime_error&) {
            listenerWasHeard = true;
        }
    };
    const boost::signals2::scoped_connection throwing =
        project.connectSignalChanged([] { throw std::runtime_error("listener"); });
    try {
        const std::unique_ptr<void, decltype(cleanUp)> cleaned(&project, cleanUp);
        throw std::logic_error("under way");
    } catch (const std::logic_error&) {
    }
    EXPECT_TRUE(listenerWasHeard);
}

TEST_F(ProjectChanges, GroupsAreNotCopyable)
{
    EXPECT_FALSE(std::is_copy_constructible<Project::ChangeGroup>::value);
    EXPECT_FALSE(std::is_nothrow_destructible<Project::ChangeGroup>::value);
}
