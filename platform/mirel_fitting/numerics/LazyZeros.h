#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>

/**
 * Doubles, all zero at first. Of large arrays the system hands over each page when it is first
 * touched, so that making one costs no time and what is never used no memory.
 */
class LazyZeros
{
public:
    /** @throw std::bad_alloc */
    explicit LazyZeros(std::size_t count)
        : values(static_cast<double*>(std::calloc(count, sizeof(double))))
    {
        if (values == nullptr && count > 0) {
            throw std::bad_alloc();
        }
    }

    double* data() { return values.get(); }
    const double* data() const { return values.get(); }

private:
    struct Release
    {
        void operator()(double* array) const { std::free(array); }
    };

    std::unique_ptr<double, Release> values;
};
