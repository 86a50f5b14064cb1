#pragma once

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
