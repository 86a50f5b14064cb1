#include <session/files/FileFingerprint.h>

#include "MessageOf.h"
#include "TemporaryFolder.h"

#include <session/text/SessionErrors.h>

#include <gtest/gtest.h>

#include <string>

#include <sys/stat.h>

namespace {
std::string refusalOf(const std::string& path)
{
    return messageOf<FileError>([&] { FileFingerprint::of(path); });
}
} // namespace

TEST(FileFingerprint, IsSizeAndSha256)
{
    const TemporaryFolder folder;
    // NIST, FIPS 180-4 examples "SHA-256, one block message sample" and "long message sample".
    const std::pair<std::string, std::string> rows[] = {
        {"abc", "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},
        {std::string(1000000, 'a'),
         "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0"},
    };
    for (const auto& [content, hash] : rows) {
        const FileFingerprint fingerprint = FileFingerprint::of(folder.write("a", content));

        EXPECT_EQ(fingerprint.bytes, content.size());
        EXPECT_EQ(fingerprint.sha256, hash);
    }
}

TEST(FileFingerprint, DistinguishesFilesOfTheSameSize)
{
    const TemporaryFolder folder;
    const FileFingerprint first = FileFingerprint::of(folder.write("a", "1"));

    EXPECT_TRUE(first == FileFingerprint::of(folder.write("b", "1")));
    EXPECT_TRUE(first != FileFingerprint::of(folder.write("c", "2")));
    EXPECT_TRUE(first != FileFingerprint::of(folder.write("d", "")));
}

TEST(FileFingerprint, RefusesWhatCanBeReadOnlyOnce)
{
    const TemporaryFolder folder;
    ASSERT_EQ(mkfifo(folder.path("pipe").c_str(), 0600), 0);

    EXPECT_EQ(refusalOf(folder.path("pipe")),
              "The file \"" + folder.path("pipe") +
                  "\" cannot be part of a project: it is no regular file, and its bytes could not "
                  "be read again.");
    EXPECT_EQ(refusalOf("-"), "The standard input cannot be part of a project: it is no regular "
                              "file, and its bytes could not be read again.");
}
