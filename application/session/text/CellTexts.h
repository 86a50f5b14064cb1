#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/**
 * The texts of one column's cells in one buffer: a cell takes its characters and the eight bytes of
 * its end, where a vector of strings takes 32 bytes or more.
 */
class CellTexts
{
public:
    /** Reserves memory for `cells` in all, of the mean length of those that are there. */
    void reserve(std::size_t cells)
    {
        const double perCell = static_cast<double>(characters.size()) /
                               static_cast<double>(std::max<std::size_t>(ends.size(), 1));
        characters.reserve(static_cast<std::size_t>(perCell * static_cast<double>(cells)));
        ends.reserve(cells);
    }

    void append(std::string_view text)
    {
        characters.append(text);
        ends.push_back(characters.size());
    }

    std::size_t size() const { return ends.size(); }

    /** Valid until the next append(). @param cell below size(). */
    std::string_view operator[](std::size_t cell) const
    {
        const std::size_t begin = cell == 0 ? 0 : ends[cell - 1];
        return {characters.data() + begin, ends[cell] - begin};
    }

private:
    std::string characters;
    std::vector<std::size_t> ends;
};
