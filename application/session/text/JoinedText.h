#pragma once

#include <cstddef>
#include <string>
#include <vector>

/** "a, b, c". */
inline std::string joinedText(const std::vector<std::string>& texts,
                              const std::string& separator = ", ")
{
    std::string joined;
    for (const std::string& text : texts) {
        joined += (joined.empty() ? "" : separator) + text;
    }
    return joined;
}

/** "a", "a and b", "a, b, c, d, e and 7 more": five, or six, since the sixth takes no more room
 * than "1 more". */
inline std::string shortList(std::vector<std::string> texts)
{
    constexpr std::size_t maxShown = 5;
    if (texts.size() > maxShown + 1) {
        texts[maxShown] = std::to_string(texts.size() - maxShown) + " more";
        texts.resize(maxShown + 1);
    }
    if (texts.size() < 2) {
        return texts.empty() ? "" : texts.front();
    }
    const std::string last = texts.back();
    texts.pop_back();
    return joinedText(texts) + " and " + last;
}
