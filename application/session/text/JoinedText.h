#pragma once

#include <string>
#include <vector>

/** "a, b, c". */
inline std::string joinedText(const std::vector<std::string>& texts)
{
    std::string joined;
    for (const std::string& text : texts) {
        joined += (joined.empty() ? "" : ", ") + text;
    }
    return joined;
}
