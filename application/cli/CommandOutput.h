#pragma once

#include <string>
#include <vector>

class CaseSession;
struct CommandLine;
struct Evaluation;

/** Writes a file, whole or not at all; "-" is the standard output. @throw FileError */
void writeText(const std::string& path, const std::string& text);

/** Writes a text to the standard error, unless the command line asks for quiet. */
void note(const CommandLine& line, const std::string& text);

/** Likewise the notes and warnings of a fit. With --quiet they are not looked for, which takes as
 *  long as many predictions. @param evaluation of the model; null: none. */
void noteFit(const CommandLine& line, CaseSession& session, const Evaluation* evaluation = nullptr);

/** @param what is to be written to the path: "output". @param inputs files that are read.
 *  @throw UsageError if one of them, under whatever name, would be replaced. */
void refuseToReplace(const std::string& what, const std::string& path,
                     const std::vector<std::string>& inputs);

/**
 * Finds faults of the files to be written before the long work, not after it.
 * @throw UsageError if one would replace what is read; FileError if it cannot be written.
 */
void checkOutput(const CommandLine& line);
