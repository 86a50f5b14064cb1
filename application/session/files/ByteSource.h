#pragma once

#include "session/files/SpooledInput.h"

#include <cstddef>
#include <cstdio>
#include <limits>
#include <string>

/**
 * The bytes of an input file, in blocks, from the beginning as often as wanted. A regular file is
 * read again each time; anything else (a pipe, a terminal) is read once, whole, into a
 * SpooledInput.
 */
class ByteSource
{
public:
    /**
     * @param path        "-" is the standard input.
     * @param spooledSize spooling stops soon after so many bytes: a device may never end.
     * @throw FileError if it cannot be opened.
     */
    explicit ByteSource(const std::string& path,
                        std::size_t spooledSize = std::numeric_limits<std::size_t>::max());
    ~ByteSource();

    ByteSource(const ByteSource&) = delete;
    ByteSource& operator=(const ByteSource&) = delete;

    /** Reads what there is, at most `capacity` bytes; answers how many, 0 at the end.
     *  @throw FileError */
    std::size_t read(char* buffer, std::size_t capacity);

    void rewind();

    /** In bytes. */
    std::size_t size() const;

    /** The bytes of a file, all of them or, soon after `most`, no more. @throw FileError */
    static std::string contentOf(const std::string& path,
                                 std::size_t most = std::numeric_limits<std::size_t>::max());

private:
    std::string path;
    std::FILE* file = nullptr;
    SpooledInput spooled;
    bool isSpooled = false;
    std::size_t position = 0;
    std::size_t bytes = 0;
};
