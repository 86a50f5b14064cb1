#pragma once

#include <vtkType.h>

#include <cstddef>
#include <memory>

class vtkDoubleArray;

/**
 * The memory of large columns, to be used again. The system hands out pages at a fifth of the speed
 * at which columns are filled, and most columns of an update have the size of those of the update
 * before. A column's memory comes back here when the last array that shares it has gone; whoever
 * keeps an earlier table keeps its values. What came back stays until freeSpare(). Columns may
 * outlive this object; then their memory goes back to the system. Arrays may go in any thread.
 */
class ColumnMemory
{
public:
    ColumnMemory();
    ~ColumnMemory();

    ColumnMemory(const ColumnMemory&) = delete;
    ColumnMemory& operator=(const ColumnMemory&) = delete;

    /**
     * Gives a column without values room for `rows` values, which are whatever the memory held.
     * Columns below a megabyte are left to themselves: they cost little. If nothing that is spare
     * has that size, all of it goes back to the system first.
     * @throw std::bad_alloc
     */
    void makeRoom(vtkDoubleArray& column, vtkIdType rows);

    /** Returns to the system what came back and was not taken again. */
    void freeSpare();

    /** Bytes that came back and were not taken again. */
    std::size_t spareBytes() const;

private:
    struct Block;
    struct Spare;
    struct InUse;

    std::shared_ptr<Spare> spare;
};
