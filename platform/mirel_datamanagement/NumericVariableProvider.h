#pragma once

#include <mirel_datamanagement/VariableProvider.h>

#include <vector>

/**
 * The numeric ones of a list of variables, in the list's order, duplicates kept. Null handles and
 * handles of destroyed variables are left out; removed variables stay. It owns a copy of the list,
 * decided when it is made.
 */
class MIREL_DATAMANAGEMENT_EXPORT NumericVariableProvider : public VariableProvider
{
public:
    /** @param variables in the order wanted; read once, in this call. */
    explicit NumericVariableProvider(const std::vector<VarPtr>& variables);
    ~NumericVariableProvider() override;

    VariableProviderIterator begin() const override;
    VariableProviderIterator end() const override;

private:
    std::vector<VarPtr> numericVariables;
};
