#include <surrogatemodel/ColumnMemory.h>

#include <vtkDoubleArray.h>

#include <sys/mman.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <mutex>
#include <new>
#include <utility>
#include <vector>

namespace {

const std::size_t LargeColumn = std::size_t{1} << 20; // bytes
const std::size_t LargePage = std::size_t{2} << 20;

void* allocate(std::size_t bytes)
{
    const std::size_t size = (bytes + LargePage - 1) / LargePage * LargePage;
    void* const memory = std::aligned_alloc(LargePage, size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    // Where the system has large pages for those who ask, it hands them out much faster. The rest
    // of the last one is never touched.
    madvise(memory, bytes / LargePage * LargePage, MADV_HUGEPAGE);
    return memory;
}

} // namespace

struct ColumnMemory::Block
{
    void* memory;
    std::size_t bytes;
};

struct ColumnMemory::Spare
{
    ~Spare()
    {
        for (const Block& block : blocks) {
            std::free(block.memory);
        }
    }

    void keep(bool isWanted)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        isKeeping = isWanted;
    }

    /** Whether it takes the block. */
    bool take(const Block& block)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        if (isKeeping) {
            blocks.push_back(block);
        }
        return isKeeping;
    }

    mutable std::mutex mutex;
    std::vector<Block> blocks;
    bool isKeeping = false;
};

/**
 * Whose memory an array has. An array that frees its memory and then grows takes other memory, of
 * malloc(), and frees that by the same function: memory that is not known here is such.
 */
struct ColumnMemory::InUse
{
    static InUse& instance()
    {
        static auto* const neverDestroyed = new InUse; // arrays may go when the program ends
        return *neverDestroyed;
    }

    void add(const Block& block, const std::shared_ptr<Spare>& owner)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        owners[block.memory] = {block.bytes, owner};
    }

    std::pair<std::size_t, std::weak_ptr<Spare>> take(void* memory)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        const auto found = owners.find(memory);
        if (found == owners.end()) {
            return {};
        }
        const auto owner = found->second;
        owners.erase(found);
        return owner;
    }

    /** What an array calls with its memory, or with none. */
    static void giveBack(void* memory)
    {
        const auto [bytes, owner] = instance().take(memory);
        const std::shared_ptr<Spare> home = owner.lock();
        if (home == nullptr || !home->take({memory, bytes})) {
            std::free(memory);
        }
    }

private:
    std::mutex mutex;
    std::map<void*, std::pair<std::size_t, std::weak_ptr<Spare>>> owners;
};

ColumnMemory::Reuse::Reuse(ColumnMemory& memory) : memory(memory)
{
    memory.spare->keep(true);
}

ColumnMemory::Reuse::~Reuse()
{
    memory.spare->keep(false);
    memory.freeSpare();
}

ColumnMemory::ColumnMemory() : spare(std::make_shared<Spare>()) {}

ColumnMemory::~ColumnMemory() = default;

void ColumnMemory::makeRoom(vtkDoubleArray& column, vtkIdType rows)
{
    const std::size_t bytes = static_cast<std::size_t>(rows) * sizeof(double);
    if (bytes < LargeColumn) {
        return;
    }
    Block block{nullptr, bytes};
    {
        const std::lock_guard<std::mutex> lock(spare->mutex);
        std::vector<Block>& blocks = spare->blocks;
        const auto found =
            std::find_if(blocks.begin(), blocks.end(),
                         [bytes](const Block& candidate) { return candidate.bytes == bytes; });
        if (found != blocks.end()) {
            block = *found;
            blocks.erase(found);
        }
    }
    if (block.memory == nullptr) {
        // The columns of a table have one size: what is spare fits none of those to come, and must
        // not add to the memory that they take.
        freeSpare();
        block.memory = allocate(bytes);
    }
    InUse::instance().add(block, spare);
    column.SetArray(static_cast<double*>(block.memory), rows, 0,
                    vtkDoubleArray::VTK_DATA_ARRAY_USER_DEFINED);
    column.SetArrayFreeFunction(&InUse::giveBack);
}

void ColumnMemory::freeSpare()
{
    const std::lock_guard<std::mutex> lock(spare->mutex);
    for (const Block& block : spare->blocks) {
        std::free(block.memory);
    }
    spare->blocks.clear();
}

std::size_t ColumnMemory::spareBytes() const
{
    const std::lock_guard<std::mutex> lock(spare->mutex);
    std::size_t bytes = 0;
    for (const Block& block : spare->blocks) {
        bytes += block.bytes;
    }
    return bytes;
}
