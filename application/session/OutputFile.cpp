#include "session/OutputFile.h"

#include "session/SessionErrors.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {
constexpr std::size_t bufferSize = 1 << 16;
constexpr mode_t newFileMode = 0666;

bool isReplaceable(const std::string& target)
{
    struct stat status = {};
    return stat(target.c_str(), &status) != 0 || S_ISREG(status.st_mode);
}

/** Where a link leads to, also one whose target does not exist yet. */
std::string linkTarget(const std::string& path)
{
    std::error_code error;
    const std::filesystem::path resolved = std::filesystem::weakly_canonical(path, error);
    return error ? path : resolved.string();
}
} // namespace

OutputFile::OutputFile(const std::string& path) : path(path)
{
    buffer.reserve(bufferSize);
    if (path == "-") {
        descriptor = STDOUT_FILENO;
        return;
    }
    if (!isReplaceable(path)) {
        descriptor = open(path.c_str(), O_WRONLY | O_CLOEXEC);
        if (descriptor < 0) {
            fail(errno);
        }
        return;
    }

    target = linkTarget(path);
    struct stat old = {};
    const bool replaces = stat(target.c_str(), &old) == 0;
    if (replaces && access(target.c_str(), W_OK) != 0) {
        fail(errno);
    }
    // The process number keeps programs that write the same file at the same time apart.
    for (int attempt = 0; descriptor < 0; ++attempt) {
        temporary = target + ".part" + std::to_string(getpid()) + '-' + std::to_string(attempt);
        descriptor = open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, newFileMode);
        if (descriptor < 0 && errno != EEXIST) {
            const int error = errno;
            temporary.clear();
            fail(error);
        }
    }
    if (replaces) {
        // A file system without permissions refuses; the file is good without them.
        const int ignored = fchmod(descriptor, old.st_mode & 07777);
        static_cast<void>(ignored);
    }
}

OutputFile::~OutputFile()
{
    if (descriptor >= 0 && descriptor != STDOUT_FILENO) {
        close(descriptor);
    }
    if (!temporary.empty()) {
        unlink(temporary.c_str());
    }
}

void OutputFile::write(std::string_view text)
{
    if (buffer.size() + text.size() > bufferSize) {
        flush();
    }
    buffer.append(text);
}

void OutputFile::commit()
{
    flush();
    if (temporary.empty()) {
        return;
    }
    if (fsync(descriptor) != 0 && errno != EINVAL && errno != ENOTSUP) {
        fail(errno);
    }
    const int closed = close(descriptor);
    descriptor = -1;
    if (closed != 0 || rename(temporary.c_str(), target.c_str()) != 0) {
        fail(errno);
    }
    temporary.clear();
}

void OutputFile::check(const std::string& path)
{
    if (path == "-" || !isReplaceable(path)) {
        return;
    }
    const OutputFile trial(path);
}

void OutputFile::flush()
{
    std::string_view rest = buffer;
    while (!rest.empty()) {
        const ssize_t written = ::write(descriptor, rest.data(), rest.size());
        if (written < 0) {
            if (errno == EINTR) {
                continue;
            }
            if (errno == EPIPE) {
                throw ReaderGone();
            }
            fail(errno);
        }
        rest.remove_prefix(static_cast<std::size_t>(written));
    }
    buffer.clear();
}

void OutputFile::fail(int error) const
{
    throw FileError((path == "-" ? "The standard output" : "The file \"" + path + "\"") +
                    " cannot be written: " + std::strerror(error) + '.');
}
