#pragma once

struct CommandLine;

/** The command plot. */
namespace PlotCommand {
/** Draws the picture and writes its file. @throw as ::run() */
void run(const CommandLine& line);
} // namespace PlotCommand
