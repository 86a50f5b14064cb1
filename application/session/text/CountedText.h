#pragma once

#include <cstddef>
#include <string>

/** "1 case", "2 cases". */
inline std::string countedText(std::size_t count, const std::string& noun)
{
    return std::to_string(count) + ' ' + noun + (count == 1 ? "" : "s");
}
