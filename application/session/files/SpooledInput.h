#pragma once

#include <QTemporaryFile>

#include <cstddef>
#include <string>

/**
 * Bytes of an input that cannot be read twice, kept in a temporary file so that they do not take
 * memory besides what is made of them. The file has no name where the file system allows that, and
 * is gone with this object; bytes that it has no room for stay in memory.
 */
class SpooledInput
{
public:
    void append(const char* bytes, std::size_t count);

    std::size_t size() const;

    /**
     * Copies bytes from `position` on, at most `capacity`; 0 at the end only.
     * @return how many; -1 with the reason in errno if the temporary file cannot be read.
     */
    std::ptrdiff_t read(std::size_t position, char* buffer, std::size_t capacity) const;

private:
    QTemporaryFile file;
    std::size_t bytesInFile = 0;
    std::string rest; ///< the bytes after those in the file
};
