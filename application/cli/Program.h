#pragma once

#include <surrogate_commands/Export.h>

/**
 * What the program does with its arguments. Nothing is thrown: the caller knows none of the
 * exceptions of this library.
 * @return the exit code.
 */
extern "C" SURROGATE_COMMANDS_EXPORT int surrogateProgram(int argc, char** argv);
