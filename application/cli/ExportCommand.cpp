#include "ExportCommand.h"

#include "CommandLine.h"
#include "TerminalProgress.h"

#include <session/files/OutputFile.h>
#include <session/model/CaseSession.h>
#include <session/model/ModelFile.h>
#include <session/report/FitReport.h>
#include <session/text/SessionErrors.h>

#include <string>

#include <unistd.h>

void ExportCommand::check(const CommandLine& line)
{
    if (line.format.empty()) {
        throw UsageError("The command export needs a format: --format text, json, c, python or "
                         "excel.");
    }
    if (ModelFile::formatOf(line.format) == ExportFormat::Excel && line.output == "-" &&
        isatty(STDOUT_FILENO) != 0) {
        throw UsageError("A terminal cannot show a workbook; name a file: -o FILE.");
    }
}

void ExportCommand::run(const CommandLine& line, CaseSession& session)
{
    fitWithProgress(line, session);
    const std::string content = exportModel(ModelFile::exported(session, FitReport::json(session)),
                                            *ModelFile::formatOf(line.format));
    OutputFile out(line.output);
    out.write(content);
    out.commit();
}
