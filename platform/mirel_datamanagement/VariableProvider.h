#pragma once

#include <mirel_datamanagement/Export.h>
#include <mirel_datamanagement/VariableProviderIterator.h>

/** A range of variable handles, from which other providers select. */
class MIREL_DATAMANAGEMENT_EXPORT VariableProvider
{
public:
    virtual ~VariableProvider();

    /** Iterators are valid until the provider is assigned or destroyed. @{ */
    virtual VariableProviderIterator begin() const = 0;
    virtual VariableProviderIterator end() const = 0;
    /** @} */

protected:
    VariableProvider();
    VariableProvider(const VariableProvider&);            ///< copies nothing
    VariableProvider& operator=(const VariableProvider&); ///< copies nothing
};
