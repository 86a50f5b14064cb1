#pragma once

struct CommandLine;
struct Evaluation;
struct OpenSession;

/** The command plot: what there is to do beside opening the cases and choosing values. */
namespace PlotCommand {
/** Finds faults of the command line before anything is read. @throw UsageError */
void check(const CommandLine& line);

/** Gives the inputs the values asked for and, where they are all that is left, the usual ones.
 *  Finds faults that only the cases show, before the fit.
 *  @throw UsageError, DistributionTextError */
void chooseValues(const CommandLine& line, OpenSession& open);

/** Draws the picture and writes its file. @return the extrapolation of the points drawn.
 *  @throw UsageError, FileError, SurrogateModelInterface::Error */
Evaluation run(const CommandLine& line, OpenSession& open);
} // namespace PlotCommand
