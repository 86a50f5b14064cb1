#include "session/files/FileFingerprint.h"

#include "session/files/ByteSource.h"
#include "session/text/SessionErrors.h"

#include <openssl/evp.h>

#include <array>
#include <memory>
#include <string_view>
#include <vector>

#include <sys/stat.h>

namespace {
constexpr std::size_t blockSize = 1 << 18;

/** The SHA-256 digest of bytes that come in pieces. */
class Sha256
{
public:
    Sha256() : context(EVP_MD_CTX_new(), EVP_MD_CTX_free)
    {
        EVP_DigestInit_ex(context.get(), EVP_sha256(), nullptr);
    }

    void add(const char* bytes, std::size_t count)
    {
        EVP_DigestUpdate(context.get(), bytes, count);
    }

    /** Ends the message. @return 64 digits in lower case. */
    std::string digest()
    {
        constexpr std::string_view digits = "0123456789abcdef";
        std::array<unsigned char, EVP_MAX_MD_SIZE> bytes;
        unsigned int size = 0;
        EVP_DigestFinal_ex(context.get(), bytes.data(), &size);
        std::string text;
        for (unsigned int i = 0; i < size; ++i) {
            text += digits[bytes[i] / 16];
            text += digits[bytes[i] % 16];
        }
        return text;
    }

private:
    std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context;
};
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
