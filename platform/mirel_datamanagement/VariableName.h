#pragma once

#include <string>

/**
 * Whether a text can be the name of a variable: not empty, valid UTF-8, and made of characters
 * that an XML 1.0 document can carry (tab, newline, carriage return, U+0020 and above without
 * surrogates, U+FFFE and U+FFFF), since project documents refer to variables by name.
 * @throw ProjectError naming the text and what is wrong with it.
 */
void checkVariableName(const std::string& name);

/**
 * The name in quotes for a message: valid UTF-8 whatever the bytes, since control characters and
 * bytes that are no UTF-8 are shown as \xHH.
 */
std::string quotedName(const std::string& name);
