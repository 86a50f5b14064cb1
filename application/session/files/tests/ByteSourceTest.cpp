#include <session/files/ByteSource.h>

#include "MessageOf.h"
#include "TemporaryFolder.h"

#include <session/text/SessionErrors.h>

#include <gtest/gtest.h>

#include <string>
#include <thread>

#include <sys/stat.h>

namespace {
std::string readAll(ByteSource& source)
{
    std::string text;
    std::string block(3, '\0');
    while (const std::size_t count = source.read(block.data(), block.size())) {
        text.append(block, 0, count);
    }
    return text;
}

void expectReadTwice(ByteSource& source)
{
    EXPECT_EQ(source.size(), 8u);
    EXPECT_EQ(readAll(source), "x,y\n1,2\n");
    source.rewind();
    EXPECT_EQ(readAll(source), "x,y\n1,2\n");
}
} // namespace

TEST(ByteSource, ReadsAFileAsOftenAsWanted)
{
    const TemporaryFolder folder;
    ByteSource source(folder.write("a.csv", "x,y\n1,2\n"));

    expectReadTwice(source);
}

TEST(ByteSource, ReadsAPipeAsOftenAsWanted)
{
    const TemporaryFolder folder;
    ASSERT_EQ(mkfifo(folder.path("pipe").c_str(), 0600), 0);
    std::thread writer([&] { folder.write("pipe", "x,y\n1,2\n"); });

    ByteSource source(folder.path("pipe"));

    writer.join();
    expectReadTwice(source);
}

TEST(ByteSource, HasTheContentOfAFileUpToABound)
{
    const TemporaryFolder folder;
    const std::string text(100000, 'x');

    EXPECT_EQ(ByteSource::contentOf(folder.write("a", text)), text);
    const std::size_t size = ByteSource::contentOf("/dev/zero", 70000).size();
    EXPECT_GT(size, 70000u);
    EXPECT_LT(size, 1000000u);
}

TEST(ByteSource, NamesAFileThatCannotBeReadWithTheReason)
{
    const TemporaryFolder folder;
    const auto refusal = [](const std::string& path) {
        return messageOf<FileError>([&] { ByteSource::contentOf(path); });
    };

    const std::string missing = folder.path("none.csv");
    EXPECT_EQ(refusal(missing),
              "The file \"" + missing + "\" cannot be read: No such file or directory.");
    EXPECT_EQ(refusal(folder.path("")),
              "The file \"" + folder.path("") + "\" cannot be read: Is a directory.");
}
