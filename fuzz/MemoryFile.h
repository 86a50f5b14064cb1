#pragma once

#include "FuzzCheck.h"

#include <cstdint>
#include <string>

#include <sys/mman.h>
#include <unistd.h>

/** A regular file in memory alone, for readers that take a path. */
class MemoryFile
{
public:
    MemoryFile(const std::uint8_t* bytes, std::size_t size) : descriptor(memfd_create("fuzz", 0))
    {
        FUZZ_CHECK(descriptor >= 0);
        FUZZ_CHECK(write(descriptor, bytes, size) == static_cast<ssize_t>(size));
    }
    ~MemoryFile() { close(descriptor); }

    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor); }

private:
    int descriptor;
};
