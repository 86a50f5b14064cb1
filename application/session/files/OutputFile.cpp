#include "session/files/OutputFile.h"

#include "session/text/QuotedText.h"
#include "session/text/SessionErrors.h"

#include <QFile>
#include <QSaveFile>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {
constexpr std::size_t bufferSize = 1 << 16;

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

OutputFile::OutputFile(const std::string& path, Backup wanted) : path(path)
{
    buffer.reserve(bufferSize);
    if (path == "-") {
        descriptor = STDOUT_FILENO;
    } else if (isReplaceable(path)) {
        openTemporary(wanted);
    } else {
        descriptor = open(path.c_str(), O_WRONLY | O_CLOEXEC);
        if (descriptor < 0) {
            fail(std::strerror(errno));
        }
    }
}

OutputFile::~OutputFile()
{
    if (!temporary && descriptor >= 0 && descriptor != STDOUT_FILENO) {
        close(descriptor);
    }
}

void OutputFile::openTemporary(Backup wanted)
{
    const QString name = QFile::decodeName(path.c_str());
    if (QFile::encodeName(name) != path.c_str()) {
        fail("its name is not UTF-8 text");
    }
    if (wanted == KeepsBackup) {
        backup = linkTarget(path) + ".bak";
        if (!isReplaceable(backup)) {
            throw FileError("The file \"" + path + "\" cannot be written: its backup \"" + backup +
                            "\" is in the way and no file; move it.");
        }
    }
    if (access(path.c_str(), F_OK) == 0 && access(path.c_str(), W_OK) != 0) {
        fail(std::strerror(errno));
    }
    temporary = std::make_unique<QSaveFile>(name);
    if (!temporary->open(QIODevice::WriteOnly)) {
        fail(temporary->errorString().toStdString());
    }
    descriptor = temporary->handle();
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
    if (!temporary) {
        return;
    }
    // QSaveFile ignores the result of fsync: that a remote disk is full. Some file systems have
    // nothing to flush.
    if (fsync(descriptor) != 0 && errno != EINVAL && errno != ENOTSUP) {
        fail(std::strerror(errno));
    }
    keepBackup();
    if (!temporary->commit()) {
        fail(temporary->errorString().toStdString());
    }
}

void OutputFile::check(const std::string& path, Backup backup)
{
    if (path == "-" || !isReplaceable(path)) {
        return;
    }
    const OutputFile trial(path, backup);
}

void OutputFile::keepBackup() const
{
    QFile old(temporary->fileName());
    if (backup.empty() || !old.exists()) {
        return;
    }
    if (!old.open(QIODevice::ReadOnly)) {
        fail(old.errorString().toStdString());
    }
    QSaveFile copy(QFile::decodeName(backup.c_str()));
    const bool isWritten =
        copy.open(QIODevice::WriteOnly) && copy.write(old.readAll()) == old.size();
    copy.setPermissions(old.permissions()); // Some file systems have none.
    if (!isWritten || !copy.commit()) {
        fail(copy.errorString().toStdString());
    }
}

void OutputFile::flush()
{
    if (isatty(descriptor) != 0) {
        buffer = terminalText(buffer);
    }
    std::string_view rest = buffer;
    while (!rest.empty()) {
        const ssize_t written = ::write(descriptor, rest.data(), rest.size());
        if (written >= 0) {
            rest.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno == EPIPE) {
            throw BrokenPipe();
        } else if (errno != EINTR) {
            fail(std::strerror(errno));
        }
    }
    buffer.clear();
}

void OutputFile::fail(const std::string& reason) const
{
    throw FileError((path == "-" ? "The standard output" : "The file \"" + path + "\"") +
                    " cannot be written: " + reason + '.');
}
