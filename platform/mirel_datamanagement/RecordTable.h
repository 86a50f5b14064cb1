#pragma once

#include <mirel_datamanagement/CopyOnWriteColumn.h>
#include <mirel_datamanagement/Record.h>

#include <cstddef>
#include <optional>
#include <vector>

/**
 * The records of one project, in project order, which is the order of their ids: records are only
 * appended. A record costs the eight bytes of its id until it is asked for; the objects are then
 * made a block at a time, because a caller that asks for one record of a large project is usually
 * iterating over all of them.
 */
class RecordTable
{
public:
    RecordTable();

    /** Handles that outlive the project are no longer valid. */
    ~RecordTable();

    RecordTable(const RecordTable&) = delete;
    RecordTable& operator=(const RecordTable&) = delete;

    std::size_t count() const;
    const CopyOnWriteColumn<unsigned long>& ids() const;

    /** The record in the project with this id, null when there is none. */
    RecordPtr handle(unsigned long id) const;

    /** Whether the handle is one of this project's, removed or not. */
    bool owns(const Record& record, const RecordPtr& handle) const;

    /** The row of an id that is in the table. */
    std::size_t rowOf(unsigned long id) const;

    /** Room first, then the records: append() cannot fail after prepareToAppend(). */
    void prepareToAppend(std::size_t records);
    void append(std::size_t records) noexcept;

    void remove(Record& record);

    /** @return whether that changed anything. */
    bool setIncluded(Record& record, bool isIncluded);

    /** The same for the records of rows that are there. */
    bool setIncluded(const std::vector<std::size_t>& rows, bool isIncluded);

    /** Ascending. */
    std::vector<std::size_t> excludedRows() const;

private:
    struct Block;

    /** Records that were created in one go have consecutive ids and consecutive identities. */
    struct Run
    {
        unsigned long firstId;
        std::size_t firstIdentity;
    };

    Block& block(unsigned long id) const;
    std::size_t identityOf(unsigned long id) const;

    CopyOnWriteColumn<unsigned long> idColumn;
    unsigned long lastId = 0;
    std::vector<Run> runs;
    mutable std::vector<boost::shared_ptr<Block>> blocks;
};
