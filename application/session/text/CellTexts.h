#pragma once

#include <surrogate_session/Export.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/**
 * The texts of one column's cells in one buffer: a cell takes its characters and the four bytes of
 * its end, where a vector of strings takes 32 bytes or more.
 */
class SURROGATE_SESSION_EXPORT CellTexts
{
public:
    /** Reserves memory for `cells` in all, of the mean length of those that are there. */
    void reserve(std::size_t cells);

    void append(std::string_view text)
    {
        characters.append(text);
        if (longEnds.empty() && characters.size() <= UINT32_MAX) {
            ends.push_back(static_cast<std::uint32_t>(characters.size()));
        } else {
            longEnds.push_back(characters.size());
        }
    }

    std::size_t size() const { return ends.size() + longEnds.size(); }

    /** Valid until the next append(). @param cell below size(). */
    std::string_view operator[](std::size_t cell) const
    {
        const std::size_t begin = cell == 0 ? 0 : endOf(cell - 1);
        return {characters.data() + begin, endOf(cell) - begin};
    }

private:
    std::size_t endOf(std::size_t cell) const
    {
        return cell < ends.size() ? ends[cell] : longEnds[cell - ends.size()];
    }

    std::string characters;
    std::vector<std::uint32_t> ends;
    std::vector<std::size_t> longEnds; ///< of the cells after the first four gigabytes
};
