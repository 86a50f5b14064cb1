#pragma once

#include <surrogate_session/Export.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/**
 * The texts of one column's cells, end to end in one buffer: a million short cells take little more
 * than their characters, where a vector of strings takes 32 bytes each.
 */
class SURROGATE_SESSION_EXPORT CellTexts
{
public:
    void append(std::string_view text);

    std::size_t size() const;

    /** Valid until the next append(). @param cell below size(). */
    std::string_view operator[](std::size_t cell) const;

private:
    std::string characters;
    std::vector<std::size_t> ends;
};
