#pragma once

#include <cstddef>
#include <string>

/**
 * Bytes that cannot be read from their source again. Many of them go into a temporary file without
 * a name, so that what a pipe delivers does not stand in memory beside what is made of it. The file
 * may fill the folder for temporary files for as long as this lives; what finds no room there stays
 * in memory.
 */
class KeptBytes
{
public:
    KeptBytes() = default;
    ~KeptBytes();

    KeptBytes(const KeptBytes&) = delete;
    KeptBytes& operator=(const KeptBytes&) = delete;

    void append(const char* bytes, std::size_t count);

    std::size_t size() const;

    /**
     * Copies bytes from `position` on, at most `capacity`; 0 at the end only.
     * @return how many; -1 with the reason in errno if the temporary file cannot be read.
     */
    std::ptrdiff_t read(std::size_t position, char* buffer, std::size_t capacity) const;

private:
    std::size_t writeToFile(const char* bytes, std::size_t count);

    std::string head; ///< the first bytes
    std::size_t bytesInFile = 0;
    std::string tail; ///< what there was no room for in the file
    int descriptor = -1;
    bool isFileFull = false;
};
