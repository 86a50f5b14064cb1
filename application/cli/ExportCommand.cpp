#include "ExportCommand.h"

#include "CommandLine.h"
#include "TerminalProgress.h"

#include <session/files/OutputFile.h>
#include <session/model/CaseSession.h>
#include <session/model/ModelFile.h>
#include <session/report/FitReport.h>
#include <session/text/QuotedText.h>
#include <session/text/SessionErrors.h>

#include <string>

#include <unistd.h>

namespace {
ExportFormat formatOf(const CommandLine& line)
{
    if (const auto format = ModelFile::formatOf(line.format)) {
        return *format;
    }
    throw UsageError("--format needs text, json, c, python or excel, not " +
                     quotedText(line.format) + '.');
}
} // namespace

void ExportCommand::check(const CommandLine& line)
{
    if (line.format.empty()) {
        throw UsageError("The command export needs a format: --format text, json, c, python or "
                         "excel.");
    }
    if (formatOf(line) == ExportFormat::Excel && line.output == "-" && isatty(STDOUT_FILENO) != 0) {
        throw UsageError("A workbook is nothing that a terminal can show; name a file: -o FILE.");
    }
}

void ExportCommand::run(const CommandLine& line, CaseSession& session)
{
    fitWithProgress(line, session);
    const std::string content =
        exportModel(ModelFile::exported(session, FitReport::json(session)), formatOf(line));
    OutputFile out(line.output);
    out.write(content);
    out.commit();
}
