#include <mirel_datamanagement/Project.h>

#include <mirel_datamanagement/ProjectError.h>

#include <boost/smart_ptr/make_shared.hpp>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

namespace {

using Numbers = std::vector<double>;
using Texts = std::vector<std::string>;
using Handles = std::vector<VarPtr>;

constexpr double missing = std::numeric_limits<double>::quiet_NaN();

/** Two numeric variables and a text variable over three records. */
struct ProjectTest : testing::Test
{
    Project project;
    VarPtr x = project.addNumericVariable("x", Variable::Independent, {1.0, 2.0, 3.0});
    VarPtr y = project.addNumericVariable("y", Variable::Dependent, {10.0, 20.0, 30.0});
    VarPtr t = project.addTextVariable("t", Variable::Unassigned, {"a", "b", "c"});

    int changes = 0;
    boost::signals2::scoped_connection counting =
        project.connectSignalChanged([this] { ++changes; });

    template <class Operation>
    std::string refusal(Operation operation)
    {
        try {
            operation();
        } catch (const ProjectError& error) {
            EXPECT_EQ(changes, 0) << "refused, yet announced";
            return error.what();
        }
        return "not refused";
    }
};

} // namespace

TEST(Project, StartsEmptyAndIsNotCopyable)
{
    Project project;
    EXPECT_TRUE(project.variables().empty());
    EXPECT_TRUE(project.records().empty());
    EXPECT_EQ(project.recordCount(), 0u);

    EXPECT_FALSE(std::is_copy_constructible<Project>::value);
    EXPECT_FALSE(std::is_copy_assignable<Project>::value);
}

TEST(ProjectOpen, ExistsFromTheStartAndIsEmpty)
{
    ASSERT_NE(Project::project(), nullptr);
    EXPECT_TRUE(Project::project()->variables().empty());
}

TEST(ProjectOpen, IsTheOneThatWasOpenedLastAndAnEmptyOneAfterClosing)
{
    const auto project = boost::make_shared<Project>();
    project->addNumericVariable("x", Variable::Independent);
    Project::setProject(project);
    EXPECT_EQ(Project::project(), project);

    Project::setProject(nullptr);

    ASSERT_NE(Project::project(), nullptr);
    EXPECT_NE(Project::project(), project);
    EXPECT_TRUE(Project::project()->variables().empty());
}

TEST(ProjectOpen, InvalidatesItsHandlesWhenAnotherIsOpened)
{
    Project::setProject(boost::make_shared<Project>());
    const VarPtr variable = Project::project()->addNumericVariable("x", Variable::Independent);
    const RecordPtr record = Project::project()->addRecord();

    Project::setProject(boost::make_shared<Project>());

    EXPECT_FALSE(variable.valid());
    EXPECT_FALSE(record.valid());
    EXPECT_TRUE(Project::project()->variable("x").isNull());
    Project::setProject(nullptr);
}

TEST_F(ProjectTest, KeepsItsVariablesInTheOrderAddedWithOneCellPerRecord)
{
    EXPECT_EQ(project.variables(), (Handles{x, y, t}));
    for (const char* unknown : {"z", "X", ""}) {
        EXPECT_TRUE(project.variable(unknown).isNull());
    }
    EXPECT_EQ(project.numericValues(x), (Numbers{1.0, 2.0, 3.0}));
    EXPECT_EQ(project.textValues(t), (Texts{"a", "b", "c"}));
}

TEST_F(ProjectTest, PadsShortColumnsWithMissingCells)
{
    const VarPtr number = project.addNumericVariable("n", Variable::Dependent, {5.0});
    const VarPtr text = project.addTextVariable("s", Variable::Unassigned, {"q"});
    ASSERT_EQ(project.numericValues(number).size(), 3u);
    EXPECT_EQ(project.numericValues(number)[0], 5.0);
    EXPECT_TRUE(std::isnan(project.numericValues(number)[1]));
    EXPECT_TRUE(std::isnan(project.numericValues(number)[2]));
    EXPECT_EQ(project.textValues(text), (Texts{"q", "", ""}));
    EXPECT_EQ(project.recordCount(), 3u);
}

TEST_F(ProjectTest, AddsRecordsForLongColumns)
{
    project.addNumericVariable("n", Variable::Dependent, {1.0, 2.0, 3.0, 4.0, 5.0});
    EXPECT_EQ(project.recordCount(), 5u);
    ASSERT_EQ(project.numericValues(x).size(), 5u);
    EXPECT_EQ(project.numericValues(x)[2], 3.0);
    EXPECT_TRUE(std::isnan(project.numericValues(x)[3]));
    EXPECT_EQ(project.textValues(t), (Texts{"a", "b", "c", "", ""}));

    project.addTextVariable("s", Variable::Unassigned, Texts(7, "q"));
    EXPECT_EQ(project.recordCount(), 7u);
    EXPECT_EQ(project.numericValues(x).size(), 7u);
}

TEST_F(ProjectTest, TakesALongColumnOverWithoutCopyingIt)
{
    Numbers values(1000, 1.0);
    const double* data = values.data();
    const VarPtr number = project.addNumericVariable("n", Variable::Dependent, std::move(values));
    EXPECT_EQ(project.numericValues(number).data(), data);
}

TEST_F(ProjectTest, ReadsAndSetsNumbersAsNumbersAndTextAsText)
{
    const std::string isText = "The variable \"t\" holds text, not numbers.";
    const std::string isNumbers = "The variable \"x\" holds numbers, not text.";
    EXPECT_EQ(refusal([&] { project.numericValues(t); }), isText);
    EXPECT_EQ(refusal([&] { project.textValues(x); }), isNumbers);
    EXPECT_EQ(refusal([&] { project.sharedNumericValues(t); }), isText);
    EXPECT_EQ(refusal([&] { project.sharedTextValues(x); }), isNumbers);
    EXPECT_EQ(refusal([&] { project.setValue(project.record(1), t, 1.0); }), isText);
    EXPECT_EQ(refusal([&] { project.setValue(project.record(1), x, "1"); }), isNumbers);

    project.setValue(project.record(2), x, 7.5);
    project.setValue(project.record(3), x, missing);
    project.setValue(project.record(3), t, "changed");

    EXPECT_EQ(project.numericValues(x)[0], 1.0);
    EXPECT_EQ(project.numericValues(x)[1], 7.5);
    EXPECT_TRUE(std::isnan(project.numericValues(x)[2]));
    EXPECT_EQ(project.textValues(t), (Texts{"a", "b", "changed"}));
}

TEST_F(ProjectTest, KeepsSharedColumnsAsTheyWereWhenCellsChange)
{
    const auto numbers = project.sharedNumericValues(x);
    const auto texts = project.sharedTextValues(t);
    EXPECT_EQ(numbers->data(), project.numericValues(x).data());

    project.setValue(project.record(1), x, 9.0);
    project.setValue(project.record(1), t, "z");

    EXPECT_EQ(*numbers, (Numbers{1.0, 2.0, 3.0}));
    EXPECT_EQ(*texts, (Texts{"a", "b", "c"}));
    EXPECT_EQ(project.numericValues(x), (Numbers{9.0, 2.0, 3.0}));
    EXPECT_EQ(project.textValues(t), (Texts{"z", "b", "c"}));
}

TEST_F(ProjectTest, CopiesNoColumnThatDidNotChange)
{
    const auto numbers = project.sharedNumericValues(x);
    project.setValue(project.record(1), y, 9.0);
    project.setValue(project.record(1), x, 1.0);
    project.renameVariable(x, "renamed");
    EXPECT_EQ(project.sharedNumericValues(x), numbers);
}

TEST_F(ProjectTest, MovesVariablesInProjectOrder)
{
    project.moveVariable(t, 0);
    EXPECT_EQ(project.variables(), (Handles{t, x, y}));
    project.moveVariable(t, 1);
    EXPECT_EQ(project.variables(), (Handles{x, t, y}));
    project.moveVariable(x, 2);
    EXPECT_EQ(project.variables(), (Handles{t, y, x}));
    project.moveVariable(t, 99);
    EXPECT_EQ(project.variables(), (Handles{y, x, t}));
}

TEST_F(ProjectTest, KeepsARemovedVariableAndRestoresItAtItsPlace)
{
    project.removeVariable(y);
    EXPECT_EQ(project.variables(), (Handles{x, t}));
    EXPECT_TRUE(project.variable("y").isNull());
    EXPECT_FALSE(y.valid());
    EXPECT_EQ(y.lock()->name(), "y");
    EXPECT_EQ(project.numericValues(y), (Numbers{10.0, 20.0, 30.0}));

    project.restoreVariable(y, 1);
    EXPECT_TRUE(y.valid());
    EXPECT_EQ(project.variables(), (Handles{x, y, t}));
    EXPECT_EQ(project.variable("y"), y);
    EXPECT_EQ(project.numericValues(y), (Numbers{10.0, 20.0, 30.0}));
    project.removeVariable(x);
    project.restoreVariable(x, 99);
    EXPECT_EQ(project.variables(), (Handles{y, t, x})) << "last, past the end";
}

TEST_F(ProjectTest, KeepsTheRecordsOfARemovedVariableInStepWithTheOthers)
{
    project.removeVariable(x);
    project.removeRecord(project.record(2));
    project.addRecord();
    project.restoreVariable(x, 0);
    ASSERT_EQ(project.numericValues(x).size(), 3u);
    EXPECT_EQ(project.numericValues(x)[0], 1.0);
    EXPECT_EQ(project.numericValues(x)[1], 3.0);
    EXPECT_TRUE(std::isnan(project.numericValues(x)[2]));
}

TEST_F(ProjectTest, GivesTheNameOfARemovedVariableToAnotherWithANewHandle)
{
    project.removeVariable(x);
    const VarPtr successor = project.addNumericVariable("x", Variable::Independent);
    EXPECT_EQ(project.variable("x"), successor);
    EXPECT_NE(successor, x);
    EXPECT_FALSE(x.valid());

    changes = 0;
    EXPECT_EQ(refusal([&] { project.restoreVariable(x, 0); }),
              "The project has a variable \"x\" already; every variable needs a name of its own.");
    EXPECT_FALSE(x.valid());
}

TEST_F(ProjectTest, RefusesToChangeARemovedVariable)
{
    project.removeVariable(x);
    changes = 0;
    const std::string expected = "The variable \"x\" has been removed from the project; restore "
                                 "it before it is changed.";
    EXPECT_EQ(refusal([&] { project.renameVariable(x, "z"); }), expected);
    EXPECT_EQ(refusal([&] { project.setNature(x, Variable::Dependent); }), expected);
    EXPECT_EQ(refusal([&] { project.setRange(x, {0.0, 1.0}); }), expected);
    EXPECT_EQ(refusal([&] { project.moveVariable(x, 0); }), expected);
    EXPECT_EQ(refusal([&] { project.setValue(project.record(1), x, 0.0); }), expected);
    EXPECT_EQ(refusal([&] { project.setValue(project.record(1), x, "z"); }), expected);
}

TEST_F(ProjectTest, ChangesNamesNaturesAndRanges)
{
    project.renameVariable(x, "Pressure");
    project.setNature(x, Variable::Dependent);
    project.setRange(x, {-2.0, 2.0});
    EXPECT_EQ(x.lock()->name(), "Pressure");
    EXPECT_EQ(project.variable("Pressure"), x);
    EXPECT_TRUE(project.variable("x").isNull());
    EXPECT_EQ(x.lock()->nature(), Variable::Dependent);
    EXPECT_EQ(x.lock()->range(), std::make_pair(-2.0, 2.0));
}

TEST_F(ProjectTest, RefusesANatureThatDoesNotExist)
{
    const auto unknown = static_cast<Variable::Nature>(3);
    EXPECT_EQ(refusal([&] { project.setNature(x, unknown); }),
              "The nature of variable \"x\" must be 0 (unassigned), 1 (dependent) or 2 "
              "(independent), not 3.");
    EXPECT_THROW(project.addNumericVariable("n", unknown), ProjectError);
    EXPECT_THROW(project.addTextVariable("n", unknown), ProjectError);
    EXPECT_EQ(x.lock()->nature(), Variable::Independent);
    EXPECT_EQ(project.variables().size(), 3u);
}

TEST_F(ProjectTest, KeepsAChosenRangeUntilItIsReset)
{
    EXPECT_EQ(x.lock()->chosenRange(), std::nullopt);
    project.setRange(x, {-2.0, 2.0});
    EXPECT_EQ(x.lock()->chosenRange(), std::make_pair(-2.0, 2.0));

    project.resetRange(x);

    EXPECT_EQ(x.lock()->chosenRange(), std::nullopt);
    EXPECT_EQ(x.lock()->range(), std::make_pair(1.0, 3.0));
}

TEST_F(ProjectTest, RefusesARangeThatIsReversedOrNotFinite)
{
    const double infinity = std::numeric_limits<double>::infinity();
    const std::tuple<double, double, const char*> rows[] = {
        {2.5, 1.0, "2.5 to 1"},     {0.0, infinity, "0 to inf"}, {-infinity, 0.0, "-inf to 0"},
        {missing, 0.0, "nan to 0"}, {0.0, missing, "0 to nan"},
    };
    for (const auto& [low, high, text] : rows) {
        const std::pair<double, double> range(low, high);
        EXPECT_EQ(refusal([&] { project.setRange(x, range); }),
                  "The range of variable \"x\" must be two finite numbers, the smaller one first, "
                  "not " +
                      std::string(text) + '.');
    }
    EXPECT_EQ(x.lock()->range(), std::make_pair(1.0, 3.0));
    project.setRange(x, {2.0, 2.0});
    EXPECT_EQ(x.lock()->range(), std::make_pair(2.0, 2.0)) << "one point";
}

TEST_F(ProjectTest, ThrowsForNullHandles)
{
    EXPECT_THROW(project.removeVariable(VarPtr()), HandleError);
    EXPECT_THROW(project.restoreVariable(VarPtr(), 0), HandleError);
    EXPECT_THROW(project.moveVariable(VarPtr(), 0), HandleError);
    EXPECT_THROW(project.renameVariable(VarPtr(), "z"), HandleError);
    EXPECT_THROW(project.setNature(VarPtr(), Variable::Dependent), HandleError);
    EXPECT_THROW(project.setRange(VarPtr(), {0.0, 1.0}), HandleError);
    EXPECT_THROW(project.resetRange(VarPtr()), HandleError);
    EXPECT_THROW(project.numericValues(VarPtr()), HandleError);
    EXPECT_THROW(project.textValues(VarPtr()), HandleError);
    EXPECT_THROW(project.setValue(project.record(1), VarPtr(), 0.0), HandleError);
    EXPECT_THROW(project.setValue(RecordPtr(), x, 0.0), HandleError);
    EXPECT_THROW(project.setValue(RecordPtr(), t, "z"), HandleError);
    EXPECT_EQ(changes, 0);
}

TEST_F(ProjectTest, RefusesTheVariablesOfAnotherProject)
{
    Project other;
    const VarPtr foreign = other.addNumericVariable("f", Variable::Dependent, {1.0, 2.0, 3.0});
    const std::string expected = "The variable \"f\" belongs to another project.";
    EXPECT_EQ(refusal([&] { project.removeVariable(foreign); }), expected);
    EXPECT_EQ(refusal([&] { project.restoreVariable(foreign, 0); }), expected);
    EXPECT_EQ(refusal([&] { project.renameVariable(foreign, "z"); }), expected);
    EXPECT_EQ(refusal([&] { project.numericValues(foreign); }), expected);
    EXPECT_EQ(refusal([&] { project.setValue(project.record(1), foreign, 0.0); }), expected);
    EXPECT_TRUE(foreign.valid());
}
