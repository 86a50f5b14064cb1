#include <mirel_datamanagement/Project.h>
#include <mirel_datamanagement/Variable.h>

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <set>
#include <utility>

namespace {

using Range = std::pair<double, double>;

constexpr double missing = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

struct VariableTest : testing::Test
{
    Project project;

    VarPtr numeric(std::vector<double> values)
    {
        return project.addNumericVariable("x", Variable::Independent, std::move(values));
    }
};

} // namespace

TEST_F(VariableTest, HasANameANatureAndAKind)
{
    const auto number = project.addNumericVariable("Pressure", Variable::Independent).lock();
    const auto text = project.addTextVariable("Operator", Variable::Unassigned).lock();
    EXPECT_EQ(number->name(), "Pressure");
    EXPECT_EQ(static_cast<int>(number->nature()), 2);
    EXPECT_TRUE(number->isNumeric());
    EXPECT_EQ(text->name(), "Operator");
    EXPECT_EQ(static_cast<int>(text->nature()), 0);
    EXPECT_FALSE(text->isNumeric());
    EXPECT_EQ(static_cast<int>(Variable::Dependent), 1);
}

TEST_F(VariableTest, HasTheRangeOfItsFiniteValuesExcludedRecordsIncluded)
{
    const std::pair<std::vector<double>, Range> rows[] = {
        {{4.0, -3.5, 10.0}, {-3.5, 10.0}},
        {{4.0}, {4.0, 4.0}},
        {{missing, 2.0, infinity, 1.0, -infinity}, {1.0, 2.0}},
        {{}, {0.0, 0.0}},
        {{missing, infinity}, {0.0, 0.0}},
    };
    for (const auto& [values, range] : rows) {
        const VarPtr x = numeric(values);
        EXPECT_EQ(x.lock()->range(), range);
        for (const RecordPtr& record : project.records()) {
            project.setIncluded(record, false);
        }
        EXPECT_EQ(x.lock()->range(), range);
        project.removeVariable(x);
    }
    EXPECT_EQ(project.addTextVariable("t", Variable::Unassigned, {"5"}).lock()->range(),
              Range(0.0, 0.0));
}

TEST_F(VariableTest, FollowsItsValuesWithItsRange)
{
    const VarPtr x = numeric({1.0, 2.0, 3.0});
    EXPECT_EQ(x.lock()->range(), Range(1.0, 3.0));

    project.setValue(project.record(2), x, 7.0);
    EXPECT_EQ(x.lock()->range(), Range(1.0, 7.0));

    project.removeRecord(project.record(2));
    EXPECT_EQ(x.lock()->range(), Range(1.0, 3.0));

    project.setValue(project.addRecord(), x, -1.0);
    EXPECT_EQ(x.lock()->range(), Range(-1.0, 3.0));
}

TEST_F(VariableTest, KeepsTheRangeThatWasSetWhateverItsValues)
{
    const VarPtr x = numeric({1.0, 2.0});
    project.setRange(x, {-5.0, 5.0});
    EXPECT_EQ(x.lock()->range(), Range(-5.0, 5.0));
    project.setValue(project.record(1), x, 100.0);
    EXPECT_EQ(x.lock()->range(), Range(-5.0, 5.0));
}

TEST_F(VariableTest, HasAnIdentityThatGrowsInCreationOrderAndIsNeverUsedAgain)
{
    Project other;
    const VarPtr first = project.addNumericVariable("a", Variable::Dependent);
    const VarPtr second = other.addNumericVariable("a", Variable::Dependent);
    project.removeVariable(first);
    const VarPtr third = project.addTextVariable("a", Variable::Dependent);
    EXPECT_LT(first.id(), second.id());
    EXPECT_LT(second.id(), third.id());
    EXPECT_NE(first, third);
}

TEST_F(VariableTest, KeepsCreationOrderInSetsWhenProjectOrderDiffers)
{
    const VarPtr a = project.addNumericVariable("a", Variable::Dependent);
    const VarPtr b = project.addNumericVariable("b", Variable::Dependent);
    project.moveVariable(b, 0);
    const std::set<VarPtr> set = {b, a};
    EXPECT_EQ(project.variables(), (std::vector<VarPtr>{b, a}));
    EXPECT_EQ(std::vector<VarPtr>(set.begin(), set.end()), (std::vector<VarPtr>{a, b}));
}

TEST_F(VariableTest, OutlivesItsProjectOnlyWhileLocked)
{
    auto shortLived = std::make_unique<Project>();
    const VarPtr other = shortLived->addNumericVariable("y", Variable::Independent);
    const VarPtr handle = shortLived->addNumericVariable("x", Variable::Independent, {1.0, 4.0});
    const boost::shared_ptr<Variable> variable = handle.lock();
    EXPECT_TRUE(variable->isInProject());

    shortLived.reset();

    EXPECT_FALSE(handle.valid());
    EXPECT_FALSE(variable->isInProject());
    EXPECT_EQ(variable->name(), "x");
    EXPECT_EQ(variable->range(), Range(1.0, 4.0));
    EXPECT_FALSE(other.valid());
    EXPECT_THROW(other.lock(), HandleError);
}
