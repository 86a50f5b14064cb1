#include <mirel_datamanagement/VariableProviderIterator.h>

VariableProviderIterator::VariableProviderIterator() : position() {}

VariableProviderIterator::VariableProviderIterator(std::vector<VarPtr>::const_iterator start)
    : position(start)
{}

VariableProviderIterator::reference VariableProviderIterator::operator*() const
{
    return *position;
}

VariableProviderIterator::pointer VariableProviderIterator::operator->() const
{
    return &*position;
}

VariableProviderIterator& VariableProviderIterator::operator++()
{
    ++position;
    return *this;
}

VariableProviderIterator VariableProviderIterator::operator++(int)
{
    VariableProviderIterator before = *this;
    ++position;
    return before;
}

bool VariableProviderIterator::operator==(const VariableProviderIterator& other) const
{
    return position == other.position;
}

bool VariableProviderIterator::operator!=(const VariableProviderIterator& other) const
{
    return !(*this == other);
}
