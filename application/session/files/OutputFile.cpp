#include "session/files/OutputFile.h"

#include "session/files/UnfinishedFile.h"
#include "session/text/SessionErrors.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <functional>
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

std::string folderOf(const std::string& path)
{
    const std::string folder = std::filesystem::path(path).parent_path().string();
    return folder.empty() ? "." : folder;
}

/** The name under which the process finds what it has open. */
std::string descriptorPath(int descriptor)
{
    return "/proc/self/fd/" + std::to_string(descriptor);
}

/** Some file systems have nothing to flush. */
bool flushed(int descriptor)
{
    return fsync(descriptor) == 0 || errno == EINVAL || errno == ENOTSUP;
}

/**
 * Makes a file of a new name beside another one.
 * @param make tries a name; where that fails because the name is taken, errno is EEXIST.
 * @return null if it failed otherwise, with the reason in errno.
 */
std::unique_ptr<UnfinishedFile> makeBeside(const std::string& path,
                                           const std::function<bool(const std::string&)>& make)
{
    // The process number keeps programs that write the same file at the same time apart.
    for (int attempt = 0;; ++attempt) {
        auto file = std::make_unique<UnfinishedFile>(path + ".part" + std::to_string(getpid()) +
                                                     '-' + std::to_string(attempt));
        if (make(file->path())) {
            return file;
        }
        if (errno != EEXIST) {
            return nullptr;
        }
    }
}

bool copyBytes(int from, int to)
{
    std::array<char, bufferSize> block;
    for (;;) {
        const ssize_t count = read(from, block.data(), block.size());
        if (count <= 0) {
            return count == 0;
        }
        for (ssize_t done = 0; done < count;) {
            const ssize_t written =
                write(to, block.data() + done, static_cast<std::size_t>(count - done));
            if (written < 0) {
                return false;
            }
            done += written;
        }
    }
}

bool copyInto(int source, const std::string& to)
{
    struct stat status = {};
    if (fstat(source, &status) != 0) {
        return false;
    }
    const int copy =
        open(to.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, status.st_mode & 0777);
    if (copy < 0) {
        return false;
    }
    const bool isCopied = copyBytes(source, copy) && flushed(copy);
    const int error = errno;
    close(copy);
    if (!isCopied) {
        unlink(to.c_str());
    }
    errno = error;
    return isCopied;
}

/** A new file with the bytes and permissions of another; errno says why there is none. */
bool copyFile(const std::string& from, const std::string& to)
{
    const int source = open(from.c_str(), O_RDONLY | O_CLOEXEC);
    if (source < 0) {
        return false;
    }
    const bool isCopied = copyInto(source, to);
    const int error = errno;
    close(source);
    errno = error;
    return isCopied;
}
} // namespace

OutputFile::OutputFile(const std::string& path, Backup wanted) : path(path)
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
    if (wanted == KeepsBackup) {
        backup = target + ".bak";
        if (!isReplaceable(backup)) {
            throw FileError("The file \"" + path + "\" cannot be written: its backup \"" + backup +
                            "\" is in the way and no file; move it.");
        }
    }
    struct stat old = {};
    const bool replaces = stat(target.c_str(), &old) == 0;
    if (replaces && access(target.c_str(), W_OK) != 0) {
        fail(errno);
    }
    if (!openNameless()) {
        openNamed();
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
    if (temporary) {
        unlink(temporary->path().c_str());
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
    if (target.empty()) {
        return;
    }
    flushToDisk();
    keepBackup();
    // As late as can be: a program that is killed before leaves nothing behind.
    if (!temporary) {
        nameTemporary();
    }
    const int closed = close(descriptor);
    descriptor = -1;
    if (closed != 0) {
        fail(errno);
    }
    if (rename(temporary->path().c_str(), target.c_str()) != 0) {
        fail(errno);
    }
    temporary.reset();
    flushFolder();
}

void OutputFile::check(const std::string& path, Backup backup)
{
    if (path == "-" || !isReplaceable(path)) {
        return;
    }
    const OutputFile trial(path, backup);
}

/** Whether there is a temporary file now that can get its name later. */
bool OutputFile::openNameless()
{
    descriptor = open(folderOf(target).c_str(), O_WRONLY | O_TMPFILE | O_CLOEXEC, newFileMode);
    if (descriptor >= 0 && access(descriptorPath(descriptor).c_str(), F_OK) != 0) {
        close(descriptor);
        descriptor = -1;
    }
    return descriptor >= 0;
}

void OutputFile::openNamed()
{
    const auto make = [this](const std::string& name) {
        descriptor = open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, newFileMode);
        return descriptor >= 0;
    };
    temporary = makeBeside(target, make);
    if (!temporary) {
        fail(errno);
    }
}

void OutputFile::nameTemporary()
{
    const std::string nameless = descriptorPath(descriptor);
    const auto make = [&nameless](const std::string& name) {
        return linkat(AT_FDCWD, nameless.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0;
    };
    temporary = makeBeside(target, make);
    if (!temporary) {
        fail(errno);
    }
}

void OutputFile::flushToDisk() const
{
    if (!flushed(descriptor)) {
        fail(errno);
    }
}

/** Gives the old file the backup's name too; it keeps its own until the new file takes it. */
void OutputFile::keepBackup() const
{
    if (backup.empty() || access(target.c_str(), F_OK) != 0) {
        return;
    }
    const auto link = [this](const std::string& name) {
        return ::link(target.c_str(), name.c_str()) == 0;
    };
    const auto copy = [this](const std::string& name) { return copyFile(target, name); };
    std::unique_ptr<UnfinishedFile> copied = makeBeside(backup, link);
    if (!copied) {
        // A file system without hard links.
        copied = makeBeside(backup, copy);
    }
    const bool isKept = copied && rename(copied->path().c_str(), backup.c_str()) == 0;
    const int error = errno;
    if (copied) {
        // Renaming does nothing where both names are of one file: after a save that was killed
        // between the backup and the new file.
        unlink(copied->path().c_str());
    }
    if (!isKept) {
        fail(error);
    }
}

/** The new name outlives a power cut only once its folder is on the disk. */
void OutputFile::flushFolder() const
{
    const int folder = open(folderOf(target).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0) {
        // A folder that may be written to but not listed; the file is there.
        return;
    }
    const bool isFlushed = flushed(folder);
    const int error = errno;
    close(folder);
    if (!isFlushed) {
        fail(error);
    }
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
