#pragma once

#include <surrogate_commands/Export.h>

/** What the program does with its arguments; the exit code. */
extern "C" SURROGATE_COMMANDS_EXPORT int surrogateProgram(int argc, char** argv);
