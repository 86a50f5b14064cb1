#pragma once

struct CommandLine;

/** The command compare. */
namespace CompareCommand {
/** Cross-validates both models and writes the comparison. @throw as ::run() */
void run(const CommandLine& line);
} // namespace CompareCommand
