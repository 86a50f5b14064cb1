#include "Commands.h"

#include "CommandLine.h"
#include "CommandOutput.h"
#include "CompareCommand.h"
#include "OpenSession.h"
#include "PlotCommand.h"
#include "ShellWord.h"
#include "TerminalProgress.h"

#include <plot/model/MainEffects.h>
#include <plot/model/ReportPage.h>
#include <session/cases/CaseFileReader.h>
#include <session/cases/VariableNames.h>
#include <session/files/OutputFile.h>
#include <session/files/OutputTable.h>
#include <session/model/ModelFile.h>
#include <session/model/PredictionPoints.h>
#include <session/model/SessionState.h>
#include <session/project/ProjectDocument.h>
#include <session/report/FitReport.h>
#include <session/report/ProjectReport.h>
#include <session/report/ReportJson.h>
#include <session/report/SummaryReport.h>
#include <session/text/DecimalText.h>
#include <session/text/QuotedText.h>
#include <session/text/SessionErrors.h>

#include <surrogatemodel/SurrogateModelUserDist.h>

#include <mirel_fitting/ThreadCount.h>
#include <mirel_fitting/numerics/TextPieces.h>

#include <vtkDoubleArray.h>
#include <vtkTable.h>

#include <algorithm>
#include <cstddef>
#include <ctime>
#include <iomanip>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <unistd.h>

namespace {
/** Tables come out like the table that went in, unless the user wants another form. */
TableDialect dialectOf(const CommandLine& line, const CaseFileLayout& input)
{
    TableDialect dialect;
    const auto mark = line.writtenDecimal ? line.writtenDecimal : line.reading.decimalMark;
    dialect.separator =
        line.writtenSeparator.value_or(line.reading.separator.value_or(input.separator));
    dialect.hasDecimalComma = mark ? mark == CellValue::Comma : input.hasDecimalComma;
    dialect.isForSpreadsheet = line.isForSpreadsheet;
    if (dialect.separator == ',' && dialect.hasDecimalComma) {
        const bool yieldsMark = line.writtenSeparator && !line.writtenDecimal;
        (yieldsMark ? dialect.hasDecimalComma = false : dialect.separator = ';');
    }
    return dialect;
}

/** With --json the table is a member of the object, unless it goes to a file. */
void writeTable(const CommandLine& line, const OutputTable& table, const CaseFileLayout& input,
                OpenSession& open, const Evaluation& evaluation)
{
    const bool goesIntoObject = line.asJson && line.output == "-";
    if (!goesIntoObject) {
        OutputFile out(line.output);
        writeCsv(table, out, dialectOf(line, input));
        out.commit();
    }
    if (!line.asJson) {
        noteFit(line, open.session, &evaluation);
        return;
    }

    const ReportJson::Json report = FitReport::runJson(open.session, open.readSeconds, &evaluation);
    OutputFile out("-");
    if (goesIntoObject) {
        ReportJson::write(report, table, out);
    } else {
        out.write(ReportJson::text(report));
    }
    out.commit();
}

/** The options that name the roles; nothing without an input or an output, or where no shell takes
 *  as long a word. */
std::string roleOptions(const Workspace& workspace)
{
    constexpr std::size_t maxWordBytes = 131071; // MAX_ARG_STRLEN of Linux

    const std::string inputs = joinedText(namesOf(workspace.inputs()), ",");
    const std::string outputs = joinedText(namesOf(workspace.outputs()), ",");
    return inputs.empty() || outputs.empty() ||
                   std::max(inputs.size(), outputs.size()) > maxWordBytes
               ? ""
               : "Options: -x " + shellWord(inputs) + " -y " + shellWord(outputs) + '\n';
}

void runSummary(const CommandLine& line)
{
    const OpenSession open(line);
    open.save(line);
    writeText(line.output,
              line.asJson
                  ? ReportJson::text(SummaryReport::json(open.session))
                  : terminalText(SummaryReport::text(open.session, roleOptions(open.session))));
}

std::string localTime()
{
    const std::time_t now = std::time(nullptr);
    std::ostringstream text;
    text << std::put_time(std::localtime(&now), "%Y-%m-%d %H:%M");
    return text.str();
}

/** Of Kriging: how much each output changes along each input, which the coefficients of a response
 * surface show. */
std::vector<InputRanking> rankingsOf(CaseSession& session)
{
    constexpr std::size_t values = 21; // enough to see how far a smooth curve goes
    std::vector<InputRanking> rankings;
    if (session.modelType() == CaseSession::Kriging && session.exportedReport().empty()) {
        const MainEffects effects(session, {}, values);
        for (std::size_t i = 0; i < session.outputs().size(); ++i) {
            rankings.push_back(effects.ranking(i));
        }
    }
    return rankings;
}

void runFit(const CommandLine& line)
{
    OpenSession open(line);
    fitWithProgress(line, open.session);
    if (!line.report.empty()) {
        writeText(line.report,
                  ReportPage::html(open.session, {line.typed, SURROGATE_VERSION, localTime()}));
    }
    const std::vector<InputRanking> rankings = rankingsOf(open.session);
    open.save(line);
    writeText(line.output, line.asJson ? ReportJson::text(FitReport::runJson(
                                             open.session, open.readSeconds, nullptr, rankings))
                                       : terminalText(FitReport::text(open.session, rankings)));
}

/** Refuses variables that have the names of the columns of limits. */
void checkLimitNames(const CommandLine& line, const Workspace& workspace)
{
    if (!line.interval) {
        return;
    }
    std::vector<std::string> taken = namesOf(workspace.inputs());
    const std::vector<std::string> outputs = namesOf(workspace.outputs());
    taken.insert(taken.end(), outputs.begin(), outputs.end());
    for (const std::string& output : outputs) {
        for (const std::string& name :
             {OutputTable::lowerName(output), OutputTable::upperName(output)}) {
            if (std::find(taken.begin(), taken.end(), name) != taken.end()) {
                throw UsageError("With --interval the table would have two columns \"" + name +
                                 "\"; rename the variable.");
            }
        }
    }
}

void runEvaluate(const CommandLine& line)
{
    OpenSession open(line);
    open.chooseValues(line);
    checkLimitNames(line, open.session);
    fitWithProgress(line, open.session);
    const GridEvaluation evaluation = open.session.evaluate(line.interval);
    vtkTable* const values = evaluation.table;
    open.save(line);
    const std::size_t inputs = open.session.inputs().size();

    OutputTable table;
    table.rows = static_cast<std::size_t>(values->GetNumberOfRows());
    for (vtkIdType i = 0; i < values->GetNumberOfColumns(); ++i) {
        auto* const column = vtkDoubleArray::SafeDownCast(values->GetColumn(i));
        table.columns.push_back({column->GetName(), column->GetPointer(0), nullptr});
        const auto position = static_cast<std::size_t>(i);
        if (line.interval && position >= inputs) {
            const PredictionIntervals& output = evaluation.intervals[position - inputs];
            table.addLimits(column->GetName(), output.lower.data(), output.upper.data());
        }
    }
    writeTable(line, table, open.session.source().layout, open, evaluation);
}

/** The points of predict. Their file has a layout of its own, which is recognised; where its inputs
 *  cannot be found so, it is read as the options say that the case file is to be read. */
CaseTable readPoints(const CommandLine& line, const Workspace& workspace)
{
    CaseFileReader::Options options = line.reading;
    options.keepCells = true;
    if (options.missing.isEmpty()) {
        options.missing = workspace.source().choices.missing;
    }
    const bool hasLayout = options.heading || options.unitsRow || options.skippedLines;
    if (line.startsFromModel() || !hasLayout) {
        return CaseFileReader::read(line.points, options);
    }
    CaseFileReader::Options own = options;
    own.heading.reset();
    own.unitsRow.reset();
    own.skippedLines.reset();
    CaseTable table = CaseFileReader::read(line.points, own);
    const std::vector<std::string> present = table.names();
    const std::vector<std::string> inputs = namesOf(workspace.inputs());
    const bool isComplete = std::all_of(inputs.begin(), inputs.end(), [&](const auto& name) {
        return std::find(present.begin(), present.end(), name) != present.end();
    });
    // The standard input is read once only.
    return isComplete || line.points == "-" ? std::move(table)
                                            : CaseFileReader::read(line.points, options);
}

void runPredict(const CommandLine& line)
{
    OpenSession open(line);
    CaseTable table = readPoints(line, open.session);
    if (!table.guess.empty()) {
        note(line, "Points read as: " + table.guess + '\n');
    }
    const PredictionPoints points(
        std::move(table), namesOf(open.session.inputs()), namesOf(open.session.outputs()),
        line.interval ? PredictionPoints::PredictionsAndLimits : PredictionPoints::Predictions);
    for (const std::string& sentence : points.notes()) {
        note(line, "Note: " + sentence + '\n');
    }
    fitWithProgress(line, open.session);
    const PointEvaluation evaluation =
        open.session.predict(points.inputColumns(), points.count(), line.interval);
    open.save(line);
    writeTable(line, points.withPredictions(evaluation.outputs, evaluation.intervals),
               line.startsFromModel() ? points.layout() : open.session.source().layout, open,
               evaluation);
}

void runEquations(const CommandLine& line)
{
    OpenSession open(line);
    open.session.model();
    open.save(line);
    const bool isOnlyObject = line.asJson && line.output == "-";
    if (!isOnlyObject) {
        writeText(line.output, open.session.equationText());
    }
    if (line.asJson) {
        writeText("-", ReportJson::text(FitReport::equationsJson(open.session, open.readSeconds)));
    } else {
        noteFit(line, open.session);
    }
}

void runExport(const CommandLine& line)
{
    if (!line.format) {
        throw UsageError("The command export needs a format: --format text, json, c, python or "
                         "excel.");
    }
    if (line.format == ExportFormat::Excel && line.output == "-" && isatty(STDOUT_FILENO) != 0) {
        throw UsageError("A terminal cannot show a workbook; name a file: -o FILE.");
    }
    OpenSession open(line);
    fitWithProgress(line, open.session);
    writeText(line.output,
              exportModel(ModelFile::exported(open.session, FitReport::json(open.session)),
                          *line.format));
    open.save(line);
    noteFit(line, open.session);
}

void runProject(const CommandLine& line)
{
    const ProjectDocument document = ProjectDocument::load(line.subject);
    writeText(line.output, line.asJson ? ReportJson::text(ProjectReport::json(document))
                                       : terminalText(ProjectReport::text(document)));
}

void runCheck(const CommandLine& line)
{
    SurrogateModelUserDist distribution(line.subject);
    const std::string excess = excessOfValues(distribution);
    if (!excess.empty()) {
        throw DistributionTextError(excess);
    }
    std::vector<double> values;
    distribution.get(values);
    const bool isValid = distribution.isValid();

    ReportJson::Json object = {{"schema", ReportJson::schemaVersion}, {"text", line.subject}};
    std::string text;
    if (isValid) {
        object["values"] = values;
        for (const double value : values) {
            appendNumber(text, value);
            text += '\n';
        }
    } else {
        object["fault"] = {{"code", distribution.validate()},
                           {"message", distribution.errorString()}};
    }
    const bool isOnlyObject = line.asJson && line.output == "-";
    if (isValid && !isOnlyObject) {
        writeText(line.output, text);
    }
    if (line.asJson) {
        writeText("-", ReportJson::text(object));
    }
    if (!isValid) {
        throw DistributionTextError(distribution.refusal());
    }
}
} // namespace

void run(const CommandLine& line)
{
    if (line.command == CommandLine::Help || line.command == CommandLine::Version) {
        writeText("-", line.text);
        return;
    }
    setThreadCount(line.threads);
    checkOutput(line);
    switch (line.command) {
    case CommandLine::Summary:
        return runSummary(line);
    case CommandLine::Fit:
        return runFit(line);
    case CommandLine::Evaluate:
        return runEvaluate(line);
    case CommandLine::Predict:
        return runPredict(line);
    case CommandLine::Equations:
        return runEquations(line);
    case CommandLine::Plot:
        return PlotCommand::run(line);
    case CommandLine::Compare:
        return CompareCommand::run(line);
    case CommandLine::Export:
        return runExport(line);
    case CommandLine::Project:
        return runProject(line);
    default:
        return runCheck(line);
    }
}
