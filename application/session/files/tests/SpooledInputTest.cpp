#include <session/files/SpooledInput.h>

#include "ChildProcess.h"

#include <mirel_datamanagement/tests/MemoryGrowth.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <string>

#include <sys/resource.h>

namespace {
constexpr std::size_t megabyte = std::size_t(1) << 20;

/** Text in which no two places look alike for long. */
std::string numberedText(std::size_t size)
{
    std::string text;
    for (std::size_t i = 0; text.size() < size; ++i) {
        text += std::to_string(i) + ' ';
    }
    text.resize(size);
    return text;
}

void appendInBlocks(SpooledInput& kept, const std::string& text, std::size_t blockSize)
{
    for (std::size_t i = 0; i < text.size(); i += blockSize) {
        kept.append(text.data() + i, std::min(blockSize, text.size() - i));
    }
}

std::string readBack(const SpooledInput& kept)
{
    std::string text;
    std::string block(100000, '\0');
    for (;;) {
        const std::ptrdiff_t count = kept.read(text.size(), block.data(), block.size());
        if (count <= 0) {
            return text;
        }
        text.append(block, 0, static_cast<std::size_t>(count));
    }
}
} // namespace

TEST(SpooledInput, AreEmptyAtFirst)
{
    const SpooledInput kept;
    char buffer = 'x';

    EXPECT_EQ(kept.size(), 0u);
    EXPECT_EQ(kept.read(0, &buffer, 1), 0);
}

TEST(SpooledInput, GiveBackFewAndManyBytesInTheirOrder)
{
    for (const std::size_t size : {std::size_t(5), 8 * megabyte, 10 * megabyte + 3}) {
        const std::string text = numberedText(size);
        SpooledInput kept;

        // A short last block would find room in front of those that have gone to the file.
        appendInBlocks(kept, text, 70001);

        EXPECT_EQ(kept.size(), size);
        EXPECT_TRUE(readBack(kept) == text) << size;
    }
}

TEST(SpooledInput, TakeLittleMemoryHoweverManyTheyAre)
{
    if (!memoryCanBeMeasured) {
        GTEST_SKIP();
    }
    const std::string text = numberedText(megabyte);

    const int growth = megabytesGrownBy([&] {
        SpooledInput kept;
        for (int i = 0; i < 64; ++i) {
            kept.append(text.data(), text.size());
        }
    });

    EXPECT_GE(growth, 0);
    EXPECT_LT(growth, 20);
}

TEST(SpooledInput, StayInMemoryWhereThereIsNoTemporaryFolderOrNoRoomInIt)
{
    const std::string text = numberedText(10 * megabyte);
    const auto limitFiles = [] {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit = {megabyte + 1234, megabyte + 1234};
        setrlimit(RLIMIT_FSIZE, &limit);
    };
    for (const bool hasFolder : {false, true}) {
        const int exitCode = exitCodeOf([&] {
            hasFolder ? limitFiles() : void(setenv("TMPDIR", "/no such folder", 1));
            SpooledInput kept;
            appendInBlocks(kept, text, 70001);
            return readBack(kept) == text ? 0 : 1;
        });

        EXPECT_EQ(exitCode, 0);
    }
}
