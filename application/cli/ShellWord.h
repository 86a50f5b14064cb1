#pragma once

#include <string>

/** A word as it can be typed: in single quotes if a shell would take it apart. */
std::string shellWord(const std::string& text);

/** The same, in quotes in any case. */
std::string singleQuoted(const std::string& text);
