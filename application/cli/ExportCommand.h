#pragma once

struct CommandLine;
class CaseSession;

/** The command export: what there is to do beside opening the cases. */
namespace ExportCommand {
/** Finds faults of the command line before anything is read. @throw UsageError */
void check(const CommandLine& line);

/** Fits the model and writes its file. @throw UsageError, FileError,
 *  SurrogateModelInterface::Error */
void run(const CommandLine& line, CaseSession& session);
} // namespace ExportCommand
