#pragma once

#include <mirel_datamanagement/VariableProvider.h>

#include <vector>

/**
 * The variables of one nature out of another provider, in its order, duplicates kept. Null handles
 * and handles of destroyed variables are left out; removed variables stay. It owns a copy of the
 * list, decided when it is made: the source may be destroyed, and a later change of nature is not
 * noticed.
 */
class MIREL_DATAMANAGEMENT_EXPORT NatureSpecificVariableProvider : public VariableProvider
{
public:
    /** @param source read once, in this call. */
    NatureSpecificVariableProvider(const VariableProvider& source, Variable::Nature nature);
    ~NatureSpecificVariableProvider() override;

    VariableProviderIterator begin() const override;
    VariableProviderIterator end() const override;

private:
    std::vector<VarPtr> variablesOfNature;
};
