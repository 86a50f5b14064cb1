#include "Commands.h"

#include "CommandLine.h"
#include "HelpText.h"
#include "TerminalProgress.h"

#include <session/CaseFileReader.h>
#include <session/CaseNumbers.h>
#include <session/NumberText.h>
#include <session/OutputFile.h>
#include <session/OutputTable.h>
#include <session/PredictionPoints.h>
#include <session/SessionErrors.h>
#include <session/SessionReport.h>
#include <session/VariableNames.h>
#include <session/WholeNumber.h>

#include <surrogatemodel/SurrogateModelUserDist.h>

#include <mirel_datamanagement/Project.h>
#include <mirel_fitting/ThreadCount.h>

#include <nlohmann/json.hpp>
#include <vtkDoubleArray.h>
#include <vtkTable.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <iostream>
#include <system_error>
#include <utility>

namespace {
std::string nameOf(const VarPtr& variable)
{
    return variable.lock()->name();
}

void writeText(const std::string& path, const std::string& text)
{
    OutputFile out(path);
    out.write(text);
    out.commit();
}

void note(const CommandLine& line, const std::string& text)
{
    if (!line.isQuiet) {
        std::cerr << text;
    }
}

/** Faults of the output file are found before the long work, not after it. */
void checkOutput(const CommandLine& line)
{
    for (const std::string& input : {line.subject, line.points}) {
        std::error_code ignored;
        if (!input.empty() && std::filesystem::is_regular_file(input, ignored) &&
            std::filesystem::equivalent(input, line.output, ignored)) {
            throw UsageError("The output would replace \"" + input +
                             "\", which is read; name another file.");
        }
    }
    OutputFile::check(line.output);
}

/** Options that name cases, as positions; each mention is a list. */
std::vector<std::size_t> excludedCases(const CommandLine& line, std::size_t cases)
{
    std::string text;
    for (const std::string& list : line.excluded) {
        text += (text.empty() ? "" : ",") + list;
    }
    return line.excluded.empty() ? std::vector<std::size_t>() : readCaseNumbers(text, cases);
}

void requireRoles(const CommandLine& line, const CaseTable& table, const CaseRoles& roles)
{
    if (line.command == CommandLine::Summary) {
        return;
    }
    if (roles.outputs.empty()) {
        std::string numeric;
        for (const CaseColumn& column : table.columns) {
            if (column.isNumeric) {
                numeric += (numeric.empty() ? "\"" : ", \"") + column.name + '"';
            }
        }
        throw UsageError("The command needs an output: -y NAME. " +
                         (numeric.empty() ? "No column is numeric."
                                          : "The numeric columns are: " + numeric + '.'));
    }
    if (roles.inputs.empty()) {
        throw UsageError("No numeric column is left to be an input.");
    }
}

/** The cases with their roles, and how long it took to get there. */
struct OpenSession
{
    explicit OpenSession(const CommandLine& line)
        : start(std::chrono::steady_clock::now()), session(open(line)),
          readSeconds(
              std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count())
    {}

    static CaseSession open(const CommandLine& line)
    {
        CaseFileReader::Options options;
        options.separator = line.separator;
        CaseTable table = CaseFileReader::read(line.subject, options);
        const CaseRoles roles = chooseCaseRoles(table, line.inputs, line.outputs);
        requireRoles(line, table, roles);
        const std::vector<std::size_t> excluded = excludedCases(line, table.cases);
        return CaseSession(std::move(table), roles, excluded, line.model);
    }

    std::chrono::steady_clock::time_point start;
    CaseSession session;
    double readSeconds;
};

/** Finds the inputs that values are given for. */
class InputFinder
{
public:
    explicit InputFinder(const CaseSession& session)
        : variables(namesOf(session.project().variables())), inputs(namesOf(session.inputs())),
          isTaken(inputs.size())
    {}

    /** The input and the value of a text NAME=VALUE; each input may come once. */
    std::pair<std::size_t, std::string> find(const std::string& option, const std::string& text)
    {
        const auto [position, value] = variables.assignment(option, text);
        const std::string& name = variables.names()[position];
        const auto found = std::find(inputs.begin(), inputs.end(), name);
        if (found == inputs.end()) {
            throw UsageError('"' + name + "\" is no input, so that " + option +
                             " has no meaning for it.");
        }
        const auto input = static_cast<std::size_t>(found - inputs.begin());
        if (isTaken[input]) {
            throw UsageError("\"" + name +
                             "\" has values twice: name it in one of --sweep, --count and --at.");
        }
        isTaken[input] = true;
        return {input, value};
    }

private:
    VariableNames variables;
    std::vector<std::string> inputs;
    std::vector<bool> isTaken;
};

void chooseValues(const CommandLine& line, CaseSession& session)
{
    InputFinder inputs(session);
    for (const std::string& text : line.sweeps) {
        const auto [input, value] = inputs.find("--sweep", text);
        session.sweep(input, value);
    }
    for (const std::string& text : line.counts) {
        const auto [input, value] = inputs.find("--count", text);
        session.sweepEvenly(input, readWholeNumber("--count " + nameOf(session.inputs()[input]),
                                                   value, 2, CaseSession::mostSweptValues));
    }
    for (const std::string& text : line.values) {
        const auto [input, value] = inputs.find("--at", text);
        session.stayAt(input, value);
    }
}

/** A table is the data: with --json it is a member of the object, unless it goes to a file. */
void writeTable(const CommandLine& line, const OutputTable& table, CaseSession& session,
                double readSeconds)
{
    const bool goesIntoObject = line.asJson && line.output == "-";
    if (!goesIntoObject) {
        OutputFile out(line.output);
        writeCsv(table, out);
        out.commit();
    }
    if (!line.asJson) {
        note(line, SessionReport::notes(session));
        return;
    }

    const std::string object = SessionReport::fitJson(session, readSeconds);
    OutputFile out("-");
    if (goesIntoObject) {
        out.write(SessionReport::openedForMember(object, "table"));
        writeJson(table, out);
        out.write("\n}\n");
    } else {
        out.write(object);
    }
    out.commit();
}

void runSummary(const CommandLine& line)
{
    const OpenSession open(line);
    writeText(line.output, line.asJson ? SessionReport::summaryJson(open.session)
                                       : SessionReport::summaryText(open.session));
}

void runFit(const CommandLine& line)
{
    OpenSession open(line);
    {
        const TerminalProgress progress(line.isQuiet);
        open.session.fit();
    }
    writeText(line.output, line.asJson ? SessionReport::fitJson(open.session, open.readSeconds)
                                       : SessionReport::fitText(open.session));
}

void runEvaluate(const CommandLine& line)
{
    OpenSession open(line);
    chooseValues(line, open.session);
    vtkSmartPointer<vtkTable> values;
    {
        const TerminalProgress progress(line.isQuiet);
        values = open.session.evaluate();
    }

    OutputTable table;
    table.rows = static_cast<std::size_t>(values->GetNumberOfRows());
    for (vtkIdType i = 0; i < values->GetNumberOfColumns(); ++i) {
        auto* const column = vtkDoubleArray::SafeDownCast(values->GetColumn(i));
        table.columns.push_back({column->GetName(), column->GetPointer(0), nullptr});
    }
    writeTable(line, table, open.session, open.readSeconds);
}

void runPredict(const CommandLine& line)
{
    OpenSession open(line);
    CaseFileReader::Options options;
    options.separator = line.separator;
    options.keepCells = true;
    const PredictionPoints points(CaseFileReader::read(line.points, options),
                                  namesOf(open.session.inputs()), namesOf(open.session.outputs()));
    std::vector<std::vector<double>> predictions;
    {
        const TerminalProgress progress(line.isQuiet);
        predictions = open.session.predict(points.inputColumns(), points.count());
    }
    writeTable(line, points.withPredictions(predictions), open.session, open.readSeconds);
}

void runEquations(const CommandLine& line)
{
    OpenSession open(line);
    const bool isOnlyObject = line.asJson && line.output == "-";
    if (!isOnlyObject) {
        writeText(line.output, open.session.equationText());
    }
    if (line.asJson) {
        writeText("-", SessionReport::equationsJson(open.session, open.readSeconds));
    } else {
        note(line, SessionReport::notes(open.session));
    }
}

void runCheck(const CommandLine& line)
{
    SurrogateModelUserDist distribution(line.subject);
    std::vector<double> values;
    distribution.get(values);
    const bool isValid = distribution.isValid();

    nlohmann::ordered_json object = {{"schema", 1}, {"text", line.subject}};
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
        writeText("-", object.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) + '\n');
    }
    if (!isValid) {
        throw DistributionTextError(distribution.errorString());
    }
}
} // namespace

void run(const CommandLine& line)
{
    if (line.command == CommandLine::Help || line.command == CommandLine::Version) {
        writeText("-", line.command == CommandLine::Help ? helpText() : versionText());
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
    default:
        return runCheck(line);
    }
}
