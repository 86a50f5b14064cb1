#include <session/OutputFile.h>

#include "TemporaryFolder.h"

#include <session/SessionErrors.h>

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <string>

#include <sys/stat.h>

namespace {
void writeTo(const std::string& path, const std::string& text)
{
    OutputFile file(path);
    file.write(text);
    file.commit();
}

std::string refusalOf(const std::string& path)
{
    try {
        writeTo(path, "text");
    } catch (const FileError& error) {
        return error.what();
    }
    return "written";
}
} // namespace

TEST(OutputFile, IsThereWholeAfterCommit)
{
    const TemporaryFolder folder;
    const std::string text(300000, 'x');

    writeTo(folder.path("a.csv"), text);

    EXPECT_EQ(folder.read("a.csv"), text);
    EXPECT_EQ(folder.fileCount(), 1u);
}

TEST(OutputFile, WithoutCommitTheOldFileStaysAndNothingElse)
{
    const TemporaryFolder folder;
    folder.write("a.csv", "old");
    {
        OutputFile file(folder.path("a.csv"));
        file.write(std::string(300000, 'x'));
        EXPECT_EQ(folder.read("a.csv"), "old");
    }

    EXPECT_EQ(folder.read("a.csv"), "old");
    EXPECT_EQ(folder.fileCount(), 1u);
}

TEST(OutputFile, KeepsThePermissionsOfTheFileItReplaces)
{
    const TemporaryFolder folder;
    const std::string path = folder.write("a.csv", "old");
    chmod(path.c_str(), 0640);

    writeTo(path, "new");

    struct stat status = {};
    ASSERT_EQ(stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0640u);
    EXPECT_EQ(folder.read("a.csv"), "new");
}

TEST(OutputFile, FollowsALink)
{
    const TemporaryFolder folder;
    folder.write("target.csv", "old");
    std::filesystem::create_symlink("target.csv", folder.path("link.csv"));

    writeTo(folder.path("link.csv"), "new");

    EXPECT_TRUE(std::filesystem::is_symlink(folder.path("link.csv")));
    EXPECT_EQ(folder.read("target.csv"), "new");
}

TEST(OutputFile, AFileThatCannotBeMadeIsNamedWithTheReason)
{
    const TemporaryFolder folder;
    const std::string path = folder.path("none/a.csv");
    const std::string sentence =
        "The file \"" + path + "\" cannot be written: No such file or directory.";

    EXPECT_EQ(refusalOf(path), sentence);
    EXPECT_THROW(OutputFile::check(path), FileError);
    EXPECT_EQ(refusalOf(folder.path("")),
              "The file \"" + folder.path("") + "\" cannot be written: Is a directory.");
}

TEST(OutputFile, CheckingLeavesNothingBehind)
{
    const TemporaryFolder folder;

    OutputFile::check(folder.path("a.csv"));

    EXPECT_EQ(folder.fileCount(), 0u);
}

TEST(OutputFile, AFullDiskIsAnError)
{
    EXPECT_EQ(refusalOf("/dev/full"),
              "The file \"/dev/full\" cannot be written: No space left on device.");
}

TEST(OutputFile, ADeviceIsWrittenToAndStaysADevice)
{
    writeTo("/dev/null", "text");

    EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
}
