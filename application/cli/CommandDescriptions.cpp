#include "CommandDescriptions.h"

#include "OptionTypes.h"

#include <session/text/DecimalText.h>

#include <mirel_fitting/numerics/TextPieces.h>

#include <algorithm>
#include <utility>

using namespace OptionTypes;

namespace {
constexpr std::size_t maxThreads = 1024;
constexpr std::size_t maxFolds = 1000000;
constexpr std::size_t maxSkippedLines = 1000000;

const char* const tables = R"(Tables:
  CASES.csv is text, "-" the standard input. Separator, decimal mark, heading, a row of units below
  it, titles above it, comment lines (#, //, %) and encoding are recognised; differences from plain CSV
  are reported in a line "Read as: ...". A column is numeric if at least half of its filled cells
  are numbers, else text; its other cells count as missing, and are reported. Missing cells are empty,
  NA, N/A, NaN, null, none, ?, -, a point or an error such as #DIV/0!.)";

const char* const projects = R"(Projects:
  Instead of a case file each command takes a project; options override its choices, name by name. The
  case file must be where it was, relative to the project, and unchanged.)";

void addSeparator(CLI::App& command, const std::string& name, const std::string& description,
                  std::optional<char>& separator)
{
    std::map<std::string, char> words = {{"\\t", '\t'}};
    for (const Word<char>& word : separatorWords) {
        words[word.text] = word.value;
        words[std::string(1, word.value)] = word.value;
    }
    addWord<char>(command, name, "comma, semicolon, tab, bar or blanks" + description, "S",
                  "comma, semicolon, tab, bar or blanks", words, separator);
}

void addDecimalMark(CLI::App& command, const std::string& name, const std::string& description,
                    std::optional<CellValue::DecimalMark>& mark)
{
    addWord<CellValue::DecimalMark>(
        command, name, "point or comma" + description, "M", "point or comma",
        {{"point", CellValue::Point}, {"comma", CellValue::Comma}}, mark);
}

void addReading(CLI::App& command, CommandLine& line)
{
    command.option_defaults()->group("Cases");
    addSeparator(command, "--separator",
                 ", for all tables;\n"
                 "recognised if absent, and tables are written like CASES",
                 line.reading.separator);
    addDecimalMark(command, "--decimal",
                   ", for all tables; recognised if absent.\n"
                   "Numbers can have decimal commas only where commas do not\nseparate",
                   line.reading.decimalMark);
}

void addLayout(CLI::App& command, CommandLine& line)
{
    command.option_defaults()->group("Layout of tables, recognised where nothing is said");
    ReadingChoices& reading = line.reading;
    addAnswer(command, "heading", "the first row names the columns", "the first row is a case",
              reading.heading);
    addAnswer(command, "units-row", "the row below the heading holds units",
              "the row below the heading is a case", reading.unitsRow);
    addCount(command, "--skip", "lines above the table that are left out", "N", 0, maxSkippedLines,
             reading.skippedLines);
    addText(command, "--comment", "what comment lines begin with; none: there are none", "MARK",
            [&reading](const std::string& word) {
                reading.commentMark = word == "none" ? std::string() : word;
            });
    addWord<TextEncoding>(command, "--encoding", "utf-8, windows-1252 (latin-1) or utf-16", "E",
                          "utf-8, windows-1252, latin-1 or utf-16",
                          {{"utf-8", TextEncoding::Utf8},
                           {"windows-1252", TextEncoding::Windows1252},
                           {"latin-1", TextEncoding::Windows1252},
                           {"utf-16", TextEncoding::Utf16Little}},
                          reading.encoding);
    addText(command, "--missing",
            "further spellings of missing cells, as \"failed,999\";\n"
            "a number stands for its value, however spelled",
            "WORDS",
            [&reading](const std::string& words) { reading.missing = MissingWords(words); });
    command.add_flag("--strict", reading.isStrict,
                     "refuses cells that are no numbers in numeric columns");
}

void addChoices(CLI::App& command, CommandLine& line)
{
    const std::string& name = command.get_name();
    const bool takesModels = name == "evaluate" || name == "predict" || name == "export";
    addValue(command, "CASES",
             takesModels
                 ? "a case file, a project (NAME.surrogate.xml) or an\nexported model (NAME.json)"
                 : "a case file or a project (NAME.surrogate.xml)",
             "", line.subject);
    addReading(command, line);
    command.option_defaults()->group("Cases");
    addValue(command, "--cases",
             "the case file to use instead of the project's, if that has\n"
             "moved or changed",
             "FILE", line.cases);
    addList(command, "-x,--inputs",
            "inputs, a list separated by commas; may be repeated.\n"
            "Default: every numeric column but outputs, constants and\n"
            "run numbers",
            "NAMES", line.choices.inputs);
    addList(command, "-y,--outputs",
            "outputs, likewise. Outputs named together are fitted to\n"
            "the cases that are valid for all of them",
            "NAMES", line.choices.outputs);
    command
        .add_option_function<std::vector<std::string>>(
            "--exclude",
            [&line](const std::vector<std::string>& lists) {
                line.choices.excluded = joinedText(lists);
            },
            "case numbers, from 1, such as 3,7-9; none excludes none")
        ->type_name("CASES")
        ->allow_extra_args(false);
    addValue(command, "--save",
             "saves the choices as a project if the command succeeds: case\n"
             "file, how it is read, roles, excluded cases, model, terms,\n"
             "values. A project that is replaced is kept as FILE.bak",
             "FILE", line.save);
    addLayout(command, line);
}

void addModel(CLI::App& command, CommandLine& line)
{
    command.option_defaults()->group("Model");
    addWord<CaseSession::ModelType>(
        command, "-m,--model", "response-surface (default) or kriging", "M",
        "response-surface or kriging",
        {{"response-surface", CaseSession::ResponseSurface}, {"kriging", CaseSession::Kriging}},
        line.choices.model);
}

void addTerms(CLI::App& command, CommandLine& line)
{
    command.option_defaults()->group("Model");
    command
        .add_option_function<std::string>(
            "--terms",
            [&line](const std::string& word) {
                line.choices.terms = termsOfWord(word);
                line.choices.formula = line.choices.terms == PolynomialTerms::Chosen ? word : "";
            },
            "the polynomial of a response surface: linear, interactions\n"
            "(these and the products of two inputs), quadratic (these\n"
            "and the squares, the default), or a sum of terms such as\n"
            "\"A + B + A * B + A^2\"; names that hold one of + : * ^ in quotes")
        ->type_name("T");
    addValue(command, "--weights",
             "the column of weights of a response surface, proportional to\n"
             "1 / variance; cases with weight 0 or without one are left\n"
             "out. none: no weights, whatever the project says",
             "COLUMN", line.choices.weights);
    addValue(command, "--block",
             "the column of blocks, numbers or texts: each adds an effect\n"
             "of its own to a response surface, which predicts the\n"
             "average block. none: no blocks, whatever the project says",
             "COLUMN", line.choices.blocks);
    addWord<TransformSetting>(command, "--transform",
                              "transform of outputs that are positive in all cases: none,\n"
                              "sqrt, log, auto (the one that fits best) or boxcox (for\n"
                              "response surfaces: the power of greatest likelihood).\n"
                              "Default: auto for kriging, none for a response surface",
                              "T", "auto, none, sqrt, log or boxcox",
                              {{"auto", TransformSetting::Automatic},
                               {"none", TransformSetting::None},
                               {"sqrt", TransformSetting::SquareRoot},
                               {"log", TransformSetting::Logarithm},
                               {"boxcox", TransformSetting::BoxCox}},
                              line.choices.transform);
    const auto flag = [&](const char* name, ResponseSurfaceOptions::Selection terms,
                          const char* description) {
        return command.add_flag_function(
            name, [&line, terms](std::int64_t) { line.choices.selection = terms; }, description);
    };
    CLI::Option* const selected =
        flag("--select-terms", ResponseSurfaceOptions::Selection::BackwardAicc,
             "keeps only the terms that lower the corrected Akaike\n"
             "criterion (AICc), for each output by itself; a linear term\n"
             "stays while one of second order has its input. The\n"
             "statistics do not account for the choice: their p values\n"
             "are too small. compare shows whether it helps");
    flag("--all-terms", ResponseSurfaceOptions::Selection::All,
         "fits all terms, whatever the project says")
        ->excludes(selected);
}

void addValues(CLI::App& command, CommandLine& line)
{
    command.option_defaults()->group("Values");
    addList(command, "--sweep",
            "the values of a distribution text, such as 4 - 80 : 20, 42\n"
            "(a range of 20 values from 4 to 80, and 42)",
            "NAME=TEXT", line.sweeps);
    addList(command, "--count", "N values, evenly over the range of the variable", "NAME=N",
            line.counts);
    addList(command, "--at", "one value. Default: the median of the valid cases", "NAME=VALUE",
            line.values);
}

void addInterval(CLI::App& command, CommandLine& line)
{
    command.option_defaults()->group("Values");
    CLI::Option* const interval =
        addValue(command, "--interval",
                 "two more columns after each output, \"NAME lower\" and\n"
                 "\"NAME upper\": prediction limits, between which P percent\n"
                 "(such as 95) of new cases lie, their noise included. Empty\n"
                 "if there are too few cases",
                 "P", line.interval);
    require(interval, "a percentage above 0 and below 100, such as 95",
            [](const std::string& text) {
                const auto percent = numberIn<double>(text);
                return percent && *percent > 0.0 && *percent < 100.0;
            });
    // Below 1 it is a share typed by mistake.
    interval->check([](const std::string& text) {
        const double percent = *numberIn<double>(text);
        if (percent < 1.0) {
            throw UsageError("--interval takes a percentage: --interval " + text + " would be " +
                             text + " percent of the cases. Did you mean --interval " +
                             shownNumber(100.0 * percent) + "?");
        }
        return std::string();
    });
}

void addOutput(CLI::App& command, CommandLine& line)
{
    command.option_defaults()->group("Output");
    addValue(command, "-o,--output", "the file to write instead of the standard output (\"-\")",
             "FILE", line.output);
    command.add_flag("-q,--quiet", line.isQuiet, "no notes, no progress");
    addCount(command, "--threads", "threads to use; default: all cores", "N", 1, maxThreads,
             line.threads);
}

void addDialect(CLI::App& command, CommandLine& line)
{
    command.option_defaults()->group("Output");
    addSeparator(command, "--write-separator", ",\nfor the table that is written alone",
                 line.writtenSeparator);
    addDecimalMark(command, "--write-decimal", ", for the table that is written alone",
                   line.writtenDecimal);
    command.add_flag("--for-spreadsheet", line.isForSpreadsheet,
                     "puts an apostrophe before headings and texts that begin\n"
                     "with =, +, -, @ or a tab, which a spreadsheet would take\n"
                     "for a formula");
}

void addJson(CLI::App& command, CommandLine& line)
{
    const std::string& name = command.get_name();
    command.option_defaults()->group("Output");
    command.add_flag("--json", line.asJson,
                     name == "evaluate" || name == "predict"
                         ? "prints a JSON object, which holds the table, unless -o FILE\n"
                           "names a file for the table"
                         : "prints a JSON object instead of text");
}

void describeSummary(CLI::App& command, CommandLine& line)
{
    addChoices(command, line);
    addModel(command, line);
    addTerms(command, line);
    addJson(command, line);
    addOutput(command, line);
    command.footer(std::string(tables) + "\n\n" + projects);
}

void describeFit(CLI::App& command, CommandLine& line)
{
    describeSummary(command, line);
    command.option_defaults()->group("Model");
    addWord<InputCoding>(command, "--coding",
                         "where the inputs of a response surface are -1 and 1 in the\n"
                         "table of coded coefficients: axial (the ends of their\n"
                         "ranges, the default) or factorial (the factorial points of\n"
                         "a central composite design: of five levels about a middle\n"
                         "the second and the fourth)",
                         "C", "axial or factorial",
                         {{"axial", InputCoding::Axial}, {"factorial", InputCoding::Factorial}},
                         line.choices.coding);
    command.option_defaults()->group("Output");
    addValue(command, "--report",
             "also writes an HTML page with metrics, statistics, equations\n"
             "and pictures of each output, all in one file",
             "FILE.html", line.report);
}

void describeEvaluate(CLI::App& command, CommandLine& line)
{
    describeSummary(command, line);
    addValues(command, line);
    addInterval(command, line);
    addDialect(command, line);
}

void describePredict(CLI::App& command, CommandLine& line)
{
    describeSummary(command, line);
    command.option_defaults()->group("Values");
    addValue(command, "--points",
             "the table of points; the result is this table with a column\n"
             "\"NAME predicted\" for each output, empty where an input is\n"
             "missing. Its layout is recognised; if its inputs are not\n"
             "found, --skip, --heading and --units-row apply to it, too",
             "FILE", line.points);
    addInterval(command, line);
    addDialect(command, line);
}

void describePlot(CLI::App& command, CommandLine& line)
{
    addChoices(command, line);
    addModel(command, line);
    addTerms(command, line);
    command.option_defaults()->group("Picture");
    using Kind = SessionPictures::Kind;
    addWord<Kind>(command, "--kind",
                  "sweep, contour, actual, residuals, normal, coefficients or\n"
                  "ridge. Default: contour if two inputs are swept, else sweep",
                  "K", "one of sweep, contour, actual, residuals, normal, coefficients, ridge",
                  {{"sweep", Kind::Sweep},
                   {"contour", Kind::Contour},
                   {"actual", Kind::Actual},
                   {"residuals", Kind::Residuals},
                   {"normal", Kind::Normal},
                   {"coefficients", Kind::Coefficients},
                   {"ridge", Kind::Ridge}},
                  line.kind);
    addValues(command, line);
    command.option_defaults()->group("Picture");
    addText(command, "--size", "pixels of each panel; default: 800x600", "WxH",
            [&line](const std::string& text) { line.size = PictureSize::parse(text); });
    addOutput(command, line);
    command.footer(R"(Kinds:
  sweep         the model along one input, with its 95 % confidence band and the cases whose other
                inputs lie within 10 % of their range of the values at which they are held
  contour       the model over two inputs, the first one along the horizontal axis
  actual        the leave-one-out prediction of each case against its actual value
  residuals     actual minus predicted values against these predictions
  normal        the externally studentised residuals of a response surface against normal quantiles,
                with the suspected outliers numbered
  coefficients  the coefficients of a response surface for inputs coded to -1 and 1, the largest
                first, with 95 % confidence limits
  ridge         the ridges of steepest ascent and descent: the largest and the smallest value of a
                response surface at each distance from the middle of the ranges

  --sweep NAME alone sweeps over the range. Without --sweep the kind sweep shows every input in a small
  panel of its own, on one axis, and contour takes the two inputs that matter most.
  -o FILE.svg, FILE.png or FILE.pdf has a panel for each output.)");
}

void describeCompare(CLI::App& command, CommandLine& line)
{
    addChoices(command, line);
    addTerms(command, line);
    command.option_defaults()->group("Comparison");
    addCount(command, "--folds",
             "folds of the cross-validation; default: 10, or the number\n"
             "of cases if that is less. Copies of a case are in the same\n"
             "fold, and the split is always the same",
             "K", 2, maxFolds, line.folds);
    addJson(command, line);
    addOutput(command, line);
}

void describeExport(CLI::App& command, CommandLine& line)
{
    addChoices(command, line);
    addModel(command, line);
    addTerms(command, line);
    command.option_defaults()->group("Output");
    const std::string formats = "text, json, c, python or excel";
    addWord<ExportFormat>(command, "--format", formats, "F", formats,
                          {{"text", ExportFormat::Text},
                           {"json", ExportFormat::Json},
                           {"c", ExportFormat::C},
                           {"python", ExportFormat::Python},
                           {"excel", ExportFormat::Excel}},
                          line.format);
    addOutput(command, line);
    command.footer(R"(Formats:
  text    formulas for a reader
  c       a C99 file with surrogate_0() ... and surrogate_self_check(), a program with
          -DSURROGATE_MAIN
  python  a module with predict() and self_check(), also a script
  excel   a workbook (-o FILE)
  json    for evaluate, predict and export, which read it instead of CASES if its name ends with .json
  All hold ten check points; all but the text can check themselves with them.)");
}

void describeCheck(CLI::App& command, CommandLine& line)
{
    addValue(command, "TEXT", "such as \"0 - 10 : 11, 12.5\"", "", line.subject);
    addJson(command, line);
    addOutput(command, line);
}

void describeProject(CLI::App& command, CommandLine& line)
{
    addValue(command, "PROJECT", "NAME.surrogate.xml", "", line.subject);
    addJson(command, line);
    addOutput(command, line);
}
} // namespace

const std::vector<CommandDescription>& commandDescriptions()
{
    static const std::vector<CommandDescription> commands = {
        {CommandLine::Summary, "summary", "the variables and the cases of a table",
         describeSummary},
        {CommandLine::Fit, "fit", "fits a model and reports how good it is, per output",
         describeFit},
        {CommandLine::Evaluate, "evaluate",
         "the outputs over a grid of the inputs' values, as a table", describeEvaluate},
        {CommandLine::Predict, "predict", "the outputs at the rows of a second table",
         describePredict},
        {CommandLine::Equations, "equations",
         "the response-surface equations, with a legend of their symbols", describeSummary},
        {CommandLine::Compare, "compare",
         "response surface and Kriging by cross-validation, and which one to use", describeCompare},
        {CommandLine::Plot, "plot", "a picture, with a panel for each output", describePlot},
        {CommandLine::Export, "export", "the model as a file that computes it elsewhere",
         describeExport},
        {CommandLine::Project, "project", "what a project document holds", describeProject},
        {CommandLine::Check, "check", "the values of a distribution text, or what is wrong with it",
         describeCheck}};
    return commands;
}

std::map<Setting, std::string> settingOptions()
{
    return {{Setting::Inputs, "-x"},
            {Setting::Outputs, "-y"},
            {Setting::Model, "-m"},
            {Setting::Terms, "--terms"},
            {Setting::TermSelection, "--select-terms"},
            {Setting::Transform, "--transform"},
            {Setting::ExcludedCases, "--exclude"},
            {Setting::Blocks, "--block"},
            {Setting::SweptInput, "--sweep"},
            {Setting::Separator, "--separator"},
            {Setting::DecimalMark, "--decimal"},
            {Setting::SkippedLines, "--skip"},
            {Setting::Heading, "--heading"},
            {Setting::NoHeading, "--no-heading"},
            {Setting::CommentMarks, "--comment"},
            {Setting::MissingCodes, "--missing"},
            {Setting::NotStrict, "without --strict"}};
}
