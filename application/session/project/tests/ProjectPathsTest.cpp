#include <session/project/ProjectPaths.h>

#include "TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace fs = std::filesystem;

namespace {
/** A folder with folders "a" and "b" in it that is the current one, as long as this lives. */
class CurrentFolder
{
public:
    CurrentFolder()
    {
        fs::create_directory(folder.path("a"));
        fs::create_directory(folder.path("b"));
        fs::current_path(folder.path("."));
    }
    ~CurrentFolder() { fs::current_path(before); }

    const TemporaryFolder folder;

private:
    fs::path before = fs::current_path();
};

/** The path in the document, after a check that it leads back to the same file. */
std::string stored(const std::string& document, const std::string& path)
{
    const std::string inDocument = pathInDocument(document, path);
    const std::string back = pathFromDocument(document, inDocument);
    EXPECT_EQ(fs::weakly_canonical(fs::absolute(back)), fs::weakly_canonical(fs::absolute(path)));
    return inDocument;
}
} // namespace

TEST(ProjectPaths, AreRelativeToTheFolderOfTheDocument)
{
    const CurrentFolder current;
    const TemporaryFolder& folder = current.folder;

    EXPECT_EQ(stored("p.xml", "c.csv"), "c.csv");
    EXPECT_EQ(stored("a/p.xml", "a/c.csv"), "c.csv");
    EXPECT_EQ(stored("p.xml", "a/c.csv"), "a/c.csv");
    EXPECT_EQ(stored("a/p.xml", "b/c.csv"), "../b/c.csv");
    EXPECT_EQ(stored("a/p.xml", "./a/../b//c.csv"), "../b/c.csv");
    EXPECT_EQ(stored(folder.path("a/p.xml"), "b/c.csv"), "../b/c.csv");
    EXPECT_EQ(stored("a/p.xml", folder.path("b/c.csv")), "../b/c.csv");
    EXPECT_EQ(stored("a/p.xml", "a/d e/c \"1\".csv"), "d e/c \"1\".csv");
}

TEST(ProjectPaths, ComeBackUsableFromTheCurrentFolder)
{
    const CurrentFolder current;
    const TemporaryFolder& folder = current.folder;

    EXPECT_EQ(pathFromDocument("p.xml", "c.csv"), "c.csv");
    EXPECT_EQ(pathFromDocument("a/p.xml", "c.csv"), "a/c.csv");
    EXPECT_EQ(pathFromDocument("a/p.xml", "../b/c.csv"), "b/c.csv");
    EXPECT_EQ(pathFromDocument(folder.path("a/p.xml"), "../b/c.csv"), folder.path("b/c.csv"));
    EXPECT_EQ(pathFromDocument("a/p.xml", "/b/c.csv"), "/b/c.csv");

    EXPECT_EQ(stored("p.xml", "./-"), "-");
    EXPECT_EQ(pathFromDocument("p.xml", "-"), "./-");
}

TEST(ProjectPaths, OfALinkedDocumentCountFromWhereItLeadsTo)
{
    const CurrentFolder current;
    const TemporaryFolder& folder = current.folder;
    folder.write("a/p.xml", "");
    fs::create_symlink("a/p.xml", "link.xml");

    EXPECT_EQ(stored("link.xml", "a/c.csv"), "c.csv");
    EXPECT_EQ(stored("link.xml", "b/c.csv"), "../b/c.csv");

    current.folder.write("b/c.csv", "");
    fs::create_symlink("../b/c.csv", "a/link.csv");

    EXPECT_EQ(stored("a/p.xml", "a/link.csv"), "link.csv");
}

TEST(ProjectPaths, ThroughALinkedFolderLeadToTheSameFile)
{
    const CurrentFolder current;
    fs::create_directories("b/deep");
    fs::create_directory_symlink("../b/deep", "a/link");

    EXPECT_EQ(stored("a/link/p.xml", "b/deep/c.csv"), "c.csv");
    EXPECT_EQ(stored("b/deep/p.xml", "a/link/c.csv"), "c.csv");
    EXPECT_EQ(stored("a/link/p.xml", "a/c.csv"), "../../a/c.csv");
    EXPECT_EQ(stored("a/p.xml", "a/link/c.csv"), "link/c.csv");
}
