#include <mirel_datamanagement/NatureSpecificVariableProvider.h>

NatureSpecificVariableProvider::NatureSpecificVariableProvider(const VariableProvider& source,
                                                               Variable::Nature nature)
{
    for (const VarPtr& handle : source) {
        const boost::shared_ptr<Variable> variable = handle.tryLock();
        if (variable && variable->nature() == nature) {
            variablesOfNature.push_back(handle);
        }
    }
}

NatureSpecificVariableProvider::~NatureSpecificVariableProvider() = default;

VariableProviderIterator NatureSpecificVariableProvider::begin() const
{
    return VariableProviderIterator(variablesOfNature.begin());
}

VariableProviderIterator NatureSpecificVariableProvider::end() const
{
    return VariableProviderIterator(variablesOfNature.end());
}
