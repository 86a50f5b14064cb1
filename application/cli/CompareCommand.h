#pragma once

struct CommandLine;

/** The command compare. */
namespace CompareCommand {
/** Fits both models fold by fold and writes what came of it. @throw as ::run() */
void run(const CommandLine& line);
} // namespace CompareCommand
