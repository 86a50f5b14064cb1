#pragma once

#include "../CommandLine.h"
#include "../CommandOptions.h"

#include "../../session/tests/MessageOf.h"

#include <session/text/SessionErrors.h>

#include <sstream>
#include <string>
#include <vector>

/** @param line arguments with a blank between each two. */
inline CommandLine parsed(const std::string& line)
{
    std::istringstream words(line);
    std::vector<std::string> arguments;
    for (std::string word; words >> word;) {
        arguments.push_back(word);
    }
    return CommandOptions::parse(arguments);
}

/** Why the arguments are refused. */
inline std::string refusalOf(const std::string& line)
{
    return messageOf<UsageError>([&] { parsed(line); });
}
