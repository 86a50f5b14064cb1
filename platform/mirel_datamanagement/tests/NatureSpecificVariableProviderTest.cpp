#include <mirel_datamanagement/NatureSpecificVariableProvider.h>
#include <mirel_datamanagement/NumericVariableProvider.h>
#include <mirel_datamanagement/Project.h>

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace {

using Handles = std::vector<VarPtr>;

/** A list as it is, null handles included. */
class PlainProvider : public VariableProvider
{
public:
    explicit PlainProvider(Handles list) : variables(std::move(list)) {}
    VariableProviderIterator begin() const override
    {
        return VariableProviderIterator(variables.begin());
    }
    VariableProviderIterator end() const override
    {
        return VariableProviderIterator(variables.end());
    }

private:
    Handles variables;
};

struct NatureSpecificVariableProviderTest : testing::Test
{
    Project project;
    VarPtr y1 = project.addNumericVariable("y1", Variable::Dependent);
    VarPtr x = project.addNumericVariable("x", Variable::Independent);
    VarPtr t = project.addTextVariable("t", Variable::Dependent);
    VarPtr y2 = project.addNumericVariable("y2", Variable::Dependent);
    VarPtr u = project.addNumericVariable("u", Variable::Unassigned);

    static Handles listed(const VariableProvider& provider)
    {
        return Handles(provider.begin(), provider.end());
    }
};

} // namespace

TEST_F(NatureSpecificVariableProviderTest, KeepsOneNature)
{
    const PlainProvider all(project.variables());
    EXPECT_EQ(listed(NatureSpecificVariableProvider(all, Variable::Dependent)),
              (Handles{y1, t, y2}));
    EXPECT_EQ(listed(NatureSpecificVariableProvider(all, Variable::Independent)), (Handles{x}));
    EXPECT_EQ(listed(NatureSpecificVariableProvider(all, Variable::Unassigned)), (Handles{u}));
}

TEST_F(NatureSpecificVariableProviderTest, KeepsOrderAndDuplicatesOfHandlesThatExist)
{
    VarPtr destroyed;
    {
        Project closed;
        destroyed = closed.addNumericVariable("c", Variable::Dependent);
    }
    const PlainProvider list({y2, VarPtr(), x, y1, destroyed, y2});
    EXPECT_EQ(listed(NatureSpecificVariableProvider(list, Variable::Dependent)),
              (Handles{y2, y1, y2}));
}

TEST_F(NatureSpecificVariableProviderTest, OutlivesItsSource)
{
    auto source = std::make_unique<NumericVariableProvider>(project.variables());
    const NatureSpecificVariableProvider provider(*source, Variable::Dependent);
    source.reset();
    EXPECT_EQ(listed(provider), (Handles{y1, y2}));
}
