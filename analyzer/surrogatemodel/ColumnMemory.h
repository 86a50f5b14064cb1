#pragma once

#include <vtkType.h>

#include <cstddef>
#include <memory>

class vtkDoubleArray;

/**
 * The memory of large columns, to be used again. The system hands out pages at a fifth of the speed
 * at which columns are filled, and most columns of an update have the size of those of the update
 * before. A column's memory comes back here when the last array that shares it has gone; whoever
 * keeps an earlier table keeps its values. What comes back is kept only where a Reuse wants it,
 * else it goes to the system at once: between two updates nothing is spare. Columns may outlive
 * this object. Arrays may go in any thread.
 */
class ColumnMemory
{
public:
    /**
     * For as long as it lives, which is one update, what comes back is kept and handed out again.
     * What is spare at its end goes back to the system. One at a time.
     */
    class Reuse
    {
    public:
        /** Borrows the memory for its life. */
        explicit Reuse(ColumnMemory& memory);
        ~Reuse();

        Reuse(const Reuse&) = delete;
        Reuse& operator=(const Reuse&) = delete;

    private:
        ColumnMemory& memory;
    };

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

    /** Bytes that came back and were not taken again. */
    std::size_t spareBytes() const;

private:
    struct Block;
    struct Spare;
    struct InUse;

    void freeSpare();

    std::shared_ptr<Spare> spare;
};
