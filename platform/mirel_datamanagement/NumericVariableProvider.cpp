#include <mirel_datamanagement/NumericVariableProvider.h>

NumericVariableProvider::NumericVariableProvider(const std::vector<VarPtr>& variables)
{
    for (const VarPtr& handle : variables) {
        const boost::shared_ptr<Variable> variable = handle.tryLock();
        if (variable && variable->isNumeric()) {
            numericVariables.push_back(handle);
        }
    }
}

NumericVariableProvider::~NumericVariableProvider() = default;

VariableProviderIterator NumericVariableProvider::begin() const
{
    return VariableProviderIterator(numericVariables.begin());
}

VariableProviderIterator NumericVariableProvider::end() const
{
    return VariableProviderIterator(numericVariables.end());
}
