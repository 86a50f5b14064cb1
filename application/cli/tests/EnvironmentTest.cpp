// What the program needs of the machine around it, and what it leaves alone.

#include "ProgramFixture.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <regex>
#include <string>

namespace {
/** Commands that read, fit, draw and write; what each prints or writes, one after the other. */
class Environment : public Program
{
protected:
    /** @param around goes before each call of the program, such as "env A=b". */
    std::string allResults(const std::string& around = "")
    {
        std::string results;
        for (const char* const command :
             {"summary cvd.csv -y Stress", "fit cvd.csv -y Stress -m kriging --report page.html",
              "evaluate comma.csv -y Stress --count Pressure=7 -o table.csv --save p.surrogate.xml",
              "plot cvd.csv -y Stress -o effects.svg",
              "export cvd.csv -y Stress --format python -o model.py",
              "export cvd.csv -y Stress --format excel -o model.xlsx"}) {
            const Outcome outcome = runAs(around + " '" SURROGATE_PROGRAM "'", command);
            EXPECT_EQ(outcome.exitCode, 0) << around << ' ' << command << outcome.err;
            results += outcome.out;
        }
        for (const char* const file :
             {"page.html", "table.csv", "p.surrogate.xml", "effects.svg", "model.py"}) {
            EXPECT_TRUE(std::filesystem::exists(folder.path(file))) << around << file;
            results += folder.read(file);
        }
        return std::regex_replace(results, std::regex("Date</td><td>[-0-9: ]*"), "Date");
    }

    Environment()
    {
        folder.write("comma.csv",
                     "Pressure;H2/WF6;Stress\n80,5;6;8,04\n42;6,5;7,78\n68,87;3,17;7,58"
                     "\n15,13;8,83;7,27\n4;6;6,49\n15,13;3,17;6,66\n42;2;7,16\n");
    }

    bool canRun(const std::string& command)
    {
        return runAs(command, "> /dev/null 2>&1").exitCode == 0;
    }
};
} // namespace

TEST_F(Environment, NoNetworkIsNeeded)
{
    if (!canRun("unshare -rn true")) {
        GTEST_SKIP() << "needs the right to make a namespace without network";
    }
    EXPECT_TRUE(allResults("unshare -rn") == allResults());
}

TEST_F(Environment, NothingIsWrittenBesideTheFilesThatAreNamed)
{
    if (!canRun("unshare -rm true")) {
        GTEST_SKIP() << "needs the right to make a namespace with mounts of its own";
    }
    // Everything read-only, home and temporary folder included, but the folder of the files.
    folder.write("read-only.sh", R"(
        mount --bind . . && cd "$PWD" || exit
        for place in / /tmp /var/tmp /home /root; do
            mount -o bind,remount,ro "$place" 2> /dev/null
        done
        unset XDG_RUNTIME_DIR
        [ ! -w /tmp ] && HOME=/none TMPDIR=. exec "$@")");
    allResults();
    const std::string usual = allResults(); // with the backup of the project
    const std::size_t before = folder.fileCount();
    EXPECT_TRUE(allResults("unshare -rm sh read-only.sh") == usual);
    EXPECT_EQ(folder.fileCount(), before);
}

TEST_F(Environment, TheLocaleChangesNothing)
{
    const std::string usual = allResults("env -i QT_QPA_PLATFORM=offscreen LC_ALL=C.UTF-8");

    EXPECT_TRUE(allResults("env -i QT_QPA_PLATFORM=offscreen") == usual);
    EXPECT_TRUE(allResults("env LC_ALL=POSIX") == usual);
    // A decimal comma.
    ASSERT_TRUE(canRun("localedef -i de_DE -f UTF-8 ./de_DE.UTF-8"));
    ASSERT_EQ(runAs("LOCPATH=$PWD LC_ALL=de_DE.UTF-8 locale", "decimal_point").out, ",\n");
    EXPECT_TRUE(allResults("env LOCPATH=. LC_ALL=de_DE.UTF-8") == usual);
}

TEST_F(Environment, AWorkbookNeedsAFolderForTemporaryFiles)
{
    const Outcome refused = runAs("TMPDIR=/none '" SURROGATE_PROGRAM "'",
                                  "export cvd.csv -q -y Stress --format excel -o model.xlsx");

    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_EQ(refused.err,
              "surrogate: The workbook cannot be written: it takes temporary files, and "
              "there is no folder for them that can be written to; name one in the "
              "variable TMPDIR.\n");
}
