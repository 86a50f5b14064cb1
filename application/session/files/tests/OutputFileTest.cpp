#include <session/files/OutputFile.h>

#include "ChildProcess.h"
#include "MessageOf.h"
#include "TemporaryFolder.h"

#include <session/text/SessionErrors.h>

#include <gtest/gtest.h>

#include <clocale>
#include <csignal>
#include <filesystem>
#include <string>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {
void writeTo(const std::string& path, const std::string& text,
             OutputFile::Backup backup = OutputFile::KeepsNoBackup)
{
    OutputFile file(path, backup);
    file.write(text);
    file.commit();
}

std::string refusalOf(const std::string& path,
                      OutputFile::Backup backup = OutputFile::KeepsNoBackup)
{
    return messageOf<FileError>([&] { writeTo(path, "text", backup); });
}

/** For a test that needs a user without rights. */
constexpr uid_t nobody = 65534;

bool isRoot()
{
    return geteuid() == 0;
}

/** A long text, another one for each number. */
std::string wholeText(int number)
{
    return std::string(100000, static_cast<char>(number));
}

/** Replaces a file again and again. */
[[noreturn]] void saveForever(const std::string& path)
{
    for (int i = 1;; i = i % 100 + 1) {
        writeTo(path, wholeText(i), OutputFile::KeepsBackup);
    }
}

/** Writes a long text with a backup; 0: done, 1: refused. */
int writeLongText(const std::string& path)
{
    try {
        writeTo(path, std::string(300000, 'n'), OutputFile::KeepsBackup);
    } catch (const FileError&) {
        return 1;
    }
    return 0;
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

TEST(OutputFile, TheOldFileStaysAsABackup)
{
    const TemporaryFolder folder;
    const std::string path = folder.path("a.xml");

    writeTo(path, "first", OutputFile::KeepsBackup);
    EXPECT_EQ(folder.fileCount(), 1u);
    writeTo(path, "second", OutputFile::KeepsBackup);
    EXPECT_EQ(folder.read("a.xml.bak"), "first");
    writeTo(path, "third", OutputFile::KeepsBackup);

    EXPECT_EQ(folder.read("a.xml"), "third");
    EXPECT_EQ(folder.read("a.xml.bak"), "second");
    EXPECT_EQ(folder.fileCount(), 2u);
}

TEST(OutputFile, ABackupKeepsThePermissions)
{
    const TemporaryFolder folder;
    const std::string path = folder.write("a.xml", "old");
    chmod(path.c_str(), 0640);

    writeTo(path, "new", OutputFile::KeepsBackup);

    struct stat status = {};
    ASSERT_EQ(stat((path + ".bak").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0640u);
}

TEST(OutputFile, TheBackupOfALinkedFileLiesBesideTheFile)
{
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder.path("inner"));
    folder.write("inner/a.xml", "old");
    std::filesystem::create_symlink("inner/a.xml", folder.path("link.xml"));

    writeTo(folder.path("link.xml"), "new", OutputFile::KeepsBackup);

    EXPECT_EQ(folder.read("inner/a.xml"), "new");
    EXPECT_EQ(folder.read("inner/a.xml.bak"), "old");
    EXPECT_EQ(folder.fileCount(), 2u);
}

TEST(OutputFile, ASaveThatWasKilledBetweenBackupAndFileIsMadeGoodByTheNext)
{
    const TemporaryFolder folder;
    const std::string path = folder.write("a.xml", "old");
    std::filesystem::create_hard_link(path, path + ".bak");

    writeTo(path, "new", OutputFile::KeepsBackup);

    EXPECT_EQ(folder.read("a.xml"), "new");
    EXPECT_EQ(folder.read("a.xml.bak"), "old");
    EXPECT_EQ(folder.fileCount(), 2u);
}

TEST(OutputFile, AProgramThatIsKilledWhileSavingLosesNothing)
{
    const TemporaryFolder folder;
    const std::string path = folder.write("a.xml", wholeText(0));
    folder.write("a.xml.bak", wholeText(0));

    for (int i = 0; i < 40; ++i) {
        const pid_t child = fork();
        if (child == 0) {
            saveForever(path);
        }
        usleep(static_cast<useconds_t>(5000 + 379 * i));
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);

        const std::string text = folder.read("a.xml");
        const std::string backup = folder.read("a.xml.bak");
        ASSERT_FALSE(text.empty());
        EXPECT_TRUE(text == wholeText(text[0])) << "a part of a text";
        ASSERT_FALSE(backup.empty());
        EXPECT_TRUE(backup == wholeText(backup[0])) << "a part of a text";
    }
}

TEST(OutputFile, AFolderInTheWayOfTheBackupIsAnErrorAndTheOldFileStays)
{
    const TemporaryFolder folder;
    const std::string path = folder.write("a.xml", "old");
    std::filesystem::create_directory(path + ".bak");

    EXPECT_EQ(refusalOf(path, OutputFile::KeepsBackup),
              "The file \"" + path + "\" cannot be written: its backup \"" + path +
                  ".bak\" is in the way and no file; move it.");
    EXPECT_THROW(OutputFile::check(path, OutputFile::KeepsBackup), FileError);
    EXPECT_EQ(folder.read("a.xml"), "old");
    EXPECT_EQ(folder.fileCount(), 2u);
}

TEST(OutputFile, AFolderThatComesInTheWayLaterIsAnErrorAndTheOldFileStays)
{
    const TemporaryFolder folder;
    const std::string path = folder.write("a.xml", "old");
    {
        OutputFile file(path, OutputFile::KeepsBackup);
        file.write("new");
        std::filesystem::create_directory(path + ".bak");

        EXPECT_THROW(file.commit(), FileError);
    }

    EXPECT_EQ(folder.read("a.xml"), "old");
    EXPECT_EQ(folder.fileCount(), 2u);
}

TEST(OutputFile, AFolderIsNoTarget)
{
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder.path("a.xml"));

    EXPECT_EQ(refusalOf(folder.path("a.xml"), OutputFile::KeepsBackup),
              "The file \"" + folder.path("a.xml") + "\" cannot be written: Is a directory.");
    EXPECT_EQ(folder.fileCount(), 1u);
}

TEST(OutputFile, AFileThatGrowsTooLongLeavesOldFileAndBackup)
{
    const TemporaryFolder folder;
    const std::string path = folder.write("a.xml", "old");
    folder.write("a.xml.bak", "older");

    const int code = exitCodeOf([&] {
        // A disk that is full refuses at the same call.
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit = {100000, 100000};
        setrlimit(RLIMIT_FSIZE, &limit);
        return writeLongText(path);
    });

    EXPECT_EQ(code, 1);
    EXPECT_EQ(folder.read("a.xml"), "old");
    EXPECT_EQ(folder.read("a.xml.bak"), "older");
    EXPECT_EQ(folder.fileCount(), 2u);
}

TEST(OutputFile, AFolderWithoutPermissionLeavesOldFileAndBackup)
{
    const TemporaryFolder folder;
    const std::string path = folder.write("a.xml", "old");
    folder.write("a.xml.bak", "older");
    chmod(path.c_str(), 0666);
    chmod(folder.path(".").c_str(), 0555);

    const int code = exitCodeOf([&] {
        if (isRoot() && setuid(nobody) != 0) {
            return 2;
        }
        return writeLongText(path);
    });
    chmod(folder.path(".").c_str(), 0755);

    EXPECT_EQ(code, 1);
    EXPECT_EQ(folder.read("a.xml"), "old");
    EXPECT_EQ(folder.read("a.xml.bak"), "older");
    EXPECT_EQ(folder.fileCount(), 2u);
}

TEST(OutputFile, AFileOfAnotherUserIsReplacedAndBackedUp)
{
    if (!isRoot()) {
        GTEST_SKIP() << "needs a file of another user";
    }
    const TemporaryFolder folder;
    const std::string path = folder.write("a.xml", "old");
    chmod(path.c_str(), 0666);
    chmod(folder.path(".").c_str(), 0777);

    const int code = exitCodeOf([&] { return setuid(nobody) == 0 ? writeLongText(path) : 2; });

    EXPECT_EQ(code, 0);
    EXPECT_EQ(folder.read("a.xml"), std::string(300000, 'n'));
    EXPECT_EQ(folder.read("a.xml.bak"), "old");
    EXPECT_EQ(folder.fileCount(), 2u);
}

TEST(OutputFile, WritesNamesOfEveryLanguage)
{
    const TemporaryFolder folder;

    const int code = exitCodeOf([&] {
        std::setlocale(LC_ALL, "C");
        return writeLongText(folder.path("Größe 温度.csv"));
    });

    EXPECT_EQ(code, 0);
    EXPECT_EQ(folder.read("Größe 温度.csv"), std::string(300000, 'n'));
}

TEST(OutputFile, RefusesANameThatIsNoText)
{
    const TemporaryFolder folder;
    const std::string path = folder.path("a\xFF.csv");

    EXPECT_EQ(refusalOf(path),
              "The file \"" + path + "\" cannot be written: its name is not UTF-8 text.");
    EXPECT_EQ(folder.fileCount(), 0u);
}

TEST(OutputFile, AProgramThatEndsBeforeCommitLeavesNothing)
{
    const TemporaryFolder folder;
    const int trial = open(folder.path(".").c_str(), O_WRONLY | O_TMPFILE, 0600);
    if (trial < 0) {
        GTEST_SKIP() << "needs a file system with nameless files";
    }
    close(trial);
    folder.write("a.xml", "old");

    exitCodeOf([&] {
        OutputFile file(folder.path("a.xml"));
        file.write(std::string(300000, 'n'));
        return raise(SIGKILL);
    });

    EXPECT_EQ(folder.read("a.xml"), "old");
    EXPECT_EQ(folder.fileCount(), 1u);
}
