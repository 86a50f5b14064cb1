#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

/** "1 case", "2 cases". */
inline std::string countedText(std::size_t count, const std::string& noun)
{
    return std::to_string(count) + ' ' + noun + (count == 1 ? "" : "s");
}

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

/** " and 7 more", behind a list that has been cut short; empty for 0. */
inline std::string andMore(std::size_t more)
{
    return more == 0 ? "" : " and " + std::to_string(more) + " more";
}

/** "a", "a and b", "a, b and c"; of more than `most` texts the first `shown`, "a, b, c and 297
 *  more". */
inline std::string listedText(std::vector<std::string> texts, std::size_t most = 5,
                              std::size_t shown = 3)
{
    if (texts.size() > most) {
        const std::size_t more = texts.size() - shown;
        texts.resize(shown);
        return joinedText(texts) + andMore(more);
    }
    if (texts.size() < 2) {
        return joinedText(texts);
    }
    const std::string last = texts.back();
    texts.pop_back();
    return joinedText(texts) + " and " + last;
}

/** Such a list of five, or six, since the sixth takes no more room than "1 more". */
inline std::string shortList(std::vector<std::string> texts)
{
    return listedText(std::move(texts), 6, 5);
}
