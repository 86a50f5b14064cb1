#include <HelpPages.h>

#include <mirel_property/tests/TextParts.h>

#include <CLI/CLI.hpp>

#include <gtest/gtest.h>

#include <string>

namespace {
/** A program with one command. */
struct Tool
{
    Tool()
    {
        CLI::App* const fit = app.add_subcommand("fit", "fits a model; it's quick");
        fit->add_option("CASES", cases, "a case file");
        fit->add_option("-x,--inputs", inputs, "a list of names:\nall if absent")
            ->type_name("NAMES");
        fit->add_flag("--json", isJson, "an object. A table is its member");
        fit->footer(".csv or .txt");
    }

    HelpPages pages() const { return {app, "1.2"}; }

    CLI::App app{"Makes models.", "tool"};
    std::string cases;
    std::string inputs;
    bool isJson = false;
};
} // namespace

TEST(HelpPages, ManualHasEachOptionWithItsWholeDescription)
{
    const std::string page = Tool().pages().man();

    EXPECT_TRUE(contains(page, ".TH TOOL 1 \"\" \"tool 1.2\""));
    EXPECT_TRUE(contains(page, "\\fB\\-x, \\-\\-inputs\\fR \\fINAMES\\fR\n"
                               "a list of names:\nall if absent\n"));
    EXPECT_TRUE(contains(page, "\\fBCASES\\fR"));
}

TEST(HelpPages, NoLineOfTheManualIsTakenForAMacro)
{
    EXPECT_TRUE(contains(Tool().pages().man(), "\n\\&.csv or .txt\n"));
}

TEST(HelpPages, BashCompletesTheOptionsOfTheCommand)
{
    EXPECT_TRUE(contains(Tool().pages().bash(), "words=\"fit\""));
    EXPECT_TRUE(contains(Tool().pages().bash(), "fit) words=\"-h --help -x --inputs --json\""));
}

TEST(HelpPages, ZshDescribesByTheFirstClause)
{
    EXPECT_TRUE(contains(Tool().pages().zsh(), "'fit:fits a model'"));
    EXPECT_TRUE(contains(Tool().pages().zsh(), "'--inputs:a list of names'"));
}

TEST(HelpPages, FishKnowsWhichOptionsTakeAValue)
{
    EXPECT_TRUE(contains(Tool().pages().fish(), "-s x -l inputs -r -d 'a list of names'"));
    EXPECT_TRUE(contains(Tool().pages().fish(), "-l json -d 'an object'"));
}
