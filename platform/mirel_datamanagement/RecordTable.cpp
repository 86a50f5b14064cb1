#include <mirel_datamanagement/RecordTable.h>

#include <boost/smart_ptr/make_shared.hpp>

#include <algorithm>
#include <array>
#include <atomic>

namespace {

constexpr unsigned long recordsPerBlock = 256;

std::atomic<std::size_t>& lastIdentity()
{
    static std::atomic<std::size_t> last{0};
    return last;
}

/** The record of a block; it gets its id when the block is made. */
class StoredRecord final : public Record
{
public:
    StoredRecord() : Record(0) {}
};

std::size_t blockIndex(unsigned long id)
{
    return (id - 1) / recordsPerBlock;
}

} // namespace

struct RecordTable::Block
{
    std::array<StoredRecord, recordsPerBlock> records;

    StoredRecord& record(unsigned long id) { return records[(id - 1) % recordsPerBlock]; }
};

RecordTable::RecordTable() = default;

RecordTable::~RecordTable()
{
    for (const boost::shared_ptr<Block>& made : blocks) {
        if (made) {
            for (Record& record : made->records) {
                record.inProject = false;
            }
        }
    }
}

std::size_t RecordTable::count() const
{
    return idColumn.get().size();
}

const CopyOnWriteColumn<unsigned long>& RecordTable::ids() const
{
    return idColumn;
}

RecordPtr RecordTable::handle(unsigned long id) const
{
    if (id == 0 || id > lastId) {
        return RecordPtr();
    }
    Record& record = block(id).record(id);
    if (!record.inProject) {
        return RecordPtr();
    }
    // The handle refers to the record, and to the block for its life.
    return RecordPtr(boost::shared_ptr<Record>(blocks[blockIndex(id)], &record), identityOf(id));
}

bool RecordTable::owns(const Record& record, const RecordPtr& handle) const
{
    const unsigned long id = record.id();
    return id != 0 && id <= lastId && identityOf(id) == handle.id();
}

std::size_t RecordTable::rowOf(unsigned long id) const
{
    const std::vector<unsigned long>& ids = idColumn.get();
    const auto found = std::lower_bound(ids.begin(), ids.end(), id);
    return static_cast<std::size_t>(found - ids.begin());
}

void RecordTable::prepareToAppend(std::size_t records)
{
    idColumn.prepareToAppend(records);
    if (runs.size() == runs.capacity()) {
        runs.reserve(2 * runs.size() + 1);
    }
    blocks.resize(blockIndex(lastId + records + 1) + 1);
}

void RecordTable::append(std::size_t records) noexcept
{
    if (records == 0) {
        return;
    }
    const std::size_t identity = lastIdentity().fetch_add(records) + 1;
    const bool continuesLastRun =
        !runs.empty() && identity - runs.back().firstIdentity == lastId + 1 - runs.back().firstId;
    if (!continuesLastRun) {
        runs.push_back({lastId + 1, identity});
    }

    std::vector<unsigned long>& ids = idColumn.writable();
    for (std::size_t i = 0; i < records; ++i) {
        ids.push_back(++lastId);
        // A block that is there already has a place for the record; one that is still to be made
        // will find it among the ids.
        if (const boost::shared_ptr<Block>& made = blocks[blockIndex(lastId)]) {
            made->record(lastId).inProject = true;
        }
    }
}

void RecordTable::remove(Record& record)
{
    std::vector<unsigned long>& ids = idColumn.writable();
    ids.erase(ids.begin() + static_cast<std::ptrdiff_t>(rowOf(record.id())));
    record.inProject = false;
}

bool RecordTable::setIncluded(Record& record, bool isIncluded)
{
    if (record.included == isIncluded) {
        return false;
    }
    record.included = isIncluded;
    return true;
}

bool RecordTable::setIncluded(const std::vector<std::size_t>& rows, bool isIncluded)
{
    const std::vector<unsigned long>& ids = idColumn.get();
    bool isChanged = false;
    for (const std::size_t row : rows) {
        isChanged = setIncluded(block(ids[row]).record(ids[row]), isIncluded) || isChanged;
    }
    return isChanged;
}

std::vector<std::size_t> RecordTable::excludedRows() const
{
    const std::vector<unsigned long>& ids = idColumn.get();
    std::vector<std::size_t> rows;
    for (std::size_t row = 0; row < ids.size(); ++row) {
        // Records without an object have never been excluded.
        const boost::shared_ptr<Block>& made = blocks[blockIndex(ids[row])];
        if (made && !made->record(ids[row]).included) {
            rows.push_back(row);
        }
    }
    return rows;
}

RecordTable::Block& RecordTable::block(unsigned long id) const
{
    const std::size_t index = blockIndex(id);
    boost::shared_ptr<Block>& made = blocks[index];
    if (!made) {
        // No handle of these records exists yet, so that none of them can have been removed or
        // excluded: every id up to the last one is in the project.
        made = boost::make_shared<Block>();
        const unsigned long firstId = index * recordsPerBlock + 1;
        for (unsigned long i = 0; i < recordsPerBlock; ++i) {
            Record& record = made->records[i];
            record.identifier = firstId + i;
            record.inProject = record.identifier <= lastId;
        }
    }
    return *made;
}

std::size_t RecordTable::identityOf(unsigned long id) const
{
    const auto next =
        std::upper_bound(runs.begin(), runs.end(), id,
                         [](unsigned long wanted, const Run& run) { return wanted < run.firstId; });
    const Run& run = *(next - 1);
    return run.firstIdentity + (id - run.firstId);
}
