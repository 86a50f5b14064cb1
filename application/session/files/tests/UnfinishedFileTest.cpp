#include <session/files/UnfinishedFile.h>

#include "TemporaryFolder.h"

#include <session/files/OutputFile.h>

#include <gtest/gtest.h>

#include <csignal>

#include <sys/wait.h>
#include <unistd.h>

namespace {
void endAsCtrlCDoes(int)
{
    UnfinishedFile::removeAll();
    _exit(130);
}

/** Replaces a file with a backup again and again, until a signal ends the process. */
[[noreturn]] void saveForever(const std::string& path)
{
    std::signal(SIGINT, endAsCtrlCDoes);
    for (std::size_t i = 0;; ++i) {
        OutputFile file(path, OutputFile::KeepsBackup);
        file.write("content " + std::to_string(i));
        file.commit();
    }
}
} // namespace

TEST(UnfinishedFile, IsRemovedAsLongAsItIsUnfinished)
{
    const TemporaryFolder folder;
    folder.write("finished.txt", "");
    {
        const UnfinishedFile finished(folder.path("finished.txt"));
    }
    const UnfinishedFile first(folder.path("first.txt"));
    const UnfinishedFile second(folder.path("second.txt"));
    folder.write("first.txt", "");
    folder.write("second.txt", "");

    UnfinishedFile::removeAll();

    EXPECT_EQ(folder.fileCount(), 1u);
    EXPECT_EQ(folder.read("finished.txt"), "");
}

TEST(UnfinishedFile, NeedNotBeThere)
{
    const TemporaryFolder folder;
    const UnfinishedFile missing(folder.path("missing.txt"));
    const UnfinishedFile endless(std::string(100000, 'x'));

    UnfinishedFile::removeAll();

    EXPECT_EQ(missing.path(), folder.path("missing.txt"));
    EXPECT_EQ(folder.fileCount(), 0u);
}

TEST(UnfinishedFile, ManyLiveAtATime)
{
    const TemporaryFolder folder;
    std::vector<std::unique_ptr<UnfinishedFile>> files;
    for (int i = 0; i < 20; ++i) {
        files.push_back(std::make_unique<UnfinishedFile>(folder.path("a.txt")));
    }
    files.clear();

    const UnfinishedFile after(folder.write("b.txt", ""));
    UnfinishedFile::removeAll();

    EXPECT_EQ(folder.fileCount(), 0u);
}

TEST(UnfinishedFile, NoneStaysWheneverASaveIsInterrupted)
{
    const TemporaryFolder folder;
    const std::string path = folder.write("saved.txt", "old");

    for (int i = 0; i < 40; ++i) {
        const pid_t child = fork();
        if (child == 0) {
            saveForever(path);
        }
        usleep(static_cast<useconds_t>(5000 + 379 * i));
        kill(child, SIGINT);
        waitpid(child, nullptr, 0);

        EXPECT_LE(folder.fileCount(), 2u) << "the file and its backup";
    }
}
