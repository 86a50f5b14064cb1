#pragma once

#include <property/AllowAnyValueValidator.h>
#include <property/PropertyAbstract.h>

#include <boost/make_shared.hpp>

#include <utility>

namespace veska {

/** A property that holds its value itself. It starts with T(): empty, zero. */
template <class T>
class Property : public PropertyAbstract<T>
{
public:
    /** Accepts every value. */
    Property() : Property(boost::make_shared<AllowAnyValueValidator<T>>()) {}

    T get() const override { return value; }

protected:
    /** For subclasses that accept less. The initial T() is not validated. */
    explicit Property(boost::shared_ptr<const ValidatorInterface<T>> validator)
        : PropertyAbstract<T>(std::move(validator)), value()
    {}

    void setValue(const T& newValue) override { value = newValue; }

private:
    T value;
};

} // namespace veska
