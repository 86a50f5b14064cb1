#pragma once

#include <cstddef>
#include <cstring>
#include <string_view>

/**
 * The cells of a record that is one line, one after the other from the left, without the blanks
 * around them. A record has at least one cell.
 *
 * A cell may stand in quotes if there is no quote in it and no blank behind it: isPlain() tells.
 */
class PlainCells
{
public:
    /** @param record borrowed; without line ends. */
    PlainCells(std::string_view record, char separator)
        : separator(separator), position(record.data()), end(record.data() + record.size())
    {}

    /** Whether all quotes around the cells that are left are of that simple kind. */
    bool isPlain() const
    {
        PlainCells rest = *this;
        while (rest) {
            if (rest.begin() != end && *rest.position == '"') {
                const char* const closing = rest.find('"', rest.position + 1);
                if (closing == end || !isCellEnd(closing + 1)) {
                    return false;
                }
                rest.skipTo(closing + 1);
            } else {
                rest.skipTo(rest.find(separator, rest.position));
            }
        }
        return true;
    }

    /** Whether there is another cell. */
    explicit operator bool() const { return position != nullptr; }

    /** Where the text of the next cell begins, or its quote; of an empty cell where it ends. */
    const char* begin()
    {
        while (position != end && isBlank(*position)) {
            ++position;
        }
        return position;
    }

    const char* recordEnd() const { return end; }

    /** Whether a text from begin() to here would be the whole next cell, blanks and all. */
    bool isCellEnd(const char* here) const { return here == end || *here == separator; }

    /** Goes on behind a cell for which isCellEnd() holds. */
    void skipTo(const char* cellEnd) { position = cellEnd == end ? nullptr : cellEnd + 1; }

    std::string_view next()
    {
        const char* const first = begin();
        if (first != end && *first == '"') {
            const char* const closing = find('"', first + 1);
            skipTo(closing + 1);
            return {first + 1, static_cast<std::size_t>(closing - first - 1)};
        }
        const char* const cellEnd = find(separator, first);
        const char* last = cellEnd;
        while (last != first && isBlank(last[-1])) {
            --last;
        }
        skipTo(cellEnd);
        return {first, static_cast<std::size_t>(last - first)};
    }

private:
    bool isBlank(char character) const
    {
        return (character == ' ' || character == '\t') && character != separator;
    }

    /** The end of the record if there is none. */
    const char* find(char character, const char* from) const
    {
        const auto count = static_cast<std::size_t>(end - from);
        const void* const found = count == 0 ? nullptr : std::memchr(from, character, count);
        return found == nullptr ? end : static_cast<const char*>(found);
    }

    char separator;
    const char* position; ///< null behind the last cell
    const char* end;
};
