#include "session/files/SpooledInput.h"

#include <algorithm>
#include <cerrno>
#include <string_view>

#include <unistd.h>

void SpooledInput::append(const char* bytes, std::size_t count)
{
    std::size_t written = 0;
    if (rest.empty() && (file.isOpen() || file.open())) {
        ssize_t step = 1;
        while (written < count && step > 0) {
            step = write(file.handle(), bytes + written, count - written);
            written += static_cast<std::size_t>(std::max(step, ssize_t(0)));
        }
    }
    bytesInFile += written;
    rest.append(bytes + written, count - written);
}

std::size_t SpooledInput::size() const
{
    return bytesInFile + rest.size();
}

std::ptrdiff_t SpooledInput::read(std::size_t position, char* buffer, std::size_t capacity) const
{
    if (position >= bytesInFile) {
        return static_cast<std::ptrdiff_t>(rest.copy(buffer, capacity, position - bytesInFile));
    }
    const std::size_t count = std::min(capacity, bytesInFile - position);
    const ssize_t got = pread(file.handle(), buffer, count, static_cast<off_t>(position));
    if (got == 0) {
        // Nobody else has the file: one that has become shorter is a fault of the disk.
        errno = EIO;
        return -1;
    }
    return got;
}
