#pragma once

#include <surrogate_session/Export.h>

#include <cstddef>
#include <cstdint>
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
    /** Makes room for `cells`, as long on the average as those that are there. */
    void reserve(std::size_t cells);

    void append(std::string_view text)
    {
        characters.append(text);
        if (farEnds.empty() && characters.size() <= UINT32_MAX) {
            ends.push_back(static_cast<std::uint32_t>(characters.size()));
        } else {
            farEnds.push_back(characters.size());
        }
    }

    std::size_t size() const { return ends.size() + farEnds.size(); }

    /** Valid until the next append(). @param cell below size(). */
    std::string_view operator[](std::size_t cell) const
    {
        const std::size_t begin = cell == 0 ? 0 : endOf(cell - 1);
        return {characters.data() + begin, endOf(cell) - begin};
    }

private:
    std::size_t endOf(std::size_t cell) const
    {
        return cell < ends.size() ? ends[cell] : farEnds[cell - ends.size()];
    }

    std::string characters;
    std::vector<std::uint32_t> ends;
    std::vector<std::size_t> farEnds; ///< of the cells after the first four gigabytes
};
