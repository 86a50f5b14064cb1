#pragma once

#include <boost/smart_ptr/shared_ptr.hpp>
#include <vtkObjectFactory.h>
#include <vtkSetGet.h>

#include <type_traits>
#include <utility>
#include <vector>

/**
 * A VTK array (Array: vtkDoubleArray, vtkStringArray, ...) that shows a vector without copying it
 * and keeps it alive, which VTK's own arrays cannot: they own their memory or point to memory of
 * others. The values are for reading only, since they are shared.
 */
template <class Array>
class SharedColumnArray : public Array
{
public:
    using Value = std::decay_t<decltype(std::declval<Array&>().GetValue(0))>;

    vtkTemplateTypeMacro(SharedColumnArray, Array)

    static SharedColumnArray* New() { VTK_STANDARD_NEW_BODY(SharedColumnArray<Array>); }

    void show(boost::shared_ptr<const std::vector<Value>> shownColumn)
    {
        constexpr int keepMemory = 1;
        column = std::move(shownColumn);
        this->SetArray(const_cast<Value*>(column->data()), static_cast<vtkIdType>(column->size()),
                       keepMemory);
    }

    SharedColumnArray(const SharedColumnArray&) = delete;
    SharedColumnArray& operator=(const SharedColumnArray&) = delete;

protected:
    SharedColumnArray() = default;
    ~SharedColumnArray() override = default;

private:
    boost::shared_ptr<const std::vector<Value>> column;
};
