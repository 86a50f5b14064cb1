#pragma once

#include <string>
#include <vector>

/**
 * Does what a command line asks for and reports what goes wrong on the standard error, in one
 * sentence.
 * @return the exit code.
 */
int runProgram(const std::vector<std::string>& arguments);
