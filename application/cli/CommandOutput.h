#pragma once

#include <string>

struct CommandLine;

/** Writes a file, whole or not at all; "-" is the standard output. @throw FileError */
void writeText(const std::string& path, const std::string& text);

/** Writes a text to the standard error, unless the command line asks for quiet. */
void note(const CommandLine& line, const std::string& text);

/** Whether both names lead to one regular file that exists. */
bool isSameFile(const std::string& left, const std::string& right);

/**
 * Finds faults of the files to be written before the long work, not after it.
 * @throw UsageError if one would replace what is read; FileError if it cannot be written.
 */
void checkOutput(const CommandLine& line);
