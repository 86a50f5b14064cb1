#pragma once

#include <session/text/CellValue.h>

#include <surrogate_session/Export.h>

#include <string>
#include <string_view>
#include <vector>

/** Spellings of missing cells besides those that CellValue knows: words and numbers. */
class SURROGATE_SESSION_EXPORT MissingWords
{
public:
    MissingWords() = default;

    /** @param list separated by commas, as "failed,999". */
    explicit MissingWords(const std::string& list);

    bool isEmpty() const { return words.empty(); }

    /** Whether a cell is missing: it is spelled like one of the words, or is a number of the value
     *  of one (999 and 999.0). @param value what CellValue reads in it. */
    bool contains(std::string_view text, const CellValue& value) const;

    /** The list. */
    const std::string& text() const { return list; }

private:
    std::string list;
    std::vector<std::string> words;
    std::vector<double> numbers;
};
