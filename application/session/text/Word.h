#pragma once

#include <array>
#include <cstddef>
#include <string>

/** A value that users and documents spell as a word. */
template <class Value>
struct Word
{
    const char* text;
    Value value;
};

/** Empty for a value that has no word. */
template <class Value, std::size_t count>
std::string wordFor(Value value, const std::array<Word<Value>, count>& words)
{
    for (const Word<Value>& word : words) {
        if (word.value == value) {
            return word.text;
        }
    }
    return std::string();
}
