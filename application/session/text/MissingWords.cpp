#include "session/text/MissingWords.h"

#include "session/text/TrimmedText.h"

#include <algorithm>
#include <cstddef>

MissingWords::MissingWords(const std::string& list) : list(list)
{
    for (std::size_t begin = 0; begin <= list.size();) {
        const std::size_t end = std::min(list.find(',', begin), list.size());
        const std::string_view word =
            trimmedText(std::string_view(list).substr(begin, end - begin));
        if (!word.empty()) {
            words.emplace_back(word);
            const CellValue value = CellValue::read(word, false);
            if (value.kind == CellValue::Number) {
                numbers.push_back(value.number);
            }
        }
        begin = end + 1;
    }
}

bool MissingWords::contains(std::string_view text, const CellValue& value) const
{
    if (value.kind == CellValue::Number &&
        std::find(numbers.begin(), numbers.end(), value.number) != numbers.end()) {
        return true;
    }
    return std::find(words.begin(), words.end(), trimmedText(text)) != words.end();
}
