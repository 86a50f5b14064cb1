#pragma once

#include <boost/smart_ptr/shared_ptr.hpp>
#include <vtkObjectFactory.h>
#include <vtkSetGet.h>

#include <vector>

/**
 * A VTK array (Array: vtkDoubleArray, ...) that shows a vector without copying it and keeps it
 * alive. VTK arrays own their memory or point to somebody else's; this is the object in between.
 * The values are for reading only: they belong to others too.
 */
template <class Array>
class SharedColumnArray : public Array
{
public:
    using Value = typename Array::ValueType;

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
