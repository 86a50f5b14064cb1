#include <mirel_datamanagement/NumericVariableProvider.h>
#include <mirel_datamanagement/Project.h>

#include <gtest/gtest.h>

#include <vector>

namespace {

using Handles = std::vector<VarPtr>;

struct NumericVariableProviderTest : testing::Test
{
    Project project;
    VarPtr a = project.addNumericVariable("a", Variable::Dependent);
    VarPtr t = project.addTextVariable("t", Variable::Dependent);
    VarPtr b = project.addNumericVariable("b", Variable::Independent);

    static Handles listed(const VariableProvider& provider)
    {
        Handles handles;
        for (const VarPtr& variable : provider) {
            handles.push_back(variable);
        }
        return handles;
    }
};

} // namespace

TEST_F(NumericVariableProviderTest, KeepsNumericVariablesInOrderWithDuplicates)
{
    VarPtr destroyed;
    {
        Project closed;
        destroyed = closed.addNumericVariable("c", Variable::Dependent);
    }
    EXPECT_EQ(listed(NumericVariableProvider(project.variables())), (Handles{a, b}));
    EXPECT_EQ(listed(NumericVariableProvider({b, a, t, b})), (Handles{b, a, b}));
    EXPECT_EQ(listed(NumericVariableProvider({VarPtr(), a, destroyed, b})), (Handles{a, b}));
    EXPECT_EQ(listed(NumericVariableProvider({})), Handles());
    project.removeVariable(a);
    EXPECT_EQ(listed(NumericVariableProvider({a, b})), (Handles{a, b})) << "removed ones, too";
}

TEST_F(NumericVariableProviderTest, OwnsACopyOfTheList)
{
    Handles list = {a, b};
    const NumericVariableProvider provider(list);
    list.clear();
    const NumericVariableProvider copy = provider;
    EXPECT_EQ(listed(provider), (Handles{a, b}));
    EXPECT_EQ(listed(copy), (Handles{a, b}));
}
