#include "../CommandOptions.h"

#include "CommandDescriptions.h"
#include "ParsedCommand.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

TEST(CommandOptions, ReadACommandWithItsOptions)
{
    const CommandLine line = parsed("evaluate cases.csv -x a --inputs b,c --outputs=y -m kriging "
                                    "--separator tab --decimal comma --interval 95 --threads 2");

    EXPECT_EQ(line.command, CommandLine::Evaluate);
    EXPECT_EQ(line.subject, "cases.csv");
    EXPECT_EQ(line.choices.inputs, (std::vector<std::string>{"a", "b,c"}));
    EXPECT_EQ(line.choices.outputs, (std::vector<std::string>{"y"}));
    EXPECT_EQ(line.choices.model, CaseSession::Kriging);
    EXPECT_EQ(line.reading.separator, '\t');
    EXPECT_EQ(line.reading.decimalMark, CellValue::Comma);
    EXPECT_EQ(line.interval, 95.0);
    EXPECT_EQ(line.threads, 2);
    EXPECT_EQ(line.output, "-");
}

TEST(CommandOptions, ChooseTheTermsOfAResponseSurface)
{
    const SessionChoices all = parsed("fit cases.csv --all-terms --terms linear").choices;
    EXPECT_EQ(all.selection, ResponseSurfaceOptions::Selection::All);
    EXPECT_EQ(all.terms, PolynomialTerms::Linear);

    const SessionChoices selected = parsed("fit cases.csv --select-terms").choices;
    EXPECT_EQ(selected.selection, ResponseSurfaceOptions::Selection::BackwardAicc);
    EXPECT_EQ(selected.terms, std::nullopt);
}

TEST(CommandOptions, ListsOfExcludedCasesAreJoinedAndATextToCheckMayBeginWithAMinusSign)
{
    EXPECT_EQ(parsed("fit cases.csv").choices.excluded, std::nullopt);
    EXPECT_EQ(parsed("fit cases.csv --exclude 3,7-9 --exclude 2").choices.excluded, "3,7-9, 2");

    EXPECT_EQ(parsed("check -5").subject, "-5");
    EXPECT_EQ(parsed("check --json -.5").subject, "-.5");
    EXPECT_EQ(parsed("check -- -x").subject, "-x");
}

TEST(CommandOptions, ExistForEverySettingThatSentencesAdvise)
{
    const std::string help = parsed("fit --help").text + parsed("plot --help").text;
    for (int setting = 0; setting <= static_cast<int>(Setting::NotStrict); ++setting) {
        const std::string option = settingOptions()[static_cast<Setting>(setting)];
        ASSERT_NE(option, "") << setting;
        EXPECT_NE(help.find(option.substr(option.find('-'))), std::string::npos) << option;
    }
}

TEST(CommandOptions, WrongUseIsNamedWithWhatWasProbablyMeant)
{
    const std::pair<const char*, const char*> rows[] = {
        {"nonsense cvd.csv",
         "There is no command \"nonsense\". The commands are: summary, fit, evaluate, predict, "
         "equations, compare, plot, export, project, check; surrogate --help describes them."},
        {"fot cvd.csv",
         "There is no command \"fot\"; the nearest is fit. The commands are: summary, fit, "
         "evaluate, predict, equations, compare, plot, export, project, check; surrogate --help "
         "describes them."},
        {"help compar",
         "There is no command \"compar\"; the nearest is compare. The commands are: summary, fit, "
         "evaluate, predict, equations, compare, plot, export, project, check; surrogate --help "
         "describes them."},
        {"fit cvd.csv --colour red",
         "There is no option \"--colour\". surrogate fit --help lists the options."},
        {"fit cvd.csv -y Stress --thread 2",
         "There is no option \"--thread\"; the nearest is --threads. surrogate fit --help lists "
         "the options."},
        {"fit cvd.csv -y Stress --folds 3", "--folds belongs to the command compare."},
        {"fit cvd.csv -y Stress --interval 95",
         "--interval belongs to the commands evaluate and predict."},
        {"--json fit cvd.csv", "Options come after the command: surrogate COMMAND --json ..."},
        {"fit cvd.csv other.csv -y Stress",
         "\"other.csv\" is one argument too many for fit; quote texts that hold blanks."},
        {"fit cvd.csv -y", "--outputs needs a value: --outputs NAMES."},
        {"fit cvd.csv --model", "--model needs a value: --model M."},
        {"fit cvd.csv --threads=", "--threads needs a value: --threads N."},
        {"evaluate cvd.csv -y Stress --at a=1 --at", "--at needs a value: --at NAME=VALUE."},
        {"compare cvd.csv --folds", "--folds needs a value: --folds K."},
        {"fit cvd.csv -m kriging -m kriging", "--model is given more than once: give it once."},
        {"fit cvd.csv -o a -o b", "--output is given more than once: give it once."},
        {"fit cvd.csv --json=5", "--json takes no value."},
        {"fit cvd.csv --quiet=no", "--quiet takes no value."},
        {"fit cvd.csv --select-terms=3", "--select-terms takes no value."},
        {"fit cvd.csv -y Stress --all-terms --select-terms",
         "--select-terms and --all-terms exclude each other: give one of them."},
        {"export cvd.csv -y Stress --format json --json",
         "--json belongs to the commands summary, fit, evaluate, predict, equations, compare, "
         "project and check."},
        {"compare cvd.csv -y Stress -m kriging",
         "-m belongs to the commands summary, fit, evaluate, predict, equations, plot and "
         "export."},
        {"fit plane.csv -y y --at x=5", "--at belongs to the commands evaluate and plot."},
        {"check 1 --select-terms",
         "--select-terms belongs to the commands summary, fit, evaluate, predict, equations, "
         "compare, plot and export."}};
    for (const auto& [arguments, sentence] : rows) {
        EXPECT_EQ(refusalOf(arguments), sentence) << arguments;
    }
}

TEST(CommandOptions, ValuesThatAnOptionDoesNotTakeAreNamed)
{
    const std::pair<const char*, const char*> rows[] = {
        {"fit cvd.csv -m spline", "-m needs response-surface or kriging, not \"spline\"."},
        {"fit cvd.csv --coding radial", "--coding needs axial or factorial, not \"radial\"."},
        {"fit cvd.csv --decimal semicolon", "--decimal needs point or comma, not \"semicolon\"."},
        {"fit cvd.csv --threads 0", "--threads needs a whole number from 1 to 1024, not \"0\"."},
        {"compare cvd.csv --folds 1", "--folds needs a whole number from 2 to 1000000, not \"1\"."},
        {"compare cvd.csv --folds many",
         "--folds needs a whole number from 2 to 1000000, not \"many\"."},
        {"export cvd.csv --format xml",
         "--format needs text, json, c, python or excel, not \"xml\"."},
        {"plot cvd.csv --kind pie",
         "--kind needs one of sweep, contour, actual, residuals, normal, coefficients, ridge, not "
         "\"pie\"."},
        {"plot cvd.csv --size 3x3",
         "The size of a picture needs width and height in pixels such as 800x600, each from 300 to "
         "10000, not \"3x3\"."},
        {"evaluate cvd.csv --interval 0.95",
         "--interval takes a percentage: --interval 0.95 would be 0.95 percent of the cases. Did "
         "you mean --interval 95?"},
        {"predict cvd.csv --points p.csv --interval .999",
         "--interval takes a percentage: --interval .999 would be .999 percent of the cases. Did "
         "you mean --interval 99.9?"}};
    for (const auto& [arguments, sentence] : rows) {
        EXPECT_EQ(refusalOf(arguments), sentence) << arguments;
    }
    for (const std::string text : {"0", "100", "-5", "nan", "95%", "1e3"}) {
        EXPECT_EQ(refusalOf("evaluate cvd.csv -y Stress --interval=" + text),
                  "--interval needs a percentage above 0 and below 100, such as 95, not \"" + text +
                      "\".");
    }
    EXPECT_EQ(parsed("evaluate cvd.csv --interval 1").interval, 1.0);
}
