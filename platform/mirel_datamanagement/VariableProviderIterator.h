#pragma once

#include <mirel_datamanagement/Export.h>
#include <mirel_datamanagement/Variable.h>

#include <cstddef>
#include <iterator>
#include <vector>

/** A forward iterator over the handles of a VariableProvider, valid as long as the provider. */
class MIREL_DATAMANAGEMENT_EXPORT VariableProviderIterator
{
public:
    /** What the standard library asks of a forward iterator over constant handles. @{ */
    using iterator_category = std::forward_iterator_tag;
    using value_type = VarPtr;
    using difference_type = std::ptrdiff_t;
    using pointer = const VarPtr*;
    using reference = const VarPtr&;

    /** Belongs to no range; equal to others made like this. */
    VariableProviderIterator();

    /** @param position in a list that the provider owns. */
    explicit VariableProviderIterator(std::vector<VarPtr>::const_iterator position);

    reference operator*() const;
    pointer operator->() const;

    VariableProviderIterator& operator++();
    VariableProviderIterator operator++(int);

    bool operator==(const VariableProviderIterator& other) const;
    bool operator!=(const VariableProviderIterator& other) const;
    /** @} */

private:
    std::vector<VarPtr>::const_iterator position;
};
