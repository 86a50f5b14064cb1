#include "session/files/KeptBytes.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <string_view>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

namespace {
/** So many bytes are kept in memory before a file is made: no document comes near it. */
constexpr std::size_t mostInHead = std::size_t(8) << 20;

/** A file that goes when it is closed; -1 if there can be none. */
int openTemporary()
{
    std::error_code error;
    const std::string folder = std::filesystem::temp_directory_path(error).string();
    if (error) {
        return -1;
    }
    const int nameless = open(folder.c_str(), O_RDWR | O_TMPFILE | O_CLOEXEC, 0600);
    if (nameless >= 0) {
        return nameless;
    }
    std::string name = folder + "/surrogate-XXXXXX";
    const int named = mkostemp(name.data(), O_CLOEXEC);
    if (named >= 0) {
        unlink(name.c_str());
    }
    return named;
}

std::size_t copyFrom(std::string_view text, char* buffer, std::size_t capacity)
{
    const std::size_t count = std::min(capacity, text.size());
    std::memcpy(buffer, text.data(), count);
    return count;
}
} // namespace

KeptBytes::~KeptBytes()
{
    if (descriptor >= 0) {
        close(descriptor);
    }
}

void KeptBytes::append(const char* bytes, std::size_t count)
{
    const bool isHeadOpen = bytesInFile == 0 && tail.empty();
    if (isHeadOpen && head.size() + count <= mostInHead) {
        head.append(bytes, count);
        return;
    }
    const std::size_t written = writeToFile(bytes, count);
    bytesInFile += written;
    tail.append(bytes + written, count - written);
}

std::size_t KeptBytes::size() const
{
    return head.size() + bytesInFile + tail.size();
}

std::ptrdiff_t KeptBytes::read(std::size_t position, char* buffer, std::size_t capacity) const
{
    if (position < head.size()) {
        const auto rest = std::string_view(head).substr(position);
        return static_cast<std::ptrdiff_t>(copyFrom(rest, buffer, capacity));
    }
    position -= head.size();
    if (position >= bytesInFile) {
        const auto rest = std::string_view(tail).substr(position - bytesInFile);
        return static_cast<std::ptrdiff_t>(copyFrom(rest, buffer, capacity));
    }
    const std::size_t count = std::min(capacity, bytesInFile - position);
    ssize_t got = 0;
    do {
        got = pread(descriptor, buffer, count, static_cast<off_t>(position));
    } while (got < 0 && errno == EINTR);
    if (got == 0) {
        // Nobody else has the file: one that has become shorter is a fault of the disk.
        errno = EIO;
        return -1;
    }
    return got;
}

/** @return how many bytes there was room for; after the first failure none. */
std::size_t KeptBytes::writeToFile(const char* bytes, std::size_t count)
{
    if (descriptor < 0 && !isFileFull) {
        descriptor = openTemporary();
        isFileFull = descriptor < 0;
    }
    std::size_t written = 0;
    while (written < count && !isFileFull) {
        const ssize_t put = write(descriptor, bytes + written, count - written);
        if (put > 0) {
            written += static_cast<std::size_t>(put);
        } else {
            isFileFull = put == 0 || errno != EINTR;
        }
    }
    return written;
}
