#pragma once

#include <property/PropertyAbstract.h>

#include <vector>

/** For tests: the values that listeners of a property received. Must outlive the property's
 * changes. */
template <class T>
class PropertyListener
{
public:
    explicit PropertyListener(const veska::PropertyAbstract<T>& property)
        : typedConnection(
              property.connectSignalChanged([this](const T& value) { values.push_back(value); })),
          untypedConnection(property.connectSignalPropertyChanged([this] { ++untypedCalls; }))
    {}

    /** What the typed signal carried, in order. */
    std::vector<T> values;

    /** How often the untyped signal came. */
    int untypedCalls = 0;

private:
    boost::signals2::scoped_connection typedConnection;
    boost::signals2::scoped_connection untypedConnection;
};
