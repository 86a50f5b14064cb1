#include "ShellWord.h"

#include <algorithm>
#include <cctype>

std::string shellWord(const std::string& text)
{
    const std::string plain = "+,-./:=@_%^";
    const bool isPlain = std::all_of(text.begin(), text.end(), [&](char letter) {
        const auto byte = static_cast<unsigned char>(letter);
        return std::isalnum(byte) != 0 || byte >= 0x80 || plain.find(letter) != std::string::npos;
    });
    if (isPlain && !text.empty()) {
        return text;
    }
    std::string quoted;
    for (const char letter : text) {
        quoted += letter == '\'' ? "'\\''" : std::string(1, letter);
    }
    return '\'' + quoted + '\'';
}
