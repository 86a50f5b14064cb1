#include "session/files/ByteSource.h"

#include "session/text/SessionErrors.h"

#include <array>
#include <cerrno>
#include <cstring>

#include <sys/stat.h>

namespace {
[[noreturn]] void fail(const std::string& path, int error)
{
    throw FileError((path == "-" ? "The standard input" : "The file \"" + path + "\"") +
                    " cannot be read: " + std::strerror(error) + '.');
}
} // namespace

ByteSource::ByteSource(const std::string& path, std::size_t spooledSize) : path(path)
{
    file = path == "-" ? stdin : std::fopen(path.c_str(), "rb");
    if (file == nullptr) {
        fail(path, errno);
    }
    // Every reader brings its own block; a second buffer in between would be copied for nothing.
    std::setvbuf(file, nullptr, _IONBF, 0);

    struct stat status = {};
    const bool isRegular = fstat(fileno(file), &status) == 0 && S_ISREG(status.st_mode);
    if (isRegular && path != "-") {
        bytes = static_cast<std::size_t>(status.st_size);
        return;
    }
    try {
        std::array<char, 1 << 16> block;
        std::size_t count = block.size();
        while (count > 0 && spooled.size() <= spooledSize) {
            count = read(block.data(), block.size());
            spooled.append(block.data(), count);
        }
    } catch (...) {
        if (file != stdin) {
            std::fclose(file);
        }
        throw;
    }
    bytes = spooled.size();
    isSpooled = true;
}

ByteSource::~ByteSource()
{
    if (file != stdin) {
        std::fclose(file);
    }
}

std::size_t ByteSource::read(char* buffer, std::size_t capacity)
{
    if (isSpooled) {
        const std::ptrdiff_t count = spooled.read(position, buffer, capacity);
        if (count < 0) {
            fail(path, errno);
        }
        position += static_cast<std::size_t>(count);
        return static_cast<std::size_t>(count);
    }
    const std::size_t count = std::fread(buffer, 1, capacity, file);
    if (count < capacity && std::ferror(file) != 0) {
        fail(path, errno);
    }
    return count;
}

void ByteSource::rewind()
{
    position = 0;
    if (!isSpooled) {
        std::rewind(file);
    }
}

std::size_t ByteSource::size() const
{
    return bytes;
}

std::string ByteSource::contentOf(const std::string& path, std::size_t most)
{
    ByteSource source(path, most);
    std::string content;
    std::array<char, 1 << 16> block;
    std::size_t count = block.size();
    while (count > 0 && content.size() <= most) {
        count = source.read(block.data(), block.size());
        content.append(block.data(), count);
    }
    return content;
}
