#include <mirel_datamanagement/NumericVariableProvider.h>
#include <mirel_datamanagement/Project.h>
#include <mirel_datamanagement/VariableProviderIterator.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <type_traits>

namespace {

struct VariableProviderIteratorTest : testing::Test
{
    Project project;
    VarPtr a = project.addNumericVariable("a", Variable::Dependent);
    VarPtr b = project.addNumericVariable("b", Variable::Dependent);
    NumericVariableProvider provider{project.variables()};
};

} // namespace

TEST_F(VariableProviderIteratorTest, IsAForwardIteratorOverHandles)
{
    using Traits = std::iterator_traits<VariableProviderIterator>;
    EXPECT_TRUE((std::is_same<Traits::iterator_category, std::forward_iterator_tag>::value));
    EXPECT_TRUE((std::is_same<Traits::value_type, VarPtr>::value));
    EXPECT_TRUE(std::is_default_constructible<VariableProviderIterator>::value);
    EXPECT_TRUE(VariableProviderIterator() == VariableProviderIterator());
}

TEST_F(VariableProviderIteratorTest, StepsFromOneHandleToTheNextAndServesTheStandardAlgorithms)
{
    VariableProviderIterator position = provider.begin();
    EXPECT_EQ(*position, a);
    EXPECT_EQ(position->id(), a.id());
    EXPECT_EQ(*position++, a);
    EXPECT_EQ(*position, b);
    EXPECT_EQ(++position, provider.end());

    const auto found = std::find(provider.begin(), provider.end(), b);
    ASSERT_NE(found, provider.end());
    EXPECT_EQ(found->lock()->name(), "b");
    EXPECT_EQ(std::distance(provider.begin(), provider.end()), 2);
}
