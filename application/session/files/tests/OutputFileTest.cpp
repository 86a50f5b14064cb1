#include <session/files/OutputFile.h>

#include "ChildProcess.h"
#include "MessageOf.h"
#include "TemporaryFolder.h"

#include <session/text/SessionErrors.h>

#include <gtest/gtest.h>

#include <clocale>
#include <csignal>
#include <cstdlib>
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

mode_t permissionsOf(const std::string& path)
{
    struct stat status = {};
    EXPECT_EQ(stat(path.c_str(), &status), 0);
    return status.st_mode & 0777;
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

/** A folder of its own, and the path of a file in it. */
class OutputFileTest : public ::testing::Test
{
protected:
    void expectFileAndBackup(const std::string& text, const std::string& backup) const
    {
        EXPECT_EQ(folder.read("a.xml"), text);
        EXPECT_EQ(folder.read("a.xml.bak"), backup);
        EXPECT_EQ(folder.fileCount(), 2u) << "nothing else is left behind";
    }

    const TemporaryFolder folder;
    const std::string path = folder.path("a.xml");
};
} // namespace

TEST_F(OutputFileTest, IsThereWholeAfterCommitAndNotBefore)
{
    const std::string text(300000, 'x');
    folder.write("a.xml", "old");
    {
        OutputFile file(path);
        file.write(text);
        EXPECT_EQ(folder.read("a.xml"), "old");
    }
    EXPECT_EQ(folder.read("a.xml"), "old") << "without commit";
    EXPECT_EQ(folder.fileCount(), 1u);

    writeTo(path, text);

    EXPECT_EQ(folder.read("a.xml"), text);
    EXPECT_EQ(folder.fileCount(), 1u);
}

TEST_F(OutputFileTest, KeepsThePermissionsOfTheFileItReplacesAlsoForTheBackup)
{
    folder.write("a.xml", "old");
    chmod(path.c_str(), 0640);

    writeTo(path, "new", OutputFile::KeepsBackup);

    EXPECT_EQ(permissionsOf(path), 0640u);
    EXPECT_EQ(permissionsOf(path + ".bak"), 0640u);
    expectFileAndBackup("new", "old");
}

TEST_F(OutputFileTest, AFileThatCannotBeMadeIsNamedWithTheReason)
{
    std::filesystem::create_directory(path);
    const std::string notText = folder.path("a\xFF.csv");
    const std::pair<std::string, std::string> rows[] = {
        {folder.path("none/a.xml"), "No such file or directory"},
        {folder.path(""), "Is a directory"},
        {path, "Is a directory"},
        {notText, "its name is not UTF-8 text"},
        {"/dev/full", "No space left on device"},
    };
    for (const auto& [name, reason] : rows) {
        for (const auto backup : {OutputFile::KeepsNoBackup, OutputFile::KeepsBackup}) {
            EXPECT_EQ(refusalOf(name, backup),
                      "The file \"" + name + "\" cannot be written: " + reason + '.');
        }
    }
    EXPECT_THROW(OutputFile::check(folder.path("none/a.xml")), FileError);
    EXPECT_EQ(folder.fileCount(), 1u);
}

TEST_F(OutputFileTest, CheckingLeavesNothingBehind)
{
    OutputFile::check(path);

    EXPECT_EQ(folder.fileCount(), 0u);
}

TEST_F(OutputFileTest, ADeviceIsWrittenToAndStaysADevice)
{
    writeTo("/dev/null", "text");

    EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
}

TEST_F(OutputFileTest, ATerminalGetsNoControlCharacters)
{
    const int master = posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_EQ(grantpt(master), 0);
    ASSERT_EQ(unlockpt(master), 0);
    OutputFile out(ptsname(master));
    out.write("a\x1B[2Jb\xC2\x9B\n");
    out.commit();

    char shown[80] = {};
    EXPECT_GT(read(master, shown, sizeof(shown) - 1), 0);
    close(master);

    EXPECT_EQ(std::string(shown), "a\\x1B[2Jb\\xC2\\x9B\r\n");
}

TEST_F(OutputFileTest, TheOldFileStaysAsABackup)
{
    writeTo(path, "first", OutputFile::KeepsBackup);
    EXPECT_EQ(folder.fileCount(), 1u);
    writeTo(path, "second", OutputFile::KeepsBackup);
    EXPECT_EQ(folder.read("a.xml.bak"), "first");
    writeTo(path, "third", OutputFile::KeepsBackup);

    expectFileAndBackup("third", "second");
}

TEST_F(OutputFileTest, FollowsALinkAndPutsTheBackupBesideTheFile)
{
    std::filesystem::create_directory(folder.path("inner"));
    folder.write("inner/a.xml", "old");
    std::filesystem::create_symlink("inner/a.xml", folder.path("link.xml"));

    writeTo(folder.path("link.xml"), "new", OutputFile::KeepsBackup);

    EXPECT_TRUE(std::filesystem::is_symlink(folder.path("link.xml")));
    EXPECT_EQ(folder.read("inner/a.xml"), "new");
    EXPECT_EQ(folder.read("inner/a.xml.bak"), "old");
    EXPECT_EQ(folder.fileCount(), 2u);
}

TEST_F(OutputFileTest, TheNextSaveRepairsOneThatWasKilledBetweenBackupAndFile)
{
    folder.write("a.xml", "old");
    std::filesystem::create_hard_link(path, path + ".bak");

    writeTo(path, "new", OutputFile::KeepsBackup);

    expectFileAndBackup("new", "old");
}

TEST_F(OutputFileTest, AProgramThatIsKilledWhileSavingLosesNothing)
{
    folder.write("a.xml", wholeText(0));
    folder.write("a.xml.bak", wholeText(0));

    for (int i = 0; i < 20; ++i) {
        const pid_t child = fork();
        if (child == 0) {
            saveForever(path);
        }
        usleep(static_cast<useconds_t>(5000 + 757 * i));
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

TEST_F(OutputFileTest, AFolderInTheWayOfTheBackupIsAnErrorAndTheOldFileStays)
{
    folder.write("a.xml", "old");
    {
        OutputFile file(path, OutputFile::KeepsBackup);
        file.write("new");
        std::filesystem::create_directory(path + ".bak");

        EXPECT_THROW(file.commit(), FileError) << "it came later";
    }
    EXPECT_EQ(refusalOf(path, OutputFile::KeepsBackup),
              "The file \"" + path + "\" cannot be written: its backup \"" + path +
                  ".bak\" is in the way and no file; move it.");
    EXPECT_THROW(OutputFile::check(path, OutputFile::KeepsBackup), FileError);
    EXPECT_EQ(folder.read("a.xml"), "old");
    EXPECT_EQ(folder.fileCount(), 2u);
}

TEST_F(OutputFileTest, AFileThatGrowsTooLongLeavesOldFileAndBackup)
{
    folder.write("a.xml", "old");
    folder.write("a.xml.bak", "older");

    const int code = exitCodeOf([&] {
        // A disk that is full refuses at the same call.
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit = {100000, 100000};
        setrlimit(RLIMIT_FSIZE, &limit);
        return writeLongText(path);
    });

    EXPECT_EQ(code, 1);
    expectFileAndBackup("old", "older");
}

TEST_F(OutputFileTest, AFolderWithoutPermissionLeavesOldFileAndBackup)
{
    folder.write("a.xml", "old");
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
    expectFileAndBackup("old", "older");
}

TEST_F(OutputFileTest, AFileOfAnotherUserIsReplacedAndBackedUp)
{
    if (!isRoot()) {
        GTEST_SKIP() << "needs a file of another user";
    }
    folder.write("a.xml", "old");
    chmod(path.c_str(), 0666);
    chmod(folder.path(".").c_str(), 0777);

    const int code = exitCodeOf([&] { return setuid(nobody) == 0 ? writeLongText(path) : 2; });

    EXPECT_EQ(code, 0);
    expectFileAndBackup(std::string(300000, 'n'), "old");
}

TEST_F(OutputFileTest, WritesNamesOfEveryLanguage)
{
    const int code = exitCodeOf([&] {
        std::setlocale(LC_ALL, "C");
        return writeLongText(folder.path("Größe 温度.csv"));
    });

    EXPECT_EQ(code, 0);
    EXPECT_EQ(folder.read("Größe 温度.csv"), std::string(300000, 'n'));
}

TEST_F(OutputFileTest, AProgramThatEndsBeforeCommitLeavesNothing)
{
    const int trial = open(folder.path(".").c_str(), O_WRONLY | O_TMPFILE, 0600);
    if (trial < 0) {
        GTEST_SKIP() << "needs a file system with nameless files";
    }
    close(trial);
    folder.write("a.xml", "old");

    exitCodeOf([&] {
        OutputFile file(path);
        file.write(std::string(300000, 'n'));
        return raise(SIGKILL);
    });

    EXPECT_EQ(folder.read("a.xml"), "old");
    EXPECT_EQ(folder.fileCount(), 1u);
}
