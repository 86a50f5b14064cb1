#include "session/files/FileFingerprint.h"

#include "session/files/ByteSource.h"
#include "session/text/SessionErrors.h"

#include <QByteArray>
#include <openssl/evp.h>

#include <array>
#include <memory>
#include <vector>

#include <sys/stat.h>

namespace {
constexpr std::size_t blockSize = 1 << 18;
} // namespace

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
    const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> hash(EVP_MD_CTX_new(),
                                                                       EVP_MD_CTX_free);
    EVP_DigestInit_ex(hash.get(), EVP_sha256(), nullptr);
    FileFingerprint fingerprint;
    std::vector<char> block(blockSize);
    while (const std::size_t count = source.read(block.data(), block.size())) {
        EVP_DigestUpdate(hash.get(), block.data(), count);
        fingerprint.bytes += count;
    }
    std::array<char, EVP_MAX_MD_SIZE> digest;
    unsigned int size = 0;
    EVP_DigestFinal_ex(hash.get(), reinterpret_cast<unsigned char*>(digest.data()), &size);
    fingerprint.sha256 = QByteArray(digest.data(), static_cast<int>(size)).toHex().toStdString();
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
