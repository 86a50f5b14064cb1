#pragma once

#include "CommandLine.h"

#include <session/text/SettingHint.h>

#include <map>
#include <string>
#include <vector>

namespace CLI {
class App;
}

/** A command with its options. */
struct CommandDescription
{
    CommandLine::Command value;
    const char* name;
    const char* description;

    /** Gives the options to the parser, which puts what they say into the command line. */
    void (*describe)(CLI::App&, CommandLine&);
};

/** All commands but help, in the order in which help lists them. */
const std::vector<CommandDescription>& commandDescriptions();

/** The options that sentences about cases and models advise to use. */
std::map<Setting, std::string> settingOptions();
