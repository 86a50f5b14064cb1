#include "ShellWord.h"

#include <boost/algorithm/string/replace.hpp>

#include <algorithm>
#include <cctype>

std::string shellWord(const std::string& text)
{
    const std::string plain = "+,-./:=@_%^";
    const bool isPlain = std::all_of(text.begin(), text.end(), [&](char letter) {
        const auto byte = static_cast<unsigned char>(letter);
        return std::isalnum(byte) != 0 || byte >= 0x80 || plain.find(letter) != std::string::npos;
    });
    return isPlain && !text.empty() ? text : singleQuoted(text);
}

std::string singleQuoted(const std::string& text)
{
    return '\'' + boost::algorithm::replace_all_copy(text, "'", "'\\''") + '\'';
}
