#pragma once

struct CommandLine;
class CaseSession;

/** The command plot: what there is to do beside opening the cases and choosing values. */
namespace PlotCommand {
/** Finds faults of the command line before anything is read. @throw UsageError */
void check(const CommandLine& line);

/** Finds faults that only the cases show, before the fit. @throw UsageError */
void check(const CommandLine& line, const CaseSession& session);

/** Draws the picture and writes its file. @throw UsageError, FileError,
 *  SurrogateModelInterface::Error */
void run(const CommandLine& line, CaseSession& session);
} // namespace PlotCommand
