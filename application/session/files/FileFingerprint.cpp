#include "session/files/FileFingerprint.h"

#include "session/files/ByteSource.h"
#include "session/files/Sha256.h"
#include "session/text/SessionErrors.h"

#include <vector>

#include <sys/stat.h>

namespace {
constexpr std::size_t blockSize = 1 << 18;
}

FileFingerprint FileFingerprint::of(const std::string& path)
{
    struct stat status = {};
    const bool isStandardInput = path == "-";
    if (isStandardInput || (stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode))) {
        throw FileError((isStandardInput ? "The standard input" : "The file \"" + path + '"') +
                        " cannot be part of a project: it is no regular file, and its bytes could "
                        "not be read again.");
    }

    ByteSource source(path);
    Sha256 hash;
    FileFingerprint fingerprint;
    std::vector<char> block(blockSize);
    while (const std::size_t count = source.read(block.data(), block.size())) {
        hash.add(block.data(), count);
        fingerprint.bytes += count;
    }
    fingerprint.sha256 = hash.digest();
    return fingerprint;
}

bool operator==(const FileFingerprint& left, const FileFingerprint& right)
{
    return left.bytes == right.bytes && left.sha256 == right.sha256;
}

bool operator!=(const FileFingerprint& left, const FileFingerprint& right)
{
    return !(left == right);
}
