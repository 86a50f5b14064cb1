#include "session/files/UnfinishedFile.h"

#include <array>
#include <atomic>
#include <climits>
#include <cstring>

#include <unistd.h>

namespace {
/** Memory that a handler may read at any moment: it is always there, and no lock guards it. */
struct Slot
{
    std::atomic<bool> isTaken{false};
    std::atomic<bool> isNamed{false};
    std::array<char, PATH_MAX> path{};
};

// A file and its backup at a time, and some more.
std::array<Slot, 8> slots;
} // namespace

UnfinishedFile::UnfinishedFile(const std::string& path) : pathText(path), slot(0)
{
    while (slot < slots.size() && slots[slot].isTaken.exchange(true)) {
        ++slot;
    }
    // A longer path names no file. Without a free slot the file would stay: no harm beyond that.
    if (slot < slots.size() && path.size() < slots[slot].path.size()) {
        std::memcpy(slots[slot].path.data(), path.c_str(), path.size() + 1);
        slots[slot].isNamed = true;
    }
}

UnfinishedFile::~UnfinishedFile()
{
    if (slot < slots.size()) {
        slots[slot].isNamed = false;
        slots[slot].isTaken = false;
    }
}

void UnfinishedFile::removeAll() noexcept
{
    for (Slot& one : slots) {
        if (one.isNamed) {
            unlink(one.path.data());
        }
    }
}
