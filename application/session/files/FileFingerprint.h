#pragma once

#include <surrogate_session/Export.h>

#include <cstdint>
#include <string>

/** Size and SHA-256 digest of a file, to see whether it has changed. */
struct SURROGATE_SESSION_EXPORT FileFingerprint
{
    /** Reads the file, a block at a time. @throw FileError if that fails, and for what is no
     *  regular file: its bytes would be gone. */
    static FileFingerprint of(const std::string& path);

    std::uint64_t bytes = 0;
    std::string sha256; ///< 64 digits in lower case
};

SURROGATE_SESSION_EXPORT bool operator==(const FileFingerprint& left, const FileFingerprint& right);
SURROGATE_SESSION_EXPORT bool operator!=(const FileFingerprint& left, const FileFingerprint& right);
