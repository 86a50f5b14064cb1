#include "CommandLine.h"

#include <session/cases/VariableNames.h>
#include <session/model/ModelFile.h>
#include <session/model/PolynomialWords.h>
#include <session/project/ProjectDocument.h>
#include <session/text/SessionErrors.h>
#include <session/text/WholeNumber.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <charconv>
#include <map>
#include <system_error>

namespace {
const std::map<std::string, CommandLine::Command> commands = {{"summary", CommandLine::Summary},
                                                              {"fit", CommandLine::Fit},
                                                              {"evaluate", CommandLine::Evaluate},
                                                              {"predict", CommandLine::Predict},
                                                              {"equations", CommandLine::Equations},
                                                              {"plot", CommandLine::Plot},
                                                              {"compare", CommandLine::Compare},
                                                              {"export", CommandLine::Export},
                                                              {"check", CommandLine::Check},
                                                              {"project", CommandLine::Project},
                                                              {"help", CommandLine::Help}};

constexpr int mostThreads = 1024;
constexpr std::size_t mostFolds = 1000000;

CommandLine::Command commandOf(const std::string& word)
{
    const auto found = commands.find(word);
    if (found == commands.end()) {
        throw UsageError("There is no command \"" + word +
                         "\". The commands are: summary, fit, evaluate, predict, equations, "
                         "compare, plot, export, check, project; surrogate --help describes them.");
    }
    return found->second;
}

CaseSession::Model modelOf(const std::string& word)
{
    if (word != "kriging" && word != "response-surface") {
        throw UsageError("-m needs response-surface or kriging, not \"" + word + "\".");
    }
    return word == "kriging" ? CaseSession::Kriging : CaseSession::ResponseSurface;
}

PolynomialTerms polynomialOf(const std::string& word)
{
    const std::optional<PolynomialTerms> terms = termsOfWord(word);
    if (!terms) {
        throw UsageError("--terms needs linear, interactions or quadratic, not \"" + word + "\".");
    }
    return *terms;
}

char separatorOf(const std::string& word)
{
    const std::map<std::string, char> separators = {
        {"comma", ','}, {",", ','},   {"semicolon", ';'}, {";", ';'},
        {"tab", '\t'},  {"\t", '\t'}, {"\\t", '\t'}};
    const auto found = separators.find(word);
    if (found == separators.end()) {
        throw UsageError("--separator needs comma, semicolon or tab, not \"" + word + "\".");
    }
    return found->second;
}

CellValue::DecimalMark decimalMarkOf(const std::string& word)
{
    if (word != "point" && word != "comma") {
        throw UsageError("--decimal needs point or comma, not \"" + word + "\".");
    }
    return word == "comma" ? CellValue::Comma : CellValue::Point;
}

double percentageOf(const std::string& word)
{
    double percent = 0.0;
    const char* const end = word.data() + word.size();
    const auto read = std::from_chars(word.data(), end, percent);
    if (read.ec != std::errc() || read.ptr != end || !(percent > 0.0 && percent < 100.0)) {
        throw UsageError("--interval needs a percentage above 0 and below 100, such as 95, not \"" +
                         word + "\".");
    }
    return percent;
}

/** What the library reads into before it is given its meaning. */
struct Words
{
    std::string command;
    std::string subject;
    std::string model;
    std::string terms;
    std::string separator;
    std::string decimalMark;
    std::string threads;
    std::string folds;
    std::string interval;
    bool wantsSelectedTerms = false;
    bool wantsAllTerms = false;
    bool wantsHelp = false;
    bool wantsVersion = false;
};

void describe(CLI::App& app, Words& words, CommandLine& line)
{
    const auto each = [&](const std::string& name, std::vector<std::string>& values) {
        // One value per mention: "-x A B" must not take B, nor "[a]" be read as a list.
        app.add_option(name, values)->allow_extra_args(false);
    };
    app.set_help_flag();
    app.add_option("COMMAND", words.command);
    app.add_option("SUBJECT", words.subject);
    each("-x", line.inputs);
    each("-y", line.outputs);
    each("--exclude", line.excluded);
    each("--sweep", line.sweeps);
    each("--count", line.counts);
    each("--at", line.values);
    app.add_option("-m,--model", words.model);
    app.add_option("--terms", words.terms);
    app.add_flag("--select-terms", words.wantsSelectedTerms);
    app.add_flag("--all-terms", words.wantsAllTerms);
    app.add_option("--separator", words.separator);
    app.add_option("--decimal", words.decimalMark);
    app.add_option("--cases", line.cases);
    app.add_option("--save", line.save);
    app.add_option("--points", line.points);
    app.add_option("--format", line.format);
    app.add_option("-o,--output", line.output);
    app.add_option("--kind", line.kind);
    app.add_option("--size", line.size);
    app.add_option("--threads", words.threads);
    app.add_option("--folds", words.folds);
    app.add_option("--report", line.report);
    app.add_option("--interval", words.interval);
    app.add_flag("--json", line.asJson);
    app.add_flag("-q,--quiet", line.isQuiet);
    app.add_flag("-h,--help", words.wantsHelp);
    app.add_flag("--version", words.wantsVersion);
}

/**
 * A text to check may begin with a minus sign: it is moved behind the mark that ends the options.
 */
std::vector<std::string> withTextAsArgument(std::vector<std::string> arguments)
{
    const auto isNegative = [](const std::string& text) {
        return text.size() > 1 && text[0] == '-' && (std::isdigit(text[1]) != 0 || text[1] == '.');
    };
    if (std::find(arguments.begin(), arguments.end(), "check") == arguments.end()) {
        return arguments;
    }
    const auto text = std::find_if(arguments.begin(), arguments.end(), isNegative);
    if (text != arguments.end() && std::find(arguments.begin(), text, std::string("--")) == text) {
        std::rotate(text, text + 1, arguments.end());
        arguments.insert(arguments.end() - 1, "--");
    }
    return arguments;
}

void require(bool condition, const std::string& sentence)
{
    if (!condition) {
        throw UsageError(sentence);
    }
}

std::optional<CaseSession::Terms> termsOf(const Words& words)
{
    require(!words.wantsSelectedTerms || !words.wantsAllTerms,
            "--select-terms and --all-terms exclude each other.");
    if (!words.wantsSelectedTerms && !words.wantsAllTerms) {
        return std::nullopt;
    }
    return words.wantsSelectedTerms ? CaseSession::SelectedTerms : CaseSession::AllTerms;
}

/** What is fitted already cannot be chosen any more. */
void checkModelFile(const CommandLine& line)
{
    const bool isKnown = line.command == CommandLine::Evaluate ||
                         line.command == CommandLine::Predict ||
                         line.command == CommandLine::Export;
    const std::string name = '"' + line.subject + '"';
    require(isKnown, name +
                         " is an exported model, which the commands evaluate, predict and export "
                         "take; this one needs cases.");
    require(line.inputs.empty() && line.outputs.empty() && line.excluded.empty() && !line.model,
            "-x, -y, -m and --exclude choose what is fitted; " + name +
                " is an exported model, fitted already.");
    require(!line.choosesTerms(),
            "--terms, --select-terms and --all-terms choose what is fitted; " + name +
                " is an exported model, fitted already.");
    require(line.save.empty(), "--save keeps a choice of cases, and " + name +
                                   " is an exported model, without cases.");
    require(!line.interval, "--interval takes how the cases lie about the model, and " + name +
                                " is an exported model, without cases.");
    require((!line.separator && !line.decimalMark) || line.command == CommandLine::Predict,
            "--separator and --decimal say how tables are read, and " + name + " is none.");
}

/** Options that would change nothing are refused: the user expects something of them. */
void checkCombination(const CommandLine& line)
{
    const bool isCheck = line.command == CommandLine::Check;
    const bool hasValues = !line.sweeps.empty() || !line.counts.empty() || !line.values.empty();
    const bool hasRoles = !line.inputs.empty() || !line.outputs.empty() || !line.excluded.empty();

    const bool isProject = line.command == CommandLine::Project;
    const bool choosesSomething = !isCheck && !isProject;
    require(!line.subject.empty() || isCheck,
            isProject ? "The command project needs a project document."
                      : "The command needs a case file or a project document.");
    require(!isProject || (!hasRoles && !line.model),
            "The command project shows what a document holds; it takes no roles, no cases and no "
            "model.");
    require(line.save.empty() || choosesSomething,
            "--save belongs to the commands that choose something; this one does not.");
    require(line.save.empty() || ProjectDocument::isProjectFile(line.save),
            "The name of a project document ends with " + std::string(ProjectDocument::fileEnding) +
                ", which \"" + line.save + "\" does not.");
    require(line.save.empty() || line.subject != "-",
            "A project cannot find cases again that came from the standard input; put them into a "
            "file.");
    require(line.cases.empty() || (choosesSomething && line.startsFromProject()),
            "--cases names the case file of a project document; without one it has no meaning.");
    if (line.startsFromModel() && !isCheck && !isProject) {
        checkModelFile(line);
    }
    const bool isExport = line.command == CommandLine::Export;
    require(line.format.empty() || isExport, "--format belongs to the command export.");
    require(!isExport || !line.asJson,
            "--json has no meaning for the command export; --format json exports JSON.");
    const bool isPlot = line.command == CommandLine::Plot;
    require(!hasValues || line.command == CommandLine::Evaluate || isPlot,
            "--sweep, --count and --at belong to the commands evaluate and plot.");
    require((line.kind.empty() && !line.size) || isPlot,
            "--kind and --size belong to the command plot.");
    require(!isPlot || !line.asJson, "The command plot writes a picture; leave out --json.");
    require(line.points.empty() || line.command == CommandLine::Predict,
            "--points belongs to the command predict.");
    require(!line.points.empty() || line.command != CommandLine::Predict,
            "The command predict needs the file with the points: --points FILE.");
    require(!hasRoles || !isCheck, "The command check takes a text, no variables and no cases.");
    require(line.model != CaseSession::Kriging || line.command != CommandLine::Equations,
            "Only the response surface has equations: leave out -m kriging.");
    require(!line.model || line.command != CommandLine::Compare,
            "The command compare takes both models: leave out -m.");
    require(!line.choosesTerms() || choosesSomething,
            "--terms, --select-terms and --all-terms belong to the commands that choose something; "
            "this one does not.");
    require(!line.choosesTerms() || line.model != CaseSession::Kriging,
            "--terms, --select-terms and --all-terms choose the terms of a response surface: leave "
            "out -m kriging.");
    require(line.report.empty() || line.command == CommandLine::Fit,
            "--report belongs to the command fit.");
    require(line.report != "-", "--report needs the name of a file for the page.");
    require(!line.interval || line.command == CommandLine::Evaluate ||
                line.command == CommandLine::Predict,
            "--interval belongs to the commands evaluate and predict.");
    require(!line.folds || line.command == CommandLine::Compare,
            "--folds belongs to the command compare.");
    require(line.subject != "-" || line.points != "-",
            "The cases and the points cannot both come from the standard input.");
}
} // namespace

CommandLine CommandLine::parse(const std::vector<std::string>& arguments)
{
    CommandLine line;
    Words words;
    CLI::App app;
    describe(app, words, line);
    std::vector<std::string> reversed = withTextAsArgument(arguments);
    std::reverse(reversed.begin(), reversed.end());
    try {
        app.parse(reversed);
    } catch (const CLI::ParseError& error) {
        throw UsageError(std::string(error.what()) + " (surrogate --help lists the options)");
    }

    if (words.wantsHelp || words.wantsVersion) {
        line.command = words.wantsHelp ? Help : Version;
        return line;
    }
    require(!words.command.empty(),
            "What is to be done? surrogate --help lists commands and options.");
    line.command = commandOf(words.command);
    if (line.command == Help) {
        return line;
    }
    require(line.command != Check || app.count("SUBJECT") > 0,
            "The command check needs the text to check.");
    line.subject = words.subject;
    if (app.count("--model") > 0) {
        line.model = modelOf(words.model);
    }
    if (app.count("--terms") > 0) {
        line.polynomial = polynomialOf(words.terms);
    }
    line.terms = termsOf(words);
    if (app.count("--decimal") > 0) {
        line.decimalMark = decimalMarkOf(words.decimalMark);
    }
    if (app.count("--separator") > 0) {
        line.separator = separatorOf(words.separator);
    }
    if (app.count("--threads") > 0) {
        line.threads =
            static_cast<int>(readWholeNumber("--threads", words.threads, 1, mostThreads));
    }
    if (app.count("--folds") > 0) {
        line.folds = readWholeNumber("--folds", words.folds, 2, mostFolds);
    }
    if (app.count("--interval") > 0) {
        line.interval = percentageOf(words.interval);
    }
    checkCombination(line);
    return line;
}

bool CommandLine::startsFromModel() const
{
    return ModelFile::isModelFile(subject);
}

bool CommandLine::startsFromProject() const
{
    return ProjectDocument::isProjectFile(subject);
}
