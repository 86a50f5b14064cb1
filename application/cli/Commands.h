#pragma once

struct CommandLine;

/**
 * Does what the command line asks: data to the standard output or the file wanted, everything else
 * to the standard error.
 * @throw UsageError, CaseDataError, DistributionTextError, FileError, OutputFile::BrokenPipe,
 *        SurrogateModelInterface::Error
 */
void run(const CommandLine& line);
