#include "../CommandLine.h"

#include "ParsedCommand.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

TEST(CommandLine, RefusesOptionsThatDoNotGoTogether)
{
    const std::pair<const char*, const char*> rows[] = {
        {"fit", "The command needs a case file or a project document."},
        {"project", "The command project needs a project document."},
        {"fit cases.csv --save plane.xml",
         "The name of a project document ends with .surrogate.xml, which \"plane.xml\" does not."},
        {"fit - --save a.surrogate.xml",
         "A project cannot read cases from the standard input again; put them into a file."},
        {"fit cases.csv --cases other.csv",
         "--cases replaces the case file of a project, and \"cases.csv\" is none."},
        {"predict cases.csv", "The command predict needs the file with the points: --points FILE."},
        {"predict - --points -",
         "The cases and the points cannot both come from the standard input."},
        {"equations cases.csv -m kriging",
         "Only response surfaces have equations: leave out -m kriging."},
        {"fit cases.csv --transform boxcox -m kriging",
         "--transform boxcox is for response surfaces only: choose another one for kriging."},
        {"fit cases.csv --terms linear -m kriging",
         "--terms, --select-terms and --all-terms choose the terms of a response surface: leave "
         "out -m kriging."},
        {"evaluate cases.csv --write-separator comma --write-decimal comma",
         "A comma cannot be both the separator and the decimal mark; choose another separator."},
        {"fit cases.csv --separator comma --decimal comma",
         "A comma cannot be both the separator and the decimal mark; choose another separator."},
        {"fit cases.csv --report -", "--report needs the name of a file for the page."}};
    for (const auto& [arguments, sentence] : rows) {
        EXPECT_EQ(refusalOf(arguments), sentence) << arguments;
    }
}

TEST(CommandLine, RefusesWhatAnExportedModelHasNoUseFor)
{
    const std::string isFitted = " what is fitted, and \"m.json\" is an exported model, already "
                                 "fitted.";
    const std::string hasNoCases = " needs cases, and \"m.json\" is an exported model, without "
                                   "cases.";
    const std::string needsCases = "\"m.json\" is an exported model, which only the commands "
                                   "evaluate, predict and export can use; this one needs cases.";
    const std::pair<const char*, std::string> rows[] = {
        {"fit m.json", needsCases},
        {"summary m.json", needsCases},
        {"equations m.json", needsCases},
        {"evaluate m.json -x a", "-x, -y, -m and --exclude choose" + isFitted},
        {"evaluate m.json -y a", "-x, -y, -m and --exclude choose" + isFitted},
        {"evaluate m.json -m kriging", "-x, -y, -m and --exclude choose" + isFitted},
        {"evaluate m.json --exclude 3", "-x, -y, -m and --exclude choose" + isFitted},
        {"evaluate m.json --all-terms",
         "--terms, --select-terms and --all-terms choose" + isFitted},
        {"evaluate m.json --block a", "--weights and --block choose" + isFitted},
        {"evaluate m.json --transform log", "--transform chooses" + isFitted},
        {"evaluate m.json --save a.surrogate.xml", "--save" + hasNoCases},
        {"evaluate m.json --interval 95", "--interval" + hasNoCases},
        {"evaluate m.json --cases cvd.csv",
         "--cases replaces the case file of a project, and \"m.json\" is none."},
        {"export m.json --format c --separator comma",
         "\"m.json\" is not a table: leave out --separator and --decimal."},
        {"evaluate m.json --missing failed",
         "\"m.json\" is not a table: leave out options such as --heading and --missing."}};
    for (const auto& [arguments, sentence] : rows) {
        EXPECT_EQ(refusalOf(arguments), sentence) << arguments;
    }
}

TEST(CommandLine, KnowsProjectsAndModelsByTheirNames)
{
    const CommandLine cases = parsed("evaluate cases.csv");
    EXPECT_FALSE(cases.startsFromProject() || cases.startsFromModel());
    EXPECT_TRUE(parsed("evaluate p.surrogate.xml").startsFromProject());
    EXPECT_TRUE(parsed("evaluate m.json").startsFromModel());
}
