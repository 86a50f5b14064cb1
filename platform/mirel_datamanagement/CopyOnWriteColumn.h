#pragma once

#include <boost/smart_ptr/make_shared.hpp>
#include <boost/smart_ptr/shared_ptr.hpp>

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

/**
 * The values of one column, which readers may share: shared values never change, because the first
 * change after a share() is made in a copy. One thread.
 */
template <class T>
class CopyOnWriteColumn
{
public:
    explicit CopyOnWriteColumn(std::vector<T> initial = {})
        : values(boost::make_shared<std::vector<T>>(std::move(initial)))
    {}

    CopyOnWriteColumn(const CopyOnWriteColumn&) = delete;
    CopyOnWriteColumn& operator=(const CopyOnWriteColumn&) = delete;

    /** The present values; the reference is valid until the next change. */
    const std::vector<T>& get() const { return *values; }

    /** The present values, for as long as the pointer is kept. */
    boost::shared_ptr<const std::vector<T>> share() const { return values; }

    /** The values to change: a copy if they are shared. */
    std::vector<T>& writable()
    {
        if (isShared()) {
            values = boost::make_shared<std::vector<T>>(*values);
        }
        return *values;
    }

    /**
     * Makes room, so that the next `extra` values can be appended without any allocation. Room
     * grows by doubling: appending one by one stays linear.
     */
    void prepareToAppend(std::size_t extra)
    {
        const std::size_t needed = values->size() + extra;
        if (!isShared() && needed <= values->capacity()) {
            return;
        }
        const std::size_t room = isShared() ? needed : std::max(needed, 2 * values->capacity());
        if (isShared()) {
            auto copy = boost::make_shared<std::vector<T>>();
            copy->reserve(room);
            copy->assign(values->begin(), values->end());
            values = std::move(copy);
        } else {
            values->reserve(room);
        }
    }

private:
    bool isShared() const { return values.use_count() > 1; }

    boost::shared_ptr<std::vector<T>> values;
};
